// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reminders/NotificationRequest.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

// Port: the desktop's local notification service, which keeps the pending one-shot requests and
// shows each when its minute comes, whether or not the program is running then.
class NotificationCenter {
public:
    // `granted` whether notifications can be shown; `error` the reason when asking failed.
    using AuthorizationReply =
        std::function<void(bool granted, const std::optional<std::string>& error)>;

    virtual ~NotificationCenter() = default;

    // Asks to show alerts with sound (and a badge where the desktop has one). The reply may come
    // later and on any thread.
    virtual void requestAuthorization(AuthorizationReply reply) = 0;
    // Makes the whole list of pending requests.
    using RequestBuilder = std::function<std::vector<NotificationRequest>()>;
    // Forgets every request of the program that has not been shown yet and keeps each that
    // `build` makes until its minute (of two with one identifier, the later). A centre may call
    // `build` later and on a thread of its own, so that building tens of thousands of requests
    // never holds up the caller: it must use only what it owns and what is safe from any thread.
    // Failures are the centre's own business: the caller never hears of them.
    virtual void replaceAllPendingRequests(RequestBuilder build) = 0;
    // Shows `request` now, apart from the schedule (its due minute is not looked at): for news
    // that cannot wait, such as a failed automatic backup. Returns at once; failures are the
    // centre's own business here too.
    virtual void show(NotificationRequest request) = 0;
};

} // namespace vorlane
