#include "reminders/NotificationManager.h"

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "reminders/NotificationCenter.h"
#include "util/UserCalendar.h"

#include <chrono>
#include <iostream>
#include <utility>

namespace vorlane {

namespace {

constexpr std::string_view warningPrefix = "vorlane.warn.";
constexpr std::string_view criticalPrefix = "vorlane.critical.";

std::string identifier(std::string_view prefix, const ServiceRecord& service, int daysBefore) {
    return std::string(prefix) + service.id.toString() + "." + std::to_string(daysBefore) + "d";
}

// The name both bodies give the client; a service without an organization has "a client".
std::string owner(const ServiceRecord& service) {
    return service.organization != nullptr ? service.organization->name : "a client";
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
        .body = "Your " + std::string(service.serviceType().label()) + " \"" + service.title +
                "\" for " + owner(service) + " expires in " + std::to_string(daysBefore) + " days.",
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
        .body = std::string(service.serviceType().label()) + " \"" + service.title + "\" for " +
                owner(service) + " expires tomorrow.",
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
