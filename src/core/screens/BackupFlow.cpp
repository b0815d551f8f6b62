// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/BackupFlow.h"

#include "auth/AuthManager.h"
#include "backup/BackupFile.h"
#include "backup/BackupPassword.h"
#include "backup/BackupReport.h"
#include "backup/BackupSnapshot.h"
#include "util/PrivateFile.h"
#include "util/UserCalendar.h"

namespace vorlane {

BackupFlow::BackupFlow(DataStore& store, AuthManager& auth, const UserCalendar& calendar)
    : m_store(store)
    , m_auth(auth)
    , m_calendar(calendar) {}

BackupFlow::~BackupFlow() {
    *m_alive = false;
}

std::string BackupFlow::subtitle() const {
    switch (m_step) {
    case Step::authenticate:
        return "Step 1: Confirm it is you";
    case Step::password:
        return "Step 2: Choose a backup password";
    case Step::working:
        return "Step 3: Saving the backup";
    case Step::done:
        return "Backup saved";
    }
    return {};
}

int BackupFlow::lastReachedMarker() const {
    switch (m_step) {
    case Step::authenticate:
        return 0;
    case Step::password:
        return 1;
    case Step::working:
    case Step::done:
        return 2;
    }
    return 0;
}

void BackupFlow::authenticate(std::function<void()> answered) {
    if (m_step != Step::authenticate || m_isAuthenticating) {
        return;
    }
    m_isAuthenticating = true;
    m_error.reset();
    m_auth.authenticateForSensitiveAction(
        authenticationReason,
        [this, alive = m_alive, answered = std::move(answered)](bool authenticated) {
            if (!*alive) {
                return;
            }
            m_isAuthenticating = false;
            if (authenticated) {
                m_step = Step::password;
            } else {
                m_error = authenticationRefused;
            }
            answered();
        });
}

void BackupFlow::useGeneratedPassword(const std::string& generated) {
    password = generated;
    confirmation = generated;
}

std::optional<PasswordStrength::Estimate> BackupFlow::passwordStrength() const {
    if (password.empty()) {
        return std::nullopt;
    }
    return PasswordStrength::estimate(password);
}

std::optional<std::string> BackupFlow::passwordMessage() const {
    if (password.empty()) {
        return std::nullopt;
    }
    return BackupPassword::problem(password);
}

std::optional<std::string> BackupFlow::confirmationMessage() const {
    if (confirmation.empty() || confirmation == password) {
        return std::nullopt;
    }
    return BackupPassword::notRepeated;
}

std::string BackupFlow::proposedFileName() const {
    return BackupFile::fileName(m_calendar.now(), m_calendar);
}

std::optional<BackupFlow::Job> BackupFlow::start(const std::string& path) {
    if (m_step != Step::password || !mainButtonEnabled()) {
        return std::nullopt;
    }
    m_error.reset();
    std::optional<BackupContents> contents = BackupSnapshot::take(m_store, m_calendar.now());
    if (!contents) {
        m_error = keyringUnreadable;
        return std::nullopt;
    }
    m_path = path;
    m_doneText = BackupReport::backedUp(*contents);
    m_missingSecrets.clear();
    for (const BackupReport::MissingSecret& missing : BackupReport::missingSecrets(*contents)) {
        m_missingSecrets.push_back(BackupReport::describe(missing));
    }
    m_step = Step::working;
    return Job{std::move(*contents), password, ++m_run};
}

void BackupFlow::sealed(std::uint64_t run, const std::string& bytes) {
    if (m_step != Step::working || run != m_run) {
        return;
    }
    if (bytes.empty()) {
        m_error = sealFailed;
        m_step = Step::password;
        return;
    }
    if (std::optional<std::string> failure = PrivateFile::write(m_path, bytes)) {
        m_error = "The backup could not be saved: " + *failure + ".";
        m_step = Step::password;
        return;
    }
    m_step = Step::done;
}

void BackupFlow::cancel() {
    if (m_step != Step::working) {
        return;
    }
    // A later `sealed` for this attempt no longer matches and writes nothing.
    ++m_run;
    m_step = Step::password;
}

std::string BackupFlow::mainButtonTitle() const {
    switch (m_step) {
    case Step::authenticate:
        return "Authenticate";
    case Step::password:
    case Step::working:
        return "Back Up\u2026";
    case Step::done:
        return "Done";
    }
    return {};
}

bool BackupFlow::mainButtonEnabled() const {
    switch (m_step) {
    case Step::authenticate:
        return !m_isAuthenticating;
    case Step::password:
        return !BackupPassword::problem(password, confirmation);
    case Step::working:
        return false;
    case Step::done:
        return true;
    }
    return false;
}

} // namespace vorlane
