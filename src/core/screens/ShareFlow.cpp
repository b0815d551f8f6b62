// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ShareFlow.h"

#include "app/AppState.h"
#include "auth/AuthManager.h"
#include "crypto/CryptoError.h"
#include "crypto/CryptoManager.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "model/ShareRecord.h"
#include "store/DataStore.h"
#include "util/DateText.h"
#include "util/UserCalendar.h"

#include <algorithm>

namespace vorlane {

ShareFlow::ShareFlow(DataStore& store, AuthManager& auth, AppState& state,
                     const UserCalendar& calendar, Organization& organization,
                     std::vector<ServiceRecord*> services)
    : m_store(store)
    , m_auth(auth)
    , m_state(state)
    , m_calendar(calendar)
    , m_organization(organization)
    , m_services(std::move(services)) {
    const Instant now = calendar.now();
    expirationDate = calendar.adding(UserCalendar::Unit::day, 7, now).value_or(now);
}

ShareFlow::~ShareFlow() {
    *m_alive = false;
}

std::string ShareFlow::title() const {
    return "Share: " + m_organization.name;
}

std::string ShareFlow::subtitle() const {
    switch (m_step) {
    case Step::select:
        return "Step 1: Select items to share";
    case Step::configure:
        return "Step 2: Configure sharing options";
    case Step::confirm:
        return "Step 3: Review and confirm";
    }
    return {};
}

bool ShareFlow::stepReached(Step step) const {
    return static_cast<int>(step) <= static_cast<int>(m_step);
}

bool ShareFlow::isSelected(const ServiceRecord& service) const {
    return m_selectedServiceIDs.contains(service.id);
}

void ShareFlow::toggle(const ServiceRecord& service) {
    if (!m_selectedServiceIDs.erase(service.id)) {
        m_selectedServiceIDs.insert(service.id);
    }
}

void ShareFlow::selectAll() {
    for (const ServiceRecord* service : m_services) {
        m_selectedServiceIDs.insert(service->id);
    }
}

void ShareFlow::deselectAll() {
    m_selectedServiceIDs.clear();
}

std::string ShareFlow::selectedCountText() const {
    return std::to_string(m_selectedServiceIDs.size()) + " selected";
}

std::vector<std::pair<std::string, std::string>> ShareFlow::summaryRows() const {
    auto includedOrNot = [](bool included) {
        return included ? "Included" : "Excluded";
    };
    return {
        // Always plural, "1 services" included: the summary counts, it does not talk.
        {"Items", std::to_string(m_selectedServiceIDs.size()) + " services"},
        {"Format", std::string(shareMethod.displayName())},
        {"Includes Secrets", options.includeSecrets ? "Yes (encrypted)" : "No"},
        {"Notes", includedOrNot(options.includeNotes)},
        {"Financials", includedOrNot(options.includeFinancials)},
        {"Recipient", recipientLabel.empty() ? "Not specified" : recipientLabel},
        {"Expires", hasExpiration
                        ? DateText::format(expirationDate, DateText::Style::abbreviated, m_calendar)
                        : "Never"},
        {"Protection", password.empty() ? "Key-based encryption" : "Password-protected"},
    };
}

std::optional<PasswordStrength::Estimate> ShareFlow::passwordStrength() const {
    if (password.empty()) {
        return std::nullopt;
    }
    return PasswordStrength::estimate(password);
}

std::optional<std::string> ShareFlow::passwordWarning() const {
    if (password.empty() || PasswordStrength::suitsEncryption(password)) {
        return std::nullopt;
    }
    return weakPasswordWarning;
}

void ShareFlow::back() {
    if (m_step == Step::confirm) {
        m_step = Step::configure;
    } else if (m_step == Step::configure) {
        m_step = Step::select;
    }
}

std::string ShareFlow::mainButtonTitle() const {
    switch (m_step) {
    case Step::select:
        return "Next";
    case Step::configure:
        return "Review";
    case Step::confirm:
        return "Export & Share";
    }
    return {};
}

bool ShareFlow::mainButtonEnabled() const {
    switch (m_step) {
    case Step::select:
        return !m_selectedServiceIDs.empty();
    case Step::configure:
        return true;
    case Step::confirm:
        return !m_isExporting;
    }
    return false;
}

void ShareFlow::next() {
    if (!mainButtonEnabled()) {
        return;
    }
    if (m_step == Step::select) {
        m_step = Step::configure;
    } else if (m_step == Step::configure) {
        m_step = Step::confirm;
    }
}

std::string ShareFlow::proposedFileName() const {
    std::string name = m_organization.name;
    std::replace(name.begin(), name.end(), ' ', '-');
    return "Vorlane-Export-" + name + ".vorlane";
}

std::vector<ServiceRecord*> ShareFlow::selectedServices() const {
    std::vector<ServiceRecord*> selected;
    for (ServiceRecord* service : m_services) {
        if (isSelected(*service)) {
            selected.push_back(service);
        }
    }
    return selected;
}

ExportPayload ShareFlow::buildExportPayload() const {
    return ExportPayload::build(m_organization, selectedServices(), options, m_store,
                                m_calendar.now());
}

void ShareFlow::fail(std::string message, const std::function<void(bool)>& finished) {
    m_exportError = std::move(message);
    m_isExporting = false;
    finished(false);
}

void ShareFlow::performExport(ChooseFile chooseFile, WriteFile writeFile,
                              std::function<void(bool close)> finished) {
    if (m_step != Step::confirm || m_isExporting) {
        return;
    }
    m_isExporting = true;
    m_exportError.reset();
    if (!options.includeSecrets) {
        exportAuthenticated(chooseFile, writeFile, finished);
        return;
    }
    m_auth.authenticateForSensitiveAction(
        "Authenticate to export secrets for " + m_organization.name,
        [this, alive = m_alive, chooseFile = std::move(chooseFile),
         writeFile = std::move(writeFile), finished = std::move(finished)](bool authenticated) {
            if (!*alive) {
                return;
            }
            if (!authenticated) {
                fail("Authentication required to export secrets.", finished);
                return;
            }
            exportAuthenticated(chooseFile, writeFile, finished);
        });
}

void ShareFlow::exportAuthenticated(const ChooseFile& chooseFile, const WriteFile& writeFile,
                                    const std::function<void(bool)>& finished) {
    const std::string payload = buildExportPayload().toJson();
    const CryptoManager crypto(m_calendar.clock());
    auto sealed = crypto.createExportBundle(
        std::span(reinterpret_cast<const std::uint8_t*>(payload.data()), payload.size()),
        password.empty() ? std::nullopt : std::optional<std::string_view>(password));
    if (!sealed) {
        fail(std::string(errorDescription(sealed.error())), finished);
        return;
    }
    if (const std::optional<std::string> path = chooseFile(proposedFileName())) {
        if (std::optional<std::string> error = writeFile(*path, sealed.value().bundle.toJson())) {
            fail(std::move(*error), finished);
            return;
        }
        if (sealed.value().key) {
            // The only way the recipient's key reaches the user: it stays on the clipboard,
            // without the automatic clear that other copies get.
            m_state.copyExportKey(*sealed.value().key);
        }
    }
    // Recorded also when the file dialog was cancelled: the user did decide to share.
    ShareRecord record;
    record.id = Uuid::generate();
    for (const ServiceRecord* service : selectedServices()) {
        record.serviceIDs.push_back(service->id);
    }
    record.recipientLabel = recipientLabel;
    record.includesSecrets = options.includeSecrets;
    record.redactedFields = ExportPayload::redactedFields(options);
    if (hasExpiration) {
        record.expirationDate = expirationDate;
    }
    record.sharedAt = m_calendar.now();
    record.shareMethodRaw = shareMethod.rawValue();
    m_store.insert(std::move(record), m_organization);
    m_store.save();
    m_isExporting = false;
    finished(true);
}

} // namespace vorlane
