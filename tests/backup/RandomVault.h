// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Vaults for the backup tests: a randomized one that fills every field of every record type
// (Unicode, empty and absent values, logos, archived records, services of no organization,
// shares, payments, secrets of every kind and some that the keyring lacks), and a text of
// everything a vault holds, to compare two vaults with. Main thread.

#include "model/Organization.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "model/ShareRecord.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "util/Decimal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace vorlane::testing {

class RandomVault {
public:
    explicit RandomVault(std::uint32_t seed)
        : m_random(seed) {}

    // Fills `store` with `organizations` organizations and about `servicesEach` services each
    // (plus a few of no organization), storing their secrets; a tenth of the secrets a record
    // names are left out of the keyring. Saves. Returns the secrets stored, by account.
    std::map<std::string, std::string> fill(DataStore& store, int organizations, int servicesEach) {
        std::map<std::string, std::string> secrets;
        std::vector<Organization*> owners;
        for (int i = 0; i < organizations; ++i) {
            Organization organization = Organization::created(instant());
            organization.name = text();
            organization.projectName = text();
            organization.contactName = text();
            organization.contactEmail = text();
            organization.contactPhone = text();
            organization.website = text();
            organization.notes = text();
            organization.tags = tags();
            organization.isActive = coin();
            organization.isArchived = coin(4);
            organization.isFavorite = coin();
            organization.updatedAt = organization.createdAt + std::chrono::hours(pick(0, 5000));
            Organization& inserted = store.insert(std::move(organization));
            if (i % 2 == 0 || coin()) {
                std::vector<std::uint8_t> logo(static_cast<std::size_t>(pick(0, 3000)));
                for (std::uint8_t& byte : logo) {
                    byte = static_cast<std::uint8_t>(pick(0, 255));
                }
                store.setLogo(inserted, std::move(logo));
            }
            owners.push_back(&inserted);
        }
        owners.push_back(nullptr); // services of no organization
        for (Organization* owner : owners) {
            const int count = owner ? pick(0, servicesEach * 2) : 3;
            for (int i = 0; i < count; ++i) {
                ServiceRecord& service = store.insert(makeService(), owner);
                for (std::string* account : {&service.secretKeychainID, &service.apiKeyKeychainID,
                                             &service.totpKeychainID}) {
                    if (account->empty() || coin(10)) {
                        continue; // named but missing from the keyring
                    }
                    const std::string secret = coin(20) ? std::string() : text(true);
                    EXPECT_TRUE(
                        store.keychain().save(SecretBytes(secret.begin(), secret.end()), *account));
                    secrets[*account] = secret;
                }
                for (int p = pick(0, 3); p > 0; --p) {
                    PaymentRecord payment;
                    payment.id = Uuid::generate();
                    payment.datePaid = instant();
                    payment.periodFrom = maybeInstant();
                    payment.periodTo = maybeInstant();
                    payment.amount = money();
                    payment.note = text();
                    store.insert(std::move(payment), service);
                }
            }
            for (int s = owner ? pick(0, 2) : 0; s > 0; --s) {
                ShareRecord share;
                share.id = Uuid::generate();
                for (const ServiceRecord* service : owner->services) {
                    if (coin()) {
                        share.serviceIDs.push_back(service->id);
                    }
                }
                share.recipientLabel = text();
                share.notes = text();
                share.includesSecrets = coin();
                share.redactedFields = tags();
                share.expirationDate = maybeInstant();
                share.isRevoked = coin();
                share.sharedAt = instant();
                share.shareMethodRaw = oneOf({"pdf", "encryptedFile", "json", "", "späterMethod"});
                store.insert(std::move(share), *owner);
            }
        }
        EXPECT_TRUE(store.save());
        return secrets;
    }

    ServiceRecord makeService() {
        ServiceRecord service = ServiceRecord::created(instant());
        service.serviceTypeRaw = oneOf({"server", "domainRegistrar", "apiKey", "", "unknownKind"});
        service.title = text();
        service.provider = text();
        service.hostname = text();
        service.domain = text();
        service.ipAddress = text();
        service.loginURL = text();
        service.username = text();
        service.emailAddress = text();
        service.port = coin() ? std::optional<std::int64_t>(pick(0, 65535)) : std::nullopt;
        service.sshKeyReference = text();
        service.purchaseDate = maybeInstant();
        service.renewalDate = maybeInstant();
        service.expirationDate = maybeInstant();
        service.billingCycleRaw = oneOf({"monthly", "yearly", "none", "", "fortnightly"});
        service.monthlyCost = money();
        service.yearlyCost = money();
        service.autoRenew = coin();
        service.tags = tags();
        service.notes = text();
        service.riskLevelRaw = oneOf({"low", "high", "critical", ""});
        service.statusRaw = oneOf({"active", "suspended", "cancelled", "", "gone?"});
        service.isArchived = coin(4);
        service.updatedAt = service.createdAt + std::chrono::minutes(pick(0, 100000));
        service.secretKeychainID = coin(4) ? std::string() : ServiceRecord::makeSecretKeychainID();
        service.apiKeyKeychainID = coin() ? ServiceRecord::makeAPIKeyKeychainID() : std::string();
        service.totpKeychainID = coin(3) ? ServiceRecord::makeTOTPKeychainID() : std::string();
        service.passwordChangedAt = maybeInstant();
        return service;
    }

    // Text of every kind a user types: empty, ASCII, accented, CJK, emoji, RTL, quotes, newlines
    // and a "/" (which JSON may escape); `secret` adds the characters of generated passwords.
    std::string text(bool secret = false) {
        static const std::vector<std::string> pieces = {
            "",  "a",  "Zoë", "Ærø", "東京", "🔑",   "مرحبا", "\"q\"", "line\nbreak", "path/to",
            " ", "\t", "ß",   "0",   "ñ",    "€12", "\\",    "<&>",   "O'Brien",     "x"};
        std::string result;
        for (int i = pick(0, 4); i > 0; --i) {
            result += pieces[static_cast<std::size_t>(pick(0, int(pieces.size()) - 1))];
        }
        if (secret) {
            result += "#$%^" + std::to_string(pick(0, 1 << 30));
        }
        return result;
    }

    std::vector<std::string> tags() {
        std::vector<std::string> result;
        for (int i = pick(0, 3); i > 0; --i) {
            result.push_back(text() + std::to_string(i));
        }
        return result;
    }

    Instant instant() {
        return Instant(std::chrono::milliseconds(
            std::int64_t(pick(1'500'000, 1'900'000)) * 1'000'000 + pick(0, 999)));
    }
    std::optional<Instant> maybeInstant() {
        return coin() ? std::optional(instant()) : std::nullopt;
    }
    Decimal money() {
        return *Decimal::fromString(std::to_string(pick(0, 99999)) + "." +
                                    std::to_string(pick(0, 99)));
    }
    std::string oneOf(std::vector<std::string> choices) {
        return choices[static_cast<std::size_t>(pick(0, int(choices.size()) - 1))];
    }
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    bool coin(int oneIn = 2) { return pick(1, oneIn) == 1; }

private:
    std::mt19937 m_random;
};

// Every record of the vault with every field, in a fixed order (organizations and services by
// id; each organization's services and shares, and each service's payments, in the vault's own
// order), logos loaded. Two vaults with the same text hold the same records.
inline std::string everything(DataStore& store) {
    std::ostringstream out;
    const auto instant = [](std::optional<Instant> value) {
        return value ? std::to_string(value->time_since_epoch().count()) : std::string("none");
    };
    const auto list = [](const auto& values) {
        std::string result = "[";
        for (const auto& value : values) {
            if constexpr (std::is_same_v<std::decay_t<decltype(value)>, Uuid>) {
                result += value.toString() + ",";
            } else {
                result += value + "\x1f";
            }
        }
        return result + "]";
    };
    std::vector<Organization*> organizations = store.fetchOrganizations(true);
    std::sort(organizations.begin(), organizations.end(),
              [](const Organization* a, const Organization* b) { return a->id < b->id; });
    for (Organization* o : organizations) {
        const auto& logo = store.logo(*o);
        out << "organization " << o->id.toString() << "|" << o->name << "|" << o->projectName << "|"
            << (logo ? std::string(logo->begin(), logo->end()) : "no logo") << "|" << o->contactName
            << "|" << o->contactEmail << "|" << o->contactPhone << "|" << o->website << "|"
            << o->notes << "|" << list(o->tags) << "|" << o->isActive << o->isArchived
            << o->isFavorite << "|" << instant(o->createdAt) << "|" << instant(o->updatedAt)
            << "\n  services";
        for (const ServiceRecord* s : o->services) {
            out << " " << s->id.toString();
        }
        out << "\n";
        for (const ShareRecord* h : o->shareHistory) {
            out << "  share " << h->id.toString() << "|" << list(h->serviceIDs) << "|"
                << h->recipientLabel << "|" << h->notes << "|" << h->includesSecrets << "|"
                << list(h->redactedFields) << "|" << instant(h->expirationDate) << "|"
                << h->isRevoked << "|" << instant(h->sharedAt) << "|" << h->shareMethodRaw << "\n";
        }
    }
    std::vector<ServiceRecord*> services = store.fetchAllServices(true);
    std::sort(services.begin(), services.end(),
              [](const ServiceRecord* a, const ServiceRecord* b) { return a->id < b->id; });
    for (const ServiceRecord* s : services) {
        out << "service " << s->id.toString() << "|"
            << (s->organization ? s->organization->id.toString() : "no organization") << "|"
            << s->serviceTypeRaw << "|" << s->title << "|" << s->provider << "|" << s->hostname
            << "|" << s->domain << "|" << s->ipAddress << "|" << s->loginURL << "|" << s->username
            << "|" << s->emailAddress << "|" << (s->port ? std::to_string(*s->port) : "no port")
            << "|" << s->sshKeyReference << "|" << instant(s->purchaseDate) << "|"
            << instant(s->renewalDate) << "|" << instant(s->expirationDate) << "|"
            << s->billingCycleRaw << "|" << s->monthlyCost.toString() << "|"
            << s->yearlyCost.toString() << "|" << s->autoRenew << "|" << list(s->tags) << "|"
            << s->notes << "|" << s->riskLevelRaw << "|" << s->statusRaw << "|" << s->isArchived
            << "|" << instant(s->createdAt) << "|" << instant(s->updatedAt) << "|"
            << s->secretKeychainID << "|" << s->apiKeyKeychainID << "|" << s->totpKeychainID << "|"
            << instant(s->passwordChangedAt) << "\n";
        for (const PaymentRecord* p : store.fetchPayments(*s)) {
            out << "  payment " << p->id.toString() << "|" << instant(p->datePaid) << "|"
                << instant(p->periodFrom) << "|" << instant(p->periodTo) << "|"
                << p->amount.toString() << "|" << p->note << "\n";
        }
    }
    return out.str();
}

// Every account the vault's services name.
inline std::vector<std::string> accountsOf(const DataStore& store) {
    std::vector<std::string> accounts;
    for (const ServiceRecord* s : store.fetchAllServices(true)) {
        for (const std::string* account :
             {&s->secretKeychainID, &s->apiKeyKeychainID, &s->totpKeychainID}) {
            if (!account->empty()) {
                accounts.push_back(*account);
            }
        }
    }
    return accounts;
}

// The keyring's text for each of `accounts` that has an item.
inline std::map<std::string, std::string> secretsIn(KeychainManager& keychain,
                                                    const std::vector<std::string>& accounts) {
    std::map<std::string, std::string> result;
    const auto read = keychain.readMany(accounts);
    EXPECT_TRUE(read.has_value()) << "the keyring could not be read";
    if (read) {
        for (const auto& [account, bytes] : *read) {
            result[account] = std::string(bytes.begin(), bytes.end());
        }
    }
    return result;
}

} // namespace vorlane::testing
