// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ShareMethod.h"
#include "passwords/PasswordStrength.h"
#include "share/ExportPayload.h"
#include "util/Instant.h"
#include "util/Uuid.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vorlane {

class AuthManager;
class AppState;
class DataStore;
struct Organization;
struct ServiceRecord;
class UserCalendar;

// The share sheet: choose services of one organization, choose what goes out and how it is
// protected, review, then write an encrypted bundle and record the share. Holds the sheet's
// state, texts and enabled states; the widget draws them and supplies the file dialog and the
// file writing. Main thread only; everything it is given must outlive it.
class ShareFlow {
public:
    enum class Step { select, configure, confirm };
    static constexpr std::array allSteps{Step::select, Step::configure, Step::confirm};

    // Asks where to save, proposing a file name; nothing when the user cancels.
    using ChooseFile = std::function<std::optional<std::string>(const std::string& proposedName)>;
    // Writes the bytes at the path all at once, or not at all; the error's text on failure.
    using WriteFile = std::function<std::optional<std::string>(const std::string& path,
                                                               const std::string& bytes)>;

    ShareFlow(DataStore& store, AuthManager& auth, AppState& state, const UserCalendar& calendar,
              Organization& organization, std::vector<ServiceRecord*> services);
    ~ShareFlow();
    ShareFlow(const ShareFlow&) = delete;
    ShareFlow& operator=(const ShareFlow&) = delete;

    Organization& organization() const { return m_organization; }
    const std::vector<ServiceRecord*>& services() const { return m_services; }

    // Header and step indicator.
    std::string title() const;
    std::string subtitle() const;
    Step step() const { return m_step; }
    bool stepReached(Step step) const;

    // Select.
    bool isSelected(const ServiceRecord& service) const;
    void toggle(const ServiceRecord& service);
    void selectAll();
    void deselectAll();
    std::string selectedCountText() const; // "N selected"

    // Configure.
    std::string recipientLabel;
    ShareMethod shareMethod = ShareMethod::encryptedExport;
    ExportOptions options;
    // Shown only as withheld while secrets are off; they never change what is exported.
    bool redactPasswords = true;
    bool redactAPIKeys = true;
    bool hasExpiration = false;
    Instant expirationDate;
    // Kept when the field is hidden again (secrets switched off): still used by the export.
    std::string password;
    bool showsPasswordField() const { return options.includeSecrets; }
    // The meter under the field, while it holds a password.
    std::optional<PasswordStrength::Estimate> passwordStrength() const;
    // The bundle key is derived from the password without a work factor, so whoever holds the
    // file can try guesses very fast: warned while the password is shorter than 12 characters
    // or weak. A warning only; the user may still export.
    std::optional<std::string> passwordWarning() const;
    static constexpr const char* weakPasswordWarning =
        "This password can be guessed quickly. Use a longer one or key-based encryption.";

    // Confirm.
    std::vector<std::pair<std::string, std::string>> summaryRows() const;
    bool showsSecretsNotice() const { return options.includeSecrets; }
    static constexpr const char* secretsNotice =
        "This export will contain sensitive secrets. You will be asked to authenticate before "
        "proceeding.";
    const std::optional<std::string>& exportError() const { return m_exportError; }
    bool isExporting() const { return m_isExporting; }

    // Footer.
    bool showsBack() const { return m_step != Step::select; }
    void back();
    std::string mainButtonTitle() const;
    bool mainButtonEnabled() const;
    // "Next" and "Review": one step on.
    void next();

    // "Vorlane-Export-" + the name with spaces as "-" + ".vorlane".
    std::string proposedFileName() const;
    // The payload of the selected services, as it would be sealed now.
    ExportPayload buildExportPayload() const;

    // "Export & Share": authentication first when secrets are included, then the bundle, the
    // file, the generated key on the clipboard (when there is no password), and the share record
    // (also when the user cancels the file dialog). `finished` runs once, on the main loop or
    // inside this call, with true when the sheet should close (recorded) and false when it
    // stays open with `exportError` set. Ignored while an export is running.
    void performExport(ChooseFile chooseFile, WriteFile writeFile,
                       std::function<void(bool close)> finished);

private:
    void exportAuthenticated(const ChooseFile& chooseFile, const WriteFile& writeFile,
                             const std::function<void(bool)>& finished);
    std::vector<ServiceRecord*> selectedServices() const;
    void fail(std::string message, const std::function<void(bool)>& finished);

    DataStore& m_store;
    AuthManager& m_auth;
    AppState& m_state;
    const UserCalendar& m_calendar;
    Organization& m_organization;
    std::vector<ServiceRecord*> m_services;
    Step m_step = Step::select;
    std::set<Uuid> m_selectedServiceIDs;
    bool m_isExporting = false;
    std::optional<std::string> m_exportError;
    // Cleared when the flow goes away, so that an authentication reply arriving later is dropped.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

} // namespace vorlane
