// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The private GNOME Keyring of a run of run-with-keyring.sh, driven the way the desktop drives it:
// locked as when the session locks (every write refused from then on), unlocked again with the
// run's throwaway password, and its items counted behind the vault's back. Main thread; the
// calls block on the keyring daemon.

#include "secrets/KeychainManager.h"

#include <gtest/gtest.h>
#include <libsecret/secret.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace vorlane::testing {

// Locks the default collection. Needs no prompt.
inline void lockDefaultCollection() {
    GError* error = nullptr;
    SecretService* service = secret_service_get_sync(SECRET_SERVICE_NONE, nullptr, &error);
    ASSERT_NE(service, nullptr) << (error ? error->message : "");
    SecretCollection* collection = secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, &error);
    EXPECT_NE(collection, nullptr) << (error ? error->message : "");
    GList* objects = g_list_append(nullptr, collection);
    const gint locked = secret_service_lock_sync(service, objects, nullptr, nullptr, &error);
    g_list_free(objects);
    g_clear_object(&collection);
    g_object_unref(service);
    EXPECT_EQ(locked, 1) << (error ? error->message : "");
    g_clear_error(&error);
}

// Unlocks the default collection with the password run-with-keyring.sh created it with. The
// Secret Service's own Unlock asks a person through a system prompt, which a headless run has
// not got; gnome-keyring's unlock with the password given by the caller needs none. The password
// goes over the run's private bus in a plain session, as the daemon's own unlock at start does.
inline void unlockDefaultCollection() {
    const char* password = std::getenv("VORLANE_TEST_KEYRING_PASSWORD");
    ASSERT_NE(password, nullptr) << "run through tests/support/run-with-keyring.sh";
    GError* error = nullptr;
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
    ASSERT_NE(bus, nullptr) << (error ? error->message : "");
    constexpr const char* name = "org.freedesktop.secrets";
    constexpr const char* path = "/org/freedesktop/secrets";
    GVariant* alias =
        g_dbus_connection_call_sync(bus, name, path, "org.freedesktop.Secret.Service", "ReadAlias",
                                    g_variant_new("(s)", "default"), G_VARIANT_TYPE("(o)"),
                                    G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
    ASSERT_NE(alias, nullptr) << (error ? error->message : "");
    GVariant* session = g_dbus_connection_call_sync(
        bus, name, path, "org.freedesktop.Secret.Service", "OpenSession",
        g_variant_new("(sv)", "plain", g_variant_new_string("")), G_VARIANT_TYPE("(vo)"),
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
    ASSERT_NE(session, nullptr) << (error ? error->message : "");
    const char* collection = nullptr;
    g_variant_get(alias, "(&o)", &collection);
    GVariant* output = nullptr;
    const char* sessionPath = nullptr;
    g_variant_get(session, "(v&o)", &output, &sessionPath);
    GVariant* secret =
        g_variant_new("(o@ay@ays)", sessionPath,
                      g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, "", 0, sizeof(char)),
                      g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, password,
                                                std::strlen(password), sizeof(char)),
                      "text/plain");
    GVariant* unlocked = g_dbus_connection_call_sync(
        bus, name, path, "org.gnome.keyring.InternalUnsupportedGuiltRiddenInterface",
        "UnlockWithMasterPassword", g_variant_new("(o@(oayays))", collection, secret), nullptr,
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
    EXPECT_NE(unlocked, nullptr) << (error ? error->message : "");
    g_clear_error(&error);
    if (unlocked != nullptr) {
        g_variant_unref(unlocked);
    }
    g_variant_unref(output);
    g_variant_unref(session);
    g_variant_unref(alias);
    g_object_unref(bus);
}

// How many items of the vault's secret store the keyring holds, locked or not.
inline std::size_t vaultItemCount() {
    GHashTable* attributes = g_hash_table_new(g_str_hash, g_str_equal);
    g_hash_table_insert(attributes, const_cast<char*>("service"),
                        const_cast<char*>(KeychainManager::serviceName.data()));
    GError* error = nullptr;
    GList* items = secret_service_search_sync(nullptr, nullptr, attributes, SECRET_SEARCH_ALL,
                                              nullptr, &error);
    g_hash_table_unref(attributes);
    EXPECT_EQ(error, nullptr) << (error ? error->message : "");
    g_clear_error(&error);
    const std::size_t count = g_list_length(items);
    g_list_free_full(items, g_object_unref);
    return count;
}

} // namespace vorlane::testing
