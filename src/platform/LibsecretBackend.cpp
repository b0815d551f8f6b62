// SPDX-License-Identifier: GPL-3.0-or-later
#include "LibsecretBackend.h"

#include "secrets/KeychainManager.h"

// The path-level search is only declared for callers that accept libsecret's "unstable" API;
// it has not changed since libsecret 0.18.
#define SECRET_WITH_UNSTABLE 1
#define SECRET_API_SUBJECT_TO_CHANGE 1
#include <libsecret/secret.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

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
// Questions about items sent before the first answer is back; far below the session bus's limit
// on replies a connection may be awaiting.
constexpr std::size_t callsInFlight = 64;
// Secrets fetched in one GetSecrets call, so that no single reply grows without bound in a huge
// vault and every call ends well within the bus's timeout.
constexpr std::size_t secretsPerTransfer = 2000;

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

std::vector<const gchar*> pathList(gchar** paths) {
    std::vector<const gchar*> list;
    for (gchar** path = paths; path != nullptr && *path != nullptr; ++path) {
        list.push_back(*path);
    }
    return list;
}

// Makes `count` asynchronous calls to the Secret Service and takes their answers. The service
// answers one call at a time and each answer takes it well under a millisecond, so waiting for
// one answer before asking the next would spend most of the time on the bus's round trips: up to
// `callsInFlight` calls are on the way at once. `ask(i, done, data)` starts call i with `done`
// and `data` as its callback; `answer(source, result, i)` finishes it and says whether it
// succeeded. Answers arrive on a main context of our own, so nothing else of the program runs
// meanwhile. Stops asking after the first failure; false then.
bool callAll(std::size_t count,
             const std::function<void(std::size_t, GAsyncReadyCallback, gpointer)>& ask,
             const std::function<bool(GObject*, GAsyncResult*, std::size_t)>& answer) {
    struct Run {
        const std::function<bool(GObject*, GAsyncResult*, std::size_t)>& answer;
        std::size_t answered = 0;
        bool failed = false;
    };
    struct Call {
        Run* run;
        std::size_t index;
    };
    Run run{answer};
    std::vector<Call> calls(count);
    const GAsyncReadyCallback done = [](GObject* source, GAsyncResult* result, gpointer data) {
        const auto* call = static_cast<const Call*>(data);
        if (!call->run->answer(source, result, call->index)) {
            call->run->failed = true;
        }
        ++call->run->answered;
    };
    GMainContext* context = g_main_context_new();
    g_main_context_push_thread_default(context);
    std::size_t asked = 0;
    while (run.answered < count && !run.failed) {
        while (asked < count && asked - run.answered < callsInFlight) {
            calls[asked] = {&run, asked};
            ask(asked, done, &calls[asked]);
            ++asked;
        }
        g_main_context_iteration(context, TRUE);
    }
    // Calls still on the way after a failure point into `calls`: they are answered (or time out)
    // before it goes.
    while (run.answered < asked) {
        g_main_context_iteration(context, TRUE);
    }
    g_main_context_pop_thread_default(context);
    g_main_context_unref(context);
    return !run.failed;
}

// The "account" attribute of every item, in the order of `paths`; the Secret Service has no call
// that lists attributes, so each item is asked about. Nothing when any item could not be asked
// about (it vanished, or the service failed); an item without the attribute reads as an empty
// account, which no caller asks for.
std::optional<std::vector<std::string>> accountsOf(SecretService* secretService,
                                                   const std::vector<const gchar*>& paths) {
    std::vector<std::string> accounts(paths.size());
    GDBusProxy* proxy = G_DBUS_PROXY(secretService);
    const bool answered = callAll(
        paths.size(),
        [&](std::size_t i, GAsyncReadyCallback done, gpointer data) {
            g_dbus_connection_call(
                g_dbus_proxy_get_connection(proxy), g_dbus_proxy_get_name(proxy), paths[i],
                "org.freedesktop.DBus.Properties", "Get",
                g_variant_new("(ss)", "org.freedesktop.Secret.Item", "Attributes"),
                G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, done, data);
        },
        [&](GObject* source, GAsyncResult* result, std::size_t i) {
            ErrorSlot error;
            const std::unique_ptr<GVariant, VariantDeleter> reply(
                g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, error.out()));
            if (!reply) {
                return false;
            }
            GVariant* boxed = nullptr;
            g_variant_get(reply.get(), "(v)", &boxed);
            const std::unique_ptr<GVariant, VariantDeleter> itemAttributes(boxed);
            const gchar* account = nullptr;
            if (g_variant_is_of_type(itemAttributes.get(), G_VARIANT_TYPE("a{ss}")) &&
                g_variant_lookup(itemAttributes.get(), "account", "&s", &account)) {
                accounts[i] = account;
            }
            return true;
        });
    if (!answered) {
        return std::nullopt;
    }
    return accounts;
}

std::string labelFor(std::string_view account) {
    // The label names the item for people browsing their keyring; it holds the identifier only.
    return "Vorlane: " + std::string(account);
}

std::unique_ptr<SecretValue, ValueDeleter> secretValueOf(const SecretBytes& value) {
    return std::unique_ptr<SecretValue, ValueDeleter>(
        secret_value_new(reinterpret_cast<const gchar*>(value.data()),
                         static_cast<gssize>(value.size()), binaryContentType));
}

// An item's properties for CreateItem, with the attributes libsecret gives items of our schema
// (its name under "xdg:schema"), so that searches by schema find them.
std::unique_ptr<GHashTable, HashTableDeleter> itemProperties(std::string_view service,
                                                             std::string_view account) {
    GHashTable* properties = g_hash_table_new_full(
        g_str_hash, g_str_equal, nullptr, reinterpret_cast<GDestroyNotify>(g_variant_unref));
    GVariantBuilder attributes;
    g_variant_builder_init(&attributes, G_VARIANT_TYPE("a{ss}"));
    g_variant_builder_add(&attributes, "{ss}", "xdg:schema", vaultSchema.name);
    g_variant_builder_add(&attributes, "{ss}", "service", std::string(service).c_str());
    g_variant_builder_add(&attributes, "{ss}", "account", std::string(account).c_str());
    g_hash_table_insert(properties, const_cast<gchar*>("org.freedesktop.Secret.Item.Label"),
                        g_variant_ref_sink(g_variant_new_string(labelFor(account).c_str())));
    g_hash_table_insert(properties, const_cast<gchar*>("org.freedesktop.Secret.Item.Attributes"),
                        g_variant_ref_sink(g_variant_builder_end(&attributes)));
    return std::unique_ptr<GHashTable, HashTableDeleter>(properties);
}

} // namespace

SecretBackend::Status LibsecretBackend::add(std::string_view service, std::string_view account,
                                            const SecretBytes& value) {
    const auto attributes = attributesFor(service, account);
    const auto secret = secretValueOf(value);
    ErrorSlot error;
    const gboolean stored = secret_password_storev_binary_sync(
        &vaultSchema, attributes.get(), SECRET_COLLECTION_DEFAULT, labelFor(account).c_str(),
        secret.get(), nullptr, error.out());
    return stored && !error.isSet() ? Status::success : Status::failure;
}

SecretBackend::Status
LibsecretBackend::addMany(std::string_view service,
                          const std::vector<std::pair<std::string, SecretBytes>>& items) {
    ErrorSlot error;
    const std::unique_ptr<SecretService, ObjectDeleter> secretService(
        secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, nullptr, error.out()));
    if (!secretService) {
        return Status::failure;
    }
    const std::unique_ptr<gchar, void (*)(gpointer)> collection(
        secret_service_read_alias_dbus_path_sync(secretService.get(), SECRET_COLLECTION_DEFAULT,
                                                 nullptr, error.out()),
        g_free);
    if (error.isSet()) {
        return Status::failure;
    }
    if (!collection) {
        // No default collection yet: the single add lets libsecret create it (the desktop asks
        // the user for its password), after which the rest can go at once.
        if (items.empty() ||
            add(service, items.front().first, items.front().second) != Status::success) {
            return items.empty() ? Status::success : Status::failure;
        }
        return addMany(service, {items.begin() + 1, items.end()});
    }
    const bool added = callAll(
        items.size(),
        [&](std::size_t i, GAsyncReadyCallback done, gpointer data) {
            const auto properties = itemProperties(service, items[i].first);
            const auto secret = secretValueOf(items[i].second);
            secret_service_create_item_dbus_path(secretService.get(), collection.get(),
                                                 properties.get(), secret.get(),
                                                 SECRET_ITEM_CREATE_REPLACE, nullptr, done, data);
        },
        [&](GObject*, GAsyncResult* result, std::size_t) {
            ErrorSlot createError;
            const std::unique_ptr<gchar, void (*)(gpointer)> path(
                secret_service_create_item_dbus_path_finish(secretService.get(), result,
                                                            createError.out()),
                g_free);
            return path != nullptr && !createError.isSet();
        });
    return added ? Status::success : Status::failure;
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
        secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, nullptr, error.out()));
    if (!secretService) {
        return {Status::failure, std::move(values)};
    }
    const std::unique_ptr<GHashTable, HashTableDeleter> attributes(
        g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free));
    g_hash_table_insert(attributes.get(), g_strdup("service"),
                        g_strndup(service.data(), static_cast<gsize>(service.size())));
    gchar** unlockedFound = nullptr;
    gchar** lockedFound = nullptr;
    const gboolean searched = secret_service_search_for_dbus_paths_sync(
        secretService.get(), &vaultSchema, attributes.get(), nullptr, &unlockedFound, &lockedFound,
        error.out());
    const std::unique_ptr<gchar*, void (*)(gchar**)> unlocked(unlockedFound, g_strfreev);
    const std::unique_ptr<gchar*, void (*)(gchar**)> locked(lockedFound, g_strfreev);
    if (!searched || error.isSet()) {
        return {Status::failure, std::move(values)};
    }
    const std::vector<const gchar*> unlockedPaths = pathList(unlocked.get());
    const std::vector<const gchar*> lockedPaths = pathList(locked.get());
    const auto unlockedAccounts = accountsOf(secretService.get(), unlockedPaths);
    const auto lockedAccounts = accountsOf(secretService.get(), lockedPaths);
    if (!unlockedAccounts || !lockedAccounts) {
        return {Status::failure, std::move(values)};
    }
    const std::unordered_set<std::string_view> wanted(accounts.begin(), accounts.end());
    // A locked item that was asked for cannot be read; leaving it out would pass it off as
    // missing.
    for (const std::string& account : *lockedAccounts) {
        if (wanted.count(account) != 0) {
            return {Status::failure, std::move(values)};
        }
    }
    std::vector<std::size_t> chosen; // indexes into unlockedPaths
    for (std::size_t i = 0; i < unlockedPaths.size(); ++i) {
        if (wanted.count((*unlockedAccounts)[i]) != 0) {
            chosen.push_back(i);
        }
    }
    for (std::size_t start = 0; start < chosen.size(); start += secretsPerTransfer) {
        const std::size_t end = std::min(chosen.size(), start + secretsPerTransfer);
        std::vector<const gchar*> paths;
        for (std::size_t k = start; k < end; ++k) {
            paths.push_back(unlockedPaths[chosen[k]]);
        }
        paths.push_back(nullptr);
        const std::unique_ptr<GHashTable, HashTableDeleter> secrets(
            secret_service_get_secrets_for_dbus_paths_sync(secretService.get(), paths.data(),
                                                           nullptr, error.out()));
        if (!secrets || error.isSet()) {
            return {Status::failure, {}};
        }
        for (std::size_t k = start; k < end; ++k) {
            auto* secret = static_cast<SecretValue*>(
                g_hash_table_lookup(secrets.get(), unlockedPaths[chosen[k]]));
            if (secret == nullptr) {
                return {Status::failure, {}};
            }
            gsize length = 0;
            const auto* bytes =
                reinterpret_cast<const std::uint8_t*>(secret_value_get(secret, &length));
            values.insert_or_assign((*unlockedAccounts)[chosen[k]],
                                    SecretBytes(bytes, bytes + length));
        }
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
