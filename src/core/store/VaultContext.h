// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Organization.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "model/ShareRecord.h"
#include "store/ServiceSlots.h"
#include "store/SlotOrder.h"
#include "store/SlotsById.h"
#include "util/Decimal.h"
#include "util/Instant.h"
#include "util/Uuid.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace vorlane {

class LocalizedOrder;

// The vault's object graph in memory, with what changed since the last save and the indexes that
// keep the store's lists and totals fast in a large vault: services ordered by title, services
// ordered by expiration date, organizations ordered by name, a folded search text per record,
// per-organization cost totals and the count of active services.
//
// Owns every record; the records' relationship pointers (`ServiceRecord::organization`,
// `Organization::services`, `shareHistory`) are kept in step here. A record's address is stable
// from insertion until it is removed, when it is destroyed. Services and their indexes are kept
// flat, one slot per service (see ServiceSlots), so that loading a large vault appends to a few
// arrays and sorts them once instead of inserting into trees one node at a time. Whoever changes a
// record's fields calls `noteChanged` so that the indexes and the pending changes follow. Main
// thread only.
class VaultContext {
public:
    // What `save` must write: records to insert or update, ids whose rows go. An organization's
    // logo is written only when `logoLoaded` (the in-memory value is the truth) or it holds bytes.
    struct Changes {
        std::vector<const Organization*> organizations;
        std::vector<const ServiceRecord*> services;
        std::vector<const ShareRecord*> shares;
        std::vector<const PaymentRecord*> payments;
        std::vector<Uuid> removedOrganizations;
        std::vector<Uuid> removedServices;
        std::vector<Uuid> removedShares;
        std::vector<Uuid> removedPayments;
        std::unordered_set<const Organization*> logoLoaded;
        bool empty() const;
    };

    explicit VaultContext(const LocalizedOrder& order);
    ~VaultContext();
    VaultContext(const VaultContext&) = delete;
    VaultContext& operator=(const VaultContext&) = delete;

    // Insertions. `pending` false is for records read from the file: nothing to write back.
    // A service or share record is appended to its organization's list; `owner` may be null
    // only for rows of the file that have no organization.
    Organization& insert(std::unique_ptr<Organization> organization, bool pending = true);
    ServiceRecord& insert(ServiceRecord service, Organization* owner, bool pending = true);
    ServiceRecord& insert(std::unique_ptr<ServiceRecord> service, Organization* owner,
                          bool pending = true) {
        return insert(std::move(*service), owner, pending);
    }
    ShareRecord& insert(std::unique_ptr<ShareRecord> share, Organization* owner,
                        bool pending = true);
    PaymentRecord& insert(std::unique_ptr<PaymentRecord> payment, ServiceRecord& service,
                          bool pending = true);

    // Makes room for a vault of this size up front, so that loading a large one does not grow
    // its tables step by step.
    void reserve(std::size_t organizations, std::size_t services);

    // Removal destroys the record. An organization takes its services and share records along,
    // a service its payments.
    void remove(Organization& organization);
    void remove(ServiceRecord& service);
    void remove(ShareRecord& share);
    void remove(PaymentRecord& payment);

    void noteChanged(Organization& organization);
    void noteChanged(ServiceRecord& service);
    void noteChanged(ShareRecord& share);
    void noteChanged(PaymentRecord& payment);
    // Moves a service to the end of another organization's list, or (null) to no organization.
    void moveService(ServiceRecord& service, Organization* newOwner);

    bool hasChanges() const;
    Changes changes() const;
    // After a successful save: nothing is pending any more.
    void clearChanges();

    // The logo column is read lazily: until then the in-memory `logoData` is not the truth.
    bool isLogoLoaded(const Organization& organization) const;
    void markLogoLoaded(Organization& organization);

    Organization* organization(const Uuid& id) const;
    ServiceRecord* service(const Uuid& id) const;
    // The service's payments in insertion order.
    std::vector<PaymentRecord*> payments(const ServiceRecord& service) const;
    std::size_t organizationCount() const { return m_organizations.size(); }
    std::size_t serviceCount() const { return m_services.size(); }

    // Every organization by name (ties in insertion order).
    void forEachOrganizationByName(const std::function<void(Organization&)>& visit) const;
    // Services by title (ties in insertion order); archived ones (as of their last noted change)
    // only when asked for.
    std::vector<ServiceRecord*> servicesByTitle(bool includeArchived) const;
    // As many as `servicesByTitle(false)` lists, without ordering them.
    std::size_t unarchivedServiceCount() const { return m_unarchivedServiceCount; }
    // The `limit` non-archived services changed last, newest first; equal times in title order.
    std::vector<ServiceRecord*> servicesUpdatedLast(std::size_t limit) const;

    // Containment search over the folded texts (see SearchText); `foldedQuery` is not empty.
    // Non-archived services whose own fields, kind, tags or organization's name or project name
    // contain the query, in title order.
    std::vector<ServiceRecord*> servicesMatching(std::string_view foldedQuery) const;
    // Non-archived organizations whose name, project, contact, tags or notes contain it, by name.
    std::vector<Organization*> organizationsMatching(std::string_view foldedQuery) const;

    // Non-archived services with an expiration date, ascending by date (ties in insertion order):
    // those with date < `end`, those with `after` < date <= `upTo`, and those with
    // `from` <= date < `to`.
    std::vector<ServiceRecord*> servicesExpiringBefore(Instant end) const;
    std::vector<ServiceRecord*> servicesExpiringWithin(Instant after, Instant upTo) const;
    std::vector<ServiceRecord*> servicesExpiringBetween(Instant from, Instant to) const;

    // Non-archived services whose status reads as active, whatever their organization.
    std::size_t activeServiceCount() const { return m_activeServiceCount; }
    // `Organization::monthlyCost` and `yearlyCost`, kept until the organization or one of its
    // services changes.
    const Decimal& monthlyCost(const Organization& organization) const;
    const Decimal& yearlyCost(const Organization& organization) const;
    // `ServiceRecord::effectiveMonthlyCost`, kept until the service changes: a yearly amount
    // spread over its cycle is an exact decimal division (about a microsecond), which the totals
    // and the screens that list costs would otherwise repeat for every service on every rebuild.
    Decimal effectiveMonthlyCost(const ServiceRecord& service) const;
    // `chargePerPeriod(service)`, kept until the service changes, for the same reason: the
    // charts of costs due ask it of every dated service on each rebuild, and reading the amounts
    // from a hundred thousand records scattered in memory costs more than the sums.
    Decimal chargePerPeriod(const ServiceRecord& service) const;

private:
    struct OrganizationEntry;
    struct ByKey {
        template <typename Entry> bool operator()(const Entry* a, const Entry* b) const {
            return a->sortKey != b->sortKey ? a->sortKey < b->sortKey : a->sequence < b->sequence;
        }
    };
    // What the indexes know of the service in the same slot of m_services, as of its last noted
    // change. Texts are spans of m_strings.
    struct ServiceIndex {
        std::uint64_t sequence = 0;
        Uuid id; // as inserted: its key in m_servicesById
        const Organization* owner = nullptr;
        Instant expiration{}; // while inExpirationOrder
        std::uint32_t textOffset = 0;
        std::uint32_t textLength = 0;
        std::uint32_t keyOffset = 0;
        std::uint32_t keyLength = 0;
        bool used = false;   // a service is in the slot
        bool hasKey = false; // title sort keys are made when the title order is first needed
        bool archived = false;
        bool inExpirationOrder = false;
        bool countedActive = false;
        bool countedUnarchived = false;
        bool effectiveCostKept = false; // m_effectiveCosts holds its effective monthly cost
        bool chargeKept = false;        // m_charges holds its charge per period
    };
    // Comparisons of slots for m_titleOrder and m_expirationOrder: ties in insertion order.
    struct TitleLess {
        const VaultContext* context;
        bool operator()(std::uint32_t a, std::uint32_t b) const;
    };
    struct ExpirationLess {
        const VaultContext* context;
        bool operator()(std::uint32_t a, std::uint32_t b) const;
    };

    void index(OrganizationEntry& entry);
    void unindex(OrganizationEntry& entry);
    void index(std::uint32_t slot);
    void unindex(std::uint32_t slot);
    // Appending never moves the other strings; dropping one may compact the buffer.
    std::uint32_t appendString(std::string_view text) const;
    void dropString(std::uint32_t length);
    void compactStrings();
    void setSearchText(std::uint32_t slot);
    void makeTitleKey(std::uint32_t slot) const;
    const std::vector<std::uint32_t>& slotsByTitle() const;
    const std::vector<std::uint32_t>& titleRankOfSlot() const;
    const std::vector<std::uint32_t>& slotsByExpiration() const;
    void forgetService(ServiceRecord& service);
    void invalidateCosts(const Organization* organization) const;
    OrganizationEntry& entryOf(const Organization& organization) const;
    std::uint32_t slotOf(const ServiceRecord& service) const;
    auto idOfSlot() const {
        return [this](std::uint32_t slot) -> const Uuid& {
            return m_serviceIndex[slot].id;
        };
    }

    const LocalizedOrder& m_order;
    std::uint64_t m_nextSequence = 0;
    std::unordered_map<const Organization*, std::unique_ptr<OrganizationEntry>> m_organizations;
    // Share records with their insertion sequence.
    std::unordered_map<const ShareRecord*, std::pair<std::unique_ptr<ShareRecord>, std::uint64_t>>
        m_shares;
    // Payments with their insertion sequence, and each service's payments in that order. Kept
    // apart from the services: most services have none, and a service's slot stays small.
    std::unordered_map<const PaymentRecord*,
                       std::pair<std::unique_ptr<PaymentRecord>, std::uint64_t>>
        m_payments;
    std::unordered_map<const ServiceRecord*, std::vector<PaymentRecord*>> m_paymentsOfService;
    std::unordered_map<Uuid, Organization*> m_organizationsById;
    std::set<OrganizationEntry*, ByKey> m_organizationsByName;

    ServiceSlots m_services;
    // By slot. Mutable, like the strings and the orders, because queries make title keys and
    // sort lazily.
    mutable std::vector<ServiceIndex> m_serviceIndex;
    SlotsById m_servicesById;
    // Every service's folded search text and title sort key, in one buffer that a search reads
    // in order. A changed text is appended and the old one left as garbage until the buffer is
    // compacted.
    mutable std::string m_strings;
    std::size_t m_garbageBytes = 0;
    mutable SlotOrder m_titleOrder;
    // Each slot's position in the title order, as of the order's change count `m_ranksAt`.
    mutable std::vector<std::uint32_t> m_titleRanks;
    mutable std::uint64_t m_ranksAt = UINT64_MAX;
    mutable int m_searchesWithoutTitleOrder = 0;
    mutable SlotOrder m_expirationOrder; // services not archived with an expiration date
    std::size_t m_activeServiceCount = 0;
    std::size_t m_unarchivedServiceCount = 0;
    // By slot, grown when first asked for (a command that never totals costs never pays for it).
    mutable std::vector<Decimal> m_effectiveCosts;
    mutable std::vector<Decimal> m_charges;

    std::unordered_set<const Organization*> m_pendingOrganizations;
    std::unordered_set<const ServiceRecord*> m_pendingServices;
    std::unordered_set<const ShareRecord*> m_pendingShares;
    std::unordered_set<const PaymentRecord*> m_pendingPayments;
    std::vector<Uuid> m_removedOrganizations;
    std::vector<Uuid> m_removedServices;
    std::vector<Uuid> m_removedShares;
    std::vector<Uuid> m_removedPayments;
};

} // namespace vorlane
