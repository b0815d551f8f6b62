#include "store/VaultContext.h"

#include "store/LocalizedOrder.h"
#include "store/SearchText.h"

#include <algorithm>
#include <cassert>
#include <optional>

namespace vorlane {

struct VaultContext::OrganizationEntry {
    std::unique_ptr<Organization> record;
    std::uint64_t sequence = 0;
    std::string sortKey;
    std::string searchText;      // what searchOrganizations looks at
    std::string ownerSearchText; // what a search of its services looks at: name and project
    bool logoLoaded = false;
    mutable bool costsValid = false;
    mutable Decimal monthlyCost;
    mutable Decimal yearlyCost;
};

struct VaultContext::ServiceEntry {
    std::unique_ptr<ServiceRecord> record;
    std::uint64_t sequence = 0;
    std::string sortKey;
    std::string searchText;
    std::optional<ExpirationKey> expirationKey; // set while in the expiration index
    bool countedActive = false;
};

namespace {

template <typename Record> void eraseFrom(std::vector<Record*>& list, const Record* record) {
    const auto found = std::find(list.begin(), list.end(), record);
    if (found != list.end()) {
        list.erase(found);
    }
}

void appendField(std::string& text, std::string_view field) {
    text += field;
    text += SearchText::fieldSeparator;
}

std::string joinedTags(const std::vector<std::string>& tags) {
    std::string text;
    for (const std::string& tag : tags) {
        appendField(text, tag);
    }
    return text;
}

} // namespace

bool VaultContext::Changes::empty() const {
    return organizations.empty() && services.empty() && shares.empty() &&
           removedOrganizations.empty() && removedServices.empty() && removedShares.empty();
}

VaultContext::VaultContext(const LocalizedOrder& order)
    : m_order(order) {}

VaultContext::~VaultContext() = default;

Organization& VaultContext::insert(std::unique_ptr<Organization> organization, bool pending) {
    auto entry = std::make_unique<OrganizationEntry>();
    entry->record = std::move(organization);
    entry->sequence = m_nextSequence++;
    // A new organization has no logo row in the file: its in-memory value is already the truth.
    entry->logoLoaded = pending;
    Organization& record = *entry->record;
    index(*entry);
    m_organizationsById[record.id] = &record;
    m_organizations.emplace(&record, std::move(entry));
    if (pending) {
        m_pendingOrganizations.insert(&record);
    }
    return record;
}

ServiceRecord& VaultContext::insert(std::unique_ptr<ServiceRecord> service, Organization* owner,
                                    bool pending) {
    auto entry = std::make_unique<ServiceEntry>();
    entry->record = std::move(service);
    entry->sequence = m_nextSequence++;
    ServiceRecord& record = *entry->record;
    record.organization = owner;
    if (owner) {
        owner->services.push_back(&record);
        invalidateCosts(owner);
    }
    index(*entry);
    m_servicesById[record.id] = &record;
    m_services.emplace(&record, std::move(entry));
    if (pending) {
        m_pendingServices.insert(&record);
    }
    return record;
}

ShareRecord& VaultContext::insert(std::unique_ptr<ShareRecord> share, Organization* owner,
                                  bool pending) {
    ShareRecord& record = *share;
    record.organization = owner;
    if (owner) {
        owner->shareHistory.push_back(&record);
    }
    m_shares.emplace(&record, std::make_pair(std::move(share), m_nextSequence++));
    if (pending) {
        m_pendingShares.insert(&record);
    }
    return record;
}

void VaultContext::remove(Organization& organization) {
    // Each row is deleted by id as well as by the file's cascade: a service moved here since the
    // last save still has its old organization in the file, where no cascade would reach it.
    for (ServiceRecord* service : std::vector<ServiceRecord*>(organization.services)) {
        m_removedServices.push_back(service->id);
        forgetService(*service);
    }
    for (ShareRecord* share : organization.shareHistory) {
        m_removedShares.push_back(share->id);
        m_pendingShares.erase(share);
        m_shares.erase(share);
    }
    OrganizationEntry& entry = entryOf(organization);
    unindex(entry);
    m_removedOrganizations.push_back(organization.id);
    m_pendingOrganizations.erase(&organization);
    m_organizationsById.erase(organization.id);
    m_organizations.erase(&organization);
}

void VaultContext::remove(ServiceRecord& service) {
    if (service.organization) {
        eraseFrom(service.organization->services, &service);
        invalidateCosts(service.organization);
    }
    m_removedServices.push_back(service.id);
    forgetService(service);
}

void VaultContext::remove(ShareRecord& share) {
    if (share.organization) {
        eraseFrom(share.organization->shareHistory, &share);
    }
    m_removedShares.push_back(share.id);
    m_pendingShares.erase(&share);
    m_shares.erase(&share);
}

void VaultContext::forgetService(ServiceRecord& service) {
    ServiceEntry& entry = entryOf(service);
    unindex(entry);
    m_pendingServices.erase(&service);
    m_servicesById.erase(service.id);
    m_services.erase(&service);
}

void VaultContext::noteChanged(Organization& organization) {
    OrganizationEntry& entry = entryOf(organization);
    unindex(entry);
    index(entry);
    entry.costsValid = false;
    m_pendingOrganizations.insert(&organization);
}

void VaultContext::noteChanged(ServiceRecord& service) {
    ServiceEntry& entry = entryOf(service);
    unindex(entry);
    index(entry);
    invalidateCosts(service.organization);
    m_pendingServices.insert(&service);
}

void VaultContext::noteChanged(ShareRecord& share) {
    assert(m_shares.contains(&share));
    m_pendingShares.insert(&share);
}

void VaultContext::moveService(ServiceRecord& service, Organization& newOwner) {
    if (service.organization == &newOwner) {
        return;
    }
    if (service.organization) {
        eraseFrom(service.organization->services, &service);
        invalidateCosts(service.organization);
    }
    service.organization = &newOwner;
    newOwner.services.push_back(&service);
    invalidateCosts(&newOwner);
    m_pendingServices.insert(&service);
}

bool VaultContext::hasChanges() const {
    return !m_pendingOrganizations.empty() || !m_pendingServices.empty() ||
           !m_pendingShares.empty() || !m_removedOrganizations.empty() ||
           !m_removedServices.empty() || !m_removedShares.empty();
}

VaultContext::Changes VaultContext::changes() const {
    // In insertion order: new rows get ascending rowids, which is the order the next load
    // rebuilds each organization's lists in.
    const auto inOrder = [](const auto& pending, auto sequenceOf) {
        std::vector<typename std::decay_t<decltype(pending)>::value_type> records(pending.begin(),
                                                                                  pending.end());
        std::sort(records.begin(), records.end(),
                  [&](auto a, auto b) { return sequenceOf(a) < sequenceOf(b); });
        return records;
    };
    Changes changes;
    changes.organizations = inOrder(m_pendingOrganizations, [this](const Organization* record) {
        return entryOf(*record).sequence;
    });
    changes.services = inOrder(m_pendingServices, [this](const ServiceRecord* record) {
        return entryOf(*record).sequence;
    });
    changes.shares = inOrder(
        m_pendingShares, [this](const ShareRecord* record) { return m_shares.at(record).second; });
    changes.removedOrganizations = m_removedOrganizations;
    changes.removedServices = m_removedServices;
    changes.removedShares = m_removedShares;
    for (const Organization* organization : m_pendingOrganizations) {
        if (isLogoLoaded(*organization)) {
            changes.logoLoaded.insert(organization);
        }
    }
    return changes;
}

void VaultContext::clearChanges() {
    m_pendingOrganizations.clear();
    m_pendingServices.clear();
    m_pendingShares.clear();
    m_removedOrganizations.clear();
    m_removedServices.clear();
    m_removedShares.clear();
}

bool VaultContext::isLogoLoaded(const Organization& organization) const {
    return entryOf(organization).logoLoaded;
}

void VaultContext::markLogoLoaded(Organization& organization) {
    entryOf(organization).logoLoaded = true;
}

Organization* VaultContext::organization(const Uuid& id) const {
    const auto found = m_organizationsById.find(id);
    return found == m_organizationsById.end() ? nullptr : found->second;
}

ServiceRecord* VaultContext::service(const Uuid& id) const {
    const auto found = m_servicesById.find(id);
    return found == m_servicesById.end() ? nullptr : found->second;
}

void VaultContext::forEachOrganizationByName(
    const std::function<void(Organization&)>& visit) const {
    for (const OrganizationEntry* entry : m_organizationsByName) {
        visit(*entry->record);
    }
}

void VaultContext::forEachServiceByTitle(const std::function<void(ServiceRecord&)>& visit) const {
    for (const ServiceEntry* entry : m_servicesByTitle) {
        visit(*entry->record);
    }
}

std::vector<ServiceRecord*> VaultContext::servicesMatching(std::string_view foldedQuery) const {
    // An organization's name and project are matched once per query, not once per service.
    std::unordered_set<const Organization*> matchingOwners;
    for (const auto& [organization, entry] : m_organizations) {
        if (SearchText::contains(entry->ownerSearchText, foldedQuery)) {
            matchingOwners.insert(organization);
        }
    }
    std::vector<ServiceRecord*> matches;
    for (const ServiceEntry* entry : m_servicesByTitle) {
        ServiceRecord& service = *entry->record;
        if (!service.isArchived && (SearchText::contains(entry->searchText, foldedQuery) ||
                                    matchingOwners.contains(service.organization))) {
            matches.push_back(&service);
        }
    }
    return matches;
}

std::vector<Organization*> VaultContext::organizationsMatching(std::string_view foldedQuery) const {
    std::vector<Organization*> matches;
    for (const OrganizationEntry* entry : m_organizationsByName) {
        if (!entry->record->isArchived && SearchText::contains(entry->searchText, foldedQuery)) {
            matches.push_back(entry->record.get());
        }
    }
    return matches;
}

std::vector<ServiceRecord*> VaultContext::servicesExpiringBefore(Instant end) const {
    std::vector<ServiceRecord*> result;
    const auto last = m_servicesByExpiration.lower_bound({end, 0});
    for (auto it = m_servicesByExpiration.begin(); it != last; ++it) {
        result.push_back(it->second);
    }
    return result;
}

std::vector<ServiceRecord*> VaultContext::servicesExpiringWithin(Instant after,
                                                                 Instant upTo) const {
    std::vector<ServiceRecord*> result;
    if (upTo <= after) {
        return result;
    }
    const auto first = m_servicesByExpiration.lower_bound({after + Instant::duration(1), 0});
    const auto last = m_servicesByExpiration.lower_bound({upTo + Instant::duration(1), 0});
    for (auto it = first; it != last; ++it) {
        result.push_back(it->second);
    }
    return result;
}

const Decimal& VaultContext::monthlyCost(const Organization& organization) const {
    const OrganizationEntry& entry = entryOf(organization);
    if (!entry.costsValid) {
        entry.monthlyCost = organization.monthlyCost();
        entry.yearlyCost = organization.yearlyCost();
        entry.costsValid = true;
    }
    return entry.monthlyCost;
}

const Decimal& VaultContext::yearlyCost(const Organization& organization) const {
    monthlyCost(organization);
    return entryOf(organization).yearlyCost;
}

void VaultContext::index(OrganizationEntry& entry) {
    const Organization& organization = *entry.record;
    entry.sortKey = m_order.sortKey(organization.name);
    std::string owner;
    appendField(owner, organization.name);
    appendField(owner, organization.projectName);
    std::string text = owner;
    appendField(text, organization.contactName);
    text += joinedTags(organization.tags);
    appendField(text, organization.notes);
    entry.ownerSearchText = SearchText::fold(owner);
    entry.searchText = SearchText::fold(text);
    m_organizationsByName.insert(&entry);
}

void VaultContext::unindex(OrganizationEntry& entry) {
    m_organizationsByName.erase(&entry);
}

void VaultContext::index(ServiceEntry& entry) {
    const ServiceRecord& service = *entry.record;
    entry.sortKey = m_order.sortKey(service.title);
    std::string text;
    for (const std::string* field :
         {&service.title, &service.provider, &service.hostname, &service.domain, &service.ipAddress,
          &service.username, &service.emailAddress, &service.notes}) {
        appendField(text, *field);
    }
    text += joinedTags(service.tags);
    // The kind is found by its raw value ("domainRegistrar") and by the label people read
    // ("Domain Registrar").
    appendField(text, service.serviceTypeRaw);
    appendField(text, service.serviceType().label());
    entry.searchText = SearchText::fold(text);
    m_servicesByTitle.insert(&entry);
    if (!service.isArchived) {
        if (service.expirationDate) {
            entry.expirationKey = ExpirationKey{*service.expirationDate, entry.sequence};
            m_servicesByExpiration.emplace(*entry.expirationKey, entry.record.get());
        }
        if (service.status() == ServiceStatus::active) {
            entry.countedActive = true;
            ++m_activeServiceCount;
        }
    }
}

void VaultContext::unindex(ServiceEntry& entry) {
    m_servicesByTitle.erase(&entry);
    if (entry.expirationKey) {
        m_servicesByExpiration.erase(*entry.expirationKey);
        entry.expirationKey.reset();
    }
    if (entry.countedActive) {
        entry.countedActive = false;
        --m_activeServiceCount;
    }
}

void VaultContext::invalidateCosts(const Organization* organization) const {
    if (organization) {
        entryOf(*organization).costsValid = false;
    }
}

VaultContext::OrganizationEntry& VaultContext::entryOf(const Organization& organization) const {
    const auto found = m_organizations.find(&organization);
    assert(found != m_organizations.end() && "the organization is not in this vault");
    return *found->second;
}

VaultContext::ServiceEntry& VaultContext::entryOf(const ServiceRecord& service) const {
    const auto found = m_services.find(&service);
    assert(found != m_services.end() && "the service is not in this vault");
    return *found->second;
}

} // namespace vorlane
