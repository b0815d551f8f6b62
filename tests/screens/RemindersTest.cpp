// SPDX-License-Identifier: GPL-3.0-or-later
// The running program's reminders: the schedule rebuilt from the live services each time the
// window's content is shown (a restore from minimised included) and shortly after every change to
// the vault, under the user's reminder settings; a reminder shown at
// its minute by the program's own tick to a notification service of the tests' own, and a click on
// it opening the service.

#include "Reminders.h"

#include "DesktopNotificationCenter.h"
#include "MainWindow.h"
#include "NotificationServerProcess.h"
#include "ReminderSchedule.h"
#include "ScreenFixture.h"
#include "calendar/ReminderSettings.h"
#include "model/Organization.h"
#include "reminders/NotificationManager.h"
#include "screens/ReminderSettingsSection.h"

#include <QCheckBox>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonObject>

#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vorlane::testing {
namespace {

using namespace std::chrono;

class RemindersTest : public ScreenFixture {
protected:
    NotificationServerProcess m_server;
    DesktopNotificationCenter m_center{
        ReminderSchedule::pathBeside(
            m_folder.filePath(QStringLiteral("vault.sqlite")).toStdString()),
        QDBusConnection::sessionBus(), m_clock};
    NotificationManager m_manager{m_center, m_calendar};
};

TEST_F(RemindersTest, ShowingTheWindowSchedulesTheTickDeliversOnTheMinuteAndAClickOpens) {
    ASSERT_TRUE(m_server.ready());
    Organization& acme = addOrganization("Acme");
    // Three days and a minute away: the warning falls due one minute from now.
    ServiceRecord& site = addService(acme, "acme.com", [this](ServiceRecord& s) {
        s.expirationDate = m_clock.now() + days(3) + minutes(1);
    });
    addService(acme, "old.com", [this](ServiceRecord& s) {
        s.expirationDate = m_clock.now() + days(3) + minutes(1);
        s.isArchived = true;
    });
    MainWindow window(context());
    const Reminders reminders(context(), m_center, m_manager, window);
    EXPECT_TRUE(m_center.pendingRequests().empty()) << "nothing before the content is shown";

    window.show();
    // A rebuild inside the show would hold a large vault's window off the screen.
    EXPECT_TRUE(m_center.pendingRequests().empty()) << "not before the window is painted";
    ASSERT_TRUE(waitFor([this] { return m_center.pendingRequests().size() == 2U; }))
        << "the archived service has none";
    m_timers.advance(seconds(59));
    EXPECT_TRUE(m_server.shown().empty());
    m_timers.advance(seconds(1));
    // Delivered on the centre's worker: the window does not wait for it.
    ASSERT_TRUE(waitFor([this] { return m_server.shown().size() == 1U; }));
    EXPECT_EQ(m_server.shown()[0].value("body").toString(),
              QStringLiteral("Your Custom Secret \"acme.com\" for Acme expires in 3 days."));

    m_server.click(static_cast<uint>(m_server.shown()[0].value("id").toInt()));
    ASSERT_TRUE(waitFor([&] { return m_state.selectedService() == &site; }));

    // A new service is scheduled once the burst of changes it came in is over.
    addService(acme, "new.com",
               [this](ServiceRecord& s) { s.expirationDate = m_clock.now() + days(10); });
    store().save();
    EXPECT_EQ(m_center.pendingRequests().size(), 1U) << "not inside the change itself";
    m_timers.advance(Reminders::rebuildDelay);
    EXPECT_TRUE(waitFor([this] { return m_center.pendingRequests().size() == 3U; }));
    window.hide();
    window.show();
    EXPECT_TRUE(waitFor([this] { return m_center.pendingRequests().size() == 3U; }));

    // Restored from minimised: shown again, so rebuilt again.
    addService(acme, "shop.com",
               [this](ServiceRecord& s) { s.expirationDate = m_clock.now() + days(10); });
    store().save();
    window.showMinimized();
    window.showNormal();
    EXPECT_TRUE(waitFor([this] { return m_center.pendingRequests().size() == 5U; }));
}

TEST_F(RemindersTest, AtNineSevenThreeAndOneDayBeforeAndMarkRenewedFromTheReminderDropsThem) {
    ASSERT_TRUE(m_server.ready());
    ReminderSettings{.daysBefore = {7, 3, 1}, .minuteOfDay = ReminderSettings::offeredMinuteOfDay}
        .write(m_preferences);
    Organization& acme = addOrganization("Acme");
    // Due in eight days: the 18th, a date picked in the form (midnight in New York).
    ServiceRecord& site = addService(
        acme, "acme.com", [](ServiceRecord& s) { s.expirationDate = utc(2026, 3, 18, 4); });
    MainWindow window(context());
    const Reminders reminders(context(), m_center, m_manager, window);
    window.show();
    ASSERT_TRUE(waitFor([this] { return m_center.pendingRequests().size() == 3U; }));
    std::vector<Instant> due;
    for (const NotificationRequest& request : m_center.pendingRequests()) {
        due.push_back(request.dueMinute);
    }
    // 09:00 in New York, summer time: 13:00 UTC.
    EXPECT_EQ(due, (std::vector<Instant>{utc(2026, 3, 11, 13), utc(2026, 3, 15, 13),
                                         utc(2026, 3, 17, 13)}));

    m_clock.set(utc(2026, 3, 11, 13) + seconds(20));
    ASSERT_TRUE(m_center.deliverDue(m_clock.now()));
    ASSERT_EQ(m_server.shown().size(), 1U);
    const QJsonObject shown = m_server.shown()[0];
    EXPECT_EQ(shown.value("body").toString(),
              QStringLiteral("Your Custom Secret \"acme.com\" for Acme expires in 7 days."));
    const QJsonArray actions = shown.value("actions").toArray();
    EXPECT_TRUE(actions.contains("Mark Renewed") && actions.contains("mark-renewed"));
    EXPECT_TRUE(actions.contains("Snooze 1 Day") && actions.contains("snooze"));

    // Snoozed: back a day later.
    const auto id = static_cast<uint>(shown.value("id").toInt());
    m_server.click(id, DesktopNotificationCenter::snoozeAction);
    // The click comes over the bus: time moves on until it has been heard and acted on.
    ASSERT_TRUE(waitFor([this] {
        m_timers.advance(Reminders::rebuildDelay);
        return m_center.pendingRequests().size() == 3U;
    }));
    EXPECT_EQ(m_center.pendingRequests().at(0).dueMinute, utc(2026, 3, 12, 13))
        << m_center.pendingRequests().at(0).identifier;

    // Renewed from the reminder: within the minute, no reminder is left for the 18th.
    m_server.click(id, DesktopNotificationCenter::markRenewedAction);
    ASSERT_TRUE(waitFor([&] { return site.expirationDate != utc(2026, 3, 18, 4); }));
    EXPECT_EQ(site.expirationDate, utc(2027, 3, 18, 4));
    m_timers.advance(Reminders::rebuildDelay);
    ASSERT_TRUE(waitFor([this] {
        const auto pending = m_center.pendingRequests();
        return pending.size() == 3U && pending[0].dueMinute > utc(2027, 1, 1);
    }));
}

TEST_F(RemindersTest, ChangingTheReminderSettingsReschedulesAtOnce) {
    ASSERT_TRUE(m_server.ready());
    Organization& acme = addOrganization("Acme");
    ServiceRecord& site = addService(
        acme, "acme.com", [](ServiceRecord& s) { s.expirationDate = utc(2026, 3, 25, 4); });
    MainWindow window(context());
    const Reminders reminders(context(), m_center, m_manager, window);
    ReminderSettingsSection section(context());
    EXPECT_TRUE(section.leadTimeBox(3)->isChecked() && section.leadTimeBox(1)->isChecked());
    EXPECT_FALSE(section.leadTimeBox(7)->isChecked() || section.leadTimeBox(0)->isChecked());
    EXPECT_EQ(section.remindAtPicker()->currentText(), QStringLiteral("Time of expiration"));
    EXPECT_TRUE(section.autoRenewingToggle()->isChecked());
    window.show();
    ASSERT_TRUE(waitFor([this] { return m_center.pendingRequests().size() == 2U; }));

    section.leadTimeBox(7)->click();
    section.leadTimeBox(1)->click();
    section.remindAtPicker()->setCurrentIndex(1);
    Q_EMIT section.remindAtPicker()->activated(1);
    m_timers.advance(Reminders::rebuildDelay);
    std::vector<std::string> identifiers;
    ASSERT_TRUE(waitFor([&] {
        identifiers.clear();
        for (const NotificationRequest& request : m_center.pendingRequests()) {
            identifiers.push_back(request.identifier + "@" +
                                  std::to_string(request.dueMinute.time_since_epoch().count()));
        }
        return identifiers.size() == 2U;
    }));
    const std::string id = site.id.toString();
    EXPECT_EQ(identifiers,
              (std::vector<std::string>{
                  "vorlane.warn." + id + ".7d@" +
                      std::to_string(utc(2026, 3, 18, 13).time_since_epoch().count()),
                  "vorlane.warn." + id + ".3d@" +
                      std::to_string(utc(2026, 3, 22, 13).time_since_epoch().count())}));

    // Auto-renewing services left out: this one now renews by itself, so nothing is left.
    site.autoRenew = true;
    section.autoRenewingToggle()->click();
    m_timers.advance(Reminders::rebuildDelay);
    EXPECT_TRUE(waitFor([this] { return m_center.pendingRequests().empty(); }));
    EXPECT_FALSE(ReminderSettings::read(m_preferences).includeAutoRenewing);
}

TEST_F(RemindersTest, AKeptCalendarFileFollowsEveryChangeAndStaysWhenNoLongerKept) {
    ASSERT_TRUE(m_server.ready());
    Organization& acme = addOrganization("Acme");
    ServiceRecord& site = addService(
        acme, "acme.com", [](ServiceRecord& s) { s.expirationDate = utc(2026, 3, 25, 4); });
    MainWindow window(context());
    const Reminders reminders(context(), m_center, m_manager, window);
    ReminderSettingsSection section(context());
    const std::string path = m_folder.filePath(QStringLiteral("renewals.ics")).toStdString();
    const auto fileText = [&path] {
        std::ifstream in(path, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    };
    window.show();
    ASSERT_TRUE(waitFor([this] { return m_center.pendingRequests().size() == 2U; }));
    EXPECT_FALSE(section.calendarFileToggle()->isChecked());
    EXPECT_FALSE(std::filesystem::exists(path)) << "only written when the user asks for it";

    section.calendarFileToggle()->click();
    m_timers.advance(Reminders::rebuildDelay);
    ASSERT_TRUE(waitFor([&] { return std::filesystem::exists(path); }));
    const std::string uid = "UID:" + site.id.toString() + "@vorlane";
    EXPECT_NE(fileText().find(uid), std::string::npos);
    EXPECT_NE(fileText().find("DTSTART;VALUE=DATE:20260325"), std::string::npos) << fileText();
    struct stat mode {};
    ASSERT_EQ(::stat(path.c_str(), &mode), 0);
    EXPECT_EQ(mode.st_mode & 0777, 0600U);

    // A renewal moves the event in the file, under the same UID.
    context().serviceActions.markRenewed(site);
    m_timers.advance(Reminders::rebuildDelay);
    EXPECT_TRUE(waitFor(
        [&] { return fileText().find("DTSTART;VALUE=DATE:20260325") == std::string::npos; }));
    const std::string renewed = fileText();
    EXPECT_NE(renewed.find(uid), std::string::npos);

    // Switched off, the last file stays for a calendar still subscribed to it, and stops moving.
    section.calendarFileToggle()->click();
    site.title = "acme.org";
    store().noteChanged(site);
    m_timers.advance(Reminders::rebuildDelay);
    EXPECT_EQ(fileText(), renewed);
}

} // namespace
} // namespace vorlane::testing
