// SPDX-License-Identifier: GPL-3.0-or-later
#include "DesktopNotificationCenter.h"

#include "util/Clock.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QVariantMap>

#include <iostream>
#include <memory>
#include <set>
#include <string_view>
#include <unordered_map>

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

using Entry = ReminderSchedule::Entry;

// A server that announces "body-markup" reads the body as a subset of HTML: a title such as
// "R&D <staging>" would lose its text to tags and entities. Only these three characters start
// markup there; quotes stay as they are.
QString escapedForMarkup(const std::string& text) {
    QString escaped;
    const QString plain = QString::fromStdString(text);
    escaped.reserve(plain.size());
    for (const QChar c : plain) {
        if (c == u'&') {
            escaped += QStringLiteral("&amp;");
        } else if (c == u'<') {
            escaped += QStringLiteral("&lt;");
        } else if (c == u'>') {
            escaped += QStringLiteral("&gt;");
        } else {
            escaped += c;
        }
    }
    return escaped;
}

// One request per identifier: a later one replaces an earlier one in its place.
std::vector<NotificationRequest> withoutRepeats(std::vector<NotificationRequest> requests) {
    std::unordered_map<std::string_view, std::size_t> position;
    position.reserve(requests.size());
    std::vector<NotificationRequest> unique;
    unique.reserve(requests.size());
    for (NotificationRequest& request : requests) {
        const auto [at, added] = position.emplace(request.identifier, unique.size());
        if (added) {
            unique.push_back(std::move(request));
        } else {
            unique[at->second] = std::move(request);
        }
    }
    return unique;
}

} // namespace

DesktopNotificationCenter::DesktopNotificationCenter(const QString& schedulePath,
                                                     const QDBusConnection& bus, const Clock& clock,
                                                     QObject* parent)
    : QObject(parent)
    , m_schedule(schedulePath)
    , m_bus(bus)
    , m_clock(clock) {
    m_worker.setMaxThreadCount(1);
}

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

void DesktopNotificationCenter::replaceAllPendingRequests(RequestBuilder build) {
    enqueue([this, build = std::move(build), now = m_clock.now()] { write(build(), now); });
}

void DesktopNotificationCenter::enqueue(std::function<void()> work) {
    m_worker.start(std::move(work));
}

void DesktopNotificationCenter::flush() {
    m_worker.waitForDone();
}

void DesktopNotificationCenter::write(std::vector<NotificationRequest> built, Instant now) const {
    std::vector<NotificationRequest> requests = withoutRepeats(std::move(built));
    const ReminderSchedule::Lock lock = m_schedule.lock();
    const std::vector<Entry> old = m_schedule.load();

    // Shown requests stay (the timer's command may have shown some since this process last
    // looked), so that one rebuilt within its own minute is not shown a second time.
    const Instant oldest = now - deliveredKept;
    std::vector<Entry> entries;
    entries.reserve(old.size() + requests.size());
    std::set<std::pair<std::string_view, Instant>> shown;
    for (const Entry& entry : old) {
        if (entry.delivered && entry.request.dueMinute >= oldest) {
            entries.push_back(entry);
            shown.emplace(entry.request.identifier, entry.request.dueMinute);
        }
    }
    for (NotificationRequest& request : requests) {
        if (shown.empty() || !shown.contains({request.identifier, request.dueMinute})) {
            entries.push_back({std::move(request), false, std::nullopt});
        }
    }
    ReminderSchedule::putInFileOrder(entries);
    // A program started again on an unchanged vault rebuilds exactly what the file holds.
    if (entries != old) {
        m_schedule.save(std::move(entries));
    }
}

bool DesktopNotificationCenter::deliverDue(Instant now) {
    m_worker.waitForDone();
    bool complete = true;
    remember(deliver(now, complete));
    return complete;
}

void DesktopNotificationCenter::deliverDueInBackground(Instant now) {
    enqueue([this, now] {
        bool complete = true;
        Shown shown = deliver(now, complete);
        if (!shown.empty()) {
            QMetaObject::invokeMethod(
                this, [this, shown = std::move(shown)] { remember(shown); }, Qt::QueuedConnection);
        }
    });
}

DesktopNotificationCenter::Shown DesktopNotificationCenter::deliver(Instant now,
                                                                    bool& complete) const {
    const ReminderSchedule::Lock lock = m_schedule.lock();
    // Almost every minute nothing is due: the file's head says so.
    if (const std::optional<Instant> next = m_schedule.nextDue(); !next || *next > now) {
        return {};
    }
    std::vector<Entry> entries = m_schedule.load();
    const bool markup = readsBodyMarkup();
    Shown shown;
    for (Entry& entry : entries) {
        if (entry.delivered) {
            continue;
        }
        if (entry.request.dueMinute > now) {
            break; // the rest fall due later still
        }
        QString error;
        const std::optional<std::uint32_t> id =
            notify(entry.request, markup, m_offersActions, error);
        if (!id) {
            std::cerr << "Notification delivery error: " << error.toStdString() << std::endl;
            complete = false;
            break;
        }
        entry.delivered = true;
        entry.notificationId = *id;
        shown.emplace_back(*id, entry.request.identifier);
    }
    if (!shown.empty()) {
        const Instant oldest = now - deliveredKept;
        std::erase_if(entries, [oldest](const Entry& entry) {
            return entry.delivered && entry.request.dueMinute < oldest;
        });
        m_schedule.save(std::move(entries));
    }
    return shown;
}

void DesktopNotificationCenter::remember(const Shown& shown) {
    for (const auto& [id, identifier] : shown) {
        m_shown[id] = identifier;
    }
}

std::vector<NotificationRequest> DesktopNotificationCenter::pendingRequests() {
    flush();
    const ReminderSchedule::Lock lock = m_schedule.lock();
    std::vector<NotificationRequest> requests;
    for (Entry& entry : m_schedule.load()) {
        if (!entry.delivered) {
            requests.push_back(std::move(entry.request));
        }
    }
    return requests;
}

void DesktopNotificationCenter::show(NotificationRequest request) {
    enqueue([this, request = std::move(request)] {
        QString error;
        // Not a reminder: renewing or snoozing it would mean nothing.
        if (!notify(request, readsBodyMarkup(), false, error)) {
            std::cerr << "Notification delivery error: " << error.toStdString() << std::endl;
        }
    });
}

bool DesktopNotificationCenter::readsBodyMarkup() const {
    const QDBusMessage call = QDBusMessage::createMethodCall(service, objectPath, interface,
                                                             QStringLiteral("GetCapabilities"));
    QDBusConnection bus = m_bus;
    const QDBusMessage reply = bus.call(call, QDBus::Block, static_cast<int>(callTimeout.count()));
    // No answer: the Notify that follows fails too and says why; escaping is then moot.
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty() &&
           reply.arguments().constFirst().toStringList().contains(QStringLiteral("body-markup"));
}

std::optional<std::uint32_t> DesktopNotificationCenter::notify(const NotificationRequest& request,
                                                               bool markup, bool reminderActions,
                                                               QString& error) const {
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
    // The "default" action is a click on the notification itself. The other two need the running
    // program to hear them: the timer's command, which leaves at once, does not offer them.
    QStringList actions{QStringLiteral("default"), QStringLiteral("Open")};
    if (reminderActions) {
        actions << markRenewedAction << QStringLiteral("Mark Renewed") << snoozeAction
                << QStringLiteral("Snooze 1 Day");
    }
    // app_name, replaces_id, app_icon, summary, body, actions, hints, expire_timeout (-1: the
    // server's default).
    call << QStringLiteral("Vorlane") << 0U << QStringLiteral(VORLANE_APP_ID)
         << QString::fromStdString(request.title)
         << (markup ? escapedForMarkup(request.body) : QString::fromStdString(request.body))
         << actions << hints << -1;
    // QDBusConnection may be called from any thread: the worker blocks here, not the window.
    QDBusConnection bus = m_bus;
    const QDBusMessage reply = bus.call(call, QDBus::Block, static_cast<int>(callTimeout.count()));
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 1) {
        error = reply.type() == QDBusMessage::ErrorMessage ? reply.errorMessage()
                                                           : QStringLiteral("no reply");
        return std::nullopt;
    }
    return reply.arguments().constFirst().toUInt();
}

void DesktopNotificationCenter::watchActivations() {
    m_offersActions = true;
    m_bus.connect(service, objectPath, interface, QStringLiteral("ActionInvoked"), this,
                  SLOT(onActionInvoked(uint, QString)));
}

void DesktopNotificationCenter::onActionInvoked(uint notificationId, const QString& action) {
    if (action != QLatin1String("default") && action != markRenewedAction &&
        action != snoozeAction) {
        return;
    }
    if (const auto shown = m_shown.find(notificationId); shown != m_shown.end()) {
        report(QString::fromStdString(shown->second), action);
        return;
    }
    // Shown by the timer's command, which has left: the schedule remembers the id it was given.
    // Looked up on the worker, which may be writing the file just now.
    enqueue([this, notificationId, action] {
        std::optional<std::string> identifier;
        {
            const ReminderSchedule::Lock lock = m_schedule.lock();
            for (Entry& entry : m_schedule.load()) {
                if (entry.delivered && entry.notificationId == notificationId) {
                    identifier = std::move(entry.request.identifier);
                    break;
                }
            }
        }
        if (identifier) {
            QMetaObject::invokeMethod(
                this,
                [this, clicked = QString::fromStdString(*identifier), action] {
                    report(clicked, action);
                },
                Qt::QueuedConnection);
        }
    });
}

void DesktopNotificationCenter::report(const QString& identifier, const QString& action) {
    if (action == markRenewedAction) {
        Q_EMIT markRenewedChosen(identifier);
    } else if (action == snoozeAction) {
        Q_EMIT snoozeChosen(identifier);
    } else {
        Q_EMIT activated(identifier);
    }
}

} // namespace vorlane
