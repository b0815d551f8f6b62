#pragma once

#include "calendar/ReminderSettings.h"
#include "util/Instant.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vorlane {

struct ServiceRecord;
class UserCalendar;

// The renewals as an iCalendar file for the user's own calendar program: one all-day event on
// the local date of each expiration of a service that is not archived, with an alarm per chosen
// lead time (the same moments as the desktop reminders, see LeadTimes). An event's UID is the
// service's id, and its SEQUENCE and LAST-MODIFIED follow `updatedAt`, so a subscribed calendar
// moves a renewed service's event instead of adding a second one. Never holds a username,
// password or key. Any thread, given services nobody changes meanwhile.
class RenewalsCalendar {
public:
    struct Written {
        std::string text;
        std::size_t eventCount = 0; // 0: nothing to export, the file is still a valid calendar
    };

    // `now` is the DTSTAMP of every event.
    static Written write(const std::vector<ServiceRecord*>& services,
                         const ReminderSettings& settings, const UserCalendar& calendar,
                         Instant now);
};

} // namespace vorlane
