// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/BillingCycle.h"
#include "model/RiskLevel.h"
#include "model/ServiceStatus.h"
#include "model/ServiceType.h"
#include "util/Instant.h"
#include "util/Uuid.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

struct AppContext;
struct Organization;
struct ServiceRecord;

// The service form: creates a service, or edits the one the navigation state's `editingService`
// names when the form opens. Holds what the user typed as typed (the port and the costs as text,
// so that "12.50" is kept exactly and a wrong entry can be shown back), says what is wrong with
// it field by field, and saves the record with its secrets.
//
// Secrets: a typed password, API key or one-time code secret is stored under a fresh identifier; in
// edit mode the stored secrets are never read to fill the form (that would reveal them without
// authentication): the field is empty with a placeholder, left alone it keeps the stored secret,
// "Remove" deletes it on save. Secrets are written first: if the secret store refuses one,
// nothing is saved, what was written for this attempt is removed again, and `saveError` says so.
// Then the record is saved, and only after that are the secrets it stopped naming deleted; when
// the vault file refuses the save, the record and the stored secrets stay as they were.
// Typed secrets are wiped when the form goes. Main thread; the context outlives it.
class ServiceForm {
public:
    enum class Mode { create, edit };
    enum class SecretKind { password, apiKey, oneTimeCode };

    struct SecretInput {
        std::string text;          // what is typed; empty keeps (or, on create, means none)
        bool hasStored = false;    // edit mode: the service has this secret already
        bool removeStored = false; // "Remove" was chosen
    };

    struct Values {
        Organization* organization = nullptr;
        ServiceType serviceType = ServiceType::customSecret;
        std::string title;
        std::string provider;
        std::string hostname;
        std::string domain;
        std::string ipAddress;
        std::string loginURL;
        std::string username;
        std::string emailAddress;
        std::string portText;
        std::string sshKeyReference;
        SecretInput password;
        SecretInput apiKey;
        SecretInput oneTimeCode; // an otpauth:// URI or a bare base32 secret
        std::optional<Instant> purchaseDate;
        std::optional<Instant> renewalDate;
        std::optional<Instant> expirationDate;
        BillingCycle billingCycle = BillingCycle::none;
        std::string monthlyCostText;
        std::string yearlyCostText;
        bool autoRenew = false;
        std::string tagsText;
        std::string notes;
        RiskLevel riskLevel = RiskLevel::low;
        ServiceStatus status = ServiceStatus::active;
    };

    // Why a field cannot be saved, shown next to it; empty when it can.
    struct Errors {
        std::string organization;
        std::string title;
        std::string port;
        std::string monthlyCost;
        std::string yearlyCost;
        std::string oneTimeCode; // "Not a valid one-time code secret"
        bool any() const;
    };

    // Edit mode when the navigation state names a service to edit; otherwise create mode with
    // the organization the state asks to preselect (`newServiceOrganization`, else the open
    // `selectedOrganization`, else none).
    explicit ServiceForm(AppContext& context);
    ~ServiceForm();
    ServiceForm(const ServiceForm&) = delete;
    ServiceForm& operator=(const ServiceForm&) = delete;

    Mode mode() const { return m_mode; }
    std::string_view windowTitle() const; // "New Service" / "Edit Service"
    std::string_view saveText() const;    // "Create Service" / "Save Changes"

    // The organizations to pick from: the non-archived ones by name, and the chosen one if it is
    // archived.
    const std::vector<Organization*>& organizations() const { return m_organizations; }

    Values& values() { return m_values; }
    const Values& values() const { return m_values; }

    Errors errors() const;
    bool canSave() const { return !errors().any(); }

    // The placeholder of a secret field: "Stored — type to replace" while a stored secret is
    // kept, empty otherwise.
    std::string_view secretPlaceholder(SecretKind kind) const;
    bool canRemoveStored(SecretKind kind) const;
    void removeStored(SecretKind kind);
    // "Paste QR Code": the texts decoded from the QR codes of an image (clipboard or file). The
    // first that is a one-time code secret fills the field; otherwise the field is left as it was
    // and `qrCodeError` says why ("No QR code found in the image.", "The QR code holds no
    // one-time code secret.").
    bool pasteOneTimeCodeQR(const std::vector<std::string>& decodedTexts);
    const std::string& qrCodeError() const { return m_qrCodeError; }

    // Writes the record and its secrets and saves the store. False with `saveError` set when
    // nothing could be saved (the form stays open with everything typed); false without an
    // error while the fields are not valid.
    bool save();
    const std::string& saveError() const { return m_saveError; }
    // The record created or edited by the last successful save.
    ServiceRecord* savedService() const { return m_saved; }

    // The sheet closed, saved or not: the form no longer edits anything.
    void closed();

private:
    SecretInput& input(SecretKind kind);
    const SecretInput& input(SecretKind kind) const;

    AppContext& m_context;
    Mode m_mode = Mode::create;
    std::optional<Uuid> m_editingId;
    std::vector<Organization*> m_organizations;
    Values m_values;
    std::string m_saveError;
    std::string m_qrCodeError;
    ServiceRecord* m_saved = nullptr;
};

} // namespace vorlane
