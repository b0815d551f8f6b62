// SPDX-License-Identifier: GPL-3.0-or-later
// The running program's reminders: the schedule rebuilt from the live services each time the
// window's content is shown (a restore from minimised included, and only then), a reminder shown at
// its minute by the program's own tick to a notification service of the tests' own, and a click on
// it opening the service.

#include "Reminders.h"

#include "DesktopNotificationCenter.h"
#include "MainWindow.h"
#include "NotificationServerProcess.h"
#include "ReminderSchedule.h"
#include "ScreenFixture.h"
#include "model/Organization.h"
#include "reminders/NotificationManager.h"

#include <QJsonObject>

#include <chrono>

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

    // A new service waits for the next time the window is shown; nothing else reschedules.
    addService(acme, "new.com",
               [this](ServiceRecord& s) { s.expirationDate = m_clock.now() + days(10); });
    store().save();
    EXPECT_EQ(m_center.pendingRequests().size(), 1U);
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

} // namespace
} // namespace vorlane::testing
