// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "secrets/SecretBackend.h"

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vorlane {

// The only way secrets are stored: items of the desktop's secret store under the service
// "com.vorlane.vault", one per account identifier ("vorlane.secret.<UUID>",
// "vorlane.apikey.<UUID>"). Every call is serialised on one mutex, so a save (delete, then add) is
// never seen half done. Failures are folded into false or nothing; nothing is thrown or logged.
// Does not own the backend.
class KeychainManager {
public:
    static constexpr std::string_view serviceName = "com.vorlane.vault";

    explicit KeychainManager(SecretBackend& backend);

    // Replaces any item under `account` with `data`; true exactly when the new item was added.
    // An empty account names no item: false, and nothing is stored.
    bool save(const SecretBytes& data, std::string_view account);
    // Stores each value under its account, for accounts known to have no item yet (a restore
    // onto a keyring that lacks them), all in one exchange and without the delete that `save`
    // does first. True when every one was stored; false when any was not (an empty account
    // included), and then any of them may be there.
    bool addMany(const std::vector<std::pair<std::string, SecretBytes>>& items);
    // The item's bytes; nothing for a missing item, an empty account, or any failure.
    std::optional<SecretBytes> readData(std::string_view account);
    // The bytes of each of `accounts` that has an item, keyed by account, in one batched read;
    // empty accounts are skipped. Nothing when the store could not be read at all.
    std::optional<std::unordered_map<std::string, SecretBytes>>
    readMany(const std::vector<std::string>& accounts);
    // True when the item is gone afterwards, including when it never existed; false when it
    // could not be deleted (a locked or unreachable store), and then it is still there.
    bool remove(std::string_view account);
    // Whether the store can be reached, so that the program can tell the user when secrets
    // cannot be kept; it answers within a few seconds even when nothing is listening.
    bool isAvailable();

private:
    std::mutex m_mutex;
    SecretBackend& m_backend;
};

} // namespace vorlane
