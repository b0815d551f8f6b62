// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "calendar/ReminderSettings.h"
#include "util/Instant.h"

#include <cstddef>
#include <string>
#include <string_view>
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
    static constexpr std::string_view proposedFileName = "Vorlane-Renewals.ics";
    // Said when an export holds no event (the file is written all the same).
    static constexpr std::string_view nothingToExport =
        "There is nothing to export: no service that is not archived has an expiration date.";

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
