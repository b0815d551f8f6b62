// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ServiceRowMenu.h"

#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/ServiceActions.h"
#include "auth/AuthManager.h"
#include "model/ServiceRecord.h"
#include "store/DataStore.h"

#include <algorithm>
#include <utility>

namespace vorlane {

ServiceRowMenu::ServiceRowMenu(AppContext& context, ServiceRecord& service,
                               std::function<void(ServiceRecord&)> open)
    : m_context(context)
    , m_service(service)
    , m_open(std::move(open)) {
    buildItems();
}

void ServiceRowMenu::buildItems() {
    const ServiceRecord& s = m_service;
    m_items = {
        {Action::open, "Open", "arrow.right.circle"},
        {Action::edit, "Edit", "pencil"},
        {Action::duplicate, "Duplicate", "plus.square.on.square"},
        {Action::copyUsername, "Copy Username", "doc.on.doc", !s.username.empty(), true},
        // Whether a password is really stored would take a secret-store round trip on every
        // right click; a service without an identifier certainly has none.
        {Action::copyPassword, "Copy Password", "key", !s.secretKeychainID.empty()},
        {Action::copyURL, "Copy URL", "link", !s.loginURL.empty()},
        {Action::openURL, "Open URL", "safari", !s.loginURL.empty()},
        {Action::share, "Share", "square.and.arrow.up", true, true},
    };
    if (s.isArchived) {
        m_items.push_back({Action::restore, "Restore", "arrow.uturn.backward", true, true});
    } else {
        m_items.push_back({Action::archive, "Archive", "archivebox", true, true});
    }
    m_items.push_back({Action::deleteService, "Delete\u2026", "trash", true, false, true});
}

const ServiceRowMenu::Item* ServiceRowMenu::item(Action action) const {
    const auto found = std::ranges::find(m_items, action, &Item::action);
    return found == m_items.end() ? nullptr : &*found;
}

void ServiceRowMenu::trigger(Action action) {
    const Item* chosen = item(action);
    if (!chosen || !chosen->enabled) {
        return;
    }
    switch (action) {
    case Action::open:
        m_open(m_service);
        return;
    case Action::edit:
        m_context.serviceActions.edit(m_service);
        return;
    case Action::duplicate:
        m_context.serviceActions.duplicate(m_service);
        return;
    case Action::copyUsername:
        copy(m_service.username);
        return;
    case Action::copyPassword:
        copyPassword();
        return;
    case Action::copyURL:
        copy(m_service.loginURL);
        return;
    case Action::share:
        m_context.state.startShare(m_service);
        return;
    case Action::archive:
        m_context.serviceActions.archive(m_service);
        return;
    case Action::restore:
        m_context.serviceActions.restore(m_service);
        return;
    case Action::openURL:
    case Action::deleteService:
        // Both need the window: see the header.
        return;
    }
}

Result<std::string, OpenableAddress::Refusal> ServiceRowMenu::addressToOpen() const {
    return OpenableAddress::resolve(m_service.loginURL);
}

ServiceRowMenu::Confirmation ServiceRowMenu::deleteConfirmation() const {
    return {"Delete Service", ServiceActions::deleteConfirmationMessage(m_service), "Delete",
            "Cancel"};
}

void ServiceRowMenu::deleteService() {
    m_context.serviceActions.deleteService(m_service);
}

void ServiceRowMenu::copy(const std::string& text) {
    m_context.state.copyToClipboard(text, AppState::clipboardClearDelay);
}

void ServiceRowMenu::copyPassword() {
    // The menu is gone by the time the reply comes: keep only what outlives it.
    AppContext& context = m_context;
    const Uuid id = m_service.id;
    context.auth.authenticateForSensitiveAction(
        "Copy password for " + m_service.title, [&context, id](bool authenticated) {
            if (!authenticated) {
                return;
            }
            const ServiceRecord* service = context.store.service(id);
            if (!service) {
                return;
            }
            const std::optional<std::string> password = context.store.getPassword(*service);
            if (password && !password->empty()) {
                context.state.copyToClipboard(*password, AppState::clipboardClearDelay);
            }
        });
}

} // namespace vorlane
