// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Organization.h"

#include "model/ServiceRecord.h"
#include "util/UserCalendar.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <array>
#include <functional>
#include <memory>
#include <string_view>

namespace vorlane {

namespace {

// The first user-perceived character (grapheme cluster) of `word`, upper-cased with full case
// mapping, so "émile" gives "É" and a flag or an accented letter built from two code points stays
// whole.
std::string upperFirstCharacter(std::string_view word) {
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(
        icu::StringPiece(word.data(), static_cast<std::int32_t>(word.size())));
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> characters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getDefault(), status));
    std::int32_t end = 1;
    if (U_SUCCESS(status) && characters) {
        characters->setText(text);
        end = characters->next();
    } else if (text.length() > 1 && U16_IS_LEAD(text.charAt(0))) {
        end = 2;
    }
    icu::UnicodeString first(text, 0, end);
    first.toUpper(icu::Locale::getDefault());
    std::string result;
    first.toUTF8String(result);
    return result;
}

template <typename Predicate>
std::vector<ServiceRecord*> servicesWhere(const std::vector<ServiceRecord*>& services,
                                          Predicate keep) {
    std::vector<ServiceRecord*> result;
    for (ServiceRecord* service : services) {
        if (keep(*service)) {
            result.push_back(service);
        }
    }
    return result;
}

} // namespace

Organization Organization::created(Instant now) {
    Organization organization;
    organization.id = Uuid::generate();
    organization.createdAt = now;
    organization.updatedAt = now;
    return organization;
}

std::vector<ServiceRecord*> Organization::activeServices() const {
    return servicesWhere(services, [](const ServiceRecord& s) {
        return s.status() == ServiceStatus::active && !s.isArchived;
    });
}

std::vector<ServiceRecord*> Organization::expiringServices(const UserCalendar& calendar) const {
    return servicesWhere(services, [&](const ServiceRecord& s) {
        const ExpirationState state = s.expirationState(calendar);
        return state == ExpirationState::upcoming || state == ExpirationState::critical;
    });
}

std::vector<ServiceRecord*> Organization::expiredServices(const UserCalendar& calendar) const {
    return servicesWhere(services, [&](const ServiceRecord& s) {
        return s.expirationState(calendar) == ExpirationState::expired;
    });
}

std::optional<Instant> Organization::nextExpiration(const UserCalendar& calendar) const {
    const Instant now = calendar.now();
    std::optional<Instant> next;
    for (const ServiceRecord* service : services) {
        if (service->expirationDate && *service->expirationDate > now &&
            (!next || *service->expirationDate < *next)) {
            next = service->expirationDate;
        }
    }
    return next;
}

Decimal Organization::monthlyCost() const {
    return monthlyCost([](const ServiceRecord& service) { return service.effectiveMonthlyCost(); });
}

Decimal
Organization::monthlyCost(const std::function<Decimal(const ServiceRecord&)>& effectiveCost) const {
    Decimal total;
    for (const ServiceRecord* service : services) {
        if (!service->isArchived) {
            total += effectiveCost(*service);
        }
    }
    return total;
}

Decimal Organization::yearlyCost() const {
    // Deliberately the stored monthly amount, not the effective one: a multi-year service with
    // only a yearly amount contributes that amount unchanged.
    static const Decimal monthsPerYear(12);
    Decimal total;
    for (const ServiceRecord* service : services) {
        if (service->isArchived) {
            continue;
        }
        total += service->yearlyCost > Decimal() ? service->yearlyCost
                                                 : service->monthlyCost * monthsPerYear;
    }
    return total;
}

std::string Organization::initials() const {
    std::string result;
    int taken = 0;
    std::size_t start = 0;
    while (taken < 2 && start < name.size()) {
        std::size_t end = name.find(' ', start);
        if (end == std::string::npos) {
            end = name.size();
        }
        if (end > start) {
            result += upperFirstCharacter(std::string_view(name).substr(start, end - start));
            ++taken;
        }
        start = end + 1;
    }
    return result;
}

Palette::Color Organization::avatarColor() const {
    static constexpr std::array<Palette::Color, 8> avatarColors{
        Palette::Color::indigo, Palette::Color::blue, Palette::Color::teal,   Palette::Color::mint,
        Palette::Color::orange, Palette::Color::pink, Palette::Color::purple, Palette::Color::cyan,
    };
    return avatarColors[std::hash<std::string_view>{}(name) % avatarColors.size()];
}

} // namespace vorlane
