#include "DesktopNotificationCenter.h"

#include "util/Clock.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QTimer>
#include <QVariantMap>

#include <iostream>
#include <unordered_set>
#include <utility>

namespace vorlane {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString objectPath = QStringLiteral("/org/freedesktop/Notifications");
const QString interface = QStringLiteral("org.freedesktop.Notifications");

// The freedesktop sound theme's names for an ordinary notification and for an alarm.
const QString standardSound = QStringLiteral("message-new-instant");
const QString criticalSound = QStringLiteral("dialog-warning");

// Urgency hint values of the freedesktop notification protocol.
constexpr uchar normalUrgency = 1;
constexpr uchar criticalUrgency = 2;

} // namespace

DesktopNotificationCenter::DesktopNotificationCenter(const QString& schedulePath,
                                                     const QDBusConnection& bus, const Clock& clock,
                                                     QObject* parent)
    : QObject(parent)
    , m_schedule(schedulePath)
    , m_bus(bus)
    , m_clock(clock) {}

DesktopNotificationCenter::~DesktopNotificationCenter() {
    flush();
}

void DesktopNotificationCenter::requestAuthorization(AuthorizationReply reply) {
    if (!m_bus.isConnected()) {
        const QString reason = m_bus.lastError().isValid() ? m_bus.lastError().message()
                                                           : QStringLiteral("no session bus");
        reply(false, reason.toStdString());
        return;
    }
    const QDBusMessage call = QDBusMessage::createMethodCall(
        service, objectPath, interface, QStringLiteral("GetServerInformation"));
    auto* watcher = new QDBusPendingCallWatcher(
        m_bus.asyncCall(call, static_cast<int>(callTimeout.count())), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [reply = std::move(reply)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (finished->isError()) {
                    reply(false, finished->error().message().toStdString());
                } else {
                    reply(true, std::nullopt);
                }
            });
}

void DesktopNotificationCenter::removeAllPendingRequests() {
    m_staged.emplace();
    m_stagedIndex.clear();
    scheduleFlush();
}

void DesktopNotificationCenter::add(NotificationRequest request) {
    if (!m_staged) {
        m_staged.emplace();
        m_stagedIndex.clear();
        for (ReminderSchedule::Entry& entry : pendingEntries()) {
            m_stagedIndex.emplace(entry.request.identifier, m_staged->size());
            m_staged->push_back(std::move(entry.request));
        }
    }
    const auto [position, added] = m_stagedIndex.emplace(request.identifier, m_staged->size());
    if (added) {
        m_staged->push_back(std::move(request));
    } else {
        (*m_staged)[position->second] = std::move(request);
    }
    scheduleFlush();
}

void DesktopNotificationCenter::scheduleFlush() {
    if (!m_flushQueued) {
        m_flushQueued = true;
        QTimer::singleShot(0, this, [this] { flush(); });
    }
}

void DesktopNotificationCenter::flush() {
    m_flushQueued = false;
    if (!m_staged) {
        return;
    }
    std::vector<NotificationRequest> staged = std::move(*m_staged);
    m_staged.reset();
    m_stagedIndex.clear();

    const ReminderSchedule::Lock lock = m_schedule.lock();
    // Shown requests stay (the timer's command may have shown some since this process last
    // looked), so that one rebuilt within its own minute is not shown a second time.
    const Instant oldest = m_clock.now() - deliveredKept;
    std::vector<ReminderSchedule::Entry> entries;
    for (ReminderSchedule::Entry& entry : m_schedule.load()) {
        if (entry.delivered && entry.request.dueMinute >= oldest) {
            entries.push_back(std::move(entry));
        }
    }
    std::unordered_set<std::string> shown;
    for (const ReminderSchedule::Entry& entry : entries) {
        shown.insert(entry.request.identifier + '@' +
                     std::to_string(entry.request.dueMinute.time_since_epoch().count()));
    }
    for (NotificationRequest& request : staged) {
        if (!shown.contains(request.identifier + '@' +
                            std::to_string(request.dueMinute.time_since_epoch().count()))) {
            entries.push_back({std::move(request), false, std::nullopt});
        }
    }
    m_schedule.save(entries);
}

bool DesktopNotificationCenter::deliverDue(Instant now) {
    flush();
    const ReminderSchedule::Lock lock = m_schedule.lock();
    std::vector<ReminderSchedule::Entry> entries = m_schedule.load();
    bool changed = false;
    bool complete = true;
    for (ReminderSchedule::Entry& entry : entries) {
        if (entry.delivered || entry.request.dueMinute > now) {
            continue;
        }
        QString error;
        const std::optional<std::uint32_t> id = notify(entry.request, error);
        if (!id) {
            std::cerr << "Notification delivery error: " << error.toStdString() << std::endl;
            complete = false;
            break;
        }
        entry.delivered = true;
        entry.notificationId = *id;
        m_shown[*id] = entry.request.identifier;
        changed = true;
    }
    if (changed) {
        m_schedule.save(entries);
    }
    return complete;
}

std::vector<NotificationRequest> DesktopNotificationCenter::pendingRequests() {
    flush();
    std::vector<NotificationRequest> requests;
    for (ReminderSchedule::Entry& entry : pendingEntries()) {
        requests.push_back(std::move(entry.request));
    }
    return requests;
}

std::vector<ReminderSchedule::Entry> DesktopNotificationCenter::pendingEntries() {
    const ReminderSchedule::Lock lock = m_schedule.lock();
    std::vector<ReminderSchedule::Entry> entries = m_schedule.load();
    std::erase_if(entries, [](const ReminderSchedule::Entry& entry) { return entry.delivered; });
    return entries;
}

std::optional<std::uint32_t> DesktopNotificationCenter::notify(const NotificationRequest& request,
                                                               QString& error) {
    const bool critical =
        request.interruptionLevel == NotificationRequest::InterruptionLevel::timeSensitive;
    const QVariantMap hints{
        {QStringLiteral("urgency"),
         QVariant::fromValue(critical ? criticalUrgency : normalUrgency)},
        {QStringLiteral("category"), QString::fromStdString(request.categoryIdentifier)},
        {QStringLiteral("desktop-entry"), QStringLiteral(VORLANE_APP_ID)},
        {QStringLiteral("sound-name"),
         request.sound == NotificationRequest::Sound::critical ? criticalSound : standardSound},
    };
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, objectPath, interface, QStringLiteral("Notify"));
    // app_name, replaces_id, app_icon, summary, body, actions, hints, expire_timeout (-1: the
    // server's default). The "default" action is a click on the notification itself.
    call << QStringLiteral("Vorlane") << 0U << QStringLiteral(VORLANE_APP_ID)
         << QString::fromStdString(request.title) << QString::fromStdString(request.body)
         << QStringList{QStringLiteral("default"), QStringLiteral("Open")} << hints << -1;
    const QDBusMessage reply =
        m_bus.call(call, QDBus::Block, static_cast<int>(callTimeout.count()));
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 1) {
        error = reply.type() == QDBusMessage::ErrorMessage ? reply.errorMessage()
                                                           : QStringLiteral("no reply");
        return std::nullopt;
    }
    return reply.arguments().constFirst().toUInt();
}

void DesktopNotificationCenter::watchActivations() {
    m_bus.connect(service, objectPath, interface, QStringLiteral("ActionInvoked"), this,
                  SLOT(onActionInvoked(uint, QString)));
}

void DesktopNotificationCenter::onActionInvoked(uint notificationId, const QString& action) {
    if (action != QLatin1String("default")) {
        return;
    }
    if (const auto shown = m_shown.find(notificationId); shown != m_shown.end()) {
        Q_EMIT activated(QString::fromStdString(shown->second));
        return;
    }
    // Shown by the timer's command, which has left: the schedule remembers the id it was given.
    const ReminderSchedule::Lock lock = m_schedule.lock();
    for (const ReminderSchedule::Entry& entry : m_schedule.load()) {
        if (entry.delivered && entry.notificationId == notificationId) {
            Q_EMIT activated(QString::fromStdString(entry.request.identifier));
            return;
        }
    }
}

} // namespace vorlane
