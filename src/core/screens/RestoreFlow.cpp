// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/RestoreFlow.h"

#include "backup/BackupFile.h"
#include "backup/BackupReport.h"
#include "backup/BackupRestore.h"
#include "store/DataStore.h"
#include "util/DateText.h"
#include "util/UserCalendar.h"

namespace vorlane {

RestoreFlow::RestoreFlow(DataStore& store, const UserCalendar& calendar)
    : m_store(store)
    , m_calendar(calendar) {}

RestoreFlow::~RestoreFlow() {
    // A sheet closed mid-restore leaves the vault and the keyring as they were.
    cancel();
}

std::string RestoreFlow::subtitle() const {
    switch (m_step) {
    case Step::chooseFile:
        return "Step 1: Choose a backup file";
    case Step::password:
        return "Step 2: Enter the backup password";
    case Step::summary:
        return "Step 3: Review what will be restored";
    case Step::restoring:
        return "Step 4: Restoring";
    case Step::done:
        return restored() ? "Restore finished" : "Nothing was restored";
    }
    return {};
}

int RestoreFlow::lastReachedMarker() const {
    switch (m_step) {
    case Step::chooseFile:
        return 0;
    case Step::password:
        return 1;
    case Step::summary:
        return 2;
    case Step::restoring:
    case Step::done:
        return 3;
    }
    return 0;
}

bool RestoreFlow::chooseFile(const std::string& path) {
    if (m_step != Step::chooseFile) {
        return false;
    }
    m_path = path;
    m_bytes.reset();
    std::string bytes;
    if (std::optional<std::string> unreadable = BackupFile::read(path, bytes)) {
        m_fileError = "The file could not be read: " + *unreadable + ".";
        return false;
    }
    if (std::optional<std::string> wrong = BackupFile::checkHeader(bytes)) {
        m_fileError = std::move(wrong);
        return false;
    }
    m_fileError.reset();
    m_passwordError.reset();
    password.clear();
    m_bytes = std::make_shared<const std::string>(std::move(bytes));
    m_step = Step::password;
    return true;
}

std::optional<RestoreFlow::Job> RestoreFlow::unlock() {
    if (m_step != Step::password || !mainButtonEnabled()) {
        return std::nullopt;
    }
    m_isOpening = true;
    m_passwordError.reset();
    return Job{m_bytes, password, ++m_run};
}

void RestoreFlow::opened(std::uint64_t run, Result<BackupContents, std::string> contents) {
    if (m_step != Step::password || !m_isOpening || run != m_run) {
        return;
    }
    m_isOpening = false;
    if (!contents) {
        m_passwordError = contents.error();
        return;
    }
    const BackupContents& held = contents.value();
    m_createdAt = held.createdAt;
    m_holds = BackupReport::holds(held);
    m_missingSecrets = BackupReport::missingSecrets(held).size();
    m_vaultWasEmpty = m_store.fetchOrganizations(true).empty() && m_store.countServices(true) == 0;
    m_restore = std::make_unique<BackupRestore>(m_store, std::move(contents).value());
    m_forecast = m_restore->forecast();
    m_step = Step::summary;
}

std::vector<std::pair<std::string, std::string>> RestoreFlow::contentsRows() const {
    std::vector<std::pair<std::string, std::string>> rows{
        {"Made", DateText::format(m_createdAt, DateText::Style::abbreviatedWithTime, m_calendar)},
        {"Holds", m_holds},
    };
    if (m_missingSecrets > 0) {
        rows.emplace_back("Missing secrets", std::to_string(m_missingSecrets) +
                                                 " (not in the keyring when it was made)");
    }
    return rows;
}

std::string RestoreFlow::planText() const {
    if (m_vaultWasEmpty) {
        return "Your vault is empty: everything in the backup will be restored.";
    }
    return "Your vault already has records, so the backup will be merged into it: " +
           std::to_string(m_forecast.added) + " added, " + std::to_string(m_forecast.updated) +
           " updated (the backup's copy is newer), " + std::to_string(m_forecast.left) +
           " left as they are. Nothing is deleted.";
}

void RestoreFlow::startRestore() {
    if (m_step != Step::summary || !m_restore) {
        return;
    }
    m_step = Step::restoring;
}

bool RestoreFlow::restoreStep(std::size_t count) {
    if (m_step != Step::restoring) {
        return false;
    }
    if (m_restore->step(count)) {
        return true;
    }
    m_step = Step::done;
    return false;
}

double RestoreFlow::progress() const {
    if (!m_restore || m_restore->total() == 0) {
        return m_step == Step::done ? 1.0 : 0.0;
    }
    return static_cast<double>(m_restore->done()) / static_cast<double>(m_restore->total());
}

std::string RestoreFlow::progressText() const {
    if (!m_restore) {
        return {};
    }
    return "Writing secrets to the keyring: " + std::to_string(m_restore->done()) + " of " +
           std::to_string(m_restore->total()) + "\u2026";
}

bool RestoreFlow::restored() const {
    return m_step == Step::done && m_restore && m_restore->finished() && !m_restore->error();
}

std::string RestoreFlow::resultText() const {
    if (m_step != Step::done || !m_restore) {
        return {};
    }
    if (const std::optional<std::string>& error = m_restore->error()) {
        if (m_cancelled) {
            return "The restore was cancelled. Your vault and keyring are as they were.";
        }
        std::string reason = *error;
        if (!reason.empty() && reason.back() != '.') {
            reason += '.';
        }
        return "The restore failed: " + reason + " Your vault and keyring are as they were.";
    }
    return BackupReport::restored(m_restore->summary());
}

bool RestoreFlow::cancel() {
    if (m_step == Step::password && m_isOpening) {
        m_isOpening = false;
        ++m_run;
        return true;
    }
    if (m_step == Step::restoring) {
        m_cancelled = true;
        m_restore->cancel();
        m_step = Step::done;
        return true;
    }
    return false;
}

bool RestoreFlow::showsBack() const {
    return m_step == Step::password || m_step == Step::summary;
}

void RestoreFlow::back() {
    if (m_step == Step::password && !m_isOpening) {
        m_step = Step::chooseFile;
    } else if (m_step == Step::summary) {
        m_restore.reset();
        m_step = Step::password;
    }
}

std::string RestoreFlow::mainButtonTitle() const {
    switch (m_step) {
    case Step::chooseFile:
        return "Choose File\u2026";
    case Step::password:
        return "Open";
    case Step::summary:
    case Step::restoring:
        return "Restore";
    case Step::done:
        return "Done";
    }
    return {};
}

bool RestoreFlow::mainButtonEnabled() const {
    switch (m_step) {
    case Step::chooseFile:
        return true;
    case Step::password:
        return !m_isOpening && !password.empty();
    case Step::summary:
        return true;
    case Step::restoring:
        return false;
    case Step::done:
        return true;
    }
    return false;
}

} // namespace vorlane
