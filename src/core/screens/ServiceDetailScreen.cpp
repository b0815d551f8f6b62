// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ServiceDetailScreen.h"

#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/OpenableAddress.h"
#include "app/ServiceActions.h"
#include "auth/AuthManager.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "store/DataStore.h"
#include "totp/Totp.h"
#include "totp/TotpSecret.h"
#include "util/CurrencyFormat.h"
#include "util/DateText.h"
#include "util/TagText.h"
#include "util/UserCalendar.h"

#include <algorithm>
#include <utility>

namespace vorlane {

namespace {

// Overwrites the text before it is freed, so that a revealed secret does not linger in memory.
void wipe(std::string& text) {
    std::fill(text.begin(), text.end(), '\0');
    text.clear();
}

} // namespace

ServiceDetailScreen::ServiceDetailScreen(AppContext& context, const ServiceRecord& service)
    : m_context(context)
    , m_serviceId(service.id)
    , m_self(std::make_shared<ServiceDetailScreen*>(this)) {}

ServiceDetailScreen::~ServiceDetailScreen() {
    *m_self = nullptr;
    if (m_copiedTimer != 0) {
        m_context.timers.cancel(m_copiedTimer);
    }
    if (m_codeTimer != 0) {
        m_context.timers.cancel(m_codeTimer);
    }
    wipe(m_password.value);
    wipe(m_apiKey.value);
    wipe(m_oneTimeCode.value);
}

ServiceRecord* ServiceDetailScreen::service() const {
    return m_context.store.service(m_serviceId);
}

bool ServiceDetailScreen::exists() const {
    return service() != nullptr;
}

std::string ServiceDetailScreen::title() const {
    const ServiceRecord* record = service();
    return record != nullptr ? record->title : std::string();
}

std::string ServiceDetailScreen::subtitle() const {
    const ServiceRecord* record = service();
    if (record == nullptr) {
        return {};
    }
    std::string text(record->serviceType().label());
    if (record->organization != nullptr && !record->organization->name.empty()) {
        text += " · " + record->organization->name;
    }
    return text;
}

std::string_view ServiceDetailScreen::typeIcon() const {
    const ServiceRecord* record = service();
    return record != nullptr ? record->serviceType().icon()
                             : ServiceType(ServiceType::customSecret).icon();
}

Palette::Color ServiceDetailScreen::typeTint() const {
    const ServiceRecord* record = service();
    return record != nullptr ? record->serviceType().tintColor() : Palette::Color::secondary;
}

ExpirationState ServiceDetailScreen::expirationState() const {
    const ServiceRecord* record = service();
    return record != nullptr ? record->expirationState(m_context.calendar) : ExpirationState::none;
}

std::vector<ServiceDetailScreen::Section> ServiceDetailScreen::sections() const {
    const ServiceRecord* record = service();
    if (record == nullptr) {
        return {};
    }
    const UserCalendar& calendar = m_context.calendar;
    const auto date = [&calendar](Instant instant) {
        return DateText::format(instant, DateText::Style::abbreviated, calendar);
    };
    const auto row = [](Field field, RowKind kind, std::string label, std::string value,
                        std::string_view icon) {
        return Row{field, kind, std::move(label), std::move(value), icon, std::nullopt};
    };

    Section credentials{"Credentials", {}};
    const auto copyable = [&](Field field, const char* label, const std::string& value,
                              std::string_view icon, RowKind kind = RowKind::copyable) {
        if (!value.empty()) {
            credentials.rows.push_back(row(field, kind, label, value, icon));
        }
    };
    copyable(Field::loginURL, "Login URL", record->loginURL, "link", RowKind::url);
    copyable(Field::hostname, "Hostname", record->hostname, "server.rack");
    copyable(Field::domain, "Domain", record->domain, "globe");
    copyable(Field::ipAddress, "IP Address", record->ipAddress, "network");
    if (record->port) {
        copyable(Field::port, "Port", std::to_string(*record->port), "arrow.left.arrow.right");
    }
    copyable(Field::username, "Username", record->username, "person");
    copyable(Field::emailAddress, "Email", record->emailAddress, "envelope");
    copyable(Field::sshKey, "SSH Key", record->sshKeyReference, "terminal");
    const auto secure = [&](Field field, const char* label, const std::string& identifier) {
        if (identifier.empty()) {
            return;
        }
        const Secret& state = secret(field);
        std::string shown = state.revealed ? state.value : std::string(maskedText);
        if (field == Field::oneTimeCode && state.revealed) {
            int validFor = 0;
            const std::optional<std::string> code = currentCode(state.value, &validFor);
            shown = code ? Totp::grouped(*code) + " · " + std::to_string(validFor) + " s"
                         : std::string();
        }
        Row secureRow = row(field, RowKind::secure, label, std::move(shown),
                            field == Field::oneTimeCode ? "clock" : "lock");
        secureRow.revealed = state.revealed;
        credentials.rows.push_back(std::move(secureRow));
    };
    secure(Field::password, "Password", record->secretKeychainID);
    secure(Field::apiKey, "API Key", record->apiKeyKeychainID);
    secure(Field::oneTimeCode, "One-Time Code", record->totpKeychainID);

    Section billing{"Billing & Dates", {}};
    billing.rows.push_back(row(Field::billingCycle, RowKind::info, "Billing Cycle",
                               std::string(record->billingCycle().label()), "repeat"));
    if (!record->monthlyCost.isZero()) {
        billing.rows.push_back(row(Field::monthlyCost, RowKind::info, "Monthly Cost",
                                   currencyFormatted(record->monthlyCost), "dollarsign.circle"));
    }
    if (!record->yearlyCost.isZero()) {
        billing.rows.push_back(row(Field::yearlyCost, RowKind::info, "Yearly Cost",
                                   currencyFormatted(record->yearlyCost), "dollarsign.circle"));
    }
    if (record->purchaseDate) {
        billing.rows.push_back(row(Field::purchaseDate, RowKind::info, "Purchase Date",
                                   date(*record->purchaseDate), "cart"));
    }
    if (record->renewalDate) {
        billing.rows.push_back(row(Field::renewalDate, RowKind::info, "Last Renewed",
                                   date(*record->renewalDate), "arrow.clockwise"));
    }
    if (record->expirationDate) {
        Row expiration = row(Field::expirationDate, RowKind::info, "Expiration Date",
                             date(*record->expirationDate), "calendar");
        expiration.valueColor = record->expirationState(calendar).color();
        billing.rows.push_back(std::move(expiration));
    }
    billing.rows.push_back(row(Field::autoRenew, RowKind::info, "Auto-Renew",
                               record->autoRenew ? "Yes" : "No", "arrow.triangle.2.circlepath"));

    Section additional{"Additional Information", {}};
    if (!record->tags.empty()) {
        additional.rows.push_back(
            row(Field::tags, RowKind::info, "Tags", joinTags(record->tags), "tag"));
    }
    if (!record->notes.empty()) {
        additional.rows.push_back(
            row(Field::notes, RowKind::info, "Notes", record->notes, "note.text"));
    }
    additional.rows.push_back(row(Field::riskLevel, RowKind::info, "Risk Level",
                                  std::string(record->riskLevel().displayName()), "shield"));
    additional.rows.push_back(
        row(Field::createdAt, RowKind::caption, "", "Created " + date(record->createdAt), ""));
    additional.rows.push_back(
        row(Field::updatedAt, RowKind::caption, "", "Updated " + date(record->updatedAt), ""));

    std::vector<Section> result;
    for (Section* section : {&credentials, &billing, &additional}) {
        if (!section->rows.empty()) {
            for (Row& each : section->rows) {
                each.copied = m_copied == each.field;
            }
            result.push_back(std::move(*section));
        }
    }
    return result;
}

ServiceDetailScreen::Secret& ServiceDetailScreen::secret(Field field) {
    return field == Field::apiKey        ? m_apiKey
           : field == Field::oneTimeCode ? m_oneTimeCode
                                         : m_password;
}

const ServiceDetailScreen::Secret& ServiceDetailScreen::secret(Field field) const {
    return field == Field::apiKey        ? m_apiKey
           : field == Field::oneTimeCode ? m_oneTimeCode
                                         : m_password;
}

void ServiceDetailScreen::hide(Secret& state) {
    state.revealed = false;
    wipe(state.value);
    if (&state == &m_oneTimeCode && m_codeTimer != 0) {
        m_context.timers.cancel(m_codeTimer);
        m_codeTimer = 0;
    }
}

std::optional<std::string> ServiceDetailScreen::currentCode(const std::string& secretText,
                                                            int* validFor) const {
    const auto parsed = TotpSecret::parse(secretText);
    if (!parsed.ok()) {
        return std::nullopt;
    }
    const Totp::Code code = Totp::at(parsed.value(), m_context.calendar.now());
    if (validFor != nullptr) {
        *validFor = code.validFor;
    }
    return code.digits;
}

void ServiceDetailScreen::tickOneTimeCode() {
    // Waking on each second of the clock (not a second after the reveal) keeps the count in
    // step with the code, which changes exactly on a period's boundary.
    const auto sinceSecond = m_context.calendar.now().time_since_epoch() % std::chrono::seconds(1);
    m_codeTimer = m_context.timers.startOneShot(std::chrono::seconds(1) - sinceSecond, [this] {
        m_codeTimer = 0;
        if (m_oneTimeCode.revealed) {
            tickOneTimeCode();
            changed.emit();
        }
    });
}

void ServiceDetailScreen::authenticateThenRead(
    Field field, const std::string& reason, std::function<void(std::optional<std::string>)> then) {
    Secret& state = secret(field);
    if (state.asking) {
        return;
    }
    state.asking = true;
    std::weak_ptr<ServiceDetailScreen*> alive = m_self;
    m_context.auth.authenticateForSensitiveAction(
        reason, [alive, field, then = std::move(then)](bool granted) {
            const auto self = alive.lock();
            if (!self || *self == nullptr) {
                return; // the screen was left while the prompt was open
            }
            ServiceDetailScreen& screen = **self;
            screen.secret(field).asking = false;
            const ServiceRecord* record = screen.service();
            if (!granted || record == nullptr) {
                return;
            }
            const DataStore& store = screen.m_context.store;
            then(field == Field::apiKey        ? store.getAPIKey(*record)
                 : field == Field::oneTimeCode ? store.getTOTPSecret(*record)
                                               : store.getPassword(*record));
        });
}

void ServiceDetailScreen::toggleReveal(Field field) {
    const ServiceRecord* record = service();
    if (record == nullptr ||
        (field != Field::password && field != Field::apiKey && field != Field::oneTimeCode)) {
        return;
    }
    Secret& state = secret(field);
    if (state.revealed) {
        hide(state);
        changed.emit();
        return;
    }
    const std::string reason =
        std::string(field == Field::apiKey        ? "Reveal API key for "
                    : field == Field::oneTimeCode ? "Reveal one-time code for "
                                                  : "Reveal password for ") +
        record->title;
    authenticateThenRead(field, reason, [this, field](std::optional<std::string> value) {
        Secret& revealed = secret(field);
        wipe(revealed.value);
        // A secret that cannot be read shows as empty rather than staying masked: the user
        // authenticated and should see that there is nothing.
        revealed.value = value.value_or(std::string());
        revealed.revealed = true;
        if (value) {
            wipe(*value);
        }
        if (field == Field::oneTimeCode && m_codeTimer == 0) {
            tickOneTimeCode();
        }
        changed.emit();
    });
}

void ServiceDetailScreen::copy(Field field) {
    const ServiceRecord* record = service();
    if (record == nullptr) {
        return;
    }
    if (field == Field::password || field == Field::apiKey || field == Field::oneTimeCode) {
        // What leaves for the clipboard: the secret itself, or for a one-time code the digits
        // valid now (never the secret they are made from).
        const auto copied = [this, field](const std::string& value) {
            std::optional<std::string> text =
                field == Field::oneTimeCode ? currentCode(value) : std::optional(value);
            if (text && !text->empty()) { // an unreadable secret leaves the clipboard alone
                copyText(field, *text);
                wipe(*text);
            }
        };
        const Secret& state = secret(field);
        if (state.revealed) {
            copied(state.value);
            return;
        }
        const std::string reason =
            std::string(field == Field::apiKey        ? "Copy API key for "
                        : field == Field::oneTimeCode ? "Copy one-time code for "
                                                      : "Copy password for ") +
            record->title;
        authenticateThenRead(field, reason, [copied](std::optional<std::string> value) {
            if (value) {
                copied(*value);
                wipe(*value);
            }
        });
        return;
    }
    for (const Section& section : sections()) {
        for (const Row& row : section.rows) {
            if (row.field == field && row.kind != RowKind::info && row.kind != RowKind::caption) {
                copyText(field, row.value);
                return;
            }
        }
    }
}

void ServiceDetailScreen::copyText(Field field, const std::string& text) {
    m_context.state.copyToClipboard(text, AppState::clipboardClearDelay);
    if (m_copiedTimer != 0) {
        m_context.timers.cancel(m_copiedTimer);
    }
    m_copied = field;
    m_copiedTimer = m_context.timers.startOneShot(copiedMarkDuration, [this] {
        m_copiedTimer = 0;
        m_copied.reset();
        changed.emit();
    });
    changed.emit();
}

bool ServiceDetailScreen::canOpenURL() const {
    const ServiceRecord* record = service();
    return record != nullptr && !record->loginURL.empty();
}

std::optional<std::string> ServiceDetailScreen::addressToOpen() {
    if (!canOpenURL()) {
        return std::nullopt;
    }
    auto address = OpenableAddress::resolve(service()->loginURL);
    if (!address) {
        m_message = address.error().message;
        changed.emit();
        return std::nullopt;
    }
    return std::move(address).value();
}

std::string ServiceDetailScreen::copyAllText() const {
    const ServiceRecord* record = service();
    if (record == nullptr) {
        return {};
    }
    std::string text;
    const auto line = [&text](std::string_view prefix, const std::string& value) {
        if (value.empty()) {
            return;
        }
        if (!text.empty()) {
            text += '\n';
        }
        text.append(prefix).append(value);
    };
    line("Title: ", record->title);
    line("URL: ", record->loginURL);
    line("Host: ", record->hostname);
    line("Domain: ", record->domain);
    line("IP: ", record->ipAddress);
    line("Username: ", record->username);
    line("Email: ", record->emailAddress);
    if (record->port) {
        line("Port: ", std::to_string(*record->port));
    }
    return text;
}

void ServiceDetailScreen::copyAll() {
    if (exists()) {
        m_context.state.copyToClipboard(copyAllText(), AppState::clipboardClearDelay);
    }
}

bool ServiceDetailScreen::canMarkRenewed() const {
    const ServiceRecord* record = service();
    return record != nullptr && record->expirationDate.has_value();
}

void ServiceDetailScreen::markRenewed() {
    if (ServiceRecord* record = service()) {
        m_context.serviceActions.markRenewed(*record);
    }
}

void ServiceDetailScreen::edit() {
    if (ServiceRecord* record = service()) {
        m_context.serviceActions.edit(*record);
    }
}

void ServiceDetailScreen::duplicate() {
    const ServiceRecord* record = service();
    if (record == nullptr) {
        return;
    }
    if (m_context.serviceActions.duplicate(*record) == nullptr) {
        m_message = "The copy could not be made: its secrets could not be stored in the system "
                    "keyring.";
        changed.emit();
    }
}

std::string ServiceDetailScreen::deleteConfirmationMessage() const {
    const ServiceRecord* record = service();
    return record != nullptr ? ServiceActions::deleteConfirmationMessage(*record) : std::string();
}

void ServiceDetailScreen::deleteService() {
    if (ServiceRecord* record = service()) {
        hide(m_password);
        hide(m_apiKey);
        hide(m_oneTimeCode);
        m_context.serviceActions.deleteService(*record);
    }
}

void ServiceDetailScreen::back() {
    m_context.state.setSelectedService(nullptr);
}

} // namespace vorlane
