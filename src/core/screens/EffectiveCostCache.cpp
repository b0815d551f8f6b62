#include "screens/EffectiveCostCache.h"

#include "model/ServiceRecord.h"

namespace vorlane {

Decimal EffectiveCostCache::of(const ServiceRecord& service) {
    if (!service.monthlyCost.isZero() && !service.monthlyCost.isNegative()) {
        return service.monthlyCost;
    }
    Entry& entry = m_entries[&service];
    if (!entry.valid || entry.yearlyCost != service.yearlyCost ||
        entry.billingCycleRaw != service.billingCycleRaw) {
        entry.yearlyCost = service.yearlyCost;
        entry.billingCycleRaw = service.billingCycleRaw;
        entry.effective = service.effectiveMonthlyCost();
        entry.valid = true;
    }
    entry.used = true;
    return entry.effective;
}

void EffectiveCostCache::sweep() {
    std::erase_if(m_entries, [](const auto& item) { return !item.second.used; });
    for (auto& [service, entry] : m_entries) {
        entry.used = false;
    }
}

} // namespace vorlane
