// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/VaultContext.h"

#include "money/ChargePerPeriod.h"
#include "store/LocalizedOrder.h"
#include "store/SearchText.h"
#include "util/HugePages.h"

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
    return organizations.empty() && services.empty() && shares.empty() && payments.empty() &&
           removedOrganizations.empty() && removedServices.empty() && removedShares.empty() &&
           removedPayments.empty();
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

ServiceRecord& VaultContext::insert(ServiceRecord service, Organization* owner, bool pending) {
    service.organization = owner;
    const std::uint32_t slot = m_services.add(std::move(service));
    ServiceRecord& record = m_services[slot];
    if (slot == m_serviceIndex.size()) {
        m_serviceIndex.emplace_back();
    }
    ServiceIndex& entry = m_serviceIndex[slot];
    entry = ServiceIndex();
    entry.used = true;
    entry.sequence = m_nextSequence++;
    entry.id = record.id;
    if (owner) {
        owner->services.push_back(&record);
        invalidateCosts(owner);
    }
    m_titleOrder.add(slot);
    index(slot);
    m_servicesById.insert(record.id, slot, idOfSlot());
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

PaymentRecord& VaultContext::insert(std::unique_ptr<PaymentRecord> payment, ServiceRecord& service,
                                    bool pending) {
    PaymentRecord& record = *payment;
    record.service = &service;
    m_paymentsOfService[&service].push_back(&record);
    m_payments.emplace(&record, std::make_pair(std::move(payment), m_nextSequence++));
    if (pending) {
        m_pendingPayments.insert(&record);
    }
    return record;
}

void VaultContext::reserve(std::size_t organizations, std::size_t services) {
    // Folded texts and title keys average well under 256 bytes per service.
    constexpr std::size_t stringBytesPerService = 256;
    m_organizations.reserve(organizations);
    m_organizationsById.reserve(organizations);
    m_services.reserve(services);
    m_serviceIndex.reserve(services);
    m_servicesById.reserve(services);
    m_titleOrder.reserve(services);
    m_expirationOrder.reserve(services);
    m_strings.reserve(services * stringBytesPerService);
    HugePages::advise(m_strings.data(), m_strings.capacity());
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

void VaultContext::remove(PaymentRecord& payment) {
    const auto list = m_paymentsOfService.find(payment.service);
    if (list != m_paymentsOfService.end()) {
        eraseFrom(list->second, &payment);
        if (list->second.empty()) {
            m_paymentsOfService.erase(list);
        }
    }
    m_removedPayments.push_back(payment.id);
    m_pendingPayments.erase(&payment);
    m_payments.erase(&payment);
}

void VaultContext::forgetService(ServiceRecord& service) {
    // Its payments' rows go with the service's row, by the file's cascade.
    if (const auto list = m_paymentsOfService.find(&service); list != m_paymentsOfService.end()) {
        for (const PaymentRecord* payment : list->second) {
            m_pendingPayments.erase(payment);
            m_payments.erase(payment);
        }
        m_paymentsOfService.erase(list);
    }
    const std::uint32_t slot = slotOf(service);
    unindex(slot);
    m_titleOrder.remove(slot, TitleLess{this});
    ServiceIndex& entry = m_serviceIndex[slot];
    const std::uint32_t stringBytes = entry.textLength + (entry.hasKey ? entry.keyLength : 0);
    m_pendingServices.erase(&service);
    m_servicesById.erase(entry.id, idOfSlot());
    entry = ServiceIndex();
    m_services.remove(slot);
    // Only now: a compaction must not keep the strings of a slot that is being freed.
    dropString(stringBytes);
}

void VaultContext::noteChanged(Organization& organization) {
    OrganizationEntry& entry = entryOf(organization);
    unindex(entry);
    index(entry);
    entry.costsValid = false;
    m_pendingOrganizations.insert(&organization);
}

void VaultContext::noteChanged(ServiceRecord& service) {
    const std::uint32_t slot = slotOf(service);
    unindex(slot);
    // The title order changes only when the title's key does: most edits leave it alone. A
    // service without a key yet is still unsorted and gets one from its title when sorted.
    ServiceIndex& entry = m_serviceIndex[slot];
    if (entry.hasKey) {
        const std::string key = m_order.sortKey(service.title);
        if (key != std::string_view(m_strings).substr(entry.keyOffset, entry.keyLength)) {
            m_titleOrder.remove(slot, TitleLess{this});
            const std::uint32_t oldLength = entry.keyLength;
            entry.keyOffset = appendString(key);
            entry.keyLength = static_cast<std::uint32_t>(key.size());
            m_titleOrder.add(slot);
            dropString(oldLength);
        }
    }
    index(slot);
    invalidateCosts(service.organization);
    m_pendingServices.insert(&service);
}

void VaultContext::noteChanged(ShareRecord& share) {
    assert(m_shares.contains(&share));
    m_pendingShares.insert(&share);
}

void VaultContext::noteChanged(PaymentRecord& payment) {
    assert(m_payments.contains(&payment));
    m_pendingPayments.insert(&payment);
}

void VaultContext::moveService(ServiceRecord& service, Organization* newOwner) {
    if (service.organization == newOwner) {
        return;
    }
    if (service.organization) {
        eraseFrom(service.organization->services, &service);
        invalidateCosts(service.organization);
    }
    service.organization = newOwner;
    m_serviceIndex[slotOf(service)].owner = newOwner;
    if (newOwner) {
        newOwner->services.push_back(&service);
        invalidateCosts(newOwner);
    }
    m_pendingServices.insert(&service);
}

bool VaultContext::hasChanges() const {
    return !m_pendingOrganizations.empty() || !m_pendingServices.empty() ||
           !m_pendingShares.empty() || !m_pendingPayments.empty() ||
           !m_removedOrganizations.empty() || !m_removedServices.empty() ||
           !m_removedShares.empty() || !m_removedPayments.empty();
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
        return m_serviceIndex[slotOf(*record)].sequence;
    });
    changes.shares = inOrder(
        m_pendingShares, [this](const ShareRecord* record) { return m_shares.at(record).second; });
    changes.payments = inOrder(m_pendingPayments, [this](const PaymentRecord* record) {
        return m_payments.at(record).second;
    });
    changes.removedOrganizations = m_removedOrganizations;
    changes.removedServices = m_removedServices;
    changes.removedShares = m_removedShares;
    changes.removedPayments = m_removedPayments;
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
    m_pendingPayments.clear();
    m_removedOrganizations.clear();
    m_removedServices.clear();
    m_removedShares.clear();
    m_removedPayments.clear();
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
    const std::optional<std::uint32_t> slot = m_servicesById.find(id, idOfSlot());
    return slot ? &m_services[*slot] : nullptr;
}

std::vector<PaymentRecord*> VaultContext::payments(const ServiceRecord& service) const {
    const auto found = m_paymentsOfService.find(&service);
    return found == m_paymentsOfService.end() ? std::vector<PaymentRecord*>() : found->second;
}

void VaultContext::forEachOrganizationByName(
    const std::function<void(Organization&)>& visit) const {
    for (const OrganizationEntry* entry : m_organizationsByName) {
        visit(*entry->record);
    }
}

std::vector<ServiceRecord*> VaultContext::servicesByTitle(bool includeArchived) const {
    const std::vector<std::uint32_t>& slots = slotsByTitle();
    std::vector<ServiceRecord*> result;
    result.reserve(slots.size());
    for (const std::uint32_t slot : slots) {
        if (includeArchived || !m_serviceIndex[slot].archived) {
            result.push_back(&m_services[slot]);
        }
    }
    return result;
}

std::vector<ServiceRecord*> VaultContext::servicesUpdatedLast(std::size_t limit) const {
    // One pass keeping the newest few, rather than ordering the whole vault by title first:
    // title keys are made only for services tied on their time.
    const auto newer = [this](std::uint32_t a, std::uint32_t b) {
        const Instant first = m_services[a].updatedAt;
        const Instant second = m_services[b].updatedAt;
        if (first != second) {
            return first > second;
        }
        makeTitleKey(a);
        makeTitleKey(b);
        return TitleLess{this}(a, b);
    };
    std::vector<std::uint32_t> kept;
    for (std::uint32_t slot = 0; slot < m_services.slotCount(); ++slot) {
        const ServiceIndex& entry = m_serviceIndex[slot];
        if (!entry.used || entry.archived) {
            continue;
        }
        const auto place = std::upper_bound(kept.begin(), kept.end(), slot, newer);
        if (place == kept.end() && kept.size() >= limit) {
            continue;
        }
        kept.insert(place, slot);
        if (kept.size() > limit) {
            kept.pop_back();
        }
    }
    std::vector<ServiceRecord*> result;
    for (const std::uint32_t slot : kept) {
        result.push_back(&m_services[slot]);
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
    std::vector<std::uint32_t> matches;
    const std::string_view strings(m_strings);
    for (std::uint32_t slot = 0; slot < m_services.slotCount(); ++slot) {
        const ServiceIndex& entry = m_serviceIndex[slot];
        if (entry.used && !entry.archived &&
            (SearchText::contains(strings.substr(entry.textOffset, entry.textLength),
                                  foldedQuery) ||
             (!matchingOwners.empty() && matchingOwners.contains(entry.owner)))) {
            matches.push_back(slot);
        }
    }
    // A store searched again and again (as someone types) ranks the matches by the whole title
    // order, made at the second search in a row that finds it out of date. A single search (a
    // command) only needs title keys for its matches, which is less work than ordering every
    // service.
    if (!m_titleOrder.isSorted() && ++m_searchesWithoutTitleOrder > 1) {
        slotsByTitle();
    }
    if (m_titleOrder.isSorted()) {
        const std::vector<std::uint32_t>& ranks = titleRankOfSlot();
        std::sort(matches.begin(), matches.end(),
                  [&](std::uint32_t a, std::uint32_t b) { return ranks[a] < ranks[b]; });
    } else {
        for (const std::uint32_t slot : matches) {
            makeTitleKey(slot);
        }
        std::sort(matches.begin(), matches.end(), TitleLess{this});
    }
    std::vector<ServiceRecord*> result;
    result.reserve(matches.size());
    for (const std::uint32_t slot : matches) {
        result.push_back(&m_services[slot]);
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
    return servicesExpiringBetween(Instant::min(), end);
}

std::vector<ServiceRecord*> VaultContext::servicesExpiringBetween(Instant from, Instant to) const {
    const std::vector<std::uint32_t>& slots = slotsByExpiration();
    const auto before = [&](Instant limit) {
        return std::partition_point(slots.begin(), slots.end(), [&](std::uint32_t slot) {
            return m_serviceIndex[slot].expiration < limit;
        });
    };
    std::vector<ServiceRecord*> result;
    const auto last = before(to);
    for (auto it = before(from); it < last; ++it) {
        result.push_back(&m_services[*it]);
    }
    return result;
}

std::vector<ServiceRecord*> VaultContext::servicesExpiringWithin(Instant after,
                                                                 Instant upTo) const {
    std::vector<ServiceRecord*> result;
    if (upTo <= after) {
        return result;
    }
    const std::vector<std::uint32_t>& slots = slotsByExpiration();
    const auto notAfter = [&](Instant limit) {
        return std::partition_point(slots.begin(), slots.end(), [&](std::uint32_t slot) {
            return m_serviceIndex[slot].expiration <= limit;
        });
    };
    const auto last = notAfter(upTo);
    for (auto it = notAfter(after); it != last; ++it) {
        result.push_back(&m_services[*it]);
    }
    return result;
}

const Decimal& VaultContext::monthlyCost(const Organization& organization) const {
    const OrganizationEntry& entry = entryOf(organization);
    if (!entry.costsValid) {
        entry.monthlyCost = organization.monthlyCost(
            [this](const ServiceRecord& service) { return effectiveMonthlyCost(service); });
        entry.yearlyCost = organization.yearlyCost();
        entry.costsValid = true;
    }
    return entry.monthlyCost;
}

Decimal VaultContext::effectiveMonthlyCost(const ServiceRecord& service) const {
    const std::uint32_t slot = slotOf(service);
    ServiceIndex& entry = m_serviceIndex[slot];
    if (!entry.effectiveCostKept) {
        if (m_effectiveCosts.size() <= slot) {
            m_effectiveCosts.resize(m_services.slotCount());
        }
        m_effectiveCosts[slot] = service.effectiveMonthlyCost();
        entry.effectiveCostKept = true;
    }
    return m_effectiveCosts[slot];
}

Decimal VaultContext::chargePerPeriod(const ServiceRecord& service) const {
    const std::uint32_t slot = slotOf(service);
    ServiceIndex& entry = m_serviceIndex[slot];
    if (!entry.chargeKept) {
        if (m_charges.size() <= slot) {
            m_charges.resize(m_services.slotCount());
        }
        m_charges[slot] = vorlane::chargePerPeriod(service);
        entry.chargeKept = true;
    }
    return m_charges[slot];
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

void VaultContext::index(std::uint32_t slot) {
    const ServiceRecord& service = m_services[slot];
    ServiceIndex& entry = m_serviceIndex[slot];
    entry.effectiveCostKept = false;
    entry.chargeKept = false;
    setSearchText(slot);
    entry.owner = service.organization;
    entry.archived = service.isArchived;
    if (!service.isArchived) {
        entry.countedUnarchived = true;
        ++m_unarchivedServiceCount;
        if (service.expirationDate) {
            entry.expiration = *service.expirationDate;
            entry.inExpirationOrder = true;
            m_expirationOrder.add(slot);
        }
        if (service.status() == ServiceStatus::active) {
            entry.countedActive = true;
            ++m_activeServiceCount;
        }
    }
}

// Takes the service out of the indexes that depend on fields other than the title; the title
// order is updated by `noteChanged` only when the title's key changed.
void VaultContext::unindex(std::uint32_t slot) {
    ServiceIndex& entry = m_serviceIndex[slot];
    if (entry.inExpirationOrder) {
        m_expirationOrder.remove(slot, ExpirationLess{this});
        entry.inExpirationOrder = false;
    }
    if (entry.countedActive) {
        entry.countedActive = false;
        --m_activeServiceCount;
    }
    if (entry.countedUnarchived) {
        entry.countedUnarchived = false;
        --m_unarchivedServiceCount;
    }
}

std::uint32_t VaultContext::appendString(std::string_view text) const {
    const auto offset = static_cast<std::uint32_t>(m_strings.size());
    m_strings += text;
    return offset;
}

void VaultContext::dropString(std::uint32_t length) {
    m_garbageBytes += length;
    if (m_garbageBytes > (1u << 20) && m_garbageBytes > m_strings.size() / 2) {
        compactStrings();
    }
}

void VaultContext::compactStrings() {
    std::string compacted;
    compacted.reserve(m_strings.size() - m_garbageBytes);
    const auto move = [&](std::uint32_t& offset, std::uint32_t length) {
        const auto moved = static_cast<std::uint32_t>(compacted.size());
        compacted.append(m_strings, offset, length);
        offset = moved;
    };
    for (std::uint32_t slot = 0; slot < m_services.slotCount(); ++slot) {
        ServiceIndex& entry = m_serviceIndex[slot];
        if (entry.used) {
            move(entry.textOffset, entry.textLength);
            if (entry.hasKey) {
                move(entry.keyOffset, entry.keyLength);
            }
        }
    }
    m_strings.swap(compacted);
    m_garbageBytes = 0;
}

void VaultContext::setSearchText(std::uint32_t slot) {
    const ServiceRecord& service = m_services[slot];
    ServiceIndex& entry = m_serviceIndex[slot];
    // The fields are joined at the end of the buffer, folded, and kept there unless the text
    // is the one the service already has.
    const std::size_t start = m_strings.size();
    for (const std::string* field :
         {&service.title, &service.provider, &service.hostname, &service.domain, &service.ipAddress,
          &service.username, &service.emailAddress, &service.notes}) {
        appendField(m_strings, *field);
    }
    for (const std::string& tag : service.tags) {
        appendField(m_strings, tag);
    }
    // The kind is found by the value stored for it ("domainRegistrar"), as typed by people who
    // search for "ssh" or "domain".
    appendField(m_strings, service.serviceTypeRaw);
    const std::string folded = SearchText::fold(std::string_view(m_strings).substr(start));
    m_strings.resize(start);
    if (folded == std::string_view(m_strings).substr(entry.textOffset, entry.textLength)) {
        return;
    }
    const std::uint32_t oldLength = entry.textLength;
    entry.textOffset = appendString(folded);
    entry.textLength = static_cast<std::uint32_t>(folded.size());
    dropString(oldLength);
}

void VaultContext::makeTitleKey(std::uint32_t slot) const {
    ServiceIndex& entry = m_serviceIndex[slot];
    if (entry.hasKey) {
        return;
    }
    const std::string key = m_order.sortKey(m_services[slot].title);
    entry.keyOffset = appendString(key);
    entry.keyLength = static_cast<std::uint32_t>(key.size());
    entry.hasKey = true;
}

const std::vector<std::uint32_t>& VaultContext::slotsByTitle() const {
    m_searchesWithoutTitleOrder = 0;
    m_titleOrder.forEachUnsorted([this](std::uint32_t slot) { makeTitleKey(slot); });
    return m_titleOrder.sorted(TitleLess{this});
}

const std::vector<std::uint32_t>& VaultContext::titleRankOfSlot() const {
    const std::vector<std::uint32_t>& slots = slotsByTitle();
    if (m_ranksAt != m_titleOrder.changeCount()) {
        m_titleRanks.assign(m_services.slotCount(), 0);
        for (std::uint32_t rank = 0; rank < slots.size(); ++rank) {
            m_titleRanks[slots[rank]] = rank;
        }
        m_ranksAt = m_titleOrder.changeCount();
    }
    return m_titleRanks;
}

const std::vector<std::uint32_t>& VaultContext::slotsByExpiration() const {
    return m_expirationOrder.sorted(ExpirationLess{this});
}

bool VaultContext::TitleLess::operator()(std::uint32_t a, std::uint32_t b) const {
    const ServiceIndex& first = context->m_serviceIndex[a];
    const ServiceIndex& second = context->m_serviceIndex[b];
    const std::string_view strings(context->m_strings);
    const int order = strings.substr(first.keyOffset, first.keyLength)
                          .compare(strings.substr(second.keyOffset, second.keyLength));
    return order != 0 ? order < 0 : first.sequence < second.sequence;
}

bool VaultContext::ExpirationLess::operator()(std::uint32_t a, std::uint32_t b) const {
    const ServiceIndex& first = context->m_serviceIndex[a];
    const ServiceIndex& second = context->m_serviceIndex[b];
    return first.expiration != second.expiration ? first.expiration < second.expiration
                                                 : first.sequence < second.sequence;
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

std::uint32_t VaultContext::slotOf(const ServiceRecord& service) const {
    const std::optional<std::uint32_t> slot = m_services.slotOf(&service);
    assert(slot && "the service is not in this vault");
    return *slot;
}

} // namespace vorlane
