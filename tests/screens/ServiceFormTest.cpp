// SPDX-License-Identifier: GPL-3.0-or-later
// The service form over a real vault file and the real keyring: what it refuses, what it writes,
// and that no secret it handles ever reaches the vault file.

#include "screens/ServiceForm.h"

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "store/SqliteConnection.h"

#include <libsecret/secret.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

namespace vorlane::testing {
namespace {

using Kind = ServiceForm::SecretKind;

// Locks the keyring's default collection, as the desktop does when the session locks: from then
// on every write is refused. Needs no prompt.
void lockKeyring() {
    GError* error = nullptr;
    SecretService* service = secret_service_get_sync(SECRET_SERVICE_NONE, nullptr, &error);
    ASSERT_NE(service, nullptr) << (error ? error->message : "");
    SecretCollection* collection = secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, &error);
    ASSERT_NE(collection, nullptr) << (error ? error->message : "");
    GList* objects = g_list_append(nullptr, collection);
    EXPECT_EQ(secret_service_lock_sync(service, objects, nullptr, nullptr, &error), 1)
        << (error ? error->message : "");
    g_list_free(objects);
    g_object_unref(collection);
    g_object_unref(service);
    g_clear_error(&error);
}

std::string fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class ServiceFormTest : public ScreenFixture {
protected:
    ServiceFormTest()
        : m_acme(addOrganization("Acme")) {}

    // A form in create mode for Acme with a valid title.
    std::unique_ptr<ServiceForm> newForm(const std::string& title = "Web server") {
        m_state.setNewServiceOrganization(&m_acme);
        auto form = std::make_unique<ServiceForm>(context());
        form->values().title = title;
        return form;
    }

    Organization& m_acme;
};

TEST_F(ServiceFormTest, EachWrongFieldIsNamedAndKeepsTheFormFromSaving) {
    auto form = newForm();
    ServiceForm::Values& values = form->values();
    EXPECT_TRUE(form->canSave());

    struct Case {
        std::string port, monthly, yearly;
        bool portWrong, monthlyWrong, yearlyWrong;
    };
    const std::vector<Case> cases{
        {"abc", "1,5", "-3", true, true, true},
        {"70000", "12.50", "0", true, false, false},
        {"-1", "1e3", " 7 ", true, true, false},
        {"22.0", "$5", "", true, true, false},
        {" 65535 ", "", "0.00", false, false, false},
        {"0", "-0", "99999999.99", false, false, false},
    };
    for (const Case& c : cases) {
        values.portText = c.port;
        values.monthlyCostText = c.monthly;
        values.yearlyCostText = c.yearly;
        const ServiceForm::Errors errors = form->errors();
        const std::string label = c.port + " | " + c.monthly + " | " + c.yearly;
        EXPECT_EQ(!errors.port.empty(), c.portWrong) << label;
        EXPECT_EQ(!errors.monthlyCost.empty(), c.monthlyWrong) << label;
        EXPECT_EQ(!errors.yearlyCost.empty(), c.yearlyWrong) << label;
        EXPECT_EQ(form->canSave(), !(c.portWrong || c.monthlyWrong || c.yearlyWrong)) << label;
    }
    values.portText = "70000";
    EXPECT_EQ(form->errors().port, "Enter a whole number from 0 to 65535.");
    values.portText = "";
    values.monthlyCostText = "-3";
    EXPECT_EQ(form->errors().monthlyCost, "Enter an amount of 0 or more, such as 12.50.");
    EXPECT_FALSE(form->save()) << "save refuses what the button would not allow";
    EXPECT_TRUE(store().fetchAllServices().empty());
    values.monthlyCostText = "";

    values.title = "   ";
    EXPECT_EQ(form->errors().title, "Enter a title.");
    values.title = "Web";
    values.organization = nullptr;
    EXPECT_EQ(form->errors().organization, "Choose an organization.");
    EXPECT_FALSE(form->canSave());
}

TEST_F(ServiceFormTest, CreateStoresTheRecordExactlyAndItsSecretsOnlyInTheKeyring) {
    auto form = newForm("  Web server  ");
    EXPECT_EQ(form->mode(), ServiceForm::Mode::create);
    EXPECT_EQ(form->windowTitle(), "New Service");
    EXPECT_EQ(form->saveText(), "Create Service");
    ServiceForm::Values& values = form->values();
    values.serviceType = ServiceType::vps;
    values.hostname = "web1.acme.test";
    values.portText = "8443";
    values.monthlyCostText = "12.50";
    values.yearlyCostText = "0.10";
    values.billingCycle = BillingCycle::quarterly;
    values.tagsText = " web, , client ,,vip";
    values.expirationDate = utc(2026, 6, 1, 4);
    values.riskLevel = RiskLevel::critical;
    values.password.text = "Pw-" + Uuid::generate().toString();
    values.apiKey.text = "sk_" + Uuid::generate().toString();
    values.notes = "visible note";
    const std::string password = values.password.text;
    const std::string apiKey = values.apiKey.text;

    ASSERT_TRUE(form->save()) << form->saveError();
    ServiceRecord* saved = form->savedService();
    ASSERT_NE(saved, nullptr);
    EXPECT_EQ(saved->organization, &m_acme);
    EXPECT_EQ(saved->title, "Web server");
    EXPECT_EQ(saved->serviceTypeRaw, "vps");
    EXPECT_EQ(saved->port, 8443);
    EXPECT_EQ(saved->monthlyCost.toString(), "12.5");
    EXPECT_EQ(saved->yearlyCost.toString(), "0.1") << "no binary rounding on the way";
    EXPECT_EQ(saved->billingCycleRaw, "quarterly");
    EXPECT_EQ(saved->tags, (std::vector<std::string>{"web", "client", "vip"}));
    EXPECT_EQ(saved->expirationDate, utc(2026, 6, 1, 4));
    EXPECT_EQ(saved->riskLevelRaw, "critical");
    EXPECT_EQ(saved->statusRaw, "active");
    EXPECT_EQ(saved->createdAt, m_clock.now());
    EXPECT_TRUE(saved->secretKeychainID.starts_with("vorlane.secret."));
    EXPECT_TRUE(saved->apiKeyKeychainID.starts_with("vorlane.apikey."));
    EXPECT_EQ(store().getPassword(*saved), password);
    EXPECT_EQ(store().getAPIKey(*saved), apiKey);
    EXPECT_FALSE(store().hasUnsavedChanges());
    EXPECT_EQ(m_acme.services, (std::vector<ServiceRecord*>{saved}));

    // A service without secrets gets no identifiers.
    auto plain = newForm("Plain");
    ASSERT_TRUE(plain->save());
    EXPECT_TRUE(plain->savedService()->secretKeychainID.empty());
    EXPECT_TRUE(plain->savedService()->apiKeyKeychainID.empty());

    const std::string path = store().path();
    const auto expectClean = [&](const std::string& file) {
        const std::string bytes = fileBytes(file);
        EXPECT_NE(bytes.find("visible note"), std::string::npos) << file << " holds the record";
        EXPECT_EQ(bytes.find(password), std::string::npos) << "password in " << file;
        EXPECT_EQ(bytes.find(apiKey), std::string::npos) << "API key in " << file;
    };
    ASSERT_TRUE(std::filesystem::exists(path + "-wal"));
    expectClean(path + "-wal");
    form.reset();
    plain.reset();
    m_context.reset();
    m_actions.reset();
    m_store.reset(); // closing folds the log into the file
    expectClean(path);
}

TEST_F(ServiceFormTest, EditingKeepsUntouchedSecretsReplacesTypedOnesAndRemovesOnRequest) {
    Organization& other = addOrganization("Other");
    other.isArchived = true;
    ServiceRecord& service = addService(m_acme, "DB", [](ServiceRecord& s) {
        s.port = 5432;
        s.monthlyCost = *Decimal::fromString("7.25");
        s.tags = {"db", "prod"};
        s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        s.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
    });
    ASSERT_TRUE(store().setPassword("old-password", service));
    ASSERT_TRUE(store().setAPIKey("old-key", service));
    const std::string oldPasswordId = service.secretKeychainID;
    const std::string oldKeyId = service.apiKeyKeychainID;

    m_state.setSelectedOrganization(&other); // create mode would preselect it; edit mode must not
    m_state.setEditingService(&service);
    m_clock.advance(std::chrono::hours(2));
    {
        ServiceForm form(context());
        EXPECT_EQ(form.mode(), ServiceForm::Mode::edit);
        EXPECT_EQ(form.windowTitle(), "Edit Service");
        EXPECT_EQ(form.saveText(), "Save Changes");
        const ServiceForm::Values& values = form.values();
        EXPECT_EQ(values.organization, &m_acme);
        EXPECT_EQ(values.portText, "5432");
        EXPECT_EQ(values.monthlyCostText, "7.25");
        EXPECT_EQ(values.yearlyCostText, "");
        EXPECT_EQ(values.tagsText, "db, prod");
        EXPECT_EQ(values.password.text, "") << "the stored secret is not read into the form";
        EXPECT_EQ(form.secretPlaceholder(Kind::password), "Stored — type to replace");
        EXPECT_TRUE(form.canRemoveStored(Kind::apiKey));

        form.values().title = "Database";
        ASSERT_TRUE(form.save());
        form.closed();
    }
    EXPECT_EQ(m_state.editingService(), nullptr);
    EXPECT_EQ(service.title, "Database");
    EXPECT_EQ(service.updatedAt, m_clock.now());
    EXPECT_EQ(service.secretKeychainID, oldPasswordId);
    EXPECT_EQ(store().getPassword(service), "old-password");
    EXPECT_EQ(store().getAPIKey(service), "old-key");

    m_state.setEditingService(&service);
    {
        ServiceForm form(context());
        form.values().password.text = "new-password";
        form.removeStored(Kind::apiKey);
        EXPECT_EQ(form.secretPlaceholder(Kind::apiKey), "");
        EXPECT_FALSE(form.canRemoveStored(Kind::apiKey));
        // Moving it to an archived organization: offered because the form may pick it.
        form.values().organization = &other;
        ASSERT_TRUE(form.save());
    }
    EXPECT_NE(service.secretKeychainID, oldPasswordId);
    EXPECT_EQ(store().getPassword(service), "new-password");
    EXPECT_FALSE(m_keychain.readData(oldPasswordId)) << "the replaced item is removed";
    EXPECT_TRUE(service.apiKeyKeychainID.empty());
    EXPECT_FALSE(m_keychain.readData(oldKeyId));
    EXPECT_EQ(service.organization, &other);
    EXPECT_TRUE(m_acme.services.empty());
    EXPECT_FALSE(store().hasUnsavedChanges());
}

TEST_F(ServiceFormTest, PreselectsTheRequestedOrganizationAndOffersOnlyLiveOnesBesideIt) {
    Organization& beta = addOrganization("Beta");
    Organization& archived = addOrganization("Zeta");
    archiveFlag(archived);

    m_state.setSelectedOrganization(&beta);
    EXPECT_EQ(ServiceForm(context()).values().organization, &beta);
    m_state.setNewServiceOrganization(&m_acme);
    EXPECT_EQ(ServiceForm(context()).values().organization, &m_acme)
        << "the requested organization wins over the open one";
    EXPECT_EQ(ServiceForm(context()).organizations(), (std::vector<Organization*>{&m_acme, &beta}));
    m_state.setNewServiceOrganization(&archived);
    EXPECT_EQ(ServiceForm(context()).organizations(),
              (std::vector<Organization*>{&m_acme, &beta, &archived}));
}

TEST_F(ServiceFormTest, AKeyringThatRefusesLeavesNothingSavedAndTheFormAsTyped) {
    auto form = newForm("Locked out");
    form->values().password.text = "would-be-lost";
    lockKeyring();
    EXPECT_FALSE(form->save());
    EXPECT_EQ(form->saveError(), "The password could not be stored in the system keyring.");
    EXPECT_EQ(form->values().password.text, "would-be-lost");
    EXPECT_EQ(form->values().title, "Locked out");
    EXPECT_TRUE(store().fetchAllServices().empty()) << "no record without its secret";
    EXPECT_EQ(form->savedService(), nullptr);
}

TEST_F(ServiceFormTest, AVaultFileThatRefusesTheSaveKeepsTheOldSecretAndRecord) {
    ServiceRecord& service = addService(m_acme, "DB", [](ServiceRecord& s) {
        s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    });
    ASSERT_TRUE(store().setPassword("old-password", service));
    ASSERT_TRUE(store().save());
    const std::string oldPasswordId = service.secretKeychainID;

    // From here the file refuses every row written to it, as a full disk or a failing one would.
    std::string error;
    auto other = SqliteConnection::open(store().path(), SqliteConnection::Mode::readWrite, error);
    ASSERT_TRUE(other) << error;
    ASSERT_TRUE(other->execute("CREATE TRIGGER refuse BEFORE INSERT ON services BEGIN "
                               "SELECT RAISE(ABORT, 'refused'); END"));

    m_state.setEditingService(&service);
    ServiceForm form(context());
    form.values().title = "Database";
    form.values().password.text = "new-password";
    form.values().organization = &addOrganization("Beta");
    EXPECT_FALSE(form.save());
    EXPECT_EQ(form.saveError(),
              "The service could not be saved to the vault file. Nothing was changed.");
    EXPECT_EQ(form.savedService(), nullptr);
    EXPECT_EQ(form.values().password.text, "new-password") << "what was typed stays";
    EXPECT_EQ(service.title, "DB");
    EXPECT_EQ(service.organization, &m_acme);
    EXPECT_EQ(m_acme.services, std::vector<ServiceRecord*>{&service});
    EXPECT_EQ(service.secretKeychainID, oldPasswordId);
    EXPECT_EQ(store().getPassword(service), "old-password");

    auto created = newForm("Never saved");
    created->values().password.text = "orphan-password";
    EXPECT_FALSE(created->save());
    EXPECT_EQ(titlesOf(store().fetchAllServices()), std::vector<std::string>{"DB"});

    // Once the file takes writes again, the same form saves and only then drops the old item.
    ASSERT_TRUE(other->execute("DROP TRIGGER refuse"));
    ASSERT_TRUE(form.save()) << form.saveError();
    EXPECT_EQ(service.title, "Database");
    EXPECT_EQ(store().getPassword(service), "new-password");
    EXPECT_FALSE(m_keychain.readData(oldPasswordId)) << "the replaced item is removed";
    EXPECT_FALSE(store().hasUnsavedChanges());
}

} // namespace
} // namespace vorlane::testing
