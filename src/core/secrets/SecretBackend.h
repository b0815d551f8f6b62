// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vorlane {

using SecretBytes = std::vector<std::uint8_t>;

// Port: the desktop's per-user secret store, holding one item per (service, account) pair.
// Implementations need not be thread-safe: KeychainManager serialises every call.
class SecretBackend {
public:
    enum class Status {
        success,
        notFound, // no item with that service and account
        failure,  // anything else: store locked, unreachable, refused
    };

    virtual ~SecretBackend() = default;

    // Adds an item; an existing item with the same service and account may be replaced or may
    // make this fail, so callers delete first.
    virtual Status add(std::string_view service, std::string_view account,
                       const SecretBytes& value) = 0;
    // Adds every (account, value) item of `service` with many calls on the way at once, for
    // accounts that have no item yet; as with add, an existing item may be replaced. success
    // when every one was added; failure otherwise, and then any of them may have been added.
    virtual Status addMany(std::string_view service,
                           const std::vector<std::pair<std::string, SecretBytes>>& items) = 0;
    // The item's bytes; nothing together with notFound or failure.
    virtual std::pair<Status, std::optional<SecretBytes>> read(std::string_view service,
                                                               std::string_view account) = 0;
    virtual Status remove(std::string_view service, std::string_view account) = 0;
    // The bytes of every item of `service` whose account is one of `accounts`, keyed by account,
    // read together (one search and one transfer, not a round trip per item), for the screens
    // that look at every secret at once. Accounts without an item are left out of the map; an
    // empty map together with failure when the store cannot be read.
    virtual std::pair<Status, std::unordered_map<std::string, SecretBytes>>
    readMany(std::string_view service, const std::vector<std::string>& accounts) = 0;
    // Whether the store can be reached at all, so that the program can tell the user.
    virtual bool isAvailable() = 0;
};

} // namespace vorlane
