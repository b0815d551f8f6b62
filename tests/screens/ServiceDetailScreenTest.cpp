// SPDX-License-Identifier: GPL-3.0-or-later
// The service detail screen over a real vault, the real keyring and real PAM answered by a
// scripted person.

#include "screens/ServiceDetailScreen.h"

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "util/ScopedConnection.h"

#include <chrono>
#include <memory>
#include <utility>
#include <vector>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;
using Field = ServiceDetailScreen::Field;
using RowKind = ServiceDetailScreen::RowKind;

class ServiceDetailScreenTest : public ScreenFixture {
protected:
    // "Mail server" at Acme with a password and an API key in the keyring.
    ServiceRecord& mailServer() {
        ServiceRecord& service = addService(addOrganization("Acme"), "Mail server", [](auto& s) {
            s.setServiceType(ServiceType::mailbox);
            s.hostname = "mail.acme.test";
            s.username = "postmaster";
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
            s.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
        });
        EXPECT_TRUE(store().setPassword("hunter2-pw", service));
        EXPECT_TRUE(store().setAPIKey("sk_live_42", service));
        return service;
    }

    // (label or caption, value) of every row, section titles as ("#", title).
    static std::vector<std::pair<std::string, std::string>>
    shown(const ServiceDetailScreen& screen) {
        std::vector<std::pair<std::string, std::string>> rows;
        for (const auto& section : screen.sections()) {
            rows.emplace_back("#", section.title);
            for (const auto& row : section.rows) {
                rows.emplace_back(row.label, row.value);
            }
        }
        return rows;
    }

    static ServiceDetailScreen::Row row(const ServiceDetailScreen& screen, Field field) {
        for (const auto& section : screen.sections()) {
            for (const auto& each : section.rows) {
                if (each.field == field) {
                    return each;
                }
            }
        }
        ADD_FAILURE() << "no row for field " << static_cast<int>(field);
        return {};
    }
};

TEST_F(ServiceDetailScreenTest, SectionsListWhatTheServiceHasInOrderWithTheTextsShown) {
    ServiceRecord& full = addService(addOrganization("Acme"), "Main VPS", [&](auto& s) {
        s.setServiceType(ServiceType::vps);
        s.loginURL = "https://panel.acme.test";
        s.hostname = "vps1.acme.test";
        s.domain = "acme.test";
        s.ipAddress = "203.0.113.7";
        s.port = 2222;
        s.username = "root";
        s.emailAddress = "ops@acme.test";
        s.sshKeyReference = "~/.ssh/acme_ed25519";
        s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        s.setBillingCycle(BillingCycle::biennial);
        s.monthlyCost = *Decimal::fromString("12.50");
        s.yearlyCost = *Decimal::fromString("1234.5");
        s.purchaseDate = utc(2024, 3, 1, 17);
        s.renewalDate = utc(2025, 3, 1, 17);
        s.expirationDate = utc(2026, 3, 15, 16); // 4 days ahead: upcoming
        s.autoRenew = true;
        s.tags = {"prod", "eu"};
        s.notes = "Rebooted on Sundays.";
        s.setRiskLevel(RiskLevel::high);
    });
    m_clock.set(utc(2026, 3, 11, 17));
    full.updatedAt = m_clock.now();
    ServiceDetailScreen screen(context(), full);

    EXPECT_EQ(screen.subtitle(), "VPS · Acme");
    EXPECT_EQ(screen.expirationState(), ExpirationState::upcoming);
    const std::vector<std::pair<std::string, std::string>> expected{
        {"#", "Credentials"},
        {"Login URL", "https://panel.acme.test"},
        {"Hostname", "vps1.acme.test"},
        {"Domain", "acme.test"},
        {"IP Address", "203.0.113.7"},
        {"Port", "2222"},
        {"Username", "root"},
        {"Email", "ops@acme.test"},
        {"SSH Key", "~/.ssh/acme_ed25519"},
        {"Password", std::string(ServiceDetailScreen::maskedText)},
        {"#", "Billing & Dates"},
        {"Billing Cycle", "Biennial (2yr)"},
        {"Monthly Cost", "$12.5"},
        {"Yearly Cost", "$1,234.5"},
        {"Purchase Date", "Mar 1, 2024"},
        {"Last Renewed", "Mar 1, 2025"},
        {"Expiration Date", "Mar 15, 2026"},
        {"Auto-Renew", "Yes"},
        {"#", "Additional Information"},
        {"Tags", "prod, eu"},
        {"Notes", "Rebooted on Sundays."},
        {"Risk Level", "High"},
        {"", "Created Mar 10, 2026"},
        {"", "Updated Mar 11, 2026"},
    };
    EXPECT_EQ(shown(screen), expected);
    EXPECT_EQ(row(screen, Field::password).kind, RowKind::secure);
    EXPECT_EQ(row(screen, Field::expirationDate).valueColor, Palette::Color::orange);

    // Only a title: no credentials section, the rows that always have a value, no costs.
    ServiceRecord& bare = addService(addOrganization("Solo"), "Bare");
    ServiceDetailScreen bareScreen(context(), bare);
    const std::vector<std::pair<std::string, std::string>> bareExpected{
        {"#", "Billing & Dates"},        {"Billing Cycle", "None"}, {"Auto-Renew", "No"},
        {"#", "Additional Information"}, {"Risk Level", "Low"},     {"", "Created Mar 11, 2026"},
        {"", "Updated Mar 11, 2026"},
    };
    EXPECT_EQ(shown(bareScreen), bareExpected);
    EXPECT_FALSE(bareScreen.canMarkRenewed());
    EXPECT_TRUE(screen.canMarkRenewed());
}

TEST_F(ServiceDetailScreenTest, CopyAllHasOnlyTheLinesWithValuesAndNeverASecret) {
    ServiceRecord& bare = addService(addOrganization("Solo"), "Only a title");
    ServiceDetailScreen bareScreen(context(), bare);
    bareScreen.copyAll();
    EXPECT_EQ(clipboardText(), "Title: Only a title");
    EXPECT_FALSE(bareScreen.canOpenURL());

    ServiceRecord& service = mailServer();
    service.domain = "acme.test";
    service.ipAddress = "198.51.100.2";
    service.emailAddress = "pm@acme.test";
    service.port = 0; // a port of 0 is still a port
    ServiceDetailScreen screen(context(), service);
    screen.copyAll();
    EXPECT_EQ(clipboardText(), "Title: Mail server\nHost: mail.acme.test\nDomain: acme.test\n"
                               "IP: 198.51.100.2\nUsername: postmaster\nEmail: pm@acme.test\n"
                               "Port: 0");
    m_timers.advance(30s);
    EXPECT_EQ(clipboardText(), std::nullopt) << "Copy All is cleared like every copy";
}

TEST_F(ServiceDetailScreenTest, OpenURLHandsOverOnlyAllowedSchemesAndOtherwiseSaysWhy) {
    ServiceRecord& service = mailServer();
    service.loginURL = "cp.acme.test:2083";
    ServiceDetailScreen screen(context(), service);
    EXPECT_EQ(screen.addressToOpen(), "http://cp.acme.test:2083");
    EXPECT_EQ(screen.message(), "");

    service.loginURL = "file:///etc/passwd";
    int redraws = 0;
    const ScopedConnection counting(screen.changed, [&redraws] { ++redraws; });
    EXPECT_EQ(screen.addressToOpen(), std::nullopt);
    EXPECT_EQ(screen.message(), "This address cannot be opened: file");
    EXPECT_EQ(redraws, 1) << "the widget learns that there is a message to show";
}

TEST_F(ServiceDetailScreenTest, EveryRevealAsksAgainHidingNeverAsksAndARefusalShowsNothing) {
    ServiceRecord& service = mailServer();
    connectAuthentication();
    ServiceDetailScreen screen(context(), service);
    const auto passwordRow = [&] {
        return row(screen, Field::password);
    };

    m_person.willCancel();
    screen.toggleReveal(Field::password);
    ASSERT_TRUE(waitFor([&] { return m_person.closedPrompts == 1; }));
    QTest::qWait(50);
    EXPECT_FALSE(passwordRow().revealed);
    EXPECT_EQ(passwordRow().value, ServiceDetailScreen::maskedText);
    EXPECT_TRUE(screen.message().empty());

    for (int round = 1; round <= 2; ++round) {
        m_person.willType(userPassword);
        screen.toggleReveal(Field::password);
        ASSERT_TRUE(waitFor([&] { return passwordRow().revealed; })) << "round " << round;
        EXPECT_EQ(passwordRow().value, "hunter2-pw");
        EXPECT_EQ(passwordRow().revealText(), "Hide");
        EXPECT_EQ(passwordRow().revealIcon(), "eye.slash");
        screen.toggleReveal(Field::password); // hide: at once, no prompt
        EXPECT_FALSE(passwordRow().revealed);
        EXPECT_EQ(passwordRow().value, ServiceDetailScreen::maskedText);
    }
    m_person.willType(userPassword);
    screen.toggleReveal(Field::apiKey);
    ASSERT_TRUE(waitFor([&] { return row(screen, Field::apiKey).revealed; }));
    EXPECT_EQ(row(screen, Field::apiKey).value, "sk_live_42");
    EXPECT_FALSE(passwordRow().revealed) << "revealing one secret reveals only that one";

    std::vector<std::string> reasons;
    for (const auto& request : m_person.requests) {
        reasons.push_back(request.reason);
    }
    EXPECT_EQ(reasons, (std::vector<std::string>{
                           "Reveal password for Mail server", "Reveal password for Mail server",
                           "Reveal password for Mail server", "Reveal API key for Mail server"}));

    // A secret the keyring no longer has shows as empty once revealed.
    ASSERT_TRUE(store().setPassword("", service));
    m_person.willType(userPassword);
    screen.toggleReveal(Field::password);
    ASSERT_TRUE(waitFor([&] { return passwordRow().revealed; }));
    EXPECT_EQ(passwordRow().value, "");
}

TEST_F(ServiceDetailScreenTest, AMaskedSecretIsCopiedOnlyAfterAuthenticationARevealedOneAtOnce) {
    ServiceRecord& service = mailServer();
    connectAuthentication();
    auto screen = std::make_unique<ServiceDetailScreen>(context(), service);

    m_person.willCancel();
    screen->copy(Field::password);
    ASSERT_TRUE(waitFor([&] { return m_person.closedPrompts == 1; }));
    QTest::qWait(50);
    EXPECT_EQ(clipboardText(), std::nullopt);

    m_person.willType(userPassword);
    screen->copy(Field::password);
    ASSERT_TRUE(waitFor([&] { return clipboardText() == "hunter2-pw"; }));
    EXPECT_EQ(m_person.requests.back().reason, "Copy password for Mail server");
    EXPECT_FALSE(row(*screen, Field::password).revealed) << "copying does not reveal";
    EXPECT_TRUE(row(*screen, Field::password).copied);
    EXPECT_EQ(row(*screen, Field::password).copyIcon(), "checkmark");
    m_timers.advance(ServiceDetailScreen::copiedMarkDuration);
    EXPECT_FALSE(row(*screen, Field::password).copied);
    EXPECT_EQ(row(*screen, Field::password).copyIcon(), "doc.on.doc");

    m_person.willType(userPassword);
    screen->toggleReveal(Field::apiKey);
    ASSERT_TRUE(waitFor([&] { return row(*screen, Field::apiKey).revealed; }));
    const std::size_t asked = m_person.requests.size();
    screen->copy(Field::apiKey);
    EXPECT_EQ(clipboardText(), "sk_live_42");
    EXPECT_EQ(m_person.requests.size(), asked) << "a revealed secret copies without asking";

    screen->copy(Field::hostname);
    EXPECT_EQ(clipboardText(), "mail.acme.test");
    EXPECT_TRUE(row(*screen, Field::hostname).copied);
    EXPECT_FALSE(row(*screen, Field::apiKey).copied) << "one check mark at a time";

    // Leaving the screen while a prompt is open: the late answer reveals and copies nothing.
    m_person.willType(userPassword);
    screen->copy(Field::password);
    screen.reset();
    ASSERT_TRUE(waitFor([&] { return m_person.livePrompts == 0; }));
    QTest::qWait(50);
    EXPECT_EQ(clipboardText(), "mail.acme.test");
    ServiceDetailScreen again(context(), service);
    EXPECT_FALSE(row(again, Field::apiKey).revealed) << "a new visit starts masked";
}

TEST_F(ServiceDetailScreenTest, DuplicateCopiesFieldsAndSecretsUnderFreshIdentifiersAndShowsIt) {
    ServiceRecord& source = mailServer();
    source.setStatus(ServiceStatus::warning);
    source.riskLevelRaw = "severe"; // unknown: the copy takes the fallback case
    source.tags = {"mail"};
    source.expirationDate = utc(2026, 9, 1);
    ServiceRecord& plain = addService(*source.organization, "Plain");
    m_clock.advance(1h);

    ServiceDetailScreen screen(context(), source);
    screen.duplicate();
    ServiceRecord* copy = m_state.selectedService();
    ASSERT_NE(copy, nullptr);
    ASSERT_NE(copy, &source);
    EXPECT_EQ(copy->title, "Mail server (Copy)");
    EXPECT_NE(copy->id, source.id);
    EXPECT_EQ(copy->organization, source.organization);
    EXPECT_EQ(copy->hostname, "mail.acme.test");
    EXPECT_EQ(copy->tags, source.tags);
    EXPECT_EQ(copy->expirationDate, source.expirationDate);
    EXPECT_EQ(copy->serviceTypeRaw, "mailbox");
    EXPECT_EQ(copy->riskLevelRaw, "low");
    EXPECT_EQ(copy->status(), ServiceStatus::active);
    EXPECT_EQ(copy->createdAt, m_clock.now());
    EXPECT_EQ(copy->updatedAt, m_clock.now());
    EXPECT_TRUE(copy->secretKeychainID.starts_with("vorlane.secret."));
    EXPECT_TRUE(copy->apiKeyKeychainID.starts_with("vorlane.apikey."));
    EXPECT_NE(copy->secretKeychainID, source.secretKeychainID);
    EXPECT_NE(copy->apiKeyKeychainID, source.apiKeyKeychainID);
    EXPECT_EQ(store().getPassword(*copy), "hunter2-pw");
    EXPECT_EQ(store().getAPIKey(*copy), "sk_live_42");
    EXPECT_EQ(store().getPassword(source), "hunter2-pw") << "the source keeps its own";
    EXPECT_FALSE(store().hasUnsavedChanges());

    // Deleting the copy must not take the source's secrets along.
    ServiceDetailScreen copyScreen(context(), *copy);
    copyScreen.deleteService();
    EXPECT_EQ(store().getAPIKey(source), "sk_live_42");

    ServiceDetailScreen plainScreen(context(), plain);
    plainScreen.duplicate();
    ASSERT_NE(m_state.selectedService(), nullptr);
    const ServiceRecord& plainCopy = *m_state.selectedService();
    EXPECT_TRUE(plainCopy.secretKeychainID.starts_with("vorlane.secret."));
    EXPECT_TRUE(plainCopy.apiKeyKeychainID.starts_with("vorlane.apikey."));
    EXPECT_EQ(store().getPassword(plainCopy), std::nullopt) << "nothing to copy, nothing stored";

    // A service of no organization makes a copy of no organization, not an error.
    ServiceRecord loose = ServiceRecord::created(m_clock.now());
    loose.title = "Loose key";
    loose.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    ServiceRecord& orphan = store().insert(std::move(loose), nullptr);
    ASSERT_TRUE(store().setPassword("loose-pw", orphan));
    ServiceDetailScreen orphanScreen(context(), orphan);
    orphanScreen.duplicate();
    EXPECT_EQ(orphanScreen.message(), "");
    ServiceRecord* orphanCopy = m_state.selectedService();
    ASSERT_NE(orphanCopy, nullptr);
    ASSERT_NE(orphanCopy, &orphan);
    EXPECT_EQ(orphanCopy->title, "Loose key (Copy)");
    EXPECT_EQ(orphanCopy->organization, nullptr);
    EXPECT_EQ(store().getPassword(*orphanCopy), "loose-pw");
    EXPECT_EQ(store().service(orphanCopy->id), orphanCopy);
    EXPECT_FALSE(store().hasUnsavedChanges());
}

TEST_F(ServiceDetailScreenTest, DeleteRemovesBothSecretsThenTheRecordAndClosesTheScreen) {
    ServiceRecord& service = mailServer();
    const std::string password = service.secretKeychainID;
    const std::string apiKey = service.apiKeyKeychainID;
    const Uuid id = service.id;
    m_state.navigateTo(service);
    ServiceDetailScreen screen(context(), service);

    // When the store announces the removal, the secrets are already gone.
    bool secretsGoneFirst = false;
    const ScopedConnection watching(store().changed, [&] {
        if (store().service(id) == nullptr) {
            secretsGoneFirst = !m_keychain.readData(password) && !m_keychain.readData(apiKey);
        }
    });
    screen.deleteService();
    EXPECT_TRUE(secretsGoneFirst);
    EXPECT_EQ(store().service(id), nullptr);
    EXPECT_EQ(m_state.selectedService(), nullptr);
    EXPECT_FALSE(store().hasUnsavedChanges());
    EXPECT_FALSE(screen.exists());
    EXPECT_TRUE(screen.sections().empty()) << "a screen left over reads the service as gone";
    EXPECT_EQ(screen.copyAllText(), "");
}

TEST_F(ServiceDetailScreenTest, MarkRenewedEditAndBackActOnTheSharedState) {
    ServiceRecord& service = addService(addOrganization("Acme"), "Domain", [](auto& s) {
        s.setBillingCycle(BillingCycle::monthly);
        s.expirationDate = utc(2026, 1, 31, 17);
        s.setStatus(ServiceStatus::expired);
    });
    m_state.navigateTo(service);
    ServiceDetailScreen screen(context(), service);
    screen.markRenewed();
    EXPECT_EQ(row(screen, Field::renewalDate).value, "Mar 10, 2026");
    EXPECT_EQ(row(screen, Field::expirationDate).value, "Feb 28, 2026");

    screen.edit();
    EXPECT_EQ(m_state.editingService(), &service);
    EXPECT_TRUE(m_state.showingNewService());

    screen.back();
    EXPECT_EQ(m_state.selectedService(), nullptr);
    EXPECT_NE(m_state.selectedOrganization(), nullptr) << "back returns to the organization";
}

} // namespace
} // namespace vorlane::testing
