// SPDX-License-Identifier: GPL-3.0-or-later
#include "passwords/PasswordHealth.h"

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "passwords/PasswordStrength.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <set>

namespace vorlane {

namespace {

using Item = PasswordHealth::Item;

Item itemOf(const PasswordHealth::Entry& entry) {
    return {entry.serviceId, entry.title, entry.client, entry.kind};
}

void byTitle(std::vector<Item>& items) {
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.title < b.title; });
}

} // namespace

std::size_t PasswordHealth::Findings::count() const {
    std::size_t total = weak.size() + old.size() + withoutPassword.size();
    for (const auto& group : reused) {
        total += group.size();
    }
    return total;
}

PasswordHealth::Digester::Digester() {
    if (RAND_bytes(m_key.data(), static_cast<int>(m_key.size())) != 1) {
        // Without randomness the digests are still a fair comparison within one report; they
        // are only easier to match outside it.
        m_key.fill(0);
    }
}

PasswordHealth::Digester::~Digester() {
    OPENSSL_cleanse(m_key.data(), m_key.size());
}

PasswordHealth::Digest PasswordHealth::Digester::digest(std::string_view secret) const {
    Digest result{};
    unsigned int length = 0;
    HMAC(EVP_sha256(), m_key.data(), static_cast<int>(m_key.size()),
         reinterpret_cast<const unsigned char*>(secret.data()), secret.size(), result.data(),
         &length);
    return result;
}

PasswordHealth::Findings PasswordHealth::evaluate(const std::vector<Entry>& entries,
                                                  const std::vector<const ServiceRecord*>& services,
                                                  Instant now) {
    Findings findings;
    const Instant oldBefore = now - std::chrono::days(oldAfterDays);
    std::map<Digest, std::vector<const Entry*>> byDigest;
    for (const Entry& entry : entries) {
        byDigest[entry.digest].push_back(&entry);
        if (entry.log10Guesses < PasswordStrength::weakBelowLog10) {
            findings.weak.push_back(itemOf(entry));
        }
        if (entry.kind == Kind::password && entry.changedAt && *entry.changedAt < oldBefore) {
            findings.old.push_back(itemOf(entry));
        }
    }
    for (const auto& [digest, sharing] : byDigest) {
        // A service whose password is also its API key reuses nothing of another's.
        std::set<Uuid> distinct;
        for (const Entry* entry : sharing) {
            distinct.insert(entry->serviceId);
        }
        if (distinct.size() < 2) {
            continue;
        }
        std::vector<Item> group;
        for (const Entry* entry : sharing) {
            group.push_back(itemOf(*entry));
        }
        byTitle(group);
        findings.reused.push_back(std::move(group));
    }
    std::stable_sort(
        findings.reused.begin(), findings.reused.end(), [](const auto& a, const auto& b) {
            return a.size() != b.size() ? a.size() > b.size() : a.front().title < b.front().title;
        });
    for (const ServiceRecord* service : services) {
        if (service->secretKeychainID.empty()) {
            findings.withoutPassword.push_back(
                {service->id, service->title,
                 service->organization != nullptr ? service->organization->name : std::string(),
                 Kind::password});
        }
    }
    byTitle(findings.weak);
    byTitle(findings.old);
    byTitle(findings.withoutPassword);
    return findings;
}

std::optional<PasswordHealth::Findings>
PasswordHealth::check(const DataStore& store, KeychainManager& keychain, Instant now) {
    const std::vector<ServiceRecord*> services = store.fetchAllServices(false);
    std::vector<std::string> accounts;
    accounts.reserve(services.size() * 2);
    for (const ServiceRecord* service : services) {
        accounts.push_back(service->secretKeychainID);
        accounts.push_back(service->apiKeyKeychainID);
    }
    auto values = keychain.readMany(accounts);
    if (!values) {
        return std::nullopt;
    }
    return fromSecrets(services, *values, now);
}

PasswordHealth::Findings
PasswordHealth::fromSecrets(const std::vector<ServiceRecord*>& services,
                            std::unordered_map<std::string, std::vector<std::uint8_t>>& values,
                            Instant now) {
    const Digester digester;
    std::vector<Entry> entries;
    entries.reserve(values.size());
    const auto take = [&](const ServiceRecord& service, const std::string& account, Kind kind) {
        const auto found = values.find(account);
        if (account.empty() || found == values.end()) {
            return;
        }
        SecretBytes& bytes = found->second;
        const std::string_view secret(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        Entry entry;
        entry.serviceId = service.id;
        entry.title = service.title;
        entry.client = service.organization != nullptr ? service.organization->name : std::string();
        entry.kind = kind;
        entry.digest = digester.digest(secret);
        entry.log10Guesses = PasswordStrength::estimate(secret).log10Guesses;
        entry.changedAt = kind == Kind::password ? service.passwordChangedAt : std::nullopt;
        OPENSSL_cleanse(bytes.data(), bytes.size());
        entries.push_back(std::move(entry));
    };
    for (const ServiceRecord* service : services) {
        take(*service, service->secretKeychainID, Kind::password);
        take(*service, service->apiKeyKeychainID, Kind::apiKey);
    }
    // Anything read but not taken (an identifier two services share) is wiped too.
    for (auto& [account, bytes] : values) {
        OPENSSL_cleanse(bytes.data(), bytes.size());
    }
    return evaluate(entries, {services.begin(), services.end()}, now);
}

} // namespace vorlane
