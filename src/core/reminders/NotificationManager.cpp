// SPDX-License-Identifier: GPL-3.0-or-later
#include "reminders/NotificationManager.h"

#include "calendar/LeadTimes.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "reminders/NotificationCenter.h"
#include "util/UserCalendar.h"

#include <charconv>
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
// Added to a snoozed reminder's identifier: it is shown apart from the one it repeats.
constexpr std::string_view snoozedSuffix = ".snoozed";

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
    bool autoRenew;
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

// The warning, critical or on-the-day reminder of `service`, `daysBefore` days before it expires.
NotificationRequest request(const Expiring& service, std::string_view id, std::string_view title,
                            std::string_view owner, Instant due, int daysBefore) {
    // A service that renews by itself needs its card checked, not a renewal by hand: say so.
    const std::string_view happens = service.autoRenew ? " renews automatically" : " expires";
    const std::string days = std::to_string(daysBefore);
    if (daysBefore >= 2) {
        return {
            .identifier = joined({warningPrefix, id, ".", days, "d"}),
            .title = "Expiration Warning",
            .body = joined({"Your ", service.typeLabel, " \"", title, "\" for ", owner, happens,
                            " in ", days, " days."}),
            .sound = NotificationRequest::Sound::standard,
            .categoryIdentifier = std::string(NotificationManager::warningCategory),
            .interruptionLevel = NotificationRequest::InterruptionLevel::active,
            .dueMinute = due,
        };
    }
    // No "Your " here, unlike the warning: the title already says how urgent it is.
    const bool today = daysBefore == 0;
    return {
        .identifier = joined({criticalPrefix, id, ".", days, "d"}),
        .title = today ? "Expires Today" : "Critical: Expiring Tomorrow",
        .body = joined({service.typeLabel, " \"", title, "\" for ", owner, happens,
                        today ? " today." : " tomorrow."}),
        .sound = NotificationRequest::Sound::critical,
        .categoryIdentifier = std::string(NotificationManager::criticalCategory),
        .interruptionLevel = NotificationRequest::InterruptionLevel::timeSensitive,
        .dueMinute = due,
    };
}

std::vector<NotificationRequest>
requestsFor(const Reminded& reminded, const UserCalendar& calendar, Instant now,
            const ReminderSettings& settings,
            const std::vector<NotificationManager::Snoozed>& snoozed) {
    std::vector<NotificationRequest> requests;
    requests.reserve(settings.daysBefore.size() * reminded.services.size() + snoozed.size());
    std::unordered_map<Uuid, std::vector<const NotificationManager::Snoozed*>> snoozedOf;
    for (const NotificationManager::Snoozed& again : snoozed) {
        snoozedOf[again.service].push_back(&again);
    }
    for (const Expiring& service : reminded.services) {
        const std::string id = service.id.toString();
        const std::string_view title = reminded.title(service);
        const std::string_view owner = reminded.owners[service.owner];
        for (const int daysBefore : settings.daysBefore) {
            const std::optional<Instant> due = LeadTimes::reminderMinute(
                calendar, service.expiration, daysBefore, settings.minuteOfDay);
            if (due && *due > now) {
                requests.push_back(request(service, id, title, owner, *due, daysBefore));
            }
        }
        if (snoozedOf.empty()) {
            continue;
        }
        if (const auto again = snoozedOf.find(service.id); again != snoozedOf.end()) {
            for (const NotificationManager::Snoozed* snooze : again->second) {
                if (snooze->expiration == service.expiration) {
                    NotificationRequest copy =
                        request(service, id, title, owner, snooze->due, snooze->daysBefore);
                    copy.identifier += snoozedSuffix;
                    requests.push_back(std::move(copy));
                }
            }
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
        if (!service->expirationDate || service->isArchived || *service->expirationDate <= now ||
            !LeadTimes::reminds(*service, m_settings)) {
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
                                      .owner = owner,
                                      .autoRenew = service->autoRenew});
        reminded->titles.append(service->title);
    }
    // A snoozed reminder is shown once: gone from here after its minute.
    std::erase_if(m_snoozed, [now](const Snoozed& again) { return again.due <= now; });
    m_center.replaceAllPendingRequests(
        [reminded, &calendar = m_calendar, now, settings = m_settings, snoozed = m_snoozed] {
            return requestsFor(*reminded, calendar, now, settings, snoozed);
        });
}

void NotificationManager::snooze(const ServiceRecord& service, std::string_view identifier) {
    const std::optional<int> daysBefore = daysBeforeOf(identifier);
    if (!daysBefore || serviceOf(identifier) != service.id || !service.expirationDate) {
        return;
    }
    const Instant due = std::chrono::floor<std::chrono::minutes>(m_calendar.now() + snoozeDelay);
    // Snoozed again: the later time stands.
    std::erase_if(m_snoozed, [&](const Snoozed& again) {
        return again.service == service.id && again.daysBefore == *daysBefore;
    });
    m_snoozed.push_back({.service = service.id,
                         .daysBefore = *daysBefore,
                         .expiration = *service.expirationDate,
                         .due = due});
}

std::optional<int> NotificationManager::daysBeforeOf(std::string_view identifier) {
    if (!serviceOf(identifier)) {
        return std::nullopt;
    }
    // "<prefix><UUID>.<n>d", perhaps followed by the snoozed suffix.
    if (identifier.ends_with(snoozedSuffix)) {
        identifier.remove_suffix(snoozedSuffix.size());
    }
    const std::size_t dot = identifier.rfind('.');
    if (dot == std::string_view::npos || !identifier.ends_with('d')) {
        return std::nullopt;
    }
    const std::string_view digits = identifier.substr(dot + 1, identifier.size() - dot - 2);
    int days = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), days);
    if (error != std::errc() || end != digits.data() + digits.size() || digits.empty()) {
        return std::nullopt;
    }
    return days;
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
