// SPDX-License-Identifier: GPL-3.0-or-later
#include "calendar/RenewalsCalendar.h"

#include "calendar/IcsWriter.h"
#include "calendar/LeadTimes.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "money/ChargePerPeriod.h"
#include "util/CurrencyFormat.h"
#include "util/UserCalendar.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace vorlane {

namespace {

// 20260310T170000Z
std::string utcStamp(Instant instant) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(
        std::chrono::time_point_cast<std::chrono::seconds>(instant));
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[17];
    std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &parts);
    return text;
}

std::string dateValue(const UserCalendar::LocalTime& local) {
    char text[16];
    std::snprintf(text, sizeof text, "%04d%02d%02d", local.year, local.month, local.day);
    return text;
}

// A signed duration in minutes as RFC 5545 writes it: -P3D, -P2DT15H, PT9H, PT0S.
std::string duration(int minutes) {
    const int magnitude = std::abs(minutes);
    const int days = magnitude / (24 * 60);
    const int hours = magnitude % (24 * 60) / 60;
    const int rest = magnitude % 60;
    std::string text = minutes < 0 ? "-P" : "P";
    if (days > 0) {
        text += std::to_string(days) + "D";
    }
    if (hours > 0 || rest > 0) {
        text += "T";
        if (hours > 0) {
            text += std::to_string(hours) + "H";
        }
        if (rest > 0) {
            text += std::to_string(rest) + "M";
        }
    }
    if (days == 0 && hours == 0 && rest == 0) {
        text += "T0S";
    }
    return text;
}

std::string leadText(int daysBefore) {
    return daysBefore == 0   ? std::string("today")
           : daysBefore == 1 ? std::string("tomorrow")
                             : "in " + std::to_string(daysBefore) + " days";
}

} // namespace

RenewalsCalendar::Written RenewalsCalendar::write(const std::vector<ServiceRecord*>& services,
                                                  const ReminderSettings& settings,
                                                  const UserCalendar& calendar, Instant now) {
    IcsWriter ics;
    ics.raw("BEGIN", "VCALENDAR");
    ics.raw("VERSION", "2.0");
    ics.raw("PRODID", "-//Vorlane//Renewals//EN");
    ics.raw("CALSCALE", "GREGORIAN");
    ics.text("X-WR-CALNAME", "Vorlane Renewals");
    const std::string stamp = utcStamp(now);
    std::size_t count = 0;
    for (const ServiceRecord* service : services) {
        if (service->isArchived || !service->expirationDate) {
            continue;
        }
        const Instant expiration = *service->expirationDate;
        const std::optional<UserCalendar::LocalTime> day = calendar.localTime(expiration);
        const std::optional<Instant> next = calendar.adding(UserCalendar::Unit::day, 1, expiration);
        const std::optional<UserCalendar::LocalTime> nextDay =
            next ? calendar.localTime(*next) : std::nullopt;
        if (!day || !nextDay) {
            continue;
        }
        ++count;
        const std::string owner =
            service->organization != nullptr ? service->organization->name : "a client";
        const std::string summary = "Renew: " + service->title + " \xE2\x80\x94 " + owner;
        const std::string_view type = service->serviceType().label();
        std::string description;
        if (!service->provider.empty()) {
            description += "Provider: " + service->provider + "\n";
        }
        description += "Type: " + std::string(type) + "\n";
        const BillingCycle cycle = service->billingCycle();
        description += "Cost: " + currencyFormatted(chargePerPeriod(*service)) + " (" +
                       std::string(cycle.label()) + ")\n";
        description += std::string("Renews automatically: ") + (service->autoRenew ? "Yes" : "No");
        if (!service->loginURL.empty()) {
            description += "\nLogin: " + service->loginURL;
        }
        ics.raw("BEGIN", "VEVENT");
        ics.text("UID", service->id.toString() + "@vorlane");
        ics.raw("DTSTAMP", stamp);
        ics.raw("DTSTART;VALUE=DATE", dateValue(*day));
        ics.raw("DTEND;VALUE=DATE", dateValue(*nextDay));
        // Minutes since 1970 grow with every edit and stay within the 32-bit INTEGER the format
        // allows for thousands of years.
        ics.raw("SEQUENCE", std::to_string(std::chrono::floor<std::chrono::minutes>(
                                               service->updatedAt.time_since_epoch())
                                               .count()));
        ics.raw("LAST-MODIFIED", utcStamp(service->updatedAt));
        ics.text("SUMMARY", summary);
        ics.text("DESCRIPTION", description);
        ics.raw("CATEGORIES", "Vorlane," + IcsWriter::escaped(type));
        ics.raw("TRANSP", "TRANSPARENT");
        if (LeadTimes::reminds(*service, settings)) {
            for (const int daysBefore : settings.daysBefore) {
                const std::optional<int> minutes = LeadTimes::minutesFromStartOfDay(
                    calendar, expiration, daysBefore, settings.minuteOfDay);
                if (!minutes) {
                    continue;
                }
                ics.raw("BEGIN", "VALARM");
                ics.raw("ACTION", "DISPLAY");
                ics.text("DESCRIPTION",
                         service->title + " for " + owner +
                             (service->autoRenew ? " renews automatically " : " expires ") +
                             leadText(daysBefore) + ".");
                ics.raw("TRIGGER", duration(*minutes));
                ics.raw("END", "VALARM");
            }
        }
        ics.raw("END", "VEVENT");
    }
    ics.raw("END", "VCALENDAR");
    return {ics.take(), count};
}

} // namespace vorlane
