#pragma once

#include "reminders/NotificationRequest.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

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
    // Forgets every request of the program that has not been shown yet.
    virtual void removeAllPendingRequests() = 0;
    // Keeps `request` until its minute; one with the same identifier is replaced. Failures are
    // the centre's own business: the caller never hears of them.
    virtual void add(NotificationRequest request) = 0;
    // About `count` requests are about to be added: room for them at once (a rebuild adds
    // tens of thousands). Only a hint.
    virtual void reserve(std::size_t count) { (void)count; }
};

} // namespace vorlane
