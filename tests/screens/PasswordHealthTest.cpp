// SPDX-License-Identifier: GPL-3.0-or-later
// The password health report over a real vault and keyring: reused, weak and old secrets and
// services without a password, read in one batch, the view and its sidebar badge offscreen, and
// `vorlane-cli health` on a terminal.

#include "passwords/PasswordHealth.h"

#include "RunCommand.h"
#include "ScreenFixture.h"
#include "TerminalSession.h"
#include "components/EmptyStateView.h"
#include "components/RowListView.h"
#include "components/RowVariant.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/PasswordHealthScreen.h"
#include "screens/PasswordHealthView.h"
#include "screens/SidebarView.h"

#include <QLabel>
#include <QListView>
#include <QPushButton>

#include <libsecret/secret.h>
#include <nlohmann/json.hpp>

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;
using Kind = PasswordHealth::Kind;

class PasswordHealthTest : public ScreenFixture {
protected:
    // A service of `owner` with the password (and API key) given, stored in the keyring.
    ServiceRecord& withSecrets(Organization& owner, const std::string& title,
                               const std::string& password, const std::string& apiKey = {},
                               std::optional<Instant> changedAt = std::nullopt) {
        ServiceRecord& service = addService(owner, title, [&](ServiceRecord& s) {
            if (!password.empty()) {
                s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
                s.passwordChangedAt = changedAt.value_or(m_clock.now());
            }
            if (!apiKey.empty()) {
                s.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
            }
        });
        if (!password.empty()) {
            EXPECT_TRUE(store().setPassword(password, service));
        }
        if (!apiKey.empty()) {
            EXPECT_TRUE(store().setAPIKey(apiKey, service));
        }
        return service;
    }

    // "Client: Title (kind)" of each item, for comparing whole lists.
    static std::vector<std::string> named(const std::vector<PasswordHealth::Item>& items) {
        std::vector<std::string> names;
        for (const auto& item : items) {
            names.push_back(item.client + ": " + item.title +
                            (item.kind == Kind::apiKey ? " (API key)" : ""));
        }
        return names;
    }

    // The demo of the issue: an agency whose clients share a password, with weak and old ones.
    void plantVault() {
        Organization& acme = addOrganization("Acme");
        Organization& beta = addOrganization("Beta");
        const std::string shared = "Tr0ub4dor&3-horse-staple!";
        withSecrets(acme, "Mail server", shared);
        withSecrets(beta, "Hosting", shared);
        withSecrets(beta, "Registrar", "q8#Lp2@vZ9!mW4$kR7xT");
        // Its API key is its own password: reused by no other service.
        withSecrets(acme, "Router", "password123", "password123");
        withSecrets(acme, "CI", "hV7$wQ2!nB9@zK4#", "sk_live_51HxQ2eZvKYlo2C0aIiXyZ",
                    m_clock.now() - 400 * 24h);
        withSecrets(beta, "Deploy key", "", "Tr0ub4dor&3-horse-staple!");
        withSecrets(beta, "Wiki", "");
        archiveFlag(withSecrets(beta, "Old VPS", "password123"));
        ASSERT_TRUE(store().save());
    }
};

TEST_F(PasswordHealthTest, FindsReusedWeakOldAndMissingPasswordsOfLiveServicesOnly) {
    plantVault();
    const auto findings = PasswordHealth::check(store(), m_keychain, m_clock.now());
    ASSERT_TRUE(findings.has_value());
    ASSERT_EQ(findings->reused.size(), 1U) << "a service's own API key is no reuse";
    EXPECT_EQ(named(findings->reused[0]),
              (std::vector<std::string>{"Beta: Deploy key (API key)", "Beta: Hosting",
                                        "Acme: Mail server"}));
    EXPECT_EQ(named(findings->weak),
              (std::vector<std::string>{"Acme: Router", "Acme: Router (API key)"}))
        << "the archived Old VPS is left out";
    EXPECT_EQ(named(findings->old), std::vector<std::string>{"Acme: CI"});
    EXPECT_EQ(named(findings->withoutPassword),
              (std::vector<std::string>{"Beta: Deploy key", "Beta: Wiki"}));
    EXPECT_EQ(findings->count(), 3U + 2U + 1U + 2U);

    // A year to the day is not yet old; a password replaced is young again.
    EXPECT_EQ(PasswordHealth::check(store(), m_keychain, m_clock.now() - 34 * 24h)->old.size(), 1U);
    EXPECT_EQ(PasswordHealth::check(store(), m_keychain, m_clock.now() - 35 * 24h)->old.size(), 0U);
}

TEST_F(PasswordHealthTest, DigestsAreKeyedPerReportAndALockedKeyringGivesNoReport) {
    const PasswordHealth::Digester one;
    const PasswordHealth::Digester other;
    EXPECT_EQ(one.digest("hunter2"), one.digest("hunter2"));
    EXPECT_NE(one.digest("hunter2"), one.digest("hunter3"));
    EXPECT_NE(one.digest("hunter2"), other.digest("hunter2"))
        << "a digest means nothing outside its report";

    plantVault();
    GError* error = nullptr;
    SecretService* service = secret_service_get_sync(SECRET_SERVICE_NONE, nullptr, &error);
    ASSERT_NE(service, nullptr);
    SecretCollection* collection = secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, &error);
    GList* objects = g_list_append(nullptr, collection);
    ASSERT_EQ(secret_service_lock_sync(service, objects, nullptr, nullptr, &error), 1);
    g_list_free(objects);
    g_object_unref(collection);
    g_object_unref(service);
    EXPECT_EQ(PasswordHealth::check(store(), m_keychain, m_clock.now()), std::nullopt);
}

TEST_F(PasswordHealthTest, TheViewShowsNothingUntilAuthenticatedThenSectionsThatOpenServices) {
    plantVault();
    connectAuthentication();
    PasswordHealthScreen screen(context(), m_keychain);
    EXPECT_FALSE(screen.hasReport());
    EXPECT_EQ(screen.findingsCount(), std::nullopt);
    EXPECT_TRUE(screen.sections().empty());

    m_person.willCancel();
    screen.authenticate();
    ASSERT_TRUE(waitFor([&] { return m_person.closedPrompts == 1; }));
    QTest::qWait(50);
    EXPECT_FALSE(screen.hasReport()) << "a refusal reads nothing";

    m_person.willType(userPassword);
    screen.authenticate();
    ASSERT_TRUE(waitFor([&] { return screen.hasReport(); }));
    EXPECT_EQ(m_person.requests.back().reason, "Authenticate to check your passwords");
    EXPECT_EQ(screen.countsText(), "Reused: 3  Weak: 2  Old: 1  Without a password: 2");
    EXPECT_EQ(screen.findingsCount(), 8U);
    const auto sections = screen.sections();
    std::vector<std::string> titles;
    for (const auto& section : sections) {
        titles.push_back(section.title);
    }
    EXPECT_EQ(titles,
              (std::vector<std::string>{"Reused Secret 1 (3 uses)", "Weak",
                                        "Unchanged for More Than a Year", "Without a Password"}));
    const auto& first = sections[0].rows[0];
    EXPECT_EQ(first.title, "Deploy key");
    EXPECT_EQ(first.subtitle, "Beta · API key");
    EXPECT_EQ(sections[2].rows[0].subtitle, "Acme");

    screen.open(first);
    ASSERT_NE(m_state.selectedService(), nullptr);
    EXPECT_EQ(m_state.selectedService()->title, "Deploy key");
    screen.clear();
    EXPECT_FALSE(screen.hasReport());
    EXPECT_EQ(screen.countsText(), "");
}

TEST_F(PasswordHealthTest, TheWidgetChecksOnItsButtonListsFindingsAndForgetsThemAtTheLock) {
    plantVault();
    connectAuthentication();
    SidebarView sidebar(context());
    PasswordHealthView view(context());
    sidebar.show();
    view.resize(700, 600);
    view.show();
    QListView& sidebarList = *sidebar.list();
    int healthRow = -1;
    for (int row = 0; row < sidebarList.model()->rowCount(); ++row) {
        if (sidebarList.model()->index(row, 0).data(Qt::DisplayRole) == "Password Health") {
            healthRow = row;
        }
    }
    ASSERT_GE(healthRow, 0);
    const auto sidebarSays = [&] {
        return sidebarList.model()->index(healthRow, 0).data(Qt::AccessibleTextRole).toString();
    };

    // Before the check: only the button, named for what it asks.
    EXPECT_FALSE(view.list()->isVisible());
    EXPECT_FALSE(view.counts()->isVisible());
    QPushButton* check = view.emptyState()->actionButton();
    ASSERT_NE(check, nullptr);
    EXPECT_EQ(check->text(), "Check Passwords");
    EXPECT_EQ(check->accessibleName(), "Authenticate to check your passwords");

    m_person.willType(userPassword);
    QTest::mouseClick(check, Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return view.list()->isVisible(); }));
    EXPECT_EQ(view.counts()->text(), "Reused: 3  Weak: 2  Old: 1  Without a password: 2");
    for (QWidget* control : {static_cast<QWidget*>(&view), static_cast<QWidget*>(view.counts()),
                             static_cast<QWidget*>(view.list())}) {
        EXPECT_FALSE(control->accessibleName().isEmpty()) << control->metaObject()->className();
    }
    const QAbstractItemModel& rows = *view.list()->model();
    // Four headers and eight findings, drawn by the shared service row delegate.
    ASSERT_EQ(rows.rowCount(), 12);
    EXPECT_EQ(rows.index(0, 0).data(Qt::DisplayRole), "Reused Secret 1 (3 uses)");
    EXPECT_EQ(rows.index(0, 0).data(ListRole::sectionCount), 3);
    EXPECT_EQ(rows.index(0, 0).flags(), Qt::NoItemFlags);
    const ServiceRow first = rows.index(1, 0).data(ListRole::serviceRow).value<ServiceRow>();
    EXPECT_EQ(first.title, "Deploy key");
    EXPECT_EQ(first.subtitle, "Beta · API key");
    EXPECT_TRUE(waitFor([&] { return sidebarSays() == "Password Health, 8 password findings"; }))
        << sidebarSays().toStdString();

    // Return on a finding opens its service.
    view.list()->setFocus();
    view.list()->setCurrentIndex(rows.index(1, 0));
    QTest::keyClick(view.list(), Qt::Key_Return);
    ASSERT_NE(m_state.selectedService(), nullptr);
    EXPECT_EQ(m_state.selectedService()->title, "Deploy key");

    // Locking drops the report and the sidebar's count, and the button is back.
    context().auth.lock();
    EXPECT_FALSE(view.screen().hasReport());
    EXPECT_EQ(rows.rowCount(), 0);
    EXPECT_FALSE(view.counts()->isVisible());
    ASSERT_NE(view.emptyState()->actionButton(), nullptr);
    EXPECT_TRUE(view.emptyState()->actionButton()->isVisible());
    EXPECT_TRUE(waitFor([&] { return sidebarSays() == "Password Health"; }))
        << sidebarSays().toStdString();
}

TEST_F(PasswordHealthTest, TheCommandLineAuthenticatesThenListsTheFindings) {
    plantVault();
    connectAuthentication();
    const std::string vault = store().path();
    const auto [status, shown] =
        onTerminal(VORLANE_CLI, {"--vault", vault, "--json", "health"}, userPassword);
    ASSERT_EQ(status, 0) << shown;
    EXPECT_NE(shown.find("Authenticate to check your passwords"), std::string::npos) << shown;
    const std::size_t start = shown.find("{\"findings\"");
    ASSERT_NE(start, std::string::npos) << shown;
    const auto json = nlohmann::json::parse(shown.substr(start, shown.find('\n', start) - start));
    EXPECT_EQ(json["findings"], 8);
    ASSERT_EQ(json["reused"].size(), 1U);
    EXPECT_EQ(json["reused"][0][0]["title"], "Deploy key");
    EXPECT_EQ(json["reused"][0][0]["kind"], "apiKey");
    EXPECT_EQ(json["old"][0]["client"], "Acme");
    EXPECT_EQ(shown.find("Tr0ub4dor"), std::string::npos) << "no secret is ever printed";

    const auto [plainStatus, plain] =
        onTerminal(VORLANE_CLI, {"--vault", vault, "health"}, userPassword);
    ASSERT_EQ(plainStatus, 0) << plain;
    EXPECT_NE(plain.find("Reused: 3  Weak: 2  Old: 1  Without a password: 2"), std::string::npos)
        << plain;
    EXPECT_NE(plain.find("  Beta: Deploy key (API key)\r\n  Beta: Hosting (password)"),
              std::string::npos)
        << plain;

    const auto [refused, why] = onTerminal(VORLANE_CLI, {"--vault", vault, "health"}, "wrong");
    EXPECT_EQ(refused, 1) << why;
    EXPECT_EQ(why.find("Reused:"), std::string::npos) << why;
}

} // namespace
} // namespace vorlane::testing
