// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "secrets/SecretBackend.h"

namespace vorlane {

// The secret store on the desktop's Secret Service (GNOME Keyring, KWallet, KeePassXC), through
// libsecret's synchronous calls. Items use the libsecret schema "com.vorlane.vault" with the
// string attributes "service" and "account", hold the value as binary
// ("application/octet-stream") and live in the default collection. Attributes and labels are
// stored unencrypted by most implementations, so they carry only the identifiers, never a
// secret. Calls block until the service answers; any thread may call, one call at a time.
class LibsecretBackend final : public SecretBackend {
public:
    Status add(std::string_view service, std::string_view account,
               const SecretBytes& value) override;
    // CreateItem calls into the default collection, many on the way at once; GNOME Keyring's own
    // work on each item (and for a collection on disk, writing its whole file) remains.
    Status addMany(std::string_view service,
                   const std::vector<std::pair<std::string, SecretBytes>>& items) override;
    std::pair<Status, std::optional<SecretBytes>> read(std::string_view service,
                                                       std::string_view account) override;
    // One search for the paths of the service's items, their "account" attributes asked for
    // with many calls in flight at once (the Secret Service has no call that lists attributes),
    // then the secrets asked for in GetSecrets calls of a few thousand items each. No item
    // proxies are built: each costs the bus several round trips and a match rule. Items in a
    // locked collection count as unreadable: failure.
    std::pair<Status, std::unordered_map<std::string, SecretBytes>>
    readMany(std::string_view service, const std::vector<std::string>& accounts) override;
    // Removes every item matching service and account; notFound when there was none.
    Status remove(std::string_view service, std::string_view account) override;
    // Whether a session bus exists and a Secret Service answers on it (starting it by D-Bus
    // activation where the desktop provides that). Gives up after about two seconds, so a
    // missing bus or a stuck service never hangs the caller.
    bool isAvailable() override;
};

} // namespace vorlane
