// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reminders/NotificationRequest.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

// The file that keeps the reminders between runs, beside the vault: every request still to show,
// and those already shown (with the id the notification service gave them) until they are old
// enough that nothing can schedule them again. The running program and the timer's command both
// read and write it, so every read-change-write happens under `Lock`, an exclusive lock on a
// companion ".lock" file that also serialises threads of one process. Writes are atomic (a new
// file renamed over the old one, mode 0600: reminders name clients and services).
//
// The file is binary and versioned: a fixed head (format version, counts, the minute the earliest
// request still to show falls due, the file's own length), the titles and categories once each,
// then the shown entries followed by those still to show in the order they fall due. The minute
// tick reads the head alone when nothing is due, which is almost every minute. A file of another
// version, cut short or otherwise unreadable is set aside as "<file>.damaged" and the schedule
// starts empty; the next start of the program rebuilds it. Any thread, one object per thread.
class ReminderSchedule {
public:
    static constexpr std::uint32_t formatVersion = 2;

    struct Entry {
        NotificationRequest request;
        bool delivered = false;
        std::optional<std::uint32_t> notificationId; // once delivered, the service's id for it

        friend bool operator==(const Entry&, const Entry&) = default;
    };

    // Held for as long as it lives; blocks until the lock is free. `held` is false only when the
    // lock file cannot be opened (no such folder), in which case there is no schedule to guard.
    class Lock {
    public:
        explicit Lock(const QString& path);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        bool held() const { return m_fd >= 0; }

    private:
        int m_fd = -1;
    };

    explicit ReminderSchedule(QString path);

    // "<vault file>.reminders": each vault has its own schedule.
    static QString pathBeside(const std::string& vaultPath);

    const QString& path() const { return m_path; }
    Lock lock() const { return Lock(m_path + QStringLiteral(".lock")); }

    // The minute the earliest request still to show falls due, read from the file's head only;
    // nothing when none is left, the file is missing, or it had to be set aside. Call with the
    // lock held.
    std::optional<Instant> nextDue() const;
    // The entries: the shown ones first, then those still to show in the order they fall due;
    // none when the file is missing or had to be set aside. Call with the lock held.
    std::vector<Entry> load() const;
    // Replaces the file's content with `entries`, put in the order `load` gives; false (and a
    // line on standard error) when it cannot be written, the old file then being left whole.
    // Call with the lock held.
    bool save(std::vector<Entry> entries) const;

    // The order of the file: the shown entries first, then the others by the minute they fall
    // due, entries of one minute keeping their order in `entries`.
    static void putInFileOrder(std::vector<Entry>& entries);

private:
    void setAside() const;

    QString m_path;
};

} // namespace vorlane
