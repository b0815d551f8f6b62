// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/BackupSnapshot.h"

#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "store/VaultSchema.h"

#include <algorithm>
#include <set>

namespace vorlane {

namespace {

// Every batch costs one search over all of the vault's items in the secret store, so batches
// are large: a vault of ten thousand services is read in one call, a huge one in a few.
constexpr std::size_t accountsPerRead = 20000;

void addAccounts(const ServiceRecord& service, std::set<std::string>& accounts) {
    for (const std::string* account :
         {&service.secretKeychainID, &service.apiKeyKeychainID, &service.totpKeychainID}) {
        if (!account->empty()) {
            accounts.insert(*account);
        }
    }
}

BackedUpService backedUp(const ServiceRecord& service) {
    BackedUpService copy{service, std::nullopt};
    copy.record.organization = nullptr;
    if (service.organization) {
        copy.organizationId = service.organization->id;
    }
    return copy;
}

} // namespace

std::optional<BackupContents> BackupSnapshot::take(DataStore& store, Instant now) {
    BackupContents contents;
    contents.createdAt = now;
    contents.schemaVersion = std::string(VaultSchema::version);
    std::set<std::string> accounts;

    // Each organization's services and shares in the order they were added, so that a restored
    // vault lists them as this one does.
    const auto addService = [&](const ServiceRecord& service) {
        contents.services.push_back(backedUp(service));
        addAccounts(service, accounts);
        // Oldest first, the order they were recorded in (the store lists them newest first).
        const std::vector<PaymentRecord*> payments = store.fetchPayments(service);
        for (auto it = payments.rbegin(); it != payments.rend(); ++it) {
            BackedUpPayment payment{**it, service.id};
            payment.record.service = nullptr;
            contents.payments.push_back(std::move(payment));
        }
    };
    for (Organization* organization : store.fetchOrganizations(/*includeArchived=*/true)) {
        Organization copy = *organization;
        copy.logoData = store.logo(*organization);
        copy.services.clear();
        copy.shareHistory.clear();
        contents.organizations.push_back(std::move(copy));
        for (const ServiceRecord* service : organization->services) {
            addService(*service);
        }
        for (const ShareRecord* share : organization->shareHistory) {
            BackedUpShare copyOfShare{*share, organization->id};
            copyOfShare.record.organization = nullptr;
            contents.shares.push_back(std::move(copyOfShare));
        }
    }
    for (const ServiceRecord* service : store.fetchAllServices(/*includeArchived=*/true)) {
        if (!service->organization) {
            addService(*service);
        }
    }

    const std::vector<std::string> wanted(accounts.begin(), accounts.end());
    for (std::size_t start = 0; start < wanted.size(); start += accountsPerRead) {
        const std::vector<std::string> batch(
            wanted.begin() + static_cast<std::ptrdiff_t>(start),
            wanted.begin() +
                static_cast<std::ptrdiff_t>(std::min(wanted.size(), start + accountsPerRead)));
        auto read = store.keychain().readMany(batch);
        if (!read) {
            return std::nullopt;
        }
        for (const std::string& account : batch) {
            const auto found = read->find(account);
            if (found == read->end()) {
                contents.missingSecrets.push_back(account); // in order: `wanted` is sorted
            } else {
                contents.secrets.emplace(account,
                                         std::string(found->second.begin(), found->second.end()));
            }
        }
    }
    return contents;
}

} // namespace vorlane
