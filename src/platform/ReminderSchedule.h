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
// file renamed over the old one, mode 0600: reminders name clients and services). A file that
// cannot be read as a schedule is set aside as "<file>.damaged" and the schedule starts empty;
// the next start of the program rebuilds it. Any thread, one object per thread.
class ReminderSchedule {
public:
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

    // "<vault file>.reminders.json": each vault has its own schedule.
    static QString pathBeside(const std::string& vaultPath);

    const QString& path() const { return m_path; }
    Lock lock() const { return Lock(m_path + QStringLiteral(".lock")); }

    // The entries in file order; none when the file is missing or had to be set aside. Call with
    // the lock held.
    std::vector<Entry> load() const;
    // Replaces the file's content; false (and a line on standard error) when it cannot be
    // written, the old file then being left whole. Call with the lock held.
    bool save(const std::vector<Entry>& entries) const;

private:
    QString m_path;
};

} // namespace vorlane
