// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/Uuid.h"

#include "model/ServiceRecord.h"

#include <gtest/gtest.h>

#include <set>

namespace vorlane {
namespace {

TEST(UuidTest, GeneratedUuidsAreRandomVersion4InUpperCaseText) {
    std::set<std::string> texts;
    for (int i = 0; i < 200; ++i) {
        const Uuid uuid = Uuid::generate();
        const std::string text = uuid.toString();
        ASSERT_EQ(text.size(), 36u);
        EXPECT_EQ(text[14], '4') << text;
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
        EXPECT_EQ(text.find_first_of("abcdef"), std::string::npos) << text;
        EXPECT_EQ(Uuid::fromString(text), uuid);
        texts.insert(text);
    }
    EXPECT_EQ(texts.size(), 200u);
}

TEST(UuidTest, ParsesEitherCaseAndRejectsMalformedText) {
    const auto lower = Uuid::fromString("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
    ASSERT_TRUE(lower.has_value());
    EXPECT_EQ(lower->toString(), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    for (const char* bad :
         {"", "E621E1F8C36C495A93FC0C247A3E6E5F", "E621E1F8-C36C-495A-93FC-0C247A3E6E5",
          "E621E1F8-C36C-495A-93FC_0C247A3E6E5F", "G621E1F8-C36C-495A-93FC-0C247A3E6E5F",
          "{E621E1F8-C36C-495A-93FC-0C247A3E6E5}"}) {
        EXPECT_FALSE(Uuid::fromString(bad).has_value()) << bad;
    }
    EXPECT_TRUE(Uuid().isNil());
}

TEST(UuidTest, SecretIdentifiersArePrefixAndFreshUpperCaseUuid) {
    const std::string password = ServiceRecord::makeSecretKeychainID();
    const std::string apiKey = ServiceRecord::makeAPIKeyKeychainID();
    ASSERT_EQ(password.size(), 15u + 36u);
    EXPECT_EQ(password.substr(0, 15), "vorlane.secret.");
    EXPECT_EQ(apiKey.substr(0, 15), "vorlane.apikey.");
    const auto uuid = Uuid::fromString(password.substr(15));
    ASSERT_TRUE(uuid.has_value());
    EXPECT_EQ(uuid->toString(), password.substr(15));
    EXPECT_NE(ServiceRecord::makeSecretKeychainID(), password);
}

} // namespace
} // namespace vorlane
