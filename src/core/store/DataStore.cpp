// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/DataStore.h"

#include "secrets/KeychainManager.h"
#include "store/SearchText.h"
#include "util/UserCalendar.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <iostream>
#include <unordered_map>

namespace vorlane {

namespace {

bool isValidUtf8(const SecretBytes& bytes) {
    std::int32_t offset = 0;
    const auto length = static_cast<std::int32_t>(bytes.size());
    while (offset < length) {
        UChar32 c = 0;
        U8_NEXT(bytes.data(), offset, length, c);
        if (c < 0) {
            return false;
        }
    }
    return true;
}

} // namespace

Result<std::unique_ptr<DataStore>, std::string> DataStore::open(const std::string& path,
                                                                KeychainManager& keychain,
                                                                const UserCalendar& calendar,
                                                                Timers& timers) {
    std::string error;
    auto file = VaultFile::open(path, error);
    if (!file) {
        return error;
    }
    std::unique_ptr<DataStore> store(new DataStore(std::move(*file), keychain, calendar, timers));
    if (!store->m_file.load(store->m_context, error)) {
        return error;
    }
    return store;
}

DataStore::DataStore(VaultFile file, KeychainManager& keychain, const UserCalendar& calendar,
                     Timers& timers)
    : m_file(std::move(file))
    , m_keychain(keychain)
    , m_calendar(calendar)
    , m_timers(timers)
    , m_context(m_order) {}

DataStore::~DataStore() {
    if (m_autosaveTimer != 0) {
        m_timers.cancel(m_autosaveTimer);
        m_autosaveTimer = 0;
    }
    if (m_context.hasChanges()) {
        save();
    }
}

void DataStore::changedNow() {
    // Debounced: a burst of edits (typing in a form) becomes one save.
    if (m_autosaveTimer != 0) {
        m_timers.cancel(m_autosaveTimer);
    }
    m_autosaveTimer = m_timers.startOneShot(autosaveDelay, [this] {
        m_autosaveTimer = 0;
        save();
    });
    changed.emit();
}

Organization& DataStore::insert(Organization organization) {
    Organization& inserted =
        m_context.insert(std::make_unique<Organization>(std::move(organization)));
    changedNow();
    return inserted;
}

ServiceRecord& DataStore::insert(ServiceRecord service, Organization& owner) {
    return insert(std::move(service), &owner);
}

ServiceRecord& DataStore::insert(ServiceRecord service, Organization* owner) {
    ServiceRecord& inserted =
        m_context.insert(std::make_unique<ServiceRecord>(std::move(service)), owner);
    changedNow();
    return inserted;
}

ShareRecord& DataStore::insert(ShareRecord share, Organization& owner) {
    ShareRecord& inserted =
        m_context.insert(std::make_unique<ShareRecord>(std::move(share)), &owner);
    changedNow();
    return inserted;
}

PaymentRecord& DataStore::insert(PaymentRecord payment, ServiceRecord& service) {
    PaymentRecord& inserted =
        m_context.insert(std::make_unique<PaymentRecord>(std::move(payment)), service);
    changedNow();
    return inserted;
}

void DataStore::noteChanged(Organization& organization) {
    m_context.noteChanged(organization);
    changedNow();
}

void DataStore::noteChanged(ServiceRecord& service) {
    m_context.noteChanged(service);
    changedNow();
}

void DataStore::noteChanged(ShareRecord& share) {
    m_context.noteChanged(share);
    changedNow();
}

void DataStore::noteChanged(PaymentRecord& payment) {
    m_context.noteChanged(payment);
    changedNow();
}

void DataStore::moveService(ServiceRecord& service, Organization& newOwner) {
    m_context.moveService(service, &newOwner);
    changedNow();
}

bool DataStore::save() {
    if (m_autosaveTimer != 0) {
        m_timers.cancel(m_autosaveTimer);
        m_autosaveTimer = 0;
    }
    if (!m_context.hasChanges()) {
        return true;
    }
    std::string error;
    if (!m_file.write(m_context.changes(), error)) {
        std::cout << "DataStore save error: " << error << std::endl;
        return false;
    }
    m_context.clearChanges();
    return true;
}

std::optional<std::string> DataStore::saveBatch(RecordBatch batch) {
    const auto failed = [](std::string error) -> std::optional<std::string> {
        std::cout << "DataStore save error: " << error << std::endl;
        return error;
    };
    if (!save()) {
        return failed("The changes made before could not be saved.");
    }
    // The batch's own records stand in for their owners while the rows are written: a row
    // needs only its owner's id.
    std::unordered_map<Uuid, Organization*> organizations;
    std::unordered_map<Uuid, ServiceRecord*> services;
    const auto organizationOf = [&](const Uuid& id) -> Organization* {
        const auto found = organizations.find(id);
        return found != organizations.end() ? found->second : m_context.organization(id);
    };
    VaultContext::Changes changes;
    for (Organization& organization : batch.organizations) {
        organizations[organization.id] = &organization;
        changes.organizations.push_back(&organization);
        changes.logoLoaded.insert(&organization);
    }
    for (RecordBatch::Service& entry : batch.services) {
        entry.record.organization = nullptr;
        if (entry.organizationId) {
            entry.record.organization = organizationOf(*entry.organizationId);
            if (!entry.record.organization) {
                return failed("The organization of '" + entry.record.title + "' is missing.");
            }
        }
        services[entry.record.id] = &entry.record;
        changes.services.push_back(&entry.record);
    }
    for (RecordBatch::Share& entry : batch.shares) {
        entry.record.organization = organizationOf(entry.organizationId);
        if (!entry.record.organization) {
            return failed("The organization of a share record is missing.");
        }
        changes.shares.push_back(&entry.record);
    }
    for (RecordBatch::Payment& entry : batch.payments) {
        const auto found = services.find(entry.serviceId);
        entry.record.service =
            found != services.end() ? found->second : m_context.service(entry.serviceId);
        if (!entry.record.service) {
            return failed("The service of a payment is missing.");
        }
        changes.payments.push_back(&entry.record);
    }
    std::string error;
    if (!m_file.write(changes, error)) {
        return failed(error);
    }

    // Saved: now the same records in memory, with owners looked up in the vault.
    for (Organization& organization : batch.organizations) {
        organization.services.clear();
        organization.shareHistory.clear();
        if (Organization* existing = m_context.organization(organization.id)) {
            organization.services = std::move(existing->services);
            organization.shareHistory = std::move(existing->shareHistory);
            *existing = std::move(organization);
            m_context.markLogoLoaded(*existing);
            m_context.noteChanged(*existing);
        } else {
            m_context.insert(std::make_unique<Organization>(std::move(organization)));
        }
    }
    for (RecordBatch::Service& entry : batch.services) {
        Organization* owner =
            entry.organizationId ? m_context.organization(*entry.organizationId) : nullptr;
        if (ServiceRecord* existing = m_context.service(entry.record.id)) {
            entry.record.organization = existing->organization;
            *existing = std::move(entry.record);
            m_context.moveService(*existing, owner);
            m_context.noteChanged(*existing);
        } else {
            m_context.insert(std::move(entry.record), owner);
        }
    }
    for (RecordBatch::Share& entry : batch.shares) {
        m_context.insert(std::make_unique<ShareRecord>(std::move(entry.record)),
                         m_context.organization(entry.organizationId));
    }
    for (RecordBatch::Payment& entry : batch.payments) {
        m_context.insert(std::make_unique<PaymentRecord>(std::move(entry.record)),
                         *m_context.service(entry.serviceId));
    }
    // Everything pending was written above: the earlier changes by `save`, the batch just now.
    m_context.clearChanges();
    changed.emit();
    return std::nullopt;
}

bool DataStore::hasUnsavedChanges() const {
    return m_context.hasChanges();
}

void DataStore::deleteOrganization(Organization& organization) {
    for (const ServiceRecord* service : organization.services) {
        deleteServiceSecrets(*service);
    }
    m_context.remove(organization);
    changedNow();
    save();
}

void DataStore::deleteService(ServiceRecord& service) {
    deleteServiceSecrets(service);
    m_context.remove(service);
    changedNow();
    save();
}

void DataStore::deleteServiceSecrets(const ServiceRecord& service) {
    if (!service.secretKeychainID.empty()) {
        m_keychain.remove(service.secretKeychainID);
    }
    if (!service.apiKeyKeychainID.empty()) {
        m_keychain.remove(service.apiKeyKeychainID);
    }
    if (!service.totpKeychainID.empty()) {
        m_keychain.remove(service.totpKeychainID);
    }
}

void DataStore::deletePayment(PaymentRecord& payment) {
    m_context.remove(payment);
    changedNow();
    save();
}

const std::optional<std::vector<std::uint8_t>>& DataStore::logo(Organization& organization) {
    if (!m_context.isLogoLoaded(organization)) {
        organization.logoData = m_file.readLogo(organization.id);
        m_context.markLogoLoaded(organization);
    }
    return organization.logoData;
}

void DataStore::setLogo(Organization& organization, std::optional<std::vector<std::uint8_t>> data) {
    organization.logoData = std::move(data);
    m_context.markLogoLoaded(organization);
    noteChanged(organization);
}

std::vector<Organization*> DataStore::fetchOrganizations(bool includeArchived) const {
    std::vector<Organization*> result;
    m_context.forEachOrganizationByName([&](Organization& organization) {
        if (includeArchived || !organization.isArchived) {
            result.push_back(&organization);
        }
    });
    return result;
}

std::vector<Organization*> DataStore::fetchFavorites() const {
    std::vector<Organization*> result;
    m_context.forEachOrganizationByName([&](Organization& organization) {
        if (organization.isFavorite && !organization.isArchived) {
            result.push_back(&organization);
        }
    });
    return result;
}

std::vector<Organization*> DataStore::fetchArchivedOrganizations() const {
    std::vector<Organization*> result;
    m_context.forEachOrganizationByName([&](Organization& organization) {
        if (organization.isArchived) {
            result.push_back(&organization);
        }
    });
    return result;
}

std::vector<ServiceRecord*> DataStore::fetchAllServices(bool includeArchived) const {
    return m_context.servicesByTitle(includeArchived);
}

std::size_t DataStore::countServices(bool includeArchived) const {
    return includeArchived ? m_context.serviceCount() : m_context.unarchivedServiceCount();
}

std::vector<ServiceRecord*> DataStore::fetchRecentlyUpdated(std::size_t limit) const {
    return m_context.servicesUpdatedLast(limit);
}

std::vector<ServiceRecord*> DataStore::fetchExpiringBetween(Instant from, Instant to) const {
    return m_context.servicesExpiringBetween(from, to);
}

std::vector<ServiceRecord*> DataStore::fetchExpiringSoon(int days) const {
    const Instant now = m_calendar.now();
    const std::optional<Instant> limit = m_calendar.adding(UserCalendar::Unit::day, days, now);
    if (!limit) {
        return {};
    }
    return m_context.servicesExpiringWithin(now, *limit);
}

std::vector<ServiceRecord*> DataStore::fetchExpired() const {
    return m_context.servicesExpiringBefore(m_calendar.now());
}

std::vector<ShareRecord*> DataStore::fetchShares(const Organization& organization) const {
    std::vector<ShareRecord*> result = organization.shareHistory;
    std::stable_sort(result.begin(), result.end(), [](const ShareRecord* a, const ShareRecord* b) {
        return a->sharedAt > b->sharedAt;
    });
    return result;
}

std::vector<PaymentRecord*> DataStore::fetchPayments(const ServiceRecord& service) const {
    std::vector<PaymentRecord*> result = m_context.payments(service);
    std::reverse(result.begin(), result.end());
    std::stable_sort(
        result.begin(), result.end(),
        [](const PaymentRecord* a, const PaymentRecord* b) { return a->datePaid > b->datePaid; });
    return result;
}

Organization* DataStore::organization(const Uuid& id) const {
    return m_context.organization(id);
}

ServiceRecord* DataStore::service(const Uuid& id) const {
    return m_context.service(id);
}

std::vector<ServiceRecord*> DataStore::search(std::string_view query) const {
    if (query.empty()) {
        return {};
    }
    return m_context.servicesMatching(SearchText::fold(query));
}

std::vector<Organization*> DataStore::searchOrganizations(std::string_view query) const {
    if (query.empty()) {
        return {};
    }
    return m_context.organizationsMatching(SearchText::fold(query));
}

std::size_t DataStore::totalActiveServices() const {
    return m_context.activeServiceCount();
}

Decimal DataStore::totalMonthlyCost() const {
    Decimal total;
    m_context.forEachOrganizationByName([&](Organization& organization) {
        if (!organization.isArchived) {
            total += m_context.monthlyCost(organization);
        }
    });
    return total;
}

Decimal DataStore::totalYearlyCost() const {
    Decimal total;
    m_context.forEachOrganizationByName([&](Organization& organization) {
        if (!organization.isArchived) {
            total += m_context.yearlyCost(organization);
        }
    });
    return total;
}

Decimal DataStore::monthlyCost(const Organization& organization) const {
    return m_context.monthlyCost(organization);
}

Decimal DataStore::effectiveMonthlyCost(const ServiceRecord& service) const {
    return m_context.effectiveMonthlyCost(service);
}

Decimal DataStore::chargePerPeriod(const ServiceRecord& service) const {
    return m_context.chargePerPeriod(service);
}

Decimal DataStore::yearlyCost(const Organization& organization) const {
    return m_context.yearlyCost(organization);
}

std::optional<std::string> DataStore::readSecret(const std::string& account) const {
    const std::optional<SecretBytes> bytes = m_keychain.readData(account);
    if (!bytes || !isValidUtf8(*bytes)) {
        return std::nullopt;
    }
    return std::string(bytes->begin(), bytes->end());
}

bool DataStore::writeSecret(std::string_view secret, const std::string& account) {
    if (account.empty()) {
        return false;
    }
    if (secret.empty()) {
        return m_keychain.remove(account);
    }
    return m_keychain.save(SecretBytes(secret.begin(), secret.end()), account);
}

std::optional<std::string> DataStore::getPassword(const ServiceRecord& service) const {
    return readSecret(service.secretKeychainID);
}

bool DataStore::setPassword(std::string_view password, const ServiceRecord& service) {
    return writeSecret(password, service.secretKeychainID);
}

std::optional<std::string> DataStore::getAPIKey(const ServiceRecord& service) const {
    return readSecret(service.apiKeyKeychainID);
}

bool DataStore::setAPIKey(std::string_view apiKey, const ServiceRecord& service) {
    return writeSecret(apiKey, service.apiKeyKeychainID);
}

std::optional<std::string> DataStore::getTOTPSecret(const ServiceRecord& service) const {
    return readSecret(service.totpKeychainID);
}

bool DataStore::setTOTPSecret(std::string_view secret, const ServiceRecord& service) {
    return writeSecret(secret, service.totpKeychainID);
}

} // namespace vorlane
