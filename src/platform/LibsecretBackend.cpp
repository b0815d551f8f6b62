// SPDX-License-Identifier: GPL-3.0-or-later
#include "LibsecretBackend.h"

#include "secrets/KeychainManager.h"

// The path-level search is only declared for callers that accept libsecret's "unstable" API;
// it has not changed since libsecret 0.18.
#define SECRET_WITH_UNSTABLE 1
#define SECRET_API_SUBJECT_TO_CHANGE 1
#include <libsecret/secret.h>

#include <memory>
#include <string>
#include <unordered_set>

namespace vorlane {

namespace {

// The schema is named after the vault's service so that other tools (seahorse, secret-tool)
// show our items under one recognisable name. Matching by schema name as well keeps items that
// some other program stored with look-alike attributes out of our reads and deletes.
const SecretSchema vaultSchema = {
    KeychainManager::serviceName.data(),
    SECRET_SCHEMA_NONE,
    {
        {"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
        {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
        {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING},
    },
    0,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};

constexpr const char* binaryContentType = "application/octet-stream";
constexpr int probeTimeoutMs = 2000;

struct HashTableDeleter {
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
};
struct ValueDeleter {
    void operator()(SecretValue* value) const { secret_value_unref(value); }
};
struct ObjectDeleter {
    void operator()(gpointer object) const { g_object_unref(object); }
};
struct VariantDeleter {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};

// Owns the error that a GLib call may set; the message is not used because every failure is
// folded into a status, but it must still be freed.
class ErrorSlot {
public:
    ErrorSlot() = default;
    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;
    ~ErrorSlot() { g_clear_error(&m_error); }

    GError** out() { return &m_error; }
    bool isSet() const { return m_error != nullptr; }

private:
    GError* m_error = nullptr;
};

// Keys and values are copied: the views need not be NUL-terminated.
std::unique_ptr<GHashTable, HashTableDeleter> attributesFor(std::string_view service,
                                                            std::string_view account) {
    GHashTable* table = g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free);
    g_hash_table_insert(table, g_strdup("service"),
                        g_strndup(service.data(), static_cast<gsize>(service.size())));
    g_hash_table_insert(table, g_strdup("account"),
                        g_strndup(account.data(), static_cast<gsize>(account.size())));
    return std::unique_ptr<GHashTable, HashTableDeleter>(table);
}

} // namespace

SecretBackend::Status LibsecretBackend::add(std::string_view service, std::string_view account,
                                            const SecretBytes& value) {
    const auto attributes = attributesFor(service, account);
    // The label names the item for people browsing their keyring; it holds the identifier only.
    const std::string label = "Vorlane: " + std::string(account);
    const std::unique_ptr<SecretValue, ValueDeleter> secret(
        secret_value_new(reinterpret_cast<const gchar*>(value.data()),
                         static_cast<gssize>(value.size()), binaryContentType));
    ErrorSlot error;
    const gboolean stored = secret_password_storev_binary_sync(
        &vaultSchema, attributes.get(), SECRET_COLLECTION_DEFAULT, label.c_str(), secret.get(),
        nullptr, error.out());
    return stored && !error.isSet() ? Status::success : Status::failure;
}

std::pair<SecretBackend::Status, std::optional<SecretBytes>>
LibsecretBackend::read(std::string_view service, std::string_view account) {
    const auto attributes = attributesFor(service, account);
    ErrorSlot error;
    const std::unique_ptr<SecretValue, ValueDeleter> secret(
        secret_password_lookupv_binary_sync(&vaultSchema, attributes.get(), nullptr, error.out()));
    if (error.isSet()) {
        return {Status::failure, std::nullopt};
    }
    if (!secret) {
        return {Status::notFound, std::nullopt};
    }
    gsize length = 0;
    const auto* bytes =
        reinterpret_cast<const std::uint8_t*>(secret_value_get(secret.get(), &length));
    return {Status::success, SecretBytes(bytes, bytes + length)};
}

std::pair<SecretBackend::Status, std::unordered_map<std::string, SecretBytes>>
LibsecretBackend::readMany(std::string_view service, const std::vector<std::string>& accounts) {
    std::unordered_map<std::string, SecretBytes> values;
    ErrorSlot error;
    const std::unique_ptr<SecretService, ObjectDeleter> secretService(
        secret_service_get_sync(SECRET_SERVICE_NONE, nullptr, error.out()));
    if (!secretService) {
        return {Status::failure, std::move(values)};
    }
    const std::unique_ptr<GHashTable, HashTableDeleter> attributes(
        g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free));
    g_hash_table_insert(attributes.get(), g_strdup("service"),
                        g_strndup(service.data(), static_cast<gsize>(service.size())));
    GList* found = secret_service_search_sync(secretService.get(), &vaultSchema, attributes.get(),
                                              SECRET_SEARCH_ALL, nullptr, error.out());
    const std::unique_ptr<GList, void (*)(GList*)> items(
        found, [](GList* list) { g_list_free_full(list, g_object_unref); });
    if (error.isSet()) {
        return {Status::failure, std::move(values)};
    }
    const std::unordered_set<std::string_view> wanted(accounts.begin(), accounts.end());
    GList* chosen = nullptr; // borrowed items, in the order found
    bool anyLocked = false;
    for (GList* node = items.get(); node != nullptr; node = node->next) {
        auto* item = static_cast<SecretItem*>(node->data);
        const std::unique_ptr<GHashTable, HashTableDeleter> itemAttributes(
            secret_item_get_attributes(item));
        const auto* account =
            static_cast<const char*>(g_hash_table_lookup(itemAttributes.get(), "account"));
        if (account != nullptr && wanted.count(account) != 0) {
            anyLocked = anyLocked || secret_item_get_locked(item);
            chosen = g_list_prepend(chosen, item);
        }
    }
    const std::unique_ptr<GList, void (*)(GList*)> chosenItems(chosen, g_list_free);
    if (anyLocked) {
        return {Status::failure, std::move(values)};
    }
    if (chosen != nullptr && !secret_item_load_secrets_sync(chosen, nullptr, error.out())) {
        return {Status::failure, std::move(values)};
    }
    for (GList* node = chosen; node != nullptr; node = node->next) {
        auto* item = static_cast<SecretItem*>(node->data);
        const std::unique_ptr<SecretValue, ValueDeleter> secret(secret_item_get_secret(item));
        if (!secret) {
            return {Status::failure, {}};
        }
        const std::unique_ptr<GHashTable, HashTableDeleter> itemAttributes(
            secret_item_get_attributes(item));
        gsize length = 0;
        const auto* bytes =
            reinterpret_cast<const std::uint8_t*>(secret_value_get(secret.get(), &length));
        values.insert_or_assign(
            static_cast<const char*>(g_hash_table_lookup(itemAttributes.get(), "account")),
            SecretBytes(bytes, bytes + length));
    }
    return {Status::success, std::move(values)};
}

SecretBackend::Status LibsecretBackend::remove(std::string_view service, std::string_view account) {
    const auto attributes = attributesFor(service, account);
    ErrorSlot error;
    const gboolean removed =
        secret_password_clearv_sync(&vaultSchema, attributes.get(), nullptr, error.out());
    if (error.isSet()) {
        return Status::failure;
    }
    // Items in a locked collection are passed over without an error, which would let a delete
    // that left the secret behind pass for success. Their attributes stay searchable while
    // locked, so anything still matching means the delete failed.
    // Only the object paths are asked for: building item proxies (as secret_password_search
    // does) costs a round trip per item and leaks a little inside GIO on every call.
    ErrorSlot searchError;
    const std::unique_ptr<SecretService, ObjectDeleter> secretService(
        secret_service_get_sync(SECRET_SERVICE_NONE, nullptr, searchError.out()));
    if (!secretService) {
        return Status::failure;
    }
    gchar** unlockedLeft = nullptr;
    gchar** lockedLeft = nullptr;
    const gboolean searched = secret_service_search_for_dbus_paths_sync(
        secretService.get(), &vaultSchema, attributes.get(), nullptr, &unlockedLeft, &lockedLeft,
        searchError.out());
    const bool anyLeft = (unlockedLeft != nullptr && *unlockedLeft != nullptr) ||
                         (lockedLeft != nullptr && *lockedLeft != nullptr);
    g_strfreev(unlockedLeft);
    g_strfreev(lockedLeft);
    if (!searched || searchError.isSet() || anyLeft) {
        return Status::failure;
    }
    return removed ? Status::success : Status::notFound;
}

bool LibsecretBackend::isAvailable() {
    // Asked over plain GDBus with a short timeout instead of through libsecret, whose calls wait
    // for the bus's default timeout (25 seconds) when a service is registered but stuck.
    ErrorSlot error;
    const std::unique_ptr<GDBusConnection, ObjectDeleter> bus(
        g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, error.out()));
    if (!bus) {
        return false;
    }
    const std::unique_ptr<GVariant, VariantDeleter> reply(g_dbus_connection_call_sync(
        bus.get(), "org.freedesktop.secrets", "/org/freedesktop/secrets",
        "org.freedesktop.DBus.Properties", "Get",
        g_variant_new("(ss)", "org.freedesktop.Secret.Service", "Collections"),
        G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NONE, probeTimeoutMs, nullptr, error.out()));
    return reply != nullptr;
}

} // namespace vorlane
