// SPDX-License-Identifier: GPL-3.0-or-later
#include "auth/AuthManager.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <vector>

namespace vorlane {
namespace {

using namespace std::chrono_literals;

TEST(AuthManagerTest, SharedInstanceStartsLockedWithDefaults) {
    AuthManager& shared = AuthManager::shared();
    EXPECT_EQ(&shared, &AuthManager::shared());
    EXPECT_FALSE(shared.isAuthenticated());
    EXPECT_EQ(shared.lastAuthDate(), std::nullopt);
    EXPECT_EQ(shared.authTimeout(), 300.0);
}

TEST(AuthManagerTest, LockingTwiceNotifiesOnce) {
    AuthManager manager;
    std::vector<bool> states;
    int dateChanges = 0;
    manager.isAuthenticatedChanged.connect(
        [&](bool authenticated) { states.push_back(authenticated); });
    manager.lastAuthDateChanged.connect([&](std::optional<Instant>) { ++dateChanges; });
    manager.setAuthenticated(true);
    manager.setLastAuthDate(Instant{} + 5min);
    states.clear();
    dateChanges = 0;

    manager.lock();
    manager.lock();

    EXPECT_EQ(states, std::vector<bool>{false});
    EXPECT_EQ(dateChanges, 1);
    EXPECT_FALSE(manager.isAuthenticated());
    EXPECT_EQ(manager.lastAuthDate(), std::nullopt);
}

TEST(AuthManagerTest, WithoutAPlatformEveryRequestIsRefused) {
    AuthManager manager;
    std::vector<bool> replies;
    manager.authenticateForSensitiveAction("Reveal password for Mail",
                                           [&](bool ok) { replies.push_back(ok); });
    EXPECT_EQ(replies, std::vector<bool>{false});
    EXPECT_FALSE(manager.biometricsAvailable());
    EXPECT_EQ(manager.biometryName(), "Biometrics");
}

} // namespace
} // namespace vorlane
