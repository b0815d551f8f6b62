// SPDX-License-Identifier: GPL-3.0-or-later
#include "ReminderSchedule.h"

#include "util/PrivateFile.h"

#include <QFile>
#include <QtEndian>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <iostream>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace vorlane {

namespace {

using Sound = NotificationRequest::Sound;
using Level = NotificationRequest::InterruptionLevel;

constexpr std::string_view magic = "VORLREMS";
// magic, version, string count, entry count, shown count, next due, file length.
constexpr std::size_t headSize = 8 + 4 + 4 + 8 + 8 + 8 + 8;
// Due instant, notification id, flags, title and category indexes, identifier and body lengths.
constexpr std::size_t entryFixedSize = 8 + 4 + 1 + 4 + 4 + 4 + 4;
// In the head when nothing is left to show.
constexpr std::int64_t noneDue = std::numeric_limits<std::int64_t>::max();

enum Flag : std::uint8_t {
    delivered = 1,
    hasNotificationId = 2,
    criticalSound = 4,
    timeSensitive = 8,
};
constexpr std::uint8_t knownFlags = delivered | hasNotificationId | criticalSound | timeSensitive;

std::int64_t milliseconds(Instant instant) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(instant.time_since_epoch())
        .count();
}

class Writer {
public:
    explicit Writer(std::size_t expected) { m_bytes.reserve(static_cast<qsizetype>(expected)); }

    template <typename T> void number(T value) {
        const T little = qToLittleEndian(value);
        m_bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
    }
    void text(std::string_view value) {
        number(static_cast<std::uint32_t>(value.size()));
        m_bytes.append(value.data(), static_cast<qsizetype>(value.size()));
    }
    template <typename T> void numberAt(std::size_t offset, T value) {
        const T little = qToLittleEndian(value);
        std::memcpy(m_bytes.data() + offset, &little, sizeof little);
    }
    std::size_t size() const { return static_cast<std::size_t>(m_bytes.size()); }
    const QByteArray& bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

// Reads what Writer wrote; every read checks the bounds, and a failed one leaves `ok` false.
class Reader {
public:
    explicit Reader(std::string_view bytes)
        : m_bytes(bytes) {}

    template <typename T> T number() {
        if (m_bytes.size() - m_at < sizeof(T)) {
            m_ok = false;
            return T{};
        }
        const T value = qFromLittleEndian<T>(m_bytes.data() + m_at);
        m_at += sizeof(T);
        return value;
    }
    std::string_view text() {
        const auto length = number<std::uint32_t>();
        if (!m_ok || m_bytes.size() - m_at < length) {
            m_ok = false;
            return {};
        }
        const std::string_view value = m_bytes.substr(m_at, length);
        m_at += length;
        return value;
    }
    bool ok() const { return m_ok; }
    bool atEnd() const { return m_at == m_bytes.size(); }

private:
    std::string_view m_bytes;
    std::size_t m_at = 0;
    bool m_ok = true;
};

struct Head {
    std::uint32_t stringCount = 0;
    std::uint64_t entryCount = 0;
    std::uint64_t deliveredCount = 0;
    std::int64_t nextDue = noneDue;
};

// The head of a file `fileSize` bytes long; nothing when it is not one of this version's, or the
// file is not as long as its head says (cut short by a full disk, say).
std::optional<Head> readHead(Reader& reader, std::uint64_t fileSize) {
    char start[8];
    for (char& c : start) {
        c = static_cast<char>(reader.number<std::uint8_t>());
    }
    Head head;
    const auto version = reader.number<std::uint32_t>();
    head.stringCount = reader.number<std::uint32_t>();
    head.entryCount = reader.number<std::uint64_t>();
    head.deliveredCount = reader.number<std::uint64_t>();
    head.nextDue = reader.number<std::int64_t>();
    const auto length = reader.number<std::uint64_t>();
    if (!reader.ok() || std::string_view(start, sizeof start) != magic ||
        version != ReminderSchedule::formatVersion || length != fileSize ||
        head.deliveredCount > head.entryCount ||
        // Each entry takes at least its fixed part: a wild count is damage, not a reason to
        // reserve gigabytes.
        head.entryCount > fileSize / entryFixedSize) {
        return std::nullopt;
    }
    return head;
}

std::optional<std::vector<ReminderSchedule::Entry>> parse(std::string_view bytes) {
    Reader reader(bytes);
    const std::optional<Head> head = readHead(reader, bytes.size());
    if (!head || head->stringCount > bytes.size() / 4) {
        return std::nullopt;
    }
    std::vector<std::string_view> strings;
    strings.reserve(head->stringCount);
    for (std::uint32_t i = 0; i < head->stringCount; ++i) {
        strings.push_back(reader.text());
    }
    std::vector<ReminderSchedule::Entry> entries;
    entries.reserve(head->entryCount);
    std::int64_t previousDue = std::numeric_limits<std::int64_t>::min();
    for (std::uint64_t i = 0; i < head->entryCount; ++i) {
        const auto due = reader.number<std::int64_t>();
        const auto notificationId = reader.number<std::uint32_t>();
        const auto flags = reader.number<std::uint8_t>();
        const auto title = reader.number<std::uint32_t>();
        const auto category = reader.number<std::uint32_t>();
        const std::string_view identifier = reader.text();
        const std::string_view body = reader.text();
        const bool shown = (flags & delivered) != 0;
        const bool pending = i >= head->deliveredCount;
        if (!reader.ok() || (flags & ~knownFlags) != 0 || title >= strings.size() ||
            category >= strings.size() || identifier.empty() || shown == pending ||
            (pending && ((flags & hasNotificationId) != 0 || due < previousDue ||
                         (i == head->deliveredCount && due != head->nextDue)))) {
            return std::nullopt;
        }
        if (pending) {
            previousDue = due;
        }
        entries.push_back({
            .request = {.identifier = std::string(identifier),
                        .title = std::string(strings[title]),
                        .body = std::string(body),
                        .sound = (flags & criticalSound) != 0 ? Sound::critical : Sound::standard,
                        .categoryIdentifier = std::string(strings[category]),
                        .interruptionLevel =
                            (flags & timeSensitive) != 0 ? Level::timeSensitive : Level::active,
                        .dueMinute = Instant(std::chrono::milliseconds(due))},
            .delivered = shown,
            .notificationId =
                (flags & hasNotificationId) != 0 ? std::optional(notificationId) : std::nullopt,
        });
    }
    if (!reader.atEnd() || (head->entryCount == head->deliveredCount && head->nextDue != noneDue)) {
        return std::nullopt;
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
    return QString::fromStdString(vaultPath) + QStringLiteral(".reminders");
}

std::optional<Instant> ReminderSchedule::nextDue() const {
    QFile file(m_path);
    if (!file.exists()) {
        return std::nullopt;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        std::cerr << "Reminder schedule " << m_path.toStdString()
                  << " cannot be read: " << file.errorString().toStdString() << std::endl;
        return std::nullopt;
    }
    const QByteArray bytes = file.read(headSize);
    Reader reader(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    const std::optional<Head> head = readHead(reader, static_cast<std::uint64_t>(file.size()));
    file.close();
    if (!head) {
        setAside();
        return std::nullopt;
    }
    if (head->nextDue == noneDue) {
        return std::nullopt;
    }
    return Instant(std::chrono::milliseconds(head->nextDue));
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
    const QByteArray bytes = file.readAll();
    file.close();
    if (std::optional<std::vector<Entry>> entries =
            parse(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())))) {
        return std::move(*entries);
    }
    setAside();
    return {};
}

void ReminderSchedule::setAside() const {
    // Keep the damaged file for whoever wants to look at it, and start again: the program
    // rebuilds the whole schedule from the vault at its next start anyway.
    const QString aside = m_path + QStringLiteral(".damaged");
    QFile::remove(aside);
    if (!QFile::rename(m_path, aside)) {
        QFile::remove(m_path);
    }
    std::cerr << "Reminder schedule " << m_path.toStdString()
              << " was damaged or of another version; set aside as " << aside.toStdString()
              << " and started afresh" << std::endl;
}

void ReminderSchedule::putInFileOrder(std::vector<Entry>& entries) {
    const auto firstPending = std::stable_partition(
        entries.begin(), entries.end(), [](const Entry& entry) { return entry.delivered; });
    std::stable_sort(firstPending, entries.end(), [](const Entry& a, const Entry& b) {
        return a.request.dueMinute < b.request.dueMinute;
    });
}

bool ReminderSchedule::save(std::vector<Entry> entries) const {
    putInFileOrder(entries);
    const auto firstPending =
        std::ranges::find_if(entries, [](const Entry& entry) { return !entry.delivered; });

    // Titles and categories are a handful of texts shared by thousands of entries: once each.
    std::vector<std::string_view> strings;
    std::unordered_map<std::string_view, std::uint32_t> stringIndex;
    const auto indexOf = [&](std::string_view text) {
        const auto [at, added] =
            stringIndex.emplace(text, static_cast<std::uint32_t>(strings.size()));
        if (added) {
            strings.push_back(text);
        }
        return at->second;
    };
    std::size_t expected = headSize;
    for (const Entry& entry : entries) {
        indexOf(entry.request.title);
        indexOf(entry.request.categoryIdentifier);
        expected += entryFixedSize + entry.request.identifier.size() + entry.request.body.size();
    }
    for (const std::string_view text : strings) {
        expected += 4 + text.size();
    }

    Writer writer(expected);
    for (const char c : magic) {
        writer.number(static_cast<std::uint8_t>(c));
    }
    writer.number(formatVersion);
    writer.number(static_cast<std::uint32_t>(strings.size()));
    writer.number(static_cast<std::uint64_t>(entries.size()));
    writer.number(static_cast<std::uint64_t>(firstPending - entries.begin()));
    writer.number(firstPending == entries.end() ? noneDue
                                                : milliseconds(firstPending->request.dueMinute));
    const std::size_t lengthAt = writer.size();
    writer.number(std::uint64_t{0}); // the length, known once everything is written
    for (const std::string_view text : strings) {
        writer.text(text);
    }
    for (const Entry& entry : entries) {
        const NotificationRequest& request = entry.request;
        std::uint8_t flags = 0;
        flags |= entry.delivered ? delivered : 0;
        flags |= entry.notificationId ? hasNotificationId : 0;
        flags |= request.sound == Sound::critical ? criticalSound : 0;
        flags |= request.interruptionLevel == Level::timeSensitive ? timeSensitive : 0;
        writer.number(milliseconds(request.dueMinute));
        writer.number(entry.notificationId.value_or(0));
        writer.number(flags);
        writer.number(stringIndex.at(request.title));
        writer.number(stringIndex.at(request.categoryIdentifier));
        writer.text(request.identifier);
        writer.text(request.body);
    }
    writer.numberAt(lengthAt, static_cast<std::uint64_t>(writer.size()));

    // Titles and bodies name the user's services and clients.
    const QByteArray& bytes = writer.bytes();
    if (const auto error = PrivateFile::write(
            QFile::encodeName(m_path).toStdString(),
            std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())))) {
        std::cerr << "Reminder schedule " << m_path.toStdString()
                  << " cannot be written: " << *error << std::endl;
        return false;
    }
    return true;
}

} // namespace vorlane
