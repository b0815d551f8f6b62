// SPDX-License-Identifier: GPL-3.0-or-later
#include "reminders/NotificationManager.h"

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "reminders/NotificationCenter.h"
#include "util/UserCalendar.h"

#include <chrono>
#include <cstddef>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace vorlane {

namespace {

constexpr std::string_view warningPrefix = "vorlane.warn.";
constexpr std::string_view criticalPrefix = "vorlane.critical.";

// A rebuild makes tens of thousands of these texts: each is put together in one allocation.
std::string joined(std::initializer_list<std::string_view> parts) {
    std::size_t size = 0;
    for (const std::string_view part : parts) {
        size += part.size();
    }
    std::string text;
    text.reserve(size);
    for (const std::string_view part : parts) {
        text.append(part);
    }
    return text;
}

// What the reminders of one service need, copied on the main thread so that the requests can be
// built on another while the services change.
struct Expiring {
    Uuid id;
    Instant expiration;
    std::string_view typeLabel; // a text of the label table, which lives as long as the program
    std::size_t titleAt;        // in Reminded::titles
    std::size_t titleSize;
    std::size_t owner; // in Reminded::owners
};

struct Reminded {
    std::vector<Expiring> services;
    // Every title one after the other: one allocation instead of one a service.
    std::string titles;
    // The names the bodies give the clients, once each; "a client" for a service without one.
    std::vector<std::string> owners;

    std::string_view title(const Expiring& service) const {
        return std::string_view(titles).substr(service.titleAt, service.titleSize);
    }
};

std::string identifier(std::string_view prefix, std::string_view id, int daysBefore) {
    return joined({prefix, id, ".", std::to_string(daysBefore), "d"});
}

// Expiration minus `daysBefore` calendar days, seconds dropped; nothing when the calendar cannot
// give it or it is not strictly later than now.
std::optional<Instant> reminderMinute(const UserCalendar& calendar, Instant now, Instant expiration,
                                      int daysBefore) {
    // Calendar days, so a reminder across a daylight-saving change keeps the wall-clock time.
    const std::optional<Instant> date =
        calendar.adding(UserCalendar::Unit::day, -daysBefore, expiration);
    if (!date || *date <= now) {
        return std::nullopt;
    }
    // Every zone in use today is a whole number of minutes from UTC, so dropping the seconds of
    // the instant drops those of the local time of day too.
    return std::chrono::floor<std::chrono::minutes>(*date);
}

void scheduleWarning(std::vector<NotificationRequest>& requests, const Expiring& service,
                     std::string_view id, std::string_view title, std::string_view owner,
                     Instant due, int daysBefore) {
    requests.push_back({
        .identifier = identifier(warningPrefix, id, daysBefore),
        .title = "Expiration Warning",
        .body = joined({"Your ", service.typeLabel, " \"", title, "\" for ", owner, " expires in ",
                        std::to_string(daysBefore), " days."}),
        .sound = NotificationRequest::Sound::standard,
        .categoryIdentifier = std::string(NotificationManager::warningCategory),
        .interruptionLevel = NotificationRequest::InterruptionLevel::active,
        .dueMinute = due,
    });
}

void scheduleCritical(std::vector<NotificationRequest>& requests, const Expiring& service,
                      std::string_view id, std::string_view title, std::string_view owner,
                      Instant due, int daysBefore) {
    // No "Your " here, unlike the warning: the title already says how urgent it is.
    requests.push_back({
        .identifier = identifier(criticalPrefix, id, daysBefore),
        .title = "Critical: Expiring Tomorrow",
        .body = joined({service.typeLabel, " \"", title, "\" for ", owner, " expires tomorrow."}),
        .sound = NotificationRequest::Sound::critical,
        .categoryIdentifier = std::string(NotificationManager::criticalCategory),
        .interruptionLevel = NotificationRequest::InterruptionLevel::timeSensitive,
        .dueMinute = due,
    });
}

std::vector<NotificationRequest> requestsFor(const Reminded& reminded, const UserCalendar& calendar,
                                             Instant now) {
    constexpr int warningDaysBefore = NotificationManager::warningDaysBefore;
    constexpr int criticalDaysBefore = NotificationManager::criticalDaysBefore;
    std::vector<NotificationRequest> requests;
    requests.reserve(2 * reminded.services.size());
    for (const Expiring& service : reminded.services) {
        const std::string id = service.id.toString();
        const std::string_view title = reminded.title(service);
        const std::string_view owner = reminded.owners[service.owner];
        if (const auto due = reminderMinute(calendar, now, service.expiration, warningDaysBefore)) {
            scheduleWarning(requests, service, id, title, owner, *due, warningDaysBefore);
        }
        if (const auto due =
                reminderMinute(calendar, now, service.expiration, criticalDaysBefore)) {
            scheduleCritical(requests, service, id, title, owner, *due, criticalDaysBefore);
        }
    }
    return requests;
}

void logToStandardError(const std::string& line) {
    std::cerr << line << std::endl;
}

} // namespace

NotificationManager::NotificationManager(NotificationCenter& center, const UserCalendar& calendar,
                                         Log log)
    : m_center(center)
    , m_calendar(calendar)
    , m_log(log ? std::move(log) : Log(logToStandardError)) {}

void NotificationManager::requestPermission() {
    // The reply may come on another thread: it touches nothing but the log.
    m_center.requestAuthorization([log = m_log](bool, const std::optional<std::string>& error) {
        if (error) {
            log("Notification permission error: " + *error);
        }
    });
}

void NotificationManager::scheduleExpirationNotifications(
    const std::vector<ServiceRecord*>& services) {
    const Instant now = m_calendar.now();
    auto reminded = std::make_shared<Reminded>();
    reminded->services.reserve(services.size());
    reminded->owners.emplace_back("a client");
    std::unordered_map<const Organization*, std::size_t> owners;
    for (const ServiceRecord* service : services) {
        if (!service->expirationDate || service->isArchived || *service->expirationDate <= now) {
            continue;
        }
        std::size_t owner = 0;
        if (service->organization != nullptr) {
            const auto [at, added] =
                owners.try_emplace(service->organization, reminded->owners.size());
            if (added) {
                reminded->owners.push_back(service->organization->name);
            }
            owner = at->second;
        }
        reminded->services.push_back({.id = service->id,
                                      .expiration = *service->expirationDate,
                                      .typeLabel = service->serviceType().label(),
                                      .titleAt = reminded->titles.size(),
                                      .titleSize = service->title.size(),
                                      .owner = owner});
        reminded->titles.append(service->title);
    }
    m_center.replaceAllPendingRequests(
        [reminded, &calendar = m_calendar, now] { return requestsFor(*reminded, calendar, now); });
}

std::optional<Uuid> NotificationManager::serviceOf(std::string_view identifier) {
    for (const std::string_view prefix : {warningPrefix, criticalPrefix}) {
        if (identifier.starts_with(prefix)) {
            identifier.remove_prefix(prefix.size());
            const std::size_t dot = identifier.find('.');
            return Uuid::fromString(identifier.substr(0, dot));
        }
    }
    return std::nullopt;
}

} // namespace vorlane
