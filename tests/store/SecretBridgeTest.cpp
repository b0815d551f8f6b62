// SPDX-License-Identifier: GPL-3.0-or-later
// Passwords, API keys and one-time code secrets go to the real keyring under the records'
// identifiers, never into the vault file.

#include "VaultFixture.h"

#include <filesystem>

namespace vorlane::testing {
namespace {

class SecretBridgeTest : public VaultFixture {
protected:
    SecretBridgeTest() { open(); }

    ServiceRecord& serviceWithSecrets(Organization& owner, const std::string& title) {
        ServiceRecord& service = addService(owner, title);
        service.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        service.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
        service.totpKeychainID = ServiceRecord::makeTOTPKeychainID();
        m_store->noteChanged(service);
        return service;
    }
};

TEST_F(SecretBridgeTest, PasswordsAndKeysRoundTripAndEmptyDeletes) {
    DataStore& store = *m_store;
    ServiceRecord& service = serviceWithSecrets(addOrganization("Owner"), "Server");
    EXPECT_FALSE(store.getPassword(service));
    EXPECT_TRUE(store.setPassword("pässwörd 1", service));
    EXPECT_TRUE(store.setAPIKey("sk_live_abc", service));
    EXPECT_TRUE(store.setTOTPSecret("JBSWY3DPEHPK3PXP", service));
    EXPECT_EQ(store.getPassword(service), "pässwörd 1");
    EXPECT_EQ(store.getAPIKey(service), "sk_live_abc");
    EXPECT_EQ(store.getTOTPSecret(service), "JBSWY3DPEHPK3PXP");
    EXPECT_TRUE(store.setPassword("second", service));
    EXPECT_EQ(store.getPassword(service), "second");

    EXPECT_TRUE(store.setPassword("", service));
    EXPECT_FALSE(store.getPassword(service));
    EXPECT_FALSE(m_keychain.readData(service.secretKeychainID));
    EXPECT_EQ(store.getAPIKey(service), "sk_live_abc");
    EXPECT_TRUE(store.setPassword("", service)); // nothing there: still success
}

TEST_F(SecretBridgeTest, ARecordWithoutIdentifiersStoresNothing) {
    DataStore& store = *m_store;
    ServiceRecord& bare = addService(addOrganization("Owner"), "No secrets");
    EXPECT_FALSE(store.setPassword("would be lost", bare));
    EXPECT_FALSE(store.getPassword(bare));
    EXPECT_FALSE(m_keychain.readData(""));
    EXPECT_TRUE(bare.secretKeychainID.empty()); // the store never invents an identifier
}

TEST_F(SecretBridgeTest, BytesThatAreNotTextReadAsNothing) {
    ServiceRecord& service = serviceWithSecrets(addOrganization("Owner"), "Server");
    ASSERT_TRUE(m_keychain.save(SecretBytes{0xff, 0xfe, 'x'}, service.secretKeychainID));
    EXPECT_FALSE(m_store->getPassword(service));
}

TEST_F(SecretBridgeTest, DeletingServicesAndOrganizationsRemovesTheirSecrets) {
    DataStore& store = *m_store;
    Organization& doomed = addOrganization("Doomed");
    Organization& kept = addOrganization("Kept");
    ServiceRecord& first = serviceWithSecrets(doomed, "First");
    ServiceRecord& second = serviceWithSecrets(doomed, "Second");
    ServiceRecord& single = serviceWithSecrets(kept, "Single");
    ServiceRecord& survivor = serviceWithSecrets(kept, "Survivor");
    for (ServiceRecord* service : {&first, &second, &single, &survivor}) {
        ASSERT_TRUE(store.setPassword("pw-" + service->title, *service));
        ASSERT_TRUE(store.setAPIKey("key-" + service->title, *service));
        ASSERT_TRUE(store.setTOTPSecret("JBSWY3DPEHPK3PXP", *service));
    }
    std::vector<std::string> gone;
    for (const ServiceRecord* service : {&first, &second, &single}) {
        gone.insert(gone.end(), {service->secretKeychainID, service->apiKeyKeychainID,
                                 service->totpKeychainID});
    }

    store.deleteService(single);
    store.deleteOrganization(doomed);
    for (const std::string& account : gone) {
        EXPECT_FALSE(m_keychain.readData(account)) << account;
    }
    EXPECT_EQ(store.getPassword(survivor), "pw-Survivor");
    EXPECT_EQ(store.getAPIKey(survivor), "key-Survivor");
    EXPECT_EQ(store.getTOTPSecret(survivor), "JBSWY3DPEHPK3PXP");
    EXPECT_EQ(store.fetchAllServices(), (std::vector<ServiceRecord*>{&survivor}));
}

TEST_F(SecretBridgeTest, NoSecretEverReachesTheVaultFileOrItsWal) {
    DataStore& store = *m_store;
    Organization& owner = addOrganization("Owner");
    std::vector<std::string> secrets;
    for (int i = 0; i < 20; ++i) {
        ServiceRecord& service = serviceWithSecrets(owner, "Service " + std::to_string(i));
        secrets.push_back("Pw-" + Uuid::generate().toString());
        secrets.push_back("sk_" + Uuid::generate().toString());
        ASSERT_TRUE(store.setPassword(secrets[secrets.size() - 2], service));
        ASSERT_TRUE(store.setAPIKey(secrets.back(), service));
        service.notes = "rotated quarterly";
        store.noteChanged(service);
        ASSERT_TRUE(store.save());
    }
    const auto expectClean = [&](const std::string& path) {
        ASSERT_TRUE(std::filesystem::exists(path)) << path;
        const std::string bytes = fileBytes(path);
        EXPECT_NE(bytes.find("rotated quarterly"), std::string::npos) << path; // we can see text
        for (const std::string& secret : secrets) {
            EXPECT_EQ(bytes.find(secret), std::string::npos) << secret << " in " << path;
        }
    };
    expectClean(m_path + "-wal"); // the saves so far sit in the write-ahead log
    m_store.reset();              // closing folds the log into the file
    expectClean(m_path);
}

} // namespace
} // namespace vorlane::testing
