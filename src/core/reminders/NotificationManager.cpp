#include "reminders/NotificationManager.h"

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "reminders/NotificationCenter.h"
#include "util/UserCalendar.h"

#include <chrono>
#include <initializer_list>
#include <iostream>
#include <string_view>
#include <utility>

namespace vorlane {

namespace {

constexpr std::string_view warningPrefix = "vorlane.warn.";
constexpr std::string_view criticalPrefix = "vorlane.critical.";

// A rebuild makes tens of thousands of these texts on the main thread: each is put together in
// one allocation.
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

std::string identifier(std::string_view prefix, const ServiceRecord& service, int daysBefore) {
    return joined({prefix, service.id.toString(), ".", std::to_string(daysBefore), "d"});
}

// The name both bodies give the client; a service without an organization has "a client".
std::string_view owner(const ServiceRecord& service) {
    return service.organization != nullptr ? std::string_view(service.organization->name)
                                           : "a client";
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
    m_center.removeAllPendingRequests();
    m_center.reserve(2 * services.size());
    const Instant now = m_calendar.now();
    for (const ServiceRecord* service : services) {
        if (!service->expirationDate || service->isArchived || *service->expirationDate <= now) {
            continue;
        }
        scheduleWarning(*service, *service->expirationDate, warningDaysBefore);
        scheduleCritical(*service, *service->expirationDate, criticalDaysBefore);
    }
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

void NotificationManager::scheduleWarning(const ServiceRecord& service, Instant expiration,
                                          int daysBefore) {
    const std::optional<Instant> due = reminderMinute(expiration, daysBefore);
    if (!due) {
        return;
    }
    m_center.add({
        .identifier = identifier(warningPrefix, service, daysBefore),
        .title = "Expiration Warning",
        .body = joined({"Your ", service.serviceType().label(), " \"", service.title, "\" for ",
                        owner(service), " expires in ", std::to_string(daysBefore), " days."}),
        .sound = NotificationRequest::Sound::standard,
        .categoryIdentifier = std::string(warningCategory),
        .interruptionLevel = NotificationRequest::InterruptionLevel::active,
        .dueMinute = *due,
    });
}

void NotificationManager::scheduleCritical(const ServiceRecord& service, Instant expiration,
                                           int daysBefore) {
    const std::optional<Instant> due = reminderMinute(expiration, daysBefore);
    if (!due) {
        return;
    }
    // No "Your " here, unlike the warning: the title already says how urgent it is.
    m_center.add({
        .identifier = identifier(criticalPrefix, service, daysBefore),
        .title = "Critical: Expiring Tomorrow",
        .body = joined({service.serviceType().label(), " \"", service.title, "\" for ",
                        owner(service), " expires tomorrow."}),
        .sound = NotificationRequest::Sound::critical,
        .categoryIdentifier = std::string(criticalCategory),
        .interruptionLevel = NotificationRequest::InterruptionLevel::timeSensitive,
        .dueMinute = *due,
    });
}

std::optional<Instant> NotificationManager::reminderMinute(Instant expiration,
                                                           int daysBefore) const {
    // Calendar days, so a reminder across a daylight-saving change keeps the wall-clock time.
    const std::optional<Instant> date =
        m_calendar.adding(UserCalendar::Unit::day, -daysBefore, expiration);
    if (!date || *date <= m_calendar.now()) {
        return std::nullopt;
    }
    // Every zone in use today is a whole number of minutes from UTC, so dropping the seconds of
    // the instant drops those of the local time of day too.
    return std::chrono::floor<std::chrono::minutes>(*date);
}

} // namespace vorlane
