// SPDX-License-Identifier: GPL-3.0-or-later
// The renewals calendar read back by libical, a strict RFC 5545 parser: every property of an
// event and its alarms, texts with the characters the format escapes, line breaks and emoji
// across a fold, an empty vault, 10,000 services, and the same UIDs on two exports.

#include "calendar/RenewalsCalendar.h"

#include "ManualClock.h"
#include "TestTime.h"
#include "calendar/IcsWriter.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "util/UserCalendar.h"

#include <gtest/gtest.h>
#include <libical/ical.h>

#include <chrono>
#include <deque>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace vorlane::testing {
namespace {

using namespace std::chrono;

struct ComponentFree {
    void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using Component = std::unique_ptr<icalcomponent, ComponentFree>;

class RenewalsCalendarTest : public ::testing::Test {
protected:
    RenewalsCalendarTest() { m_acme.name = "Acme"; }

    ServiceRecord& service(const std::string& title, std::optional<Instant> expiration) {
        ServiceRecord& s = m_services.emplace_back(ServiceRecord::created(m_clock.now()));
        s.title = title;
        s.expirationDate = expiration;
        s.setServiceType(ServiceType::domainRegistrar);
        s.organization = &m_acme;
        return s;
    }

    RenewalsCalendar::Written written(const ReminderSettings& settings = {}) {
        std::vector<ServiceRecord*> list;
        for (ServiceRecord& s : m_services) {
            list.push_back(&s);
        }
        return RenewalsCalendar::write(list, settings, m_calendar, m_clock.now());
    }

    // Parsed strictly: any error libical finds is a failure.
    static Component parsed(const std::string& text) {
        Component calendar(icalparser_parse_string(text.c_str()));
        EXPECT_NE(calendar, nullptr);
        if (calendar) {
            EXPECT_EQ(icalcomponent_count_errors(calendar.get()), 0)
                << icalcomponent_as_ical_string(calendar.get());
        }
        return calendar;
    }

    static std::string property(icalcomponent* component, icalproperty_kind kind) {
        icalproperty* p = icalcomponent_get_first_property(component, kind);
        return p != nullptr ? icalproperty_get_value_as_string(p) : "";
    }

    static std::vector<icalcomponent*> children(icalcomponent* parent, icalcomponent_kind kind) {
        std::vector<icalcomponent*> all;
        for (icalcomponent* c = icalcomponent_get_first_component(parent, kind); c != nullptr;
             c = icalcomponent_get_next_component(parent, kind)) {
            all.push_back(c);
        }
        return all;
    }

    ManualClock m_clock{utc(2026, 3, 1, 17)}; // noon in New York, before summer time
    UserCalendar m_calendar{m_clock, "America/New_York"};
    Organization m_acme;
    std::deque<ServiceRecord> m_services;
};

TEST_F(RenewalsCalendarTest, AnEventCarriesEveryPropertyAndOneAlarmPerChosenReminder) {
    // 23:30 on 9 March in New York is already 10 March in UTC: the event is on the local date.
    ServiceRecord& site = service("acme.com", utc(2026, 3, 10, 3, 30));
    site.provider = "Namecheap";
    site.loginURL = "https://ap.www.namecheap.com/";
    site.username = "owner-login";
    site.billingCycleRaw = "annual";
    site.yearlyCost = Decimal::fromString("12.5").value();
    site.updatedAt = utc(2026, 2, 20, 9, 15) + seconds(30);
    service("archived.com", utc(2026, 3, 12, 5)).isArchived = true;
    service("undated.com", std::nullopt);

    const RenewalsCalendar::Written file =
        written({.daysBefore = {3, 0}, .minuteOfDay = ReminderSettings::offeredMinuteOfDay});
    EXPECT_EQ(file.eventCount, 1U);
    EXPECT_EQ(file.text.find("owner-login"), std::string::npos) << "never a username";
    const Component calendar = parsed(file.text);
    ASSERT_TRUE(calendar);
    EXPECT_EQ(property(calendar.get(), ICAL_VERSION_PROPERTY), "2.0");
    EXPECT_EQ(property(calendar.get(), ICAL_PRODID_PROPERTY), "-//Vorlane//Renewals//EN");
    EXPECT_EQ(property(calendar.get(), ICAL_CALSCALE_PROPERTY), "GREGORIAN");
    EXPECT_NE(file.text.find("\r\nX-WR-CALNAME:Vorlane Renewals\r\n"), std::string::npos);

    const auto events = children(calendar.get(), ICAL_VEVENT_COMPONENT);
    ASSERT_EQ(events.size(), 1U);
    icalcomponent* event = events[0];
    EXPECT_EQ(std::string(icalcomponent_get_uid(event)), site.id.toString() + "@vorlane");
    const icaltimetype start = icalcomponent_get_dtstart(event);
    EXPECT_TRUE(start.is_date);
    EXPECT_EQ((std::vector{start.year, start.month, start.day}), (std::vector{2026, 3, 9}));
    const icaltimetype end = icalcomponent_get_dtend(event);
    EXPECT_TRUE(end.is_date);
    EXPECT_EQ((std::vector{end.year, end.month, end.day}), (std::vector{2026, 3, 10}));
    EXPECT_EQ(property(event, ICAL_DTSTAMP_PROPERTY), "20260301T170000Z");
    EXPECT_EQ(property(event, ICAL_LASTMODIFIED_PROPERTY), "20260220T091530Z");
    EXPECT_EQ(icalcomponent_get_sequence(event),
              floor<minutes>(site.updatedAt.time_since_epoch()).count());
    EXPECT_EQ(std::string(icalcomponent_get_summary(event)), "Renew: acme.com \xE2\x80\x94 Acme");
    EXPECT_EQ(std::string(icalcomponent_get_description(event)),
              "Provider: Namecheap\nType: Domain Registrar\nCost: $12.5 (Annual)\n"
              "Renews automatically: No\nLogin: https://ap.www.namecheap.com/");
    EXPECT_NE(file.text.find("\r\nCATEGORIES:Vorlane,Domain Registrar\r\n"), std::string::npos);
    EXPECT_EQ(property(event, ICAL_TRANSP_PROPERTY), "TRANSPARENT");

    const auto alarms = children(event, ICAL_VALARM_COMPONENT);
    ASSERT_EQ(alarms.size(), 2U);
    std::vector<std::string> triggers;
    for (icalcomponent* alarm : alarms) {
        EXPECT_EQ(property(alarm, ICAL_ACTION_PROPERTY), "DISPLAY");
        EXPECT_FALSE(property(alarm, ICAL_DESCRIPTION_PROPERTY).empty());
        triggers.push_back(property(alarm, ICAL_TRIGGER_PROPERTY));
    }
    // Three days before at 09:00, and 09:00 on the day itself.
    EXPECT_EQ(triggers, (std::vector<std::string>{"-P2DT15H", "PT9H"}));

    // At the expiration's own time (23:30), three days before.
    const Component again = parsed(written({.daysBefore = {3}}).text);
    icalcomponent* alarm = icalcomponent_get_first_component(
        icalcomponent_get_first_component(again.get(), ICAL_VEVENT_COMPONENT),
        ICAL_VALARM_COMPONENT);
    ASSERT_NE(alarm, nullptr);
    EXPECT_EQ(property(alarm, ICAL_TRIGGER_PROPERTY), "-P2DT30M");
}

TEST_F(RenewalsCalendarTest, EscapedTextsLineBreaksAndEmojiAcrossAFoldReadBackExactly) {
    const std::string title = "Back\\slash; semi, comma\nsecond line\r\nthird";
    ServiceRecord& site = service(title, utc(2026, 4, 1, 4));
    // Long enough to fold several times, with four-octet emoji at every offset.
    std::string notes;
    for (int i = 0; i < 40; ++i) {
        notes += "\xF0\x9F\x94\x91" + std::string(static_cast<std::size_t>(i % 3), 'x');
    }
    site.provider = notes;
    const std::string text = written().text;

    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = text.find("\r\n", at);
        ASSERT_NE(end, std::string::npos) << "every line ends in CRLF";
        const std::string line = text.substr(at, end - at);
        EXPECT_LE(line.size(), 75U) << line;
        EXPECT_EQ(line.find('\n'), std::string::npos);
        EXPECT_EQ(line.find('\r'), std::string::npos);
        // A fold never splits a UTF-8 sequence: no line starts inside one (after its space).
        const std::size_t first = line.starts_with(' ') ? 1 : 0;
        if (line.size() > first) {
            EXPECT_NE(static_cast<unsigned char>(line[first]) & 0xC0, 0x80) << line;
        }
        at = end + 2;
    }
    const Component calendar = parsed(text);
    icalcomponent* event = icalcomponent_get_first_component(calendar.get(), ICAL_VEVENT_COMPONENT);
    ASSERT_NE(event, nullptr);
    EXPECT_EQ(std::string(icalcomponent_get_summary(event)),
              "Renew: Back\\slash; semi, comma\nsecond line\nthird \xE2\x80\x94 Acme");
    EXPECT_EQ(std::string(icalcomponent_get_description(event)).substr(0, 10 + notes.size()),
              "Provider: " + notes);
    EXPECT_EQ(IcsWriter::escaped("a\\b;c,d\re\nf\x01g"), "a\\\\b\\;c\\,d\\ne\\nfg");
}

TEST_F(RenewalsCalendarTest, AnEmptyVaultIsStillAValidCalendar) {
    service("archived.com", utc(2026, 3, 12, 5)).isArchived = true;
    const RenewalsCalendar::Written file = written();
    EXPECT_EQ(file.eventCount, 0U);
    const Component calendar = parsed(file.text);
    ASSERT_TRUE(calendar);
    EXPECT_EQ(icalcomponent_isa(calendar.get()), ICAL_VCALENDAR_COMPONENT);
    EXPECT_EQ(property(calendar.get(), ICAL_PRODID_PROPERTY), "-//Vorlane//Renewals//EN");
    EXPECT_TRUE(children(calendar.get(), ICAL_VEVENT_COMPONENT).empty());
}

TEST_F(RenewalsCalendarTest, TenThousandServicesKeepTheirUidsFromOneExportToTheNext) {
    for (int i = 0; i < 10000; ++i) {
        service("site-" + std::to_string(i) + ".com", m_clock.now() + days(1 + i % 400));
    }
    const RenewalsCalendar::Written first = written();
    ASSERT_EQ(first.eventCount, 10000U);
    const auto uids = [this](const std::string& text) {
        const Component calendar = parsed(text);
        std::vector<std::string> all;
        for (icalcomponent* event : children(calendar.get(), ICAL_VEVENT_COMPONENT)) {
            all.emplace_back(icalcomponent_get_uid(event));
        }
        return all;
    };
    const std::vector<std::string> before = uids(first.text);
    EXPECT_EQ(before.size(), 10000U);
    EXPECT_EQ(std::set<std::string>(before.begin(), before.end()).size(), 10000U);

    // Renewed meanwhile: the same event, a later sequence.
    m_clock.set(m_clock.now() + hours(2));
    m_services.front().expirationDate = *m_services.front().expirationDate + days(365);
    m_services.front().updatedAt = m_clock.now();
    const std::string second = written().text;
    EXPECT_EQ(uids(second), before);
    const Component calendar = parsed(second);
    icalcomponent* event = icalcomponent_get_first_component(calendar.get(), ICAL_VEVENT_COMPONENT);
    EXPECT_EQ(icalcomponent_get_sequence(event),
              floor<minutes>(m_clock.now().time_since_epoch()).count());
}

} // namespace
} // namespace vorlane::testing
