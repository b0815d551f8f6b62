// SPDX-License-Identifier: GPL-3.0-or-later
// The secret store against a real GNOME Keyring on a private session bus (run-with-keyring.sh).
// Items are also inspected and planted directly through libsecret, independently of the adapter,
// so that the stored format (schema, attributes, label, collection) is checked as other programs
// see it.

#include "secrets/KeychainManager.h"

#include "LibsecretBackend.h"

#include <gtest/gtest.h>
// Path-level search and item loading are declared only for callers of the "unstable" API.
#define SECRET_WITH_UNSTABLE 1
#define SECRET_API_SUBJECT_TO_CHANGE 1
#include <libsecret/secret.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace vorlane {
namespace {

// What other programs see: schema "com.vorlane.vault" with the string attributes service and
// account. Written out here on purpose instead of shared with the adapter.
const SecretSchema storedSchema = {
    "com.vorlane.vault",
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

SecretBytes bytes(std::string_view text) {
    return SecretBytes(text.begin(), text.end());
}

std::string text(const SecretBytes& data) {
    return std::string(data.begin(), data.end());
}

// One item as found by a direct search of the keyring.
struct StoredItem {
    std::string label;
    std::map<std::string, std::string> attributes;
    std::string objectPath;
    SecretBytes value;
};

GHashTable* attributeTable(const std::string& service, const std::string& account) {
    GHashTable* table = g_hash_table_new(g_str_hash, g_str_equal);
    g_hash_table_insert(table, const_cast<char*>("service"), const_cast<char*>(service.c_str()));
    g_hash_table_insert(table, const_cast<char*>("account"), const_cast<char*>(account.c_str()));
    return table;
}

struct ObjectDeleter {
    void operator()(gpointer object) const { g_object_unref(object); }
};

std::unique_ptr<SecretService, ObjectDeleter> secretService() {
    GError* error = nullptr;
    std::unique_ptr<SecretService, ObjectDeleter> result(
        secret_service_get_sync(SECRET_SERVICE_NONE, nullptr, &error));
    EXPECT_NE(result, nullptr) << (error ? error->message : "");
    g_clear_error(&error);
    return result;
}

// Object paths of the matching items, locked ones included; nothing is unlocked or read.
// Paths rather than item objects: libsecret's item search leaks inside GIO on every call.
std::vector<std::string> itemPaths(const std::string& service, const std::string& account) {
    const auto secrets = secretService();
    if (!secrets) {
        return {};
    }
    GHashTable* attributes = attributeTable(service, account);
    gchar** unlocked = nullptr;
    gchar** locked = nullptr;
    GError* error = nullptr;
    secret_service_search_for_dbus_paths_sync(secrets.get(), &storedSchema, attributes, nullptr,
                                              &unlocked, &locked, &error);
    g_hash_table_unref(attributes);
    EXPECT_EQ(error, nullptr) << (error ? error->message : "");
    g_clear_error(&error);
    std::vector<std::string> paths;
    for (gchar** list : {unlocked, locked}) {
        for (gchar** path = list; path != nullptr && *path != nullptr; ++path) {
            paths.emplace_back(*path);
        }
        g_strfreev(list);
    }
    return paths;
}

std::size_t itemCount(const std::string& service, const std::string& account) {
    return itemPaths(service, account).size();
}

// The matching items with label, attributes and value; they must be unlocked.
std::vector<StoredItem> storedItems(const std::string& service, const std::string& account) {
    const auto secrets = secretService();
    std::vector<StoredItem> items;
    for (const std::string& path : itemPaths(service, account)) {
        GError* error = nullptr;
        const std::unique_ptr<SecretItem, ObjectDeleter> found(secret_item_new_for_dbus_path_sync(
            secrets.get(), path.c_str(), SECRET_ITEM_LOAD_SECRET, nullptr, &error));
        EXPECT_NE(found, nullptr) << (error ? error->message : "");
        g_clear_error(&error);
        if (!found) {
            continue;
        }
        StoredItem item;
        item.objectPath = path;
        gchar* label = secret_item_get_label(found.get());
        item.label = label;
        g_free(label);
        GHashTable* itemAttributes = secret_item_get_attributes(found.get());
        GHashTableIter iter;
        gpointer key = nullptr;
        gpointer value = nullptr;
        g_hash_table_iter_init(&iter, itemAttributes);
        while (g_hash_table_iter_next(&iter, &key, &value)) {
            item.attributes[static_cast<const char*>(key)] = static_cast<const char*>(value);
        }
        g_hash_table_unref(itemAttributes);
        SecretValue* secret = secret_item_get_secret(found.get());
        EXPECT_NE(secret, nullptr) << path << " holds no readable secret";
        if (secret != nullptr) {
            gsize length = 0;
            const auto* data =
                reinterpret_cast<const std::uint8_t*>(secret_value_get(secret, &length));
            item.value.assign(data, data + length);
            secret_value_unref(secret);
        }
        items.push_back(std::move(item));
    }
    return items;
}

std::unique_ptr<SecretCollection, ObjectDeleter> defaultCollection() {
    // libsecret 0.20 cannot look an alias up without an explicit service object.
    const auto secrets = secretService();
    if (!secrets) {
        return nullptr;
    }
    GError* error = nullptr;
    std::unique_ptr<SecretCollection, ObjectDeleter> collection(secret_collection_for_alias_sync(
        secrets.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, &error));
    EXPECT_NE(collection, nullptr) << (error ? error->message : "no default collection");
    g_clear_error(&error);
    return collection;
}

// Plants an item the way another program would, bypassing the adapter. Items with equal
// attributes are added side by side, not replaced, as a careless client might leave them.
void plantItem(const std::string& service, const std::string& account, std::string_view value) {
    const auto collection = defaultCollection();
    ASSERT_NE(collection, nullptr);
    GHashTable* attributes = attributeTable(service, account);
    SecretValue* secret =
        secret_value_new(value.data(), static_cast<gssize>(value.size()), "text/plain");
    GError* error = nullptr;
    SecretItem* item =
        secret_item_create_sync(collection.get(), &storedSchema, attributes, "planted by a test",
                                secret, SECRET_ITEM_CREATE_NONE, nullptr, &error);
    secret_value_unref(secret);
    g_hash_table_unref(attributes);
    ASSERT_NE(item, nullptr) << (error ? error->message : "");
    g_object_unref(item);
    g_clear_error(&error);
}

// Locking needs no prompt, so the service does it straight away.
void lockDefaultCollection() {
    const auto collection = defaultCollection();
    ASSERT_NE(collection, nullptr);
    GList* objects = g_list_append(nullptr, collection.get());
    GError* error = nullptr;
    const gint locked = secret_service_lock_sync(nullptr, objects, nullptr, nullptr, &error);
    g_list_free(objects);
    ASSERT_EQ(locked, 1) << (error ? error->message : "");
    g_clear_error(&error);
}

const std::string service(KeychainManager::serviceName);

class KeychainManagerTest : public ::testing::Test {
protected:
    void SetUp() override {
        // Without the harness these tests would write into the user's own login keyring.
        ASSERT_NE(std::getenv("VORLANE_TEST_KEYRING_PASSWORD"), nullptr)
            << "run through tests/support/run-with-keyring.sh";
    }

    LibsecretBackend m_backend;
    KeychainManager m_keychain{m_backend};
};

TEST_F(KeychainManagerTest, SavedSecretReadsBackAsOneItemInTheDefaultCollection) {
    const std::string account = "vorlane.secret.6F9619FF-8B86-D011-B42D-00C04FC964FF";
    ASSERT_TRUE(m_keychain.isAvailable());
    ASSERT_TRUE(m_keychain.save(bytes("hunter2-correct-horse"), account));

    const auto read = m_keychain.readData(account);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(text(*read), "hunter2-correct-horse");

    const auto items = storedItems(service, account);
    ASSERT_EQ(items.size(), 1u);
    const StoredItem& item = items.front();
    EXPECT_EQ(item.value, bytes("hunter2-correct-horse"));
    const auto collectionObject = defaultCollection();
    ASSERT_NE(collectionObject, nullptr);
    const std::string collection =
        g_dbus_proxy_get_object_path(G_DBUS_PROXY(collectionObject.get()));
    EXPECT_EQ(item.objectPath.rfind(collection + "/", 0), 0u)
        << item.objectPath << " is not in " << collection;

    // Labels and attributes are readable without unlocking: they carry identifiers only.
    const std::map<std::string, std::string> expectedAttributes = {
        {"service", "com.vorlane.vault"},
        {"account", account},
        {"xdg:schema", "com.vorlane.vault"},
    };
    EXPECT_EQ(item.attributes, expectedAttributes);
    EXPECT_NE(item.label.find(account), std::string::npos) << item.label;
    EXPECT_EQ(item.label.find("hunter2"), std::string::npos) << item.label;
}

TEST_F(KeychainManagerTest, SavingReplacesEveryItemOfTheAccount) {
    // Another client may have left duplicates under our service and account.
    const std::string account = "vorlane.secret.duplicated";
    plantItem(service, account, "old one");
    plantItem(service, account, "old two");
    ASSERT_EQ(itemCount(service, account), 2u);

    ASSERT_TRUE(m_keychain.save(bytes("first key"), account));
    ASSERT_TRUE(m_keychain.save(bytes("second"), account));
    EXPECT_EQ(m_keychain.readData(account), bytes("second"));
    const auto items = storedItems(service, account);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items.front().value, bytes("second"));
}

TEST_F(KeychainManagerTest, MissingOrEmptyIdentifiersReadAsNothing) {
    EXPECT_EQ(m_keychain.readData("vorlane.secret.never-saved"), std::nullopt);
    EXPECT_EQ(m_keychain.readData(""), std::nullopt);

    // An item that some other program keeps under an empty account is still not ours to read.
    plantItem(service, "", "not for us");
    EXPECT_EQ(m_keychain.readData(""), std::nullopt);
    EXPECT_FALSE(m_keychain.save(bytes("nowhere to go"), ""));
    EXPECT_EQ(storedItems(service, "").size(), 1u);
}

TEST_F(KeychainManagerTest, RemovingDeletesOnlyOurItemAndMissingItemsAreFine) {
    const std::string account = "vorlane.secret.shared-name";
    plantItem("com.example.other", account, "someone else's");
    EXPECT_EQ(m_keychain.readData(account), std::nullopt);
    EXPECT_TRUE(m_keychain.remove(account)); // nothing of ours there: still a success

    ASSERT_TRUE(m_keychain.save(bytes("ours"), account));
    EXPECT_TRUE(m_keychain.remove(account));
    EXPECT_EQ(m_keychain.readData(account), std::nullopt);
    EXPECT_EQ(itemCount(service, account), 0u);
    EXPECT_TRUE(m_keychain.remove(account));

    const auto theirs = storedItems("com.example.other", account);
    ASSERT_EQ(theirs.size(), 1u);
    EXPECT_EQ(theirs.front().value, bytes("someone else's"));
}

TEST_F(KeychainManagerTest, AnyBytesRoundTripAndEmptyIsNotMissing) {
    SecretBytes everyByte;
    for (int value = 0; value < 512; ++value) {
        everyByte.push_back(static_cast<std::uint8_t>(value));
    }
    const std::pair<std::string, SecretBytes> values[] = {
        {"vorlane.secret.every-byte", everyByte},
        {"vorlane.secret.nul-inside", {'a', 0, 'b', 0, 0, 'c', 0}},
        {"vorlane.secret.utf8", bytes("pässwörd — 密码 🔑")},
        {"vorlane.secret.empty", {}},
    };
    for (const auto& [account, value] : values) {
        ASSERT_TRUE(m_keychain.save(value, account)) << account;
    }
    for (const auto& [account, value] : values) {
        EXPECT_EQ(m_keychain.readData(account), value) << account;
    }
}

TEST_F(KeychainManagerTest, LockedKeyringRefusesChangesAndLosesNothing) {
    const std::string account = "vorlane.secret.behind-a-lock";
    ASSERT_TRUE(m_keychain.save(bytes("kept"), account));
    lockDefaultCollection();

    EXPECT_TRUE(m_keychain.isAvailable());
    EXPECT_EQ(m_keychain.readData(account), std::nullopt);
    EXPECT_FALSE(m_keychain.save(bytes("replacement"), account));
    EXPECT_FALSE(m_keychain.save(bytes("newcomer"), "vorlane.secret.new-while-locked"));
    EXPECT_FALSE(m_keychain.remove(account)) << "the item is still there";
    // Locked items are still listed: the old one is there, and nothing was added.
    EXPECT_EQ(itemCount(service, account), 1u);
    EXPECT_EQ(itemCount(service, "vorlane.secret.new-while-locked"), 0u);
}

TEST_F(KeychainManagerTest, ABatchReadGivesExactlyTheAskedItemsOfOursAndNothingWhenLocked) {
    std::vector<std::string> asked;
    for (int i = 0; i < 300; ++i) {
        const std::string account = "vorlane.secret.batch-" + std::to_string(i);
        ASSERT_TRUE(m_keychain.save(bytes("value " + std::to_string(i * 7)), account));
        if (i % 6 != 0) {
            asked.push_back(account);
        }
    }
    // Another program's item under one of the asked accounts, and one of ours never asked for.
    plantItem("com.example.other", "vorlane.secret.batch-1", "someone else's");
    asked.push_back("vorlane.secret.never-saved");
    asked.push_back("");

    const auto read = m_keychain.readMany(asked);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->size(), 250U);
    for (int i = 0; i < 300; ++i) {
        const auto found = read->find("vorlane.secret.batch-" + std::to_string(i));
        if (i % 6 == 0) {
            EXPECT_EQ(found, read->end()) << i << " was not asked for";
        } else if (found == read->end()) {
            ADD_FAILURE() << i << " is missing";
        } else {
            EXPECT_EQ(text(found->second), "value " + std::to_string(i * 7));
        }
    }
    EXPECT_EQ(m_keychain.readMany({}), (std::unordered_map<std::string, SecretBytes>()));

    lockDefaultCollection();
    EXPECT_EQ(m_keychain.readMany(asked), std::nullopt);
}

TEST_F(KeychainManagerTest, ItemsAddedTogetherAreItemsLikeAnyOtherAndALockedKeyringTakesNone) {
    // More items than the adapter sends before waiting for answers, of every kind of value.
    std::vector<std::pair<std::string, SecretBytes>> items;
    for (int i = 0; i < 150; ++i) {
        items.emplace_back(
            "vorlane.secret.together-" + std::to_string(i),
            bytes(std::string(static_cast<std::size_t>(i % 5), 'x') + "pw " + std::to_string(i)));
    }
    items.emplace_back("vorlane.apikey.together-binary", SecretBytes{0, 0xff, '\n', 0x80, 0});
    items.emplace_back("vorlane.secret.together-empty", SecretBytes{});
    ASSERT_TRUE(m_keychain.addMany(items));

    std::vector<std::string> accounts;
    for (const auto& [account, value] : items) {
        accounts.push_back(account);
    }
    const auto read = m_keychain.readMany(accounts);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->size(), items.size());
    for (const auto& [account, value] : items) {
        const auto found = read->find(account);
        ASSERT_NE(found, read->end()) << account;
        EXPECT_EQ(found->second, value) << account;
    }
    // Each is one item shaped as a saved one, which the single calls read and delete.
    const auto stored = storedItems(service, "vorlane.apikey.together-binary");
    ASSERT_EQ(stored.size(), 1u);
    const std::map<std::string, std::string> expectedAttributes = {
        {"service", "com.vorlane.vault"},
        {"account", "vorlane.apikey.together-binary"},
        {"xdg:schema", "com.vorlane.vault"},
    };
    EXPECT_EQ(stored.front().attributes, expectedAttributes);
    EXPECT_NE(stored.front().label.find("vorlane.apikey.together-binary"), std::string::npos);
    EXPECT_EQ(m_keychain.readData("vorlane.secret.together-7"), bytes("xxpw 7"));
    EXPECT_TRUE(m_keychain.remove("vorlane.secret.together-7"));
    EXPECT_EQ(itemCount(service, "vorlane.secret.together-7"), 0u);

    EXPECT_TRUE(m_keychain.addMany({}));
    EXPECT_FALSE(
        m_keychain.addMany({{"vorlane.secret.beside-a-blank", bytes("v")}, {"", bytes("w")}}));
    EXPECT_EQ(itemCount(service, "vorlane.secret.beside-a-blank"), 0u);

    lockDefaultCollection();
    EXPECT_FALSE(m_keychain.addMany({{"vorlane.secret.while-locked-1", bytes("a")},
                                     {"vorlane.secret.while-locked-2", bytes("b")}}));
    EXPECT_EQ(itemCount(service, "vorlane.secret.while-locked-1"), 0u);
    EXPECT_EQ(itemCount(service, "vorlane.secret.while-locked-2"), 0u);
}

TEST_F(KeychainManagerTest, ConcurrentCallersNeverSeeAHalfDoneSave) {
    const std::string shared = "vorlane.secret.contended";
    const std::vector<std::string> writerValues = {"alpha-value", "bravo-value", "charlie-value"};
    ASSERT_TRUE(m_keychain.save(bytes("initial-value"), shared));

    std::atomic<int> failedSaves = 0;
    std::atomic<int> gapsSeen = 0;
    std::atomic<int> foreignValues = 0;
    std::atomic<int> ownMismatches = 0;
    std::vector<std::thread> threads;
    for (std::size_t writer = 0; writer < writerValues.size(); ++writer) {
        threads.emplace_back([&, writer] {
            const std::string own = "vorlane.secret.own-" + std::to_string(writer);
            for (int round = 0; round < 15; ++round) {
                const std::string value = writerValues[writer] + "-" + std::to_string(round);
                if (!m_keychain.save(bytes(writerValues[writer]), shared) ||
                    !m_keychain.save(bytes(value), own)) {
                    ++failedSaves;
                }
                if (m_keychain.readData(own) != bytes(value)) {
                    ++ownMismatches;
                }
            }
        });
    }
    for (int reader = 0; reader < 2; ++reader) {
        threads.emplace_back([&] {
            for (int round = 0; round < 40; ++round) {
                const auto read = m_keychain.readData(shared);
                if (!read) {
                    ++gapsSeen;
                } else if (text(*read) != "initial-value" &&
                           std::find(writerValues.begin(), writerValues.end(), text(*read)) ==
                               writerValues.end()) {
                    ++foreignValues;
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(failedSaves, 0);
    EXPECT_EQ(gapsSeen, 0) << "a reader saw the item between a save's delete and its add";
    EXPECT_EQ(foreignValues, 0);
    EXPECT_EQ(ownMismatches, 0);
    const auto items = storedItems(service, shared);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_NE(std::find(writerValues.begin(), writerValues.end(), text(items.front().value)),
              writerValues.end());
}

// Runs in a child process of its own (see below): the session bus is per process in GLib, so
// the parent's bus must not be reused. Reports on stderr, for the parent to match.
[[noreturn]] void reportWithoutSessionBus() {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/vorlane-test-bus", 1);
    ::unsetenv("DISPLAY"); // no X11 to autolaunch a bus from
    LibsecretBackend backend;
    KeychainManager keychain(backend);
    const bool available = keychain.isAvailable();
    const bool saved = keychain.save(bytes("nowhere"), "vorlane.secret.no-bus");
    const bool read = keychain.readData("vorlane.secret.no-bus").has_value();
    const bool removed = keychain.remove("vorlane.secret.no-bus");
    std::fprintf(stderr, "available=%d saved=%d read=%d removed=%d\n", available, saved, read,
                 removed);
    std::exit(0);
}

TEST(KeychainManagerWithoutServiceTest, EveryCallFailsAtOnceWithoutASessionBus) {
    // A fresh process, re-executed rather than forked, so that no bus connection or libsecret
    // state of this process carries over; ctest's timeout catches a hang.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(reportWithoutSessionBus(), ::testing::ExitedWithCode(0),
                "available=0 saved=0 read=0 removed=0");
}

} // namespace
} // namespace vorlane
