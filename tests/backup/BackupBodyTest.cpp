// SPDX-License-Identifier: GPL-3.0-or-later
// The JSON body of a backup: the members a reader of the README finds, and the refusal of a body
// with any member missing, of another type, or pointing at a record it does not have.

#include "backup/BackupBody.h"

#include "BackupSamples.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using namespace vorlane;
using namespace vorlane::testing;
using Json = nlohmann::json;

Json parsed(const BackupContents& contents) {
    return Json::parse(BackupBody::toJson(contents));
}

std::optional<BackupContents> read(const Json& body) {
    return BackupBody::fromJson(body.dump());
}

TEST(BackupBodyTest, WritesExactValuesNullsAndMilliseconds) {
    const Json full = parsed(fullContents());
    EXPECT_EQ(full["schemaVersion"], "1.1.0");
    EXPECT_EQ(full["createdAt"], 1764000000123);
    const Json& service = full["services"][0];
    EXPECT_EQ(service["monthlyCost"], "1234567890.123456789");
    EXPECT_EQ(service["expirationDate"], 1800000000003);
    EXPECT_EQ(service["port"], 2222);
    EXPECT_EQ(service["organizationId"], "0E0E0E0E-1111-4222-8333-444455556666");
    EXPECT_EQ(full["organizations"][0]["createdAt"], -86400000);
    EXPECT_EQ(full["payments"][0]["amount"], "0.000000000000000000000000000000000001");
    EXPECT_EQ(full["secrets"][1], Json({{"account", "vorlane.secret.A1A1A1A1-2222-4333-8444-"
                                                    "555566667777"},
                                        {"secret", "cMOkJCR3w7ZyZCAicXVvdGVkIiAvIPCflJE="}}));
    EXPECT_EQ(full["missingSecrets"],
              Json::array({"vorlane.totp.A1A1A1A1-2222-4333-8444-555566667777"}));

    const Json sparse = parsed(sparseContents());
    for (const char* absent : {"port", "purchaseDate", "renewalDate", "expirationDate",
                               "passwordChangedAt", "organizationId"}) {
        EXPECT_TRUE(sparse["services"][0][absent].is_null()) << absent;
    }
    EXPECT_TRUE(sparse["organizations"][0]["logoData"].is_null());
    EXPECT_TRUE(sparse["shares"][0]["expirationDate"].is_null());
    EXPECT_TRUE(sparse["payments"][0]["periodFrom"].is_null());
    EXPECT_TRUE(sparse["payments"][0]["periodTo"].is_null());
    EXPECT_EQ(sparse["services"][0]["monthlyCost"], "0");
}

// Every member of every kind of object in the body, taken away or given a value of another
// type, makes the whole body refused; nothing is half read.
TEST(BackupBodyTest, AnyMissingOrMistypedMemberIsRefused) {
    const Json body = parsed(fullContents());
    ASSERT_TRUE(read(body));

    std::vector<std::vector<std::string>> objects = {{}};
    for (const char* list : {"organizations", "services", "shares", "payments", "secrets"}) {
        objects.push_back({list});
    }
    std::size_t members = 0;
    for (const auto& where : objects) {
        const Json& object = where.empty() ? body : body[where[0]][0];
        for (const auto& [name, value] : object.items()) {
            SCOPED_TRACE((where.empty() ? "top level" : where[0]) + "." + name);
            ++members;
            Json without = body;
            Json& target = where.empty() ? without : without[where[0]][0];
            target.erase(name);
            EXPECT_FALSE(read(without));
            // An object is no member's type; a string is not every member's.
            for (const Json& other : {Json::object(), value.is_string() ? Json(12) : Json("12")}) {
                Json mistyped = body;
                (where.empty() ? mistyped : mistyped[where[0]][0])[name] = other;
                EXPECT_FALSE(read(mistyped)) << other.dump();
            }
        }
    }
    EXPECT_EQ(members, 8u + 15 + 31 + 11 + 7 + 2);
}

TEST(BackupBodyTest, ValuesThatDoNotReadAndBrokenReferencesAreRefused) {
    const Json body = parsed(fullContents());
    const auto refused = [&](const char* what, auto change) {
        Json changed = body;
        change(changed);
        EXPECT_FALSE(read(changed)) << what;
    };
    refused("a UUID", [](Json& b) { b["organizations"][0]["id"] = "not-a-uuid"; });
    refused("a shared service id", [](Json& b) { b["shares"][0]["serviceIDs"][0] = "x"; });
    refused("an amount", [](Json& b) { b["payments"][0]["amount"] = "1e3"; });
    refused("a cost", [](Json& b) { b["services"][0]["monthlyCost"] = "12,50"; });
    refused("a logo", [](Json& b) { b["organizations"][0]["logoData"] = "not base64!"; });
    refused("a secret", [](Json& b) { b["secrets"][0]["secret"] = "abc"; });
    refused("a fractional date", [](Json& b) { b["services"][0]["createdAt"] = 1.5; });
    refused("a date past 64 bits", [](Json& b) { b["createdAt"] = 18446744073709551615u; });
    refused("null for a required text", [](Json& b) { b["services"][0]["title"] = nullptr; });
    refused("a tag that is a number", [](Json& b) { b["services"][0]["tags"][0] = 1; });
    refused("the same secret twice", [](Json& b) { b["secrets"].push_back(b["secrets"][0]); });
    refused("a service twice", [](Json& b) { b["services"].push_back(b["services"][0]); });
    refused("an unknown organization of a service", [](Json& b) {
        b["services"][0]["organizationId"] = "0E0E0E0E-1111-4222-8333-444455550000";
    });
    refused("an unknown organization of a share", [](Json& b) {
        b["shares"][0]["organizationId"] = "0E0E0E0E-1111-4222-8333-444455550000";
    });
    refused("an unknown service of a payment", [](Json& b) {
        b["payments"][0]["serviceId"] = "0E0E0E0E-1111-4222-8333-444455556666";
    });
    refused("a list that is an object", [](Json& b) { b["services"] = Json::object(); });
    refused("a body that is a list", [](Json& b) { b = Json::array({b}); });

    EXPECT_FALSE(BackupBody::fromJson(""));
    EXPECT_FALSE(BackupBody::fromJson("{\"schemaVersion\":"));
    EXPECT_FALSE(BackupBody::fromJson(BackupBody::toJson(fullContents()) + "x"));

    // A member this version does not know is passed over: a later one may add some.
    Json extended = body;
    extended["services"][0]["somethingNew"] = Json::array({1, 2});
    extended["somethingElse"] = true;
    const auto read = BackupBody::fromJson(extended.dump());
    ASSERT_TRUE(read);
    expectSameContents(*read, fullContents());
}

} // namespace
