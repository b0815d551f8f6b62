// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ServiceForm.h"

#include "app/AppContext.h"
#include "app/AppState.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "store/DataStore.h"
#include "totp/TotpSecret.h"
#include "util/Decimal.h"
#include "util/TagText.h"
#include "util/UserCalendar.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace vorlane {

namespace {

constexpr std::int64_t highestPort = 65535;

void wipe(std::string& text) {
    std::fill(text.begin(), text.end(), '\0');
    text.clear();
}

// A whole number from 0 to 65535, digits only (no sign, no spaces inside); nothing for an empty
// text, which means "no port".
std::optional<std::int64_t> parsePort(std::string_view text, bool& valid) {
    text = trimmed(text);
    valid = true;
    if (text.empty()) {
        return std::nullopt;
    }
    valid = text.size() <= 5 &&
            std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!valid) {
        return std::nullopt;
    }
    const std::int64_t port = std::stoll(std::string(text));
    valid = port <= highestPort;
    return valid ? std::optional(port) : std::nullopt;
}

// An exact non-negative decimal as typed; an empty text is 0 (no cost given).
std::optional<Decimal> parseCost(std::string_view text) {
    text = trimmed(text);
    if (text.empty()) {
        return Decimal();
    }
    std::optional<Decimal> cost = Decimal::fromString(text);
    if (cost && cost->isNegative()) {
        return std::nullopt;
    }
    return cost;
}

std::string costText(const Decimal& cost) {
    return cost.isZero() ? std::string() : cost.toString();
}

} // namespace

bool ServiceForm::Errors::any() const {
    return !organization.empty() || !title.empty() || !port.empty() || !monthlyCost.empty() ||
           !yearlyCost.empty() || !oneTimeCode.empty();
}

ServiceForm::ServiceForm(AppContext& context)
    : m_context(context) {
    const AppState& state = context.state;
    if (const ServiceRecord* editing = state.editingService()) {
        m_mode = Mode::edit;
        m_editingId = editing->id;
        Values& v = m_values;
        v.organization = editing->organization;
        v.serviceType = editing->serviceType();
        v.title = editing->title;
        v.provider = editing->provider;
        v.hostname = editing->hostname;
        v.domain = editing->domain;
        v.ipAddress = editing->ipAddress;
        v.loginURL = editing->loginURL;
        v.username = editing->username;
        v.emailAddress = editing->emailAddress;
        v.portText = editing->port ? std::to_string(*editing->port) : std::string();
        v.sshKeyReference = editing->sshKeyReference;
        v.password.hasStored = !editing->secretKeychainID.empty();
        v.apiKey.hasStored = !editing->apiKeyKeychainID.empty();
        v.oneTimeCode.hasStored = !editing->totpKeychainID.empty();
        v.purchaseDate = editing->purchaseDate;
        v.renewalDate = editing->renewalDate;
        v.expirationDate = editing->expirationDate;
        v.billingCycle = editing->billingCycle();
        v.monthlyCostText = costText(editing->monthlyCost);
        v.yearlyCostText = costText(editing->yearlyCost);
        v.autoRenew = editing->autoRenew;
        v.tagsText = joinTags(editing->tags);
        v.notes = editing->notes;
        v.riskLevel = editing->riskLevel();
        v.status = editing->status();
    } else {
        m_values.organization = state.newServiceOrganization() != nullptr
                                    ? state.newServiceOrganization()
                                    : state.selectedOrganization();
    }
    m_organizations = context.store.fetchOrganizations(false);
    if (m_values.organization != nullptr &&
        std::find(m_organizations.begin(), m_organizations.end(), m_values.organization) ==
            m_organizations.end()) {
        m_organizations.push_back(m_values.organization);
    }
}

ServiceForm::~ServiceForm() {
    wipe(m_values.password.text);
    wipe(m_values.apiKey.text);
    wipe(m_values.oneTimeCode.text);
}

std::string_view ServiceForm::windowTitle() const {
    return m_mode == Mode::edit ? "Edit Service" : "New Service";
}

std::string_view ServiceForm::saveText() const {
    return m_mode == Mode::edit ? "Save Changes" : "Create Service";
}

ServiceForm::Errors ServiceForm::errors() const {
    Errors errors;
    if (m_values.organization == nullptr) {
        errors.organization = "Choose an organization.";
    }
    if (trimmed(m_values.title).empty()) {
        errors.title = "Enter a title.";
    }
    bool portValid = true;
    parsePort(m_values.portText, portValid);
    if (!portValid) {
        errors.port = "Enter a whole number from 0 to 65535.";
    }
    const std::string costError = "Enter an amount of 0 or more, such as 12.50.";
    if (!parseCost(m_values.monthlyCostText)) {
        errors.monthlyCost = costError;
    }
    if (!parseCost(m_values.yearlyCostText)) {
        errors.yearlyCost = costError;
    }
    const std::string& oneTimeCode = m_values.oneTimeCode.text;
    if (!trimmed(oneTimeCode).empty() && !TotpSecret::isValid(oneTimeCode)) {
        errors.oneTimeCode = std::string(TotpSecret::invalidMessage);
    }
    return errors;
}

ServiceForm::SecretInput& ServiceForm::input(SecretKind kind) {
    return kind == SecretKind::apiKey        ? m_values.apiKey
           : kind == SecretKind::oneTimeCode ? m_values.oneTimeCode
                                             : m_values.password;
}

const ServiceForm::SecretInput& ServiceForm::input(SecretKind kind) const {
    return kind == SecretKind::apiKey        ? m_values.apiKey
           : kind == SecretKind::oneTimeCode ? m_values.oneTimeCode
                                             : m_values.password;
}

std::string_view ServiceForm::secretPlaceholder(SecretKind kind) const {
    return canRemoveStored(kind) ? "Stored — type to replace" : "";
}

bool ServiceForm::canRemoveStored(SecretKind kind) const {
    const SecretInput& secret = input(kind);
    return secret.hasStored && !secret.removeStored;
}

void ServiceForm::removeStored(SecretKind kind) {
    SecretInput& secret = input(kind);
    if (secret.hasStored) {
        secret.removeStored = true;
        wipe(secret.text);
    }
}

bool ServiceForm::save() {
    m_saveError.clear();
    if (!canSave()) {
        return false;
    }
    DataStore& store = m_context.store;
    ServiceRecord* existing = nullptr;
    if (m_editingId) {
        existing = store.service(*m_editingId);
        if (existing == nullptr) {
            m_saveError = "This service no longer exists.";
            return false;
        }
    }
    const Instant now = m_context.calendar.now();
    ServiceRecord draft = existing != nullptr ? *existing : ServiceRecord::created(now);
    const Values& v = m_values;
    draft.setServiceType(v.serviceType);
    draft.title = std::string(trimmed(v.title));
    draft.provider = v.provider;
    draft.hostname = v.hostname;
    draft.domain = v.domain;
    draft.ipAddress = v.ipAddress;
    draft.loginURL = v.loginURL;
    draft.username = v.username;
    draft.emailAddress = v.emailAddress;
    bool portValid = true;
    draft.port = parsePort(v.portText, portValid);
    draft.sshKeyReference = v.sshKeyReference;
    draft.purchaseDate = v.purchaseDate;
    draft.renewalDate = v.renewalDate;
    draft.expirationDate = v.expirationDate;
    draft.setBillingCycle(v.billingCycle);
    draft.monthlyCost = *parseCost(v.monthlyCostText);
    draft.yearlyCost = *parseCost(v.yearlyCostText);
    draft.autoRenew = v.autoRenew;
    draft.tags = splitTags(v.tagsText);
    draft.notes = v.notes;
    draft.setRiskLevel(v.riskLevel);
    draft.setStatus(v.status);
    draft.updatedAt = now;

    // New secrets go under fresh identifiers, so that the stored ones stay intact until the
    // record points away from them; a refusal then leaves everything as it was.
    ServiceRecord written;  // the items this attempt wrote, to take back on a refusal
    ServiceRecord replaced; // the items the saved record no longer names, removed afterwards
    const auto stage = [&](const SecretInput& secret, std::string& identifier,
                           std::string& writtenId, std::string& replacedId, SecretKind kind) {
        if (!secret.text.empty()) {
            replacedId = identifier;
            switch (kind) {
            case SecretKind::password:
                identifier = ServiceRecord::makeSecretKeychainID();
                writtenId = identifier;
                // The age the health report judges by: a password counts as new when stored.
                draft.passwordChangedAt = now;
                return store.setPassword(secret.text, draft);
            case SecretKind::apiKey:
                identifier = ServiceRecord::makeAPIKeyKeychainID();
                writtenId = identifier;
                return store.setAPIKey(secret.text, draft);
            case SecretKind::oneTimeCode:
                identifier = ServiceRecord::makeTOTPKeychainID();
                writtenId = identifier;
                return store.setTOTPSecret(trimmed(secret.text), draft);
            }
        }
        if (secret.removeStored) {
            replacedId = identifier;
            identifier.clear();
            if (kind == SecretKind::password) {
                draft.passwordChangedAt.reset();
            }
        }
        return true;
    };
    if (!stage(v.password, draft.secretKeychainID, written.secretKeychainID,
               replaced.secretKeychainID, SecretKind::password)) {
        m_saveError = "The password could not be stored in the system keyring.";
    } else if (!stage(v.apiKey, draft.apiKeyKeychainID, written.apiKeyKeychainID,
                      replaced.apiKeyKeychainID, SecretKind::apiKey)) {
        m_saveError = "The API key could not be stored in the system keyring.";
    } else if (!stage(v.oneTimeCode, draft.totpKeychainID, written.totpKeychainID,
                      replaced.totpKeychainID, SecretKind::oneTimeCode)) {
        m_saveError = "The one-time code secret could not be stored in the system keyring.";
    }
    if (!m_saveError.empty()) {
        store.deleteServiceSecrets(written);
        return false;
    }

    // The secrets the record no longer names go only once the file no longer names them either:
    // until the save has succeeded, the vault still points at them.
    std::optional<ServiceRecord> previous;
    ServiceRecord* saved = existing;
    if (existing != nullptr) {
        previous = *existing;
        *existing = std::move(draft);
        store.noteChanged(*existing);
        if (v.organization != previous->organization) {
            store.moveService(*existing, *v.organization);
        }
    } else {
        saved = &store.insert(std::move(draft), *v.organization);
    }
    if (!store.save()) {
        // The record goes back to what the file holds, and what this attempt wrote to the
        // keyring is taken back; the form keeps what was typed for another try.
        if (previous) {
            if (previous->organization != nullptr &&
                existing->organization != previous->organization) {
                store.moveService(*existing, *previous->organization);
            }
            previous->organization = existing->organization; // membership is the store's to change
            *existing = std::move(*previous);
            store.noteChanged(*existing);
        } else {
            store.deleteService(*saved);
        }
        store.deleteServiceSecrets(written);
        m_saveError = "The service could not be saved to the vault file. Nothing was changed.";
        return false;
    }
    m_saved = saved;
    store.deleteServiceSecrets(replaced);
    return true;
}

bool ServiceForm::pasteOneTimeCodeQR(const std::vector<std::string>& decodedTexts) {
    m_qrCodeError.clear();
    if (decodedTexts.empty()) {
        m_qrCodeError = "No QR code found in the image.";
        return false;
    }
    for (const std::string& text : decodedTexts) {
        if (TotpSecret::isValid(text)) {
            SecretInput& secret = m_values.oneTimeCode;
            wipe(secret.text);
            secret.text = std::string(trimmed(text));
            return true;
        }
    }
    m_qrCodeError = "The QR code holds no one-time code secret.";
    return false;
}

void ServiceForm::closed() {
    m_context.state.setEditingService(nullptr);
}

} // namespace vorlane
