// SPDX-License-Identifier: GPL-3.0-or-later
#include "secrets/KeychainManager.h"

#include <algorithm>
#include <iterator>

namespace vorlane {

KeychainManager::KeychainManager(SecretBackend& backend)
    : m_backend(backend) {}

bool KeychainManager::save(const SecretBytes& data, std::string_view account) {
    // Records without a secret carry an empty identifier; it never names an item of ours, so
    // nothing is stored under it and nothing can be read back from it.
    if (account.empty()) {
        return false;
    }
    const std::lock_guard lock(m_mutex);
    // Delete first so that a save always replaces: a backend may refuse to add over an existing
    // item, and an update in place could leave attributes of the old item behind. The delete's
    // result does not matter; only whether the new item went in does.
    m_backend.remove(serviceName, account);
    return m_backend.add(serviceName, account, data) == SecretBackend::Status::success;
}

bool KeychainManager::addMany(const std::vector<std::pair<std::string, SecretBytes>>& items) {
    if (std::any_of(items.begin(), items.end(),
                    [](const auto& item) { return item.first.empty(); })) {
        return false;
    }
    if (items.empty()) {
        return true;
    }
    const std::lock_guard lock(m_mutex);
    return m_backend.addMany(serviceName, items) == SecretBackend::Status::success;
}

std::optional<SecretBytes> KeychainManager::readData(std::string_view account) {
    if (account.empty()) {
        return std::nullopt;
    }
    const std::lock_guard lock(m_mutex);
    auto [status, value] = m_backend.read(serviceName, account);
    if (status != SecretBackend::Status::success) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::unordered_map<std::string, SecretBytes>>
KeychainManager::readMany(const std::vector<std::string>& accounts) {
    std::vector<std::string> named;
    named.reserve(accounts.size());
    std::copy_if(accounts.begin(), accounts.end(), std::back_inserter(named),
                 [](const std::string& account) { return !account.empty(); });
    if (named.empty()) {
        return std::unordered_map<std::string, SecretBytes>();
    }
    const std::lock_guard lock(m_mutex);
    auto [status, values] = m_backend.readMany(serviceName, named);
    if (status == SecretBackend::Status::failure) {
        return std::nullopt;
    }
    return std::move(values);
}

bool KeychainManager::remove(std::string_view account) {
    const std::lock_guard lock(m_mutex);
    const auto status = m_backend.remove(serviceName, account);
    return status == SecretBackend::Status::success || status == SecretBackend::Status::notFound;
}

bool KeychainManager::isAvailable() {
    const std::lock_guard lock(m_mutex);
    return m_backend.isAvailable();
}

} // namespace vorlane
