// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/StoreJson.h"

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "util/IsoDate.h"
#include "util/UserCalendar.h"

#include <nlohmann/json.hpp>

namespace vorlane {

namespace {

// Compact, "/" left alone, and text that is not valid UTF-8 (a damaged field) shown with
// replacement characters instead of failing the whole line.
std::string line(const nlohmann::ordered_json& object) {
    return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

nlohmann::ordered_json optionalDate(const std::optional<Instant>& instant) {
    return instant ? nlohmann::ordered_json(IsoDate::utc(*instant))
                   : nlohmann::ordered_json(nullptr);
}

nlohmann::ordered_json serviceObject(const ServiceRecord& service, const UserCalendar& calendar) {
    nlohmann::ordered_json object;
    object["id"] = service.id.toString();
    object["organization"] = service.organization ? service.organization->name : "";
    object["title"] = service.title;
    object["serviceType"] = service.serviceType().rawValue();
    object["subtitle"] = service.displaySubtitle();
    object["provider"] = service.provider;
    object["hostname"] = service.hostname;
    object["domain"] = service.domain;
    object["username"] = service.username;
    object["expirationDate"] = optionalDate(service.expirationDate);
    const std::optional<int> days = service.daysUntilExpiration(calendar);
    object["daysUntilExpiration"] = days ? nlohmann::ordered_json(*days) : nullptr;
    object["expirationState"] = service.expirationState(calendar).rawValue();
    object["status"] = service.status().rawValue();
    object["billingCycle"] = service.billingCycle().rawValue();
    object["effectiveMonthlyCost"] = service.effectiveMonthlyCost().toString();
    object["isArchived"] = service.isArchived;
    object["hasPassword"] = !service.secretKeychainID.empty();
    object["hasAPIKey"] = !service.apiKeyKeychainID.empty();
    return object;
}

} // namespace

std::string StoreJson::service(const ServiceRecord& service, const UserCalendar& calendar) {
    return line(serviceObject(service, calendar));
}

std::string StoreJson::serviceWithAllFields(const ServiceRecord& service,
                                            const UserCalendar& calendar) {
    nlohmann::ordered_json object = serviceObject(service, calendar);
    const auto text = [](const std::string& value) {
        return value.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(value);
    };
    object["loginURL"] = text(service.loginURL);
    object["ipAddress"] = text(service.ipAddress);
    object["port"] = service.port ? nlohmann::ordered_json(*service.port) : nullptr;
    object["emailAddress"] = text(service.emailAddress);
    object["sshKeyReference"] = text(service.sshKeyReference);
    object["purchaseDate"] = optionalDate(service.purchaseDate);
    object["renewalDate"] = optionalDate(service.renewalDate);
    object["monthlyCost"] = service.monthlyCost.toString();
    object["yearlyCost"] = service.yearlyCost.toString();
    object["autoRenew"] = service.autoRenew;
    object["tags"] = service.tags;
    object["notes"] = text(service.notes);
    object["riskLevel"] = service.riskLevel().rawValue();
    object["createdAt"] = IsoDate::utc(service.createdAt);
    object["updatedAt"] = IsoDate::utc(service.updatedAt);
    object["secretKeychainID"] = text(service.secretKeychainID);
    object["apiKeyKeychainID"] = text(service.apiKeyKeychainID);
    return line(object);
}

std::string StoreJson::organization(const Organization& organization) {
    nlohmann::ordered_json object;
    object["id"] = organization.id.toString();
    object["name"] = organization.name;
    object["projectName"] = organization.projectName;
    object["contactName"] = organization.contactName;
    object["isFavorite"] = organization.isFavorite;
    object["isArchived"] = organization.isArchived;
    object["services"] = organization.services.size();
    object["monthlyCost"] = organization.monthlyCost().toString();
    object["yearlyCost"] = organization.yearlyCost().toString();
    return line(object);
}

std::string StoreJson::totals(std::size_t activeServices, const Decimal& monthlyCost,
                              const Decimal& yearlyCost) {
    nlohmann::ordered_json object;
    object["totalActiveServices"] = activeServices;
    object["totalMonthlyCost"] = monthlyCost.toString();
    object["totalYearlyCost"] = yearlyCost.toString();
    return line(object);
}

} // namespace vorlane
