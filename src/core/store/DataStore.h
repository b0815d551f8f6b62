// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Organization.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "model/ShareRecord.h"
#include "store/LocalizedOrder.h"
#include "store/RecordBatch.h"
#include "store/VaultContext.h"
#include "store/VaultFile.h"
#include "util/Decimal.h"
#include "util/Result.h"
#include "util/Signal.h"
#include "util/Timers.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class KeychainManager;
class UserCalendar;

// The vault: every organization, service and share record, kept in memory and saved to the
// vault's SQLite file, with the lists, search and totals the screens show, and the bridge between
// records and the secret store (records keep only the identifiers of their secrets).
//
// Owns every record. Screens change a record's fields directly and then call `noteChanged`,
// which notifies `changed`'s observers and arms an autosave `autosaveDelay` later (restarted by
// every further change); `save` writes at once. Records are added with `insert` and leave with
// `deleteOrganization` / `deleteService`, after which pointers to them are invalid.
// Lists return fresh vectors of non-owning pointers. Main thread only; the secret calls block
// briefly on the secret store.
class DataStore {
public:
    static constexpr std::chrono::milliseconds autosaveDelay{1000};

    // Opens (or creates) the vault at `path`, or gives the reason it cannot, in which case an
    // existing file is left untouched. The store does not own the keychain, calendar or timers,
    // which must outlive it.
    static Result<std::unique_ptr<DataStore>, std::string> open(const std::string& path,
                                                                KeychainManager& keychain,
                                                                const UserCalendar& calendar,
                                                                Timers& timers);
    // Saves what is still pending, so that quitting never loses a change.
    ~DataStore();
    DataStore(const DataStore&) = delete;
    DataStore& operator=(const DataStore&) = delete;

    // Emitted after every insertion, removal or noted change; observers re-read what they show.
    Signal<> changed;

    // Where the vault's secrets are kept, for screens that read many of them at once.
    KeychainManager& keychain() const { return m_keychain; }

    // -- Changes
    Organization& insert(Organization organization);
    ServiceRecord& insert(ServiceRecord service, Organization& owner);
    // A service of `owner`, or of no organization when it is null.
    ServiceRecord& insert(ServiceRecord service, Organization* owner);
    ShareRecord& insert(ShareRecord share, Organization& owner);
    PaymentRecord& insert(PaymentRecord payment, ServiceRecord& service);
    void noteChanged(Organization& organization);
    void noteChanged(ServiceRecord& service);
    void noteChanged(ShareRecord& share);
    void noteChanged(PaymentRecord& payment);
    // Moves a service to another organization (appended to its list).
    void moveService(ServiceRecord& service, Organization& newOwner);

    // Writes every pending change in one transaction. On failure prints "DataStore save error: "
    // and the reason to standard output, keeps the changes for the next save, and returns false.
    bool save();
    bool hasUnsavedChanges() const;
    // Brings every record of `batch` into the vault in one transaction: an organization or
    // service whose `id` the vault has replaces it (every field; an organization keeps its
    // services and share records, a service its payments and moves to the owner named), any
    // other is added; shares and payments must be new to the vault. Owners are named by id and
    // must be in the vault or earlier in the batch. Pending changes are saved first. Nothing
    // when all is saved; otherwise the reason, and then nothing of the batch is in memory or in
    // the file (the file is written before memory is touched, so there is nothing to undo).
    std::optional<std::string> saveBatch(RecordBatch batch);

    // Removes the secrets of each of its services, then the organization with its services and
    // share records, then saves.
    void deleteOrganization(Organization& organization);
    // Removes the service's secrets, then the service with its payments, then saves.
    void deleteService(ServiceRecord& service);
    // Deletes the password, API-key and one-time code items the service names; failures are
    // ignored.
    void deleteServiceSecrets(const ServiceRecord& service);
    // Removes one payment, then saves.
    void deletePayment(PaymentRecord& payment);

    // -- Logo bytes: kept apart from the records and read from the file only when asked for.
    // Loads `organization.logoData` on first call and returns it.
    const std::optional<std::vector<std::uint8_t>>& logo(Organization& organization);
    void setLogo(Organization& organization, std::optional<std::vector<std::uint8_t>> data);

    // -- Lists. "By name"/"by title" is the localized standard order (see LocalizedOrder).
    std::vector<Organization*> fetchOrganizations(bool includeArchived = false) const; // by name
    std::vector<Organization*> fetchFavorites() const; // favourite and not archived, by name
    std::vector<Organization*> fetchArchivedOrganizations() const;                    // by name
    std::vector<ServiceRecord*> fetchAllServices(bool includeArchived = false) const; // by title
    // How many `fetchAllServices` lists, without listing them.
    std::size_t countServices(bool includeArchived = false) const;
    // The first `limit` of `fetchAllServices(false)` ordered by `updatedAt`, newest first (a
    // stable order: equal times keep title order), without ordering the whole vault.
    std::vector<ServiceRecord*> fetchRecentlyUpdated(std::size_t limit) const;
    // Non-archived services with `from` <= expiration date < `to`, soonest first.
    std::vector<ServiceRecord*> fetchExpiringBetween(Instant from, Instant to) const;
    // Non-archived services expiring after now and no later than now plus `days` calendar days,
    // soonest first.
    std::vector<ServiceRecord*> fetchExpiringSoon(int days) const;
    // Non-archived services whose expiration date has passed, oldest first.
    std::vector<ServiceRecord*> fetchExpired() const;
    // The organization's share records, newest first.
    std::vector<ShareRecord*> fetchShares(const Organization& organization) const;
    // The service's payments, newest first by the date paid (the later recorded first on a tie).
    std::vector<PaymentRecord*> fetchPayments(const ServiceRecord& service) const;
    Organization* organization(const Uuid& id) const;
    ServiceRecord* service(const Uuid& id) const;

    // -- Search: case-insensitive containment; an empty query finds nothing.
    // Non-archived services by title, matched on title, provider, hostname, domain, IP address,
    // username, e-mail, notes, tags, the organization's name and project, and the kind.
    std::vector<ServiceRecord*> search(std::string_view query) const;
    // Non-archived organizations by name, matched on name, project, contact, tags and notes.
    std::vector<Organization*> searchOrganizations(std::string_view query) const;

    // -- Totals
    // Non-archived services whose status reads as active, whatever their organization.
    std::size_t totalActiveServices() const;
    // Over the organizations that are not archived (their archived services do not count).
    Decimal totalMonthlyCost() const;
    Decimal totalYearlyCost() const;
    // One organization's `monthlyCost` and `yearlyCost`, kept until it or one of its services
    // changes (the same figures the totals add up).
    Decimal monthlyCost(const Organization& organization) const;
    Decimal yearlyCost(const Organization& organization) const;
    // `service.effectiveMonthlyCost()`, kept until the service changes.
    Decimal effectiveMonthlyCost(const ServiceRecord& service) const;
    // `vorlane::chargePerPeriod(service)`, kept until the service changes.
    Decimal chargePerPeriod(const ServiceRecord& service) const;

    // -- Secrets, under the identifiers the record holds. Reads give nothing when there is no
    // item or it is not UTF-8 text. Setting an empty text deletes the item; setting a text on a
    // record without an identifier stores nothing. False when the secret store refused.
    std::optional<std::string> getPassword(const ServiceRecord& service) const;
    bool setPassword(std::string_view password, const ServiceRecord& service);
    std::optional<std::string> getAPIKey(const ServiceRecord& service) const;
    bool setAPIKey(std::string_view apiKey, const ServiceRecord& service);
    std::optional<std::string> getTOTPSecret(const ServiceRecord& service) const;
    bool setTOTPSecret(std::string_view secret, const ServiceRecord& service);

    const std::string& path() const { return m_file.path(); }

private:
    DataStore(VaultFile file, KeychainManager& keychain, const UserCalendar& calendar,
              Timers& timers);

    void changedNow();
    std::optional<std::string> readSecret(const std::string& account) const;
    bool writeSecret(std::string_view secret, const std::string& account);

    VaultFile m_file;
    KeychainManager& m_keychain;
    const UserCalendar& m_calendar;
    Timers& m_timers;
    LocalizedOrder m_order;
    VaultContext m_context;
    Timers::TimerId m_autosaveTimer = 0;
};

} // namespace vorlane
