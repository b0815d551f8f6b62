#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
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
    // The item's bytes; nothing together with notFound or failure.
    virtual std::pair<Status, std::optional<SecretBytes>> read(std::string_view service,
                                                               std::string_view account) = 0;
    virtual Status remove(std::string_view service, std::string_view account) = 0;
    // Whether the store can be reached at all, so that the program can tell the user.
    virtual bool isAvailable() = 0;
};

} // namespace vorlane
