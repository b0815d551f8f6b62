#include "ReminderSchedule.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <iostream>
#include <utility>

namespace vorlane {

namespace {

constexpr int formatVersion = 1;

using Sound = NotificationRequest::Sound;
using Level = NotificationRequest::InterruptionLevel;

QJsonObject toJson(const ReminderSchedule::Entry& entry) {
    const NotificationRequest& request = entry.request;
    QJsonObject object{
        {QStringLiteral("identifier"), QString::fromStdString(request.identifier)},
        {QStringLiteral("title"), QString::fromStdString(request.title)},
        {QStringLiteral("body"), QString::fromStdString(request.body)},
        {QStringLiteral("sound"),
         request.sound == Sound::critical ? QStringLiteral("critical") : QStringLiteral("default")},
        {QStringLiteral("category"), QString::fromStdString(request.categoryIdentifier)},
        {QStringLiteral("interruptionLevel"), request.interruptionLevel == Level::timeSensitive
                                                  ? QStringLiteral("timeSensitive")
                                                  : QStringLiteral("active")},
        // Milliseconds since 1970 in UTC: exact in a JSON number for many millennia.
        {QStringLiteral("due"), static_cast<double>(request.dueMinute.time_since_epoch().count())},
        {QStringLiteral("delivered"), entry.delivered},
    };
    if (entry.notificationId) {
        object.insert(QStringLiteral("notificationId"), static_cast<double>(*entry.notificationId));
    }
    return object;
}

std::optional<std::string> text(const QJsonObject& object, const QString& key) {
    const QJsonValue value = object.value(key);
    if (!value.isString()) {
        return std::nullopt;
    }
    return value.toString().toStdString();
}

std::optional<ReminderSchedule::Entry> fromJson(const QJsonValue& value) {
    if (!value.isObject()) {
        return std::nullopt;
    }
    const QJsonObject object = value.toObject();
    const auto identifier = text(object, QStringLiteral("identifier"));
    const auto title = text(object, QStringLiteral("title"));
    const auto body = text(object, QStringLiteral("body"));
    const auto sound = text(object, QStringLiteral("sound"));
    const auto category = text(object, QStringLiteral("category"));
    const auto level = text(object, QStringLiteral("interruptionLevel"));
    const QJsonValue due = object.value(QStringLiteral("due"));
    const QJsonValue delivered = object.value(QStringLiteral("delivered"));
    if (!identifier || identifier->empty() || !title || !body || !category || !due.isDouble() ||
        !delivered.isBool() || (sound != "default" && sound != "critical") ||
        (level != "active" && level != "timeSensitive")) {
        return std::nullopt;
    }
    ReminderSchedule::Entry entry{
        .request = {.identifier = *identifier,
                    .title = *title,
                    .body = *body,
                    .sound = sound == "critical" ? Sound::critical : Sound::standard,
                    .categoryIdentifier = *category,
                    .interruptionLevel =
                        level == "timeSensitive" ? Level::timeSensitive : Level::active,
                    .dueMinute = Instant(
                        std::chrono::milliseconds(static_cast<std::int64_t>(due.toDouble())))},
        .delivered = delivered.toBool(),
        .notificationId = std::nullopt,
    };
    if (const QJsonValue id = object.value(QStringLiteral("notificationId")); id.isDouble()) {
        entry.notificationId = static_cast<std::uint32_t>(id.toDouble());
    }
    return entry;
}

std::optional<std::vector<ReminderSchedule::Entry>> parse(const QByteArray& bytes) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject root = document.object();
    const QJsonValue requests = root.value(QStringLiteral("requests"));
    if (root.value(QStringLiteral("version")).toInt() != formatVersion || !requests.isArray()) {
        return std::nullopt;
    }
    std::vector<ReminderSchedule::Entry> entries;
    for (const QJsonValue& value : requests.toArray()) {
        std::optional<ReminderSchedule::Entry> entry = fromJson(value);
        if (!entry) {
            return std::nullopt;
        }
        entries.push_back(std::move(*entry));
    }
    return entries;
}

} // namespace

ReminderSchedule::Lock::Lock(const QString& path)
    : m_fd(::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    if (m_fd < 0) {
        return;
    }
    while (::flock(m_fd, LOCK_EX) != 0) {
        if (errno != EINTR) {
            ::close(m_fd);
            m_fd = -1;
            return;
        }
    }
}

ReminderSchedule::Lock::~Lock() {
    if (m_fd >= 0) {
        ::close(m_fd); // releases the lock
    }
}

ReminderSchedule::ReminderSchedule(QString path)
    : m_path(std::move(path)) {}

QString ReminderSchedule::pathBeside(const std::string& vaultPath) {
    return QString::fromStdString(vaultPath) + QStringLiteral(".reminders.json");
}

std::vector<ReminderSchedule::Entry> ReminderSchedule::load() const {
    QFile file(m_path);
    if (!file.exists()) {
        return {};
    }
    if (!file.open(QIODevice::ReadOnly)) {
        std::cerr << "Reminder schedule " << m_path.toStdString()
                  << " cannot be read: " << file.errorString().toStdString() << std::endl;
        return {};
    }
    if (std::optional<std::vector<Entry>> entries = parse(file.readAll())) {
        return std::move(*entries);
    }
    file.close();
    // Keep the damaged file for whoever wants to look at it, and start again: the program
    // rebuilds the whole schedule from the vault at its next start anyway.
    const QString aside = m_path + QStringLiteral(".damaged");
    QFile::remove(aside);
    if (!QFile::rename(m_path, aside)) {
        QFile::remove(m_path);
    }
    std::cerr << "Reminder schedule " << m_path.toStdString() << " was damaged; set aside as "
              << aside.toStdString() << " and started afresh" << std::endl;
    return {};
}

bool ReminderSchedule::save(const std::vector<Entry>& entries) const {
    QJsonArray requests;
    for (const Entry& entry : entries) {
        requests.append(toJson(entry));
    }
    const QJsonObject root{{QStringLiteral("version"), formatVersion},
                           {QStringLiteral("requests"), requests}};
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly)) {
        std::cerr << "Reminder schedule " << m_path.toStdString()
                  << " cannot be written: " << file.errorString().toStdString() << std::endl;
        return false;
    }
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    file.write(QJsonDocument(root).toJson(QJsonDocument::Indented));
    if (!file.commit()) {
        std::cerr << "Reminder schedule " << m_path.toStdString()
                  << " cannot be written: " << file.errorString().toStdString() << std::endl;
        return false;
    }
    return true;
}

} // namespace vorlane
