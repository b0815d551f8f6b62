// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/PasswordHealthScreen.h"

#include "app/AppContext.h"
#include "app/AppState.h"
#include "auth/AuthManager.h"
#include "store/DataStore.h"
#include "util/UserCalendar.h"

namespace vorlane {

namespace {

using Item = PasswordHealth::Item;

PasswordHealthScreen::Row rowOf(const Item& item, bool withKind) {
    std::string subtitle = item.client;
    if (withKind) {
        subtitle += std::string(subtitle.empty() ? "" : " · ") +
                    (item.kind == PasswordHealth::Kind::apiKey ? "API key" : "Password");
    }
    return {item.serviceId, item.title, subtitle};
}

} // namespace

PasswordHealthScreen::PasswordHealthScreen(AppContext& context, KeychainManager& keychain)
    : m_context(context)
    , m_keychain(keychain)
    , m_self(std::make_shared<PasswordHealthScreen*>(this)) {}

PasswordHealthScreen::~PasswordHealthScreen() {
    *m_self = nullptr;
}

void PasswordHealthScreen::authenticate() {
    std::weak_ptr<PasswordHealthScreen*> alive = m_self;
    m_context.auth.authenticateForSensitiveAction(
        std::string(authenticateReason), [alive](bool granted) {
            const auto self = alive.lock();
            if (!self || *self == nullptr || !granted) {
                return;
            }
            PasswordHealthScreen& screen = **self;
            screen.m_findings = PasswordHealth::check(screen.m_context.store, screen.m_keychain,
                                                      screen.m_context.calendar.now());
            screen.m_message = screen.m_findings ? std::string()
                                                 : "The passwords could not be read from the "
                                                   "system keyring.";
            screen.changed.emit();
        });
}

std::string PasswordHealthScreen::countsText() const {
    if (!m_findings) {
        return {};
    }
    std::size_t reused = 0;
    for (const auto& group : m_findings->reused) {
        reused += group.size();
    }
    return "Reused: " + std::to_string(reused) +
           "  Weak: " + std::to_string(m_findings->weak.size()) +
           "  Old: " + std::to_string(m_findings->old.size()) +
           "  Without a password: " + std::to_string(m_findings->withoutPassword.size());
}

std::optional<std::size_t> PasswordHealthScreen::findingsCount() const {
    return m_findings ? std::optional(m_findings->count()) : std::nullopt;
}

std::vector<PasswordHealthScreen::Section> PasswordHealthScreen::sections() const {
    std::vector<Section> result;
    if (!m_findings) {
        return result;
    }
    for (std::size_t i = 0; i < m_findings->reused.size(); ++i) {
        const auto& group = m_findings->reused[i];
        Section section{"Reused Secret " + std::to_string(i + 1) + " (" +
                            std::to_string(group.size()) + " uses)",
                        {}};
        for (const Item& item : group) {
            section.rows.push_back(rowOf(item, true));
        }
        result.push_back(std::move(section));
    }
    const auto add = [&result](const char* heading, const std::vector<Item>& items, bool kinds) {
        if (items.empty()) {
            return;
        }
        Section section{heading, {}};
        for (const Item& item : items) {
            section.rows.push_back(rowOf(item, kinds));
        }
        result.push_back(std::move(section));
    };
    add("Weak", m_findings->weak, true);
    add("Unchanged for More Than a Year", m_findings->old, false);
    add("Without a Password", m_findings->withoutPassword, false);
    return result;
}

std::optional<EmptyState> PasswordHealthScreen::emptyState() const {
    if (!m_findings) {
        return EmptyState{"shield", std::string(title),
                          m_message.empty() ? "Reused, weak and old passwords are found on this "
                                              "computer, after you authenticate. Nothing is "
                                              "looked up online."
                                            : m_message,
                          "Check Passwords"};
    }
    if (m_findings->count() == 0) {
        return EmptyState{"shield",
                          "No Findings",
                          "No password is reused, weak or old, and every service has one.",
                          {}};
    }
    return std::nullopt;
}

void PasswordHealthScreen::open(const Row& row) {
    if (ServiceRecord* service = m_context.store.service(row.serviceId)) {
        m_context.state.navigateTo(*service);
    }
}

void PasswordHealthScreen::clear() {
    if (m_findings || !m_message.empty()) {
        m_findings.reset();
        m_message.clear();
        changed.emit();
    }
}

} // namespace vorlane
