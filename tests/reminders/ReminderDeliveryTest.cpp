// SPDX-License-Identifier: GPL-3.0-or-later
// The expiration reminders from the schedule to the desktop: what NotificationManager puts in the
// schedule file (real DesktopNotificationCenter in a temp folder), what arrives at a notification
// service of the tests' own on the run's private session bus, the schedule file surviving damage,
// and one reminder never shown twice when the program and the timer's command deliver together.

#include "DesktopNotificationCenter.h"
#include "ManualClock.h"
#include "NotificationServerProcess.h"
#include "ReminderSchedule.h"
#include "RunCommand.h"
#include "TestTime.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "reminders/NotificationManager.h"
#include "util/SystemClock.h"
#include "util/UserCalendar.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QFile>
#include <QJsonArray>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace vorlane::testing {
namespace {

using namespace std::chrono;
using Sound = NotificationRequest::Sound;
using Level = NotificationRequest::InterruptionLevel;

class ReminderTest : public ::testing::Test {
protected:
    ReminderTest() { m_acme.name = "Acme"; }

    ServiceRecord& service(const std::string& title, std::optional<Instant> expiration,
                           ServiceType type = ServiceType::domainRegistrar) {
        ServiceRecord& service = m_services.emplace_back(ServiceRecord::created(m_clock.now()));
        service.title = title;
        service.expirationDate = expiration;
        service.setServiceType(type);
        service.organization = &m_acme;
        return service;
    }

    void schedule() {
        std::vector<ServiceRecord*> list;
        for (ServiceRecord& s : m_services) {
            list.push_back(&s);
        }
        m_manager.scheduleExpirationNotifications(list);
    }

    // Both reminders of `count` services, due in the real past (the timer's command reads the
    // real clock) a minute apart, scheduled and written: `2 * count` reminders to deliver.
    void scheduleDueInTheRealPast(std::size_t count) {
        m_clock.set(SystemClock().now() - std::chrono::days(10));
        for (std::size_t i = 0; i < count; ++i) {
            service("site-" + std::to_string(i) + ".com",
                    m_clock.now() + std::chrono::days(5) + std::chrono::minutes(i));
        }
        schedule();
        m_center.flush();
    }

    std::map<std::string, NotificationRequest> pendingById() {
        std::map<std::string, NotificationRequest> byId;
        for (NotificationRequest& request : m_center.pendingRequests()) {
            byId.emplace(request.identifier, std::move(request));
        }
        return byId;
    }

    QString vaultPath() const { return m_folder.filePath(QStringLiteral("vault.sqlite")); }
    QString schedulePath() const { return ReminderSchedule::pathBeside(vaultPath().toStdString()); }

    QTemporaryDir m_folder;
    ManualClock m_clock{utc(2026, 3, 10, 17)}; // noon in New York
    UserCalendar m_calendar{m_clock, "America/New_York"};
    DesktopNotificationCenter m_center{schedulePath(), QDBusConnection::sessionBus(), m_clock};
    std::vector<std::string> m_log;
    std::mutex m_logMutex;
    NotificationManager m_manager{m_center, m_calendar, [this](const std::string& line) {
                                      std::lock_guard lock(m_logMutex);
                                      m_log.push_back(line);
                                  }};
    Organization m_acme;
    std::deque<ServiceRecord> m_services;
};

TEST_F(ReminderTest, TenDaysAwayAtHalfPastTwoGivesBothRemindersWithTheirExactTexts) {
    // 14:30:45 in New York, ten days on: the seconds are dropped from both reminders.
    ServiceRecord& site =
        service("acme.com", utc(2026, 3, 20, 18, 30) + seconds(45), ServiceType::domainRegistrar);
    ServiceRecord& box = service("Build box", utc(2026, 3, 20, 18, 30), ServiceType::vps);
    box.organization = nullptr;
    schedule();

    const auto pending = pendingById();
    ASSERT_EQ(pending.size(), 4U);
    const std::string id = site.id.toString();
    EXPECT_EQ(pending.at("vorlane.warn." + id + ".3d"),
              (NotificationRequest{
                  .identifier = "vorlane.warn." + id + ".3d",
                  .title = "Expiration Warning",
                  .body = "Your Domain Registrar \"acme.com\" for Acme expires in 3 days.",
                  .sound = Sound::standard,
                  .categoryIdentifier = "EXPIRATION_WARNING",
                  .interruptionLevel = Level::active,
                  .dueMinute = utc(2026, 3, 17, 18, 30), // 14:30 seven days from now
              }));
    EXPECT_EQ(pending.at("vorlane.critical." + id + ".1d"),
              (NotificationRequest{
                  .identifier = "vorlane.critical." + id + ".1d",
                  .title = "Critical: Expiring Tomorrow",
                  .body = "Domain Registrar \"acme.com\" for Acme expires tomorrow.",
                  .sound = Sound::critical,
                  .categoryIdentifier = "EXPIRATION_CRITICAL",
                  .interruptionLevel = Level::timeSensitive,
                  .dueMinute = utc(2026, 3, 19, 18, 30), // 14:30 nine days from now
              }));
    const std::string boxId = box.id.toString();
    EXPECT_EQ(pending.at("vorlane.warn." + boxId + ".3d").body,
              "Your VPS \"Build box\" for a client expires in 3 days.");
    EXPECT_EQ(pending.at("vorlane.critical." + boxId + ".1d").body,
              "VPS \"Build box\" for a client expires tomorrow.");
    EXPECT_EQ(NotificationManager::serviceOf("vorlane.critical." + boxId + ".1d"), box.id);
}

TEST_F(ReminderTest, OnlyRemindersStillAheadAreKeptAndARebuildDropsEveryEarlierOne) {
    ServiceRecord& twoDays = service("Two days", m_clock.now() + hours(48) + minutes(5));
    ServiceRecord& twentyHours = service("Twenty hours", m_clock.now() + hours(20));
    ServiceRecord& past = service("Past", m_clock.now() - minutes(1));
    ServiceRecord& undated = service("Undated", std::nullopt);
    ServiceRecord& later = service("Later", m_clock.now() + days(20));
    schedule();
    std::set<std::string> ids;
    for (const auto& [id, request] : pendingById()) {
        ids.insert(id);
    }
    EXPECT_EQ(ids, (std::set<std::string>{"vorlane.critical." + twoDays.id.toString() + ".1d",
                                          "vorlane.warn." + later.id.toString() + ".3d",
                                          "vorlane.critical." + later.id.toString() + ".1d"}))
        << "two days away: only the critical one; 20 hours, past and undated: none";
    (void)twentyHours;
    (void)past;
    (void)undated;

    // Archived, or renewed into the past by a wrong edit: the next rebuild forgets its reminders.
    later.isArchived = true;
    twoDays.expirationDate = m_clock.now() - days(1);
    schedule();
    EXPECT_TRUE(m_center.pendingRequests().empty());
}

TEST_F(ReminderTest, ReminderAcrossTheDaylightSavingChangeKeepsItsWallClockTime) {
    // New York moves to summer time on 8 March 2026. Noon on 3 March is 17:00 UTC; an expiration at
    // 14:30 on 10 March (summer time, 18:30 UTC) is reminded at 14:30 on the 7th (winter time,
    // 19:30 UTC) and at 14:30 on the 9th (summer time, 18:30 UTC).
    m_clock.set(utc(2026, 3, 3, 17));
    const ServiceRecord& site = service("acme.com", utc(2026, 3, 10, 18, 30));
    schedule();
    const auto pending = pendingById();
    EXPECT_EQ(pending.at("vorlane.warn." + site.id.toString() + ".3d").dueMinute,
              utc(2026, 3, 7, 19, 30));
    EXPECT_EQ(pending.at("vorlane.critical." + site.id.toString() + ".1d").dueMinute,
              utc(2026, 3, 9, 18, 30));
}

TEST_F(ReminderTest, EveryLeadTimeAndTheDayItselfKeepTheirWallClockTimeAcrossTheChange) {
    // New York moves to summer time on 8 March 2026: 14:30 is 19:30 UTC before, 18:30 after.
    m_clock.set(utc(2026, 2, 1, 17));
    m_manager.setSettings({.daysBefore = {30, 14, 7, 3, 1, 0}});
    const ServiceRecord& site = service("acme.com", utc(2026, 3, 10, 18, 30) + seconds(15));
    schedule();
    const std::string id = site.id.toString();
    const auto pending = pendingById();
    ASSERT_EQ(pending.size(), 6U);
    const std::map<std::string, Instant> expected{
        {"vorlane.warn." + id + ".30d", utc(2026, 2, 8, 19, 30)},
        {"vorlane.warn." + id + ".14d", utc(2026, 2, 24, 19, 30)},
        {"vorlane.warn." + id + ".7d", utc(2026, 3, 3, 19, 30)},
        {"vorlane.warn." + id + ".3d", utc(2026, 3, 7, 19, 30)},
        {"vorlane.critical." + id + ".1d", utc(2026, 3, 9, 18, 30)},
        {"vorlane.critical." + id + ".0d", utc(2026, 3, 10, 18, 30)},
    };
    for (const auto& [identifier, due] : expected) {
        ASSERT_TRUE(pending.contains(identifier)) << identifier;
        EXPECT_EQ(pending.at(identifier).dueMinute, due) << identifier;
        EXPECT_EQ(NotificationManager::daysBeforeOf(identifier),
                  std::stoi(identifier.substr(identifier.rfind('.') + 1)));
    }
    EXPECT_EQ(pending.at("vorlane.warn." + id + ".30d").body,
              "Your Domain Registrar \"acme.com\" for Acme expires in 30 days.");
    EXPECT_EQ(pending.at("vorlane.warn." + id + ".30d").categoryIdentifier, "EXPIRATION_WARNING");
    EXPECT_EQ((pending.at("vorlane.critical." + id + ".0d")),
              (NotificationRequest{
                  .identifier = "vorlane.critical." + id + ".0d",
                  .title = "Expires Today",
                  .body = "Domain Registrar \"acme.com\" for Acme expires today.",
                  .sound = Sound::critical,
                  .categoryIdentifier = "EXPIRATION_CRITICAL",
                  .interruptionLevel = Level::timeSensitive,
                  .dueMinute = utc(2026, 3, 10, 18, 30),
              }));
}

TEST_F(ReminderTest, RemindAtNineBringsEveryReminderOfThatDayAtNine) {
    m_clock.set(utc(2026, 2, 1, 17));
    m_manager.setSettings(
        {.daysBefore = {7, 3, 1, 0}, .minuteOfDay = ReminderSettings::offeredMinuteOfDay});
    // Expiring at midnight (a date picked in the form) and at 23:10: both at 09:00 either way.
    const ServiceRecord& midnight = service("acme.com", utc(2026, 3, 10, 4));
    const ServiceRecord& late = service("late.com", utc(2026, 3, 11, 3, 10));
    schedule();
    const auto pending = pendingById();
    ASSERT_EQ(pending.size(), 8U);
    const std::string id = midnight.id.toString();
    EXPECT_EQ(pending.at("vorlane.warn." + id + ".7d").dueMinute, utc(2026, 3, 3, 14));
    EXPECT_EQ(pending.at("vorlane.warn." + id + ".3d").dueMinute, utc(2026, 3, 7, 14));
    EXPECT_EQ(pending.at("vorlane.critical." + id + ".1d").dueMinute, utc(2026, 3, 9, 13));
    EXPECT_EQ(pending.at("vorlane.critical." + id + ".0d").dueMinute, utc(2026, 3, 10, 13));
    EXPECT_EQ(pending.at("vorlane.critical." + late.id.toString() + ".0d").dueMinute,
              utc(2026, 3, 10, 13));

    // Just after 09:00 on 9 March only the two reminders of 10 March are still ahead.
    m_clock.set(utc(2026, 3, 9, 13) + minutes(1));
    schedule();
    std::set<std::string> ids;
    for (const auto& [identifier, request] : pendingById()) {
        ids.insert(identifier);
    }
    EXPECT_EQ(ids, (std::set<std::string>{"vorlane.critical." + id + ".0d",
                                          "vorlane.critical." + late.id.toString() + ".0d"}));
}

TEST_F(ReminderTest, ServicesThatRenewAutomaticallySaySoAndCanBeLeftOut) {
    Organization northwind;
    northwind.name = "Northwind";
    ServiceRecord& edge = service("Edge", utc(2026, 3, 20, 18, 30), ServiceType::vps);
    edge.organization = &northwind;
    edge.autoRenew = true;
    const ServiceRecord& manual = service("acme.com", utc(2026, 3, 20, 18, 30));
    m_manager.setSettings({.daysBefore = {3, 1, 0}});
    schedule();
    auto pending = pendingById();
    const std::string id = edge.id.toString();
    EXPECT_EQ(pending.at("vorlane.warn." + id + ".3d").body,
              "Your VPS \"Edge\" for Northwind renews automatically in 3 days.");
    EXPECT_EQ(pending.at("vorlane.critical." + id + ".1d").body,
              "VPS \"Edge\" for Northwind renews automatically tomorrow.");
    EXPECT_EQ(pending.at("vorlane.critical." + id + ".0d").body,
              "VPS \"Edge\" for Northwind renews automatically today.");
    EXPECT_EQ(pending.at("vorlane.critical." + id + ".0d").title, "Expires Today");

    m_manager.setSettings({.daysBefore = {3, 1, 0}, .includeAutoRenewing = false});
    schedule();
    pending = pendingById();
    EXPECT_EQ(pending.size(), 3U);
    EXPECT_TRUE(pending.contains("vorlane.warn." + manual.id.toString() + ".3d"));
    EXPECT_FALSE(pending.contains("vorlane.warn." + id + ".3d"));
}

TEST_F(ReminderTest, ASnoozedReminderComesAgainADayLaterOnceAndNotAfterARenewal) {
    NotificationServerProcess server;
    ASSERT_TRUE(server.ready());
    ServiceRecord& site = service("acme.com", utc(2026, 3, 12, 18, 30));
    ServiceRecord& other = service("other.com", utc(2026, 3, 12, 18, 30));
    schedule();
    m_clock.set(utc(2026, 3, 11, 18, 30) + seconds(5));
    ASSERT_TRUE(m_center.deliverDue(m_clock.now()));
    ASSERT_EQ(server.shown().size(), 2U);

    const std::string critical = "vorlane.critical." + site.id.toString() + ".1d";
    m_manager.snooze(site, critical);
    m_manager.snooze(site, "vorlane.critical.not-a-uuid.1d"); // not one of ours: nothing
    m_manager.snooze(other, critical);                        // another service's: nothing
    schedule();
    const auto pending = m_center.pendingRequests();
    ASSERT_EQ(pending.size(), 1U);
    EXPECT_EQ(pending[0].identifier, critical + ".snoozed");
    EXPECT_EQ(pending[0].dueMinute, utc(2026, 3, 12, 18, 30));
    EXPECT_EQ(pending[0].title, "Critical: Expiring Tomorrow");
    EXPECT_EQ(NotificationManager::serviceOf(pending[0].identifier), site.id);
    EXPECT_EQ(NotificationManager::daysBeforeOf(pending[0].identifier), 1);

    // Shown a day later, once: neither the tick nor a rebuild brings it back.
    m_clock.set(utc(2026, 3, 12, 18, 30));
    ASSERT_TRUE(m_center.deliverDue(m_clock.now()));
    ASSERT_EQ(server.shown().size(), 3U);
    EXPECT_EQ(server.shown()[2].value("body").toString(),
              "Domain Registrar \"acme.com\" for Acme expires tomorrow.");
    m_clock.set(utc(2026, 3, 12, 18, 31));
    schedule();
    EXPECT_TRUE(m_center.deliverDue(m_clock.now()));
    EXPECT_EQ(server.shown().size(), 3U);

    // Snoozed, then renewed: the expiration moved, so the snoozed one goes with the old date.
    m_clock.set(utc(2026, 3, 11, 18, 30) + seconds(5));
    m_manager.snooze(other, "vorlane.critical." + other.id.toString() + ".1d");
    other.expirationDate = utc(2027, 3, 12, 18, 30);
    schedule();
    for (const NotificationRequest& request : m_center.pendingRequests()) {
        EXPECT_FALSE(request.identifier.ends_with(".snoozed")) << request.identifier;
    }
}

TEST_F(ReminderTest, DueRemindersArriveOnceWithUrgencyCategoryAndDesktopEntry) {
    NotificationServerProcess server;
    ASSERT_TRUE(server.ready());
    ServiceRecord& site = service("acme.com", utc(2026, 3, 20, 18, 30));
    schedule();

    EXPECT_TRUE(m_center.deliverDue(utc(2026, 3, 17, 18, 29) + seconds(59)));
    EXPECT_TRUE(server.shown().empty()) << "nothing before its minute";

    EXPECT_TRUE(m_center.deliverDue(utc(2026, 3, 17, 18, 30)));
    ASSERT_EQ(server.shown().size(), 1U);
    const QJsonObject warning = server.shown().at(0);
    EXPECT_EQ(warning.value("summary").toString(), "Expiration Warning");
    EXPECT_EQ(warning.value("body").toString(),
              "Your Domain Registrar \"acme.com\" for Acme expires in 3 days.");
    EXPECT_EQ(warning.value("appIcon").toString(), VORLANE_APP_ID);
    const QJsonObject hints = warning.value("hints").toObject();
    EXPECT_EQ(hints.value("urgency").toInt(), 1);
    EXPECT_EQ(hints.value("category").toString(), "EXPIRATION_WARNING");
    EXPECT_EQ(hints.value("desktop-entry").toString(), VORLANE_APP_ID);
    EXPECT_EQ(hints.value("sound-name").toString(), "message-new-instant");
    EXPECT_TRUE(warning.value("actions").toArray().contains("default"));

    // Already shown: the next minute shows nothing again; two days on, the critical one comes.
    EXPECT_TRUE(m_center.deliverDue(utc(2026, 3, 17, 18, 31)));
    EXPECT_EQ(server.shown().size(), 1U);
    EXPECT_TRUE(m_center.deliverDue(utc(2026, 3, 19, 18, 30)));
    ASSERT_EQ(server.shown().size(), 2U);
    const QJsonObject critical = server.shown().at(1);
    EXPECT_EQ(critical.value("summary").toString(), "Critical: Expiring Tomorrow");
    EXPECT_EQ(critical.value("body").toString(),
              "Domain Registrar \"acme.com\" for Acme expires tomorrow.");
    EXPECT_EQ(critical.value("hints").toObject().value("urgency").toInt(), 2);
    EXPECT_EQ(critical.value("hints").toObject().value("category").toString(),
              "EXPIRATION_CRITICAL");
    EXPECT_EQ(critical.value("hints").toObject().value("sound-name").toString(), "dialog-warning");
    EXPECT_TRUE(m_center.pendingRequests().empty());

    // A rebuild within the minute a reminder fell due does not bring it back.
    m_clock.set(utc(2026, 3, 19, 18, 30) + seconds(20));
    service("other.org", utc(2026, 4, 20, 18, 30));
    site.expirationDate = utc(2026, 3, 20, 18, 30) + seconds(40);
    schedule();
    EXPECT_TRUE(m_center.deliverDue(m_clock.now()));
    EXPECT_EQ(server.shown().size(), 2U);

    // A click on the critical one names it.
    m_center.watchActivations();
    QSignalSpy activated(&m_center, &DesktopNotificationCenter::activated);
    server.click(static_cast<uint>(critical.value("id").toInt()));
    ASSERT_TRUE(activated.wait(5000));
    EXPECT_EQ(activated.at(0).at(0).toString().toStdString(),
              "vorlane.critical." + site.id.toString() + ".1d");
}

TEST_F(ReminderTest, BodiesAreEscapedForAServiceThatReadsMarkupAndLeftAloneForOneThatDoesNot) {
    m_acme.name = "R&D <Labs>";
    service("<b>acme</b> & co", utc(2026, 3, 20, 18, 30));
    schedule();
    {
        NotificationServerProcess server; // reads body markup, as GNOME Shell does
        ASSERT_TRUE(server.ready());
        EXPECT_TRUE(m_center.deliverDue(utc(2026, 3, 17, 18, 30)));
        ASSERT_EQ(server.shown().size(), 1U);
        EXPECT_EQ(server.shown()[0].value("body").toString(),
                  "Your Domain Registrar \"&lt;b&gt;acme&lt;/b&gt; &amp; co\" for R&amp;D "
                  "&lt;Labs&gt; expires in 3 days.");
        EXPECT_EQ(server.shown()[0].value("summary").toString(), "Expiration Warning");
    }
    NotificationServerProcess plain(QStringLiteral("body,actions"));
    ASSERT_TRUE(plain.ready());
    EXPECT_TRUE(m_center.deliverDue(utc(2026, 3, 19, 18, 30)));
    ASSERT_EQ(plain.shown().size(), 1U);
    EXPECT_EQ(plain.shown()[0].value("body").toString(),
              "Domain Registrar \"<b>acme</b> & co\" for R&D <Labs> expires tomorrow.")
        << "a service that shows bodies as they are must not show entities";
}

TEST_F(ReminderTest, WithoutANotificationServiceThePermissionErrorIsLoggedAndRemindersWait) {
    m_manager.requestPermission();
    ASSERT_TRUE(QTest::qWaitFor([this] {
        std::lock_guard lock(m_logMutex);
        return !m_log.empty();
    }));
    {
        std::lock_guard lock(m_logMutex);
        EXPECT_TRUE(m_log.at(0).starts_with("Notification permission error: ")) << m_log.at(0);
        EXPECT_GT(m_log.at(0).size(), std::string("Notification permission error: ").size());
    }
    service("acme.com", utc(2026, 3, 20, 18, 30));
    schedule();
    EXPECT_FALSE(m_center.deliverDue(utc(2026, 3, 17, 18, 30)));
    EXPECT_EQ(m_center.pendingRequests().size(), 2U) << "kept for when a service answers";

    NotificationServerProcess server;
    ASSERT_TRUE(server.ready());
    m_manager.requestPermission();
    QTest::qWait(300);
    {
        std::lock_guard lock(m_logMutex);
        EXPECT_EQ(m_log.size(), 1U) << "an answering service is permission enough";
    }
    EXPECT_TRUE(m_center.deliverDue(utc(2026, 3, 17, 18, 30)));
    EXPECT_EQ(server.shown().size(), 1U) << "late, but once";
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void replaceContent(const QString& path, const QByteArray& content) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
}

ino_t inodeOf(const QString& path) {
    struct stat status {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

TEST_F(ReminderTest, OldDamagedOrCutShortScheduleIsSetAsideAndTheNextRebuildRestoresIt) {
    NotificationServerProcess server;
    ASSERT_TRUE(server.ready());
    service("acme.com", utc(2026, 3, 20, 18, 30));
    const auto setAsideThenRebuilt = [&](const QByteArray& content, const char* what) {
        SCOPED_TRACE(what);
        replaceContent(schedulePath(), content);
        // The minute tick finds it first: nothing shown, nothing crashes, the file goes aside.
        EXPECT_TRUE(m_center.deliverDue(utc(2026, 3, 25, 12)));
        EXPECT_TRUE(server.shown().empty());
        EXPECT_FALSE(QFile::exists(schedulePath()));
        EXPECT_EQ(contentOf(schedulePath() + ".damaged"), content) << "kept for a person to see";
        EXPECT_EQ(QFile::permissions(schedulePath() + ".damaged") & QFileDevice::ReadOther,
                  QFileDevice::Permissions());
        EXPECT_TRUE(m_center.pendingRequests().empty());
        schedule();
        EXPECT_EQ(m_center.pendingRequests().size(), 2U);
    };

    schedule();
    m_center.flush(); // the write happens on the centre's worker
    const QByteArray good = contentOf(schedulePath());
    ASSERT_FALSE(good.isEmpty());
    EXPECT_EQ(QFile::permissions(schedulePath()), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                      QFileDevice::ReadUser |
                                                      QFileDevice::WriteUser);

    // What an earlier release wrote.
    setAsideThenRebuilt(R"({"version": 1, "requests": [{"identifier": "vorlane.warn.X.3d"}]})",
                        "older version");
    // A later release's file: the head is this format's, the version is not.
    QByteArray later = good;
    later[8] = static_cast<char>(ReminderSchedule::formatVersion + 1);
    setAsideThenRebuilt(later, "later version");
    // Cut short, as by a full disk: the head alone cannot tell, the length can.
    setAsideThenRebuilt(good.left(good.size() - 7), "cut short");
    // A length inside an entry that runs past the end of the file.
    QByteArray wild = good;
    const qsizetype text = wild.indexOf("vorlane.");
    ASSERT_GT(text, 4);
    wild[text - 1] = static_cast<char>(0x7f);
    setAsideThenRebuilt(wild, "wild length");
    setAsideThenRebuilt(QByteArray(), "empty");

    // Restored in full: the warning arrives at its minute.
    EXPECT_TRUE(m_center.deliverDue(utc(2026, 3, 17, 18, 30)));
    EXPECT_EQ(server.shown().size(), 1U);
}

TEST_F(ReminderTest, RebuildOfAnUnchangedVaultLeavesTheFileAloneAndItsShownMarksStand) {
    NotificationServerProcess server;
    ASSERT_TRUE(server.ready());
    // 14:30:40: rebuilt at 14:30:10 the day before, the critical reminder is still ahead.
    ServiceRecord& site = service("acme.com", utc(2026, 3, 20, 18, 30) + seconds(40));
    schedule();
    m_center.flush();
    const ino_t written = inodeOf(schedulePath());
    ASSERT_NE(written, 0U);
    schedule();
    m_center.flush();
    EXPECT_EQ(inodeOf(schedulePath()), written) << "the same list: not written again";

    site.title = "acme.org";
    schedule();
    m_center.flush();
    EXPECT_NE(inodeOf(schedulePath()), written);
    EXPECT_EQ(m_center.pendingRequests().at(0).body,
              "Your Domain Registrar \"acme.org\" for Acme expires in 3 days.");

    // Shown within its own minute, then rebuilt in that minute: neither pending again nor shown
    // twice, whether the file is rewritten or not.
    m_clock.set(utc(2026, 3, 19, 18, 30) + seconds(10));
    ASSERT_TRUE(m_center.deliverDue(m_clock.now()));
    ASSERT_EQ(server.shown().size(), 2U);
    schedule();
    schedule();
    EXPECT_TRUE(m_center.pendingRequests().empty());
    EXPECT_TRUE(m_center.deliverDue(m_clock.now()));
    EXPECT_EQ(server.shown().size(), 2U);
}

TEST_F(ReminderTest, QuittingRightAfterARebuildStillWritesTheWholeSchedule) {
    constexpr int serviceCount = 3000;
    for (int i = 0; i < serviceCount; ++i) {
        service("site-" + std::to_string(i) + ".com", m_clock.now() + days(10) + minutes(i));
    }
    {
        DesktopNotificationCenter center(schedulePath(), QDBusConnection::sessionBus(), m_clock);
        NotificationManager manager(center, m_calendar);
        std::vector<ServiceRecord*> list;
        for (ServiceRecord& s : m_services) {
            list.push_back(&s);
        }
        manager.scheduleExpirationNotifications(list);
        // Gone before the main loop ever ran: the program quit at once.
    }
    const ReminderSchedule file(schedulePath());
    const ReminderSchedule::Lock lock = file.lock();
    const std::vector<ReminderSchedule::Entry> entries = file.load();
    ASSERT_EQ(entries.size(), 2U * serviceCount);
    std::set<std::string> identifiers;
    for (const ReminderSchedule::Entry& entry : entries) {
        EXPECT_FALSE(entry.delivered);
        identifiers.insert(entry.request.identifier);
    }
    EXPECT_EQ(identifiers.size(), 2U * serviceCount);
    EXPECT_EQ(file.nextDue(), entries.front().request.dueMinute);
}

TEST_F(ReminderTest, ServicesEditedOrDeletedWhileTheScheduleIsBuiltDoNotReachIt) {
    constexpr int serviceCount = 2000;
    for (int i = 0; i < serviceCount; ++i) {
        service("site-" + std::to_string(i) + ".com", m_clock.now() + days(10) + minutes(i));
    }
    const std::string firstId = m_services.front().id.toString();
    schedule();
    // The requests are built on the centre's worker: what the window does meanwhile to the
    // services and their organization must not reach them (nor crash them).
    m_acme.name = "Renamed";
    for (ServiceRecord& s : m_services) {
        s.title = "edited";
    }
    m_services.clear();

    const auto pending = pendingById();
    ASSERT_EQ(pending.size(), 2U * serviceCount);
    EXPECT_EQ(pending.at("vorlane.warn." + firstId + ".3d").body,
              "Your Domain Registrar \"site-0.com\" for Acme expires in 3 days.");
}

TEST_F(ReminderTest, DueRemindersArriveInTheOrderTheyFellDueWhateverTheServiceOrder) {
    NotificationServerProcess server;
    ASSERT_TRUE(server.ready());
    // Listed latest first; two fall due in the same minute and keep their list order.
    service("third.com", utc(2026, 3, 20, 18, 32));
    service("second-a.com", utc(2026, 3, 20, 18, 31) + seconds(30));
    service("second-b.com", utc(2026, 3, 20, 18, 31));
    service("first.com", utc(2026, 3, 20, 18, 30));
    schedule();
    std::vector<std::string> pendingOrder;
    for (const NotificationRequest& request : m_center.pendingRequests()) {
        pendingOrder.push_back(request.body);
    }
    ASSERT_EQ(pendingOrder.size(), 8U);
    EXPECT_EQ(pendingOrder.front(),
              "Your Domain Registrar \"first.com\" for Acme expires in 3 days.");
    EXPECT_EQ(pendingOrder.back(), "Domain Registrar \"third.com\" for Acme expires tomorrow.");

    // The computer slept through all the warnings: they come now, earliest first.
    EXPECT_TRUE(m_center.deliverDue(utc(2026, 3, 18, 9)));
    std::vector<QString> shown;
    for (const QJsonObject& notification : server.shown()) {
        shown.push_back(notification.value("body").toString());
    }
    EXPECT_EQ(shown, (std::vector<QString>{
                         "Your Domain Registrar \"first.com\" for Acme expires in 3 days.",
                         "Your Domain Registrar \"second-a.com\" for Acme expires in 3 days.",
                         "Your Domain Registrar \"second-b.com\" for Acme expires in 3 days.",
                         "Your Domain Registrar \"third.com\" for Acme expires in 3 days.",
                     }));
    EXPECT_EQ(m_center.pendingRequests().size(), 4U) << "the critical ones are still ahead";
}

TEST_F(ReminderTest, TimerCommandDeliversWhileClosedAndNeverTwiceAlongsideTheProgram) {
    NotificationServerProcess server;
    ASSERT_TRUE(server.ready());
    // 150 services: enough that the runs below overlap for a good while.
    constexpr std::size_t serviceCount = 150;
    constexpr std::size_t reminderCount = 2 * serviceCount;
    const SystemClock systemClock;
    scheduleDueInTheRealPast(serviceCount);
    ASSERT_EQ(m_center.pendingRequests().size(), reminderCount);

    // Three timer runs and the program, all at once: each reminder must arrive exactly once.
    std::vector<std::unique_ptr<QProcess>> commands;
    for (int i = 0; i < 3; ++i) {
        auto command = std::make_unique<QProcess>();
        command->start(QStringLiteral(VORLANE_APP), {QStringLiteral("--deliver-due-notifications"),
                                                     QStringLiteral("--vault"), vaultPath()});
        commands.push_back(std::move(command));
    }
    EXPECT_TRUE(m_center.deliverDue(systemClock.now()));
    for (auto& command : commands) {
        ASSERT_TRUE(command->waitForFinished(30000));
        EXPECT_EQ(command->exitCode(), 0) << command->readAllStandardError().toStdString();
    }
    std::map<QString, int> arrivals;
    for (const QJsonObject& shown : server.shown()) {
        ++arrivals[shown.value("summary").toString() + shown.value("body").toString()];
    }
    EXPECT_EQ(arrivals.size(), reminderCount);
    EXPECT_TRUE(std::ranges::all_of(arrivals, [](const auto& entry) { return entry.second == 1; }));
    EXPECT_TRUE(m_center.pendingRequests().empty());

    // Run again by the timer: nothing new. A click on any of them, whoever showed it, names it.
    const CommandRun run =
        runCommand(std::string(VORLANE_APP) + " --deliver-due-notifications --vault " +
                   shellWord(vaultPath().toStdString()));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(server.shown().size(), reminderCount);
    m_center.watchActivations();
    QSignalSpy activated(&m_center, &DesktopNotificationCenter::activated);
    for (const QJsonObject& shown : server.shown()) {
        server.click(static_cast<uint>(shown.value("id").toInt()));
    }
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return static_cast<std::size_t>(activated.size()) == reminderCount; }, 10000))
        << activated.size();
    std::set<QString> clicked;
    for (const QList<QVariant>& arguments : activated) {
        clicked.insert(arguments.at(0).toString());
    }
    EXPECT_EQ(clicked.size(), reminderCount);
}

TEST_F(ReminderTest, ProgramTickDuringARebuildsWriteAndTheTimerCommandShowEachReminderOnce) {
    NotificationServerProcess server;
    ASSERT_TRUE(server.ready());
    constexpr std::size_t serviceCount = 400;
    constexpr std::size_t reminderCount = 2 * serviceCount;
    const SystemClock systemClock;
    scheduleDueInTheRealPast(serviceCount);
    m_center.watchActivations();
    QSignalSpy activated(&m_center, &DesktopNotificationCenter::activated);

    // The window is shown again with one more service: the rebuild's write goes to the worker,
    // the minute tick queues behind it, and the timer's command runs meanwhile.
    service("later.com", m_clock.now() + days(20));
    QProcess command;
    command.start(QStringLiteral(VORLANE_APP), {QStringLiteral("--deliver-due-notifications"),
                                                QStringLiteral("--vault"), vaultPath()});
    schedule();
    m_center.deliverDueInBackground(systemClock.now());
    ASSERT_TRUE(command.waitForFinished(30000));
    EXPECT_EQ(command.exitCode(), 0) << command.readAllStandardError().toStdString();
    m_center.flush();

    std::map<QString, int> arrivals;
    for (const QJsonObject& shown : server.shown()) {
        ++arrivals[shown.value("summary").toString() + shown.value("body").toString()];
    }
    EXPECT_EQ(arrivals.size(), reminderCount);
    EXPECT_TRUE(std::ranges::all_of(arrivals, [](const auto& entry) { return entry.second == 1; }));
    const std::vector<NotificationRequest> pending = m_center.pendingRequests();
    ASSERT_EQ(pending.size(), 2U) << "only the new service's, still ahead";
    EXPECT_EQ(pending[0].identifier, "vorlane.warn." + m_services.back().id.toString() + ".3d");
    EXPECT_TRUE(m_center.deliverDue(systemClock.now()));
    EXPECT_EQ(server.shown().size(), reminderCount) << "nothing lost to come back later";

    // The last one shown, whoever showed it, opens its service when clicked.
    const QJsonObject last = server.shown().back();
    server.click(static_cast<uint>(last.value("id").toInt()));
    ASSERT_TRUE(activated.wait(5000));
    EXPECT_TRUE(activated.at(0).at(0).toString().startsWith("vorlane.critical."));
}

} // namespace
} // namespace vorlane::testing
