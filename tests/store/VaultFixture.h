// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A vault in a fresh temp folder, opened with a real keyring (the test runs under
// run-with-keyring.sh), a clock that stands still and timers that fire when the test says.

#include "LibsecretBackend.h"
#include "ManualClock.h"
#include "ManualTimers.h"
#include "RunCommand.h"
#include "TestTime.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "store/SqliteConnection.h"
#include "util/UserCalendar.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace vorlane::testing {

class VaultFixture : public ::testing::Test {
protected:
    VaultFixture() {
        char pattern[] = "/tmp/vorlane-store-XXXXXX";
        m_folder = ::mkdtemp(pattern);
        m_path = m_folder + "/vault.sqlite";
    }

    ~VaultFixture() override {
        m_store.reset();
        std::filesystem::remove_all(m_folder);
    }

    DataStore& open() {
        m_store.reset();
        auto opened = DataStore::open(m_path, m_keychain, m_calendar, m_timers);
        if (!opened) {
            ADD_FAILURE() << "cannot open the vault: " << opened.error();
            std::abort();
        }
        m_store = std::move(opened).value();
        return *m_store;
    }

    // Saves, closes and opens again, so that what follows sees only what the file holds.
    DataStore& reopen() {
        EXPECT_TRUE(m_store->save());
        return open();
    }

    // A raw connection to the file, to look at (or tamper with) it behind the store's back.
    SqliteConnection raw() {
        std::string error;
        auto connection = SqliteConnection::open(m_path, SqliteConnection::Mode::readWrite, error);
        EXPECT_TRUE(connection) << error;
        return std::move(*connection);
    }

    static std::string fileBytes(const std::string& path) { return readFile(path); }

    Organization& addOrganization(const std::string& name) {
        Organization organization = Organization::created(m_clock.now());
        organization.name = name;
        return m_store->insert(std::move(organization));
    }

    ServiceRecord& addService(Organization& owner, const std::string& title) {
        ServiceRecord service = ServiceRecord::created(m_clock.now());
        service.title = title;
        return m_store->insert(std::move(service), owner);
    }

    // Edits a record and tells the store, as the editing views do.
    template <typename Record, typename Edit> Record& change(Record& record, Edit edit) {
        edit(record);
        m_store->noteChanged(record);
        return record;
    }

    std::string m_folder;
    std::string m_path;
    ManualClock m_clock{utc(2025, 3, 20, 12)};
    ManualTimers m_timers{m_clock};
    UserCalendar m_calendar{m_clock, "Europe/Berlin"};
    LibsecretBackend m_backend;
    KeychainManager m_keychain{m_backend};
    std::unique_ptr<DataStore> m_store;
};

} // namespace vorlane::testing
