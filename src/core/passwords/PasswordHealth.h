// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"
#include "util/Uuid.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vorlane {

class DataStore;
class KeychainManager;
struct ServiceRecord;

// The password health report: which passwords and API keys are reused (the same secret in two
// or more services), weak (fewer than about 10^10 guesses by PasswordStrength), old (a password
// unchanged for more than a year), and which services have no password. Nothing is looked up
// online.
//
// Secrets are never kept: each is read once (all in one batch), turned into a keyed digest
// (HMAC-SHA-256 under a random key made for this report alone, so that a digest left in memory
// cannot be matched against a list of common passwords) and its strength, and wiped at once.
// The report holds only digests, and `clear` (or destruction) drops even those. Main thread.
class PasswordHealth {
public:
    enum class Kind { password, apiKey };
    using Digest = std::array<std::uint8_t, 32>;

    // One secret of one service, as the report sees it.
    struct Entry {
        Uuid serviceId;
        std::string title;
        std::string client; // the organization's name; empty without one
        Kind kind = Kind::password;
        Digest digest{};
        double log10Guesses = 0;
        std::optional<Instant> changedAt; // passwords: passwordChangedAt
    };

    // A row of the report: the service it opens and what is said about it.
    struct Item {
        Uuid serviceId;
        std::string title;
        std::string client;
        Kind kind = Kind::password;
    };

    struct Findings {
        std::vector<std::vector<Item>> reused; // groups, largest first, each by title
        std::vector<Item> weak;                // by title
        std::vector<Item> old;                 // passwords, by title
        std::vector<Item> withoutPassword;     // services, by title
        // Every row: what the sidebar counts.
        std::size_t count() const;
    };

    static constexpr int oldAfterDays = 365;

    // Reads the password and API key of every service that is not archived in one batch and
    // evaluates them; nothing when the secret store could not be read (locked, unreachable).
    static std::optional<Findings> check(const DataStore& store, KeychainManager& keychain,
                                         Instant now);

    // The findings over `services` and their secrets as read (keyed by secret-store account):
    // each secret is digested, rated and wiped in `secrets`. What `check` does once it has read.
    static Findings fromSecrets(const std::vector<ServiceRecord*>& services,
                                std::unordered_map<std::string, std::vector<std::uint8_t>>& secrets,
                                Instant now);

    // The findings over entries already digested; `services` are those checked, for the ones
    // without a password. Pure: the benchmark's and the tests' way in.
    static Findings evaluate(const std::vector<Entry>& entries,
                             const std::vector<const ServiceRecord*>& services, Instant now);

    // Makes entries: holds the report's random key, wiped when it goes.
    class Digester {
    public:
        Digester();
        ~Digester();
        Digester(const Digester&) = delete;
        Digester& operator=(const Digester&) = delete;
        Digest digest(std::string_view secret) const;

    private:
        std::array<std::uint8_t, 32> m_key{};
    };
};

} // namespace vorlane
