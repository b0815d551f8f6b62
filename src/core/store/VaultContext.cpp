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
    std::uint32_t slot = 0; // its row in m_rows
    bool inTitleOrder = false;
    std::string sortKey;
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
    if (m_freeRows.empty()) {
        entry->slot = static_cast<std::uint32_t>(m_rows.size());
        m_rows.emplace_back();
    } else {
        entry->slot = m_freeRows.back();
        m_freeRows.pop_back();
    }
    m_rows[entry->slot].service = &record;
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

void VaultContext::reserve(std::size_t organizations, std::size_t services) {
    // Folded texts average well under 256 bytes per service.
    constexpr std::size_t textBytesPerService = 256;
    m_organizations.reserve(organizations);
    m_organizationsById.reserve(organizations);
    m_services.reserve(services);
    m_servicesById.reserve(services);
    m_rows.reserve(services);
    m_texts.reserve(services * textBytesPerService);
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
    if (entry.inTitleOrder) {
        m_servicesByTitle.erase(&entry);
        m_ranksStale = true;
    }
    SearchRow& row = m_rows[entry.slot];
    m_garbageTextBytes += row.textLength;
    row = SearchRow();
    m_freeRows.push_back(entry.slot);
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
    m_rows[entryOf(service).slot].owner = &newOwner;
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

std::vector<ServiceRecord*> VaultContext::servicesByTitle(bool includeArchived) const {
    rankByTitle();
    std::vector<ServiceRecord*> result;
    result.reserve(m_slotsByTitle.size());
    for (const std::uint32_t slot : m_slotsByTitle) {
        const SearchRow& row = m_rows[slot];
        if (includeArchived || !row.archived) {
            result.push_back(row.service);
        }
    }
    return result;
}

std::vector<ServiceRecord*> VaultContext::servicesMatching(std::string_view foldedQuery) const {
    // An organization's name and project are matched once per query, not once per service.
    std::unordered_set<const Organization*> matchingOwners;
    for (const auto& [organization, entry] : m_organizations) {
        if (SearchText::contains(entry->ownerSearchText, foldedQuery)) {
            matchingOwners.insert(organization);
        }
    }
    rankByTitle();
    std::vector<std::pair<std::uint32_t, ServiceRecord*>> matches;
    const std::string_view texts(m_texts);
    for (std::size_t slot = 0; slot < m_rows.size(); ++slot) {
        const SearchRow& row = m_rows[slot];
        if (row.service && !row.archived &&
            (SearchText::contains(texts.substr(row.textOffset, row.textLength), foldedQuery) ||
             (!matchingOwners.empty() && matchingOwners.contains(row.owner)))) {
            matches.emplace_back(m_titleRankOfSlot[slot], row.service);
        }
    }
    std::sort(matches.begin(), matches.end());
    std::vector<ServiceRecord*> result;
    result.reserve(matches.size());
    for (const auto& match : matches) {
        result.push_back(match.second);
    }
    return result;
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
    // The title order changes only when the title's key does: most edits leave it alone.
    std::string sortKey = m_order.sortKey(service.title);
    if (!entry.inTitleOrder || sortKey != entry.sortKey) {
        if (entry.inTitleOrder) {
            m_servicesByTitle.erase(&entry);
        }
        entry.sortKey = std::move(sortKey);
        m_servicesByTitle.insert(&entry);
        entry.inTitleOrder = true;
        m_ranksStale = true;
    }
    std::string text;
    for (const std::string* field :
         {&service.title, &service.provider, &service.hostname, &service.domain, &service.ipAddress,
          &service.username, &service.emailAddress, &service.notes}) {
        appendField(text, *field);
    }
    text += joinedTags(service.tags);
    // The kind is found by the value stored for it ("domainRegistrar"), as typed by people who
    // search for "ssh" or "domain".
    appendField(text, service.serviceTypeRaw);
    setSearchText(entry.slot, SearchText::fold(text));
    SearchRow& row = m_rows[entry.slot];
    row.owner = service.organization;
    row.archived = service.isArchived;
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

// Takes the service out of the indexes that depend on fields other than the title; the title
// order is updated by `index` only when the title's key changed.
void VaultContext::unindex(ServiceEntry& entry) {
    if (entry.expirationKey) {
        m_servicesByExpiration.erase(*entry.expirationKey);
        entry.expirationKey.reset();
    }
    if (entry.countedActive) {
        entry.countedActive = false;
        --m_activeServiceCount;
    }
}

void VaultContext::setSearchText(std::uint32_t slot, std::string_view folded) {
    SearchRow& row = m_rows[slot];
    if (std::string_view(m_texts).substr(row.textOffset, row.textLength) == folded) {
        return;
    }
    m_garbageTextBytes += row.textLength;
    row.textOffset = static_cast<std::uint32_t>(m_texts.size());
    row.textLength = static_cast<std::uint32_t>(folded.size());
    m_texts += folded;
    if (m_garbageTextBytes > (1u << 20) && m_garbageTextBytes > m_texts.size() / 2) {
        compactSearchTexts();
    }
}

void VaultContext::compactSearchTexts() {
    std::string compacted;
    compacted.reserve(m_texts.size() - m_garbageTextBytes);
    for (SearchRow& row : m_rows) {
        const std::uint32_t offset = static_cast<std::uint32_t>(compacted.size());
        compacted.append(m_texts, row.textOffset, row.textLength);
        row.textOffset = offset;
    }
    m_texts.swap(compacted);
    m_garbageTextBytes = 0;
}

void VaultContext::rankByTitle() const {
    if (!m_ranksStale) {
        return;
    }
    m_slotsByTitle.clear();
    m_slotsByTitle.reserve(m_servicesByTitle.size());
    m_titleRankOfSlot.assign(m_rows.size(), 0);
    for (const ServiceEntry* entry : m_servicesByTitle) {
        m_titleRankOfSlot[entry->slot] = static_cast<std::uint32_t>(m_slotsByTitle.size());
        m_slotsByTitle.push_back(entry->slot);
    }
    m_ranksStale = false;
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
