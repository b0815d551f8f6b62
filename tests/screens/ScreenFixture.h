// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Everything a screen needs, real: a vault file in a temp folder with the keyring the run gives
// (run-with-keyring.sh), the Qt clipboard of the offscreen platform, preferences in a temp INI
// file, PAM through pam_wrapper answered by a scripted person, and the navigation state. Time is
// the only thing held still: a manual clock at noon on 10 March 2026 in New York, and manual
// timers that fire when the test advances them.

#include "LibsecretBackend.h"
#include "ManualClock.h"
#include "ManualTimers.h"
#include "PamAuthenticator.h"
#include "PamTestEnvironment.h"
#include "QtClipboard.h"
#include "QtPreferenceStore.h"
#include "QtTimers.h"
#include "ScriptedPerson.h"
#include "TestTime.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/ServiceActions.h"
#include "auth/AuthManager.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "util/UserCalendar.h"

#include <QDBusConnection>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorlane::testing {

class ScreenFixture : public ::testing::Test {
protected:
    static constexpr const char* userPassword = "correct horse";

    ScreenFixture() {
        auto opened =
            DataStore::open(m_folder.filePath(QStringLiteral("vault.sqlite")).toStdString(),
                            m_keychain, m_calendar, m_timers);
        if (!opened) {
            ADD_FAILURE() << "cannot open the vault: " << opened.error();
            std::abort();
        }
        m_store = std::move(opened).value();
        m_actions = std::make_unique<ServiceActions>(*m_store, m_state, m_calendar);
        m_context.emplace(AppContext{*m_store, m_state, m_auth, m_calendar, m_timers, m_clipboard,
                                     m_preferences, *m_actions});
    }

    ~ScreenFixture() override {
        m_auth.disconnectPlatform();
        m_authenticator.reset();
    }

    AppContext& context() { return *m_context; }
    DataStore& store() { return *m_store; }

    Organization& addOrganization(const std::string& name) {
        Organization organization = Organization::created(m_clock.now());
        organization.name = name;
        return m_store->insert(std::move(organization));
    }

    ServiceRecord& addService(Organization& owner, const std::string& title,
                              const std::function<void(ServiceRecord&)>& edit = {}) {
        ServiceRecord service = ServiceRecord::created(m_clock.now());
        service.title = title;
        if (edit) {
            edit(service);
        }
        return m_store->insert(std::move(service), owner);
    }

    // Connects the authentication to real PAM (pam_wrapper with pam_matrix) with the user's
    // password set; the scripted person answers the prompts in order.
    void connectAuthentication() {
        ASSERT_TRUE(PamPasswords::wrapped()) << "run through ctest: PAM must be preloaded";
        m_authenticator = std::make_unique<PamAuthenticator>(
            m_authLoop, m_person.factory(),
            FprintdProbe(QDBusConnection(QStringLiteral("vorlane-no-bus"))));
        m_passwords.set(m_authenticator->userName(), userPassword);
        m_auth.connectPlatform(*m_authenticator, m_authLoop);
    }

    // An amount written as a person types it ("12.50").
    static Decimal money(const char* text) { return Decimal::fromString(text).value(); }

    // Sets only the archived flag and tells the store (ServiceActions::archive also sets a
    // service's status); returns the record, so that a test can archive what it just added.
    template <typename Record> Record& archiveFlag(Record& record) {
        record.isArchived = true;
        m_store->noteChanged(record);
        return record;
    }

    // The titles of `services`, in their order.
    static std::vector<std::string> titlesOf(const std::vector<ServiceRecord*>& services) {
        std::vector<std::string> titles;
        for (const ServiceRecord* service : services) {
            titles.push_back(service->title);
        }
        return titles;
    }

    std::optional<std::string> clipboardText() const { return m_clipboard.text(); }

    // Runs the Qt event loop (and the manual timers' posted work) until `done` holds.
    static bool waitFor(const std::function<bool()>& done, int timeoutMs = 10000) {
        return QTest::qWaitFor(done, timeoutMs);
    }

    ManualClock m_clock{utc(2026, 3, 10, 17)}; // noon in New York
    ManualTimers m_timers{m_clock};
    UserCalendar m_calendar{m_clock, "America/New_York"};
    LibsecretBackend m_secretBackend;
    KeychainManager m_keychain{m_secretBackend};
    QTemporaryDir m_folder;
    QtClipboard m_clipboard;
    QtPreferenceStore m_preferences{m_folder.filePath(QStringLiteral("preferences.ini"))};
    AppState m_state{m_clipboard, m_timers};
    QtTimers m_authLoop;
    PamPasswords m_passwords;
    ScriptedPerson m_person;
    std::unique_ptr<PamAuthenticator> m_authenticator;
    AuthManager m_auth;
    std::unique_ptr<DataStore> m_store;
    std::unique_ptr<ServiceActions> m_actions;
    std::optional<AppContext> m_context;
};

} // namespace vorlane::testing
