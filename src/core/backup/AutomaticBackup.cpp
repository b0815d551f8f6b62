// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/AutomaticBackup.h"

#include "app/PreferenceStore.h"
#include "backup/BackupFile.h"
#include "backup/BackupRotation.h"
#include "backup/BackupSnapshot.h"
#include "reminders/NotificationCenter.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "util/Timers.h"
#include "util/UserCalendar.h"

#include <openssl/crypto.h>

#include <filesystem>
#include <utility>

namespace vorlane {

namespace {

// Whether a password was stored (so that the secret store is not asked on every look).
constexpr std::string_view hasPasswordKey = "backupHasPassword";
// Whether the vault changed since the last backup that succeeded. True until the first one.
constexpr std::string_view vaultChangedKey = "backupVaultChanged";
// The reason last shown in a notification, until a backup succeeds.
constexpr std::string_view notifiedFailureKey = "backupNotifiedFailure";

bool sameDay(const UserCalendar& calendar, Instant first, Instant second) {
    const auto a = calendar.localTime(first);
    const auto b = calendar.localTime(second);
    return a && b && a->year == b->year && a->month == b->month && a->day == b->day;
}

} // namespace

AutomaticBackup::AutomaticBackup(DataStore& store, PreferenceStore& preferences,
                                 const UserCalendar& calendar, Timers& timers,
                                 NotificationCenter& notifications)
    : m_store(store)
    , m_preferences(preferences)
    , m_calendar(calendar)
    , m_timers(timers)
    , m_notifications(notifications) {
    m_storeChanged = ScopedConnection(store.changed, [this] { noteVaultChanged(); });
}

AutomaticBackup::~AutomaticBackup() {
    if (m_writer.joinable()) {
        m_writer.join();
    }
}

AutomaticBackupSettings AutomaticBackup::settings() const {
    return AutomaticBackupSettings::read(m_preferences);
}

void AutomaticBackup::setSettings(const AutomaticBackupSettings& settings) {
    settings.write(m_preferences);
    changed.emit();
}

bool AutomaticBackup::hasPassword() const {
    return m_preferences.boolValue(hasPasswordKey, false);
}

bool AutomaticBackup::setPassword(std::string_view password) {
    SecretBytes bytes(password.begin(), password.end());
    const bool saved = m_store.keychain().save(bytes, passwordAccount);
    OPENSSL_cleanse(bytes.data(), bytes.size());
    if (!saved) {
        return false;
    }
    m_preferences.setBoolValue(hasPasswordKey, true);
    changed.emit();
    return true;
}

std::optional<LastBackup> AutomaticBackup::lastBackup() const {
    return LastBackup::read(m_preferences);
}

bool AutomaticBackup::isDue() const {
    const AutomaticBackupSettings current = settings();
    if (m_running || !current.enabled || current.folder.empty() || !hasPassword() ||
        !m_preferences.boolValue(vaultChangedKey, true)) {
        return false;
    }
    const std::optional<LastBackup> last = lastBackup();
    return !last || !last->succeededAt ||
           !sameDay(m_calendar, *last->succeededAt, m_calendar.now());
}

bool AutomaticBackup::backUpIfDue() {
    if (!isDue()) {
        return false;
    }
    start(Trigger::schedule);
    return true;
}

bool AutomaticBackup::backUpNow() {
    if (m_running) {
        return false;
    }
    start(Trigger::user);
    return true;
}

void AutomaticBackup::start(Trigger trigger) {
    const AutomaticBackupSettings current = settings();
    const Attempt attempt{trigger, m_calendar.now(), current.folder, m_changes};
    if (current.folder.empty()) {
        finish(attempt, std::string(noFolder));
        return;
    }
    std::optional<SecretBytes> password = m_store.keychain().readData(passwordAccount);
    if (!password) {
        finish(attempt, std::string(passwordUnreadable));
        return;
    }
    std::optional<BackupContents> contents = BackupSnapshot::take(m_store, attempt.at);
    if (!contents) {
        finish(attempt, std::string(secretsUnreadable));
        return;
    }
    const std::string path =
        (std::filesystem::path(current.folder) / BackupFile::fileName(attempt.at, m_calendar))
            .string();
    m_running = true;
    if (m_writer.joinable()) {
        m_writer.join(); // the last one has posted its result already
    }
    std::string passwordText(password->begin(), password->end());
    OPENSSL_cleanse(password->data(), password->size());
    m_writer = std::thread([this, attempt, path, contents = std::move(*contents),
                            password = std::move(passwordText),
                            alive = std::weak_ptr<int>(m_alive)]() mutable {
        std::optional<std::string> error = BackupFile::write(path, contents, password);
        // The vault's secrets and the password stay in this process only as long as needed.
        OPENSSL_cleanse(password.data(), password.size());
        for (auto& secret : contents.secrets) {
            OPENSSL_cleanse(secret.second.data(), secret.second.size());
        }
        m_timers.post([this, alive, attempt, error = std::move(error)]() mutable {
            if (alive.lock()) {
                finish(attempt, std::move(error));
            }
        });
    });
    changed.emit();
}

void AutomaticBackup::finish(const Attempt& attempt, std::optional<std::string> error) {
    m_running = false;
    const bool written = !error;
    const std::optional<LastBackup> previous = lastBackup();
    if (written) {
        if (const auto rotation =
                BackupRotation::keepNewest(attempt.folder, settings().keepCount)) {
            error = std::string(rotationFailed) + *rotation;
        }
        if (m_changes == attempt.changesSeen) {
            m_preferences.setBoolValue(vaultChangedKey, false);
        }
    }
    LastBackup{.at = attempt.at,
               .error = error,
               .succeededAt = written ? std::optional(attempt.at)
                                      : (previous ? previous->succeededAt : std::nullopt)}
        .write(m_preferences);
    if (!error) {
        m_preferences.setStringValue(notifiedFailureKey, {});
    } else if (attempt.trigger == Trigger::schedule) {
        notifyFailure(*error, attempt.folder);
    }
    changed.emit();
}

void AutomaticBackup::notifyFailure(const std::string& reason, const std::string& folder) {
    if (m_preferences.stringValue(notifiedFailureKey, {}) == reason) {
        return;
    }
    m_preferences.setStringValue(notifiedFailureKey, reason);
    NotificationRequest request;
    request.identifier = failureIdentifier;
    request.title = failureTitle;
    request.body = folder.empty()
                       ? reason
                       : "Vorlane could not back up your vault into " + folder + ": " + reason;
    request.categoryIdentifier = failureCategory;
    request.dueMinute = std::chrono::floor<std::chrono::minutes>(m_calendar.now());
    m_notifications.show(std::move(request));
}

void AutomaticBackup::noteVaultChanged() {
    ++m_changes;
    // Most changes come while the mark is already set: no write to the preferences for those.
    if (!m_preferences.boolValue(vaultChangedKey, true)) {
        m_preferences.setBoolValue(vaultChangedKey, true);
    }
}

} // namespace vorlane
