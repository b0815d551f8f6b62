// SPDX-License-Identifier: GPL-3.0-or-later
#include "share/ExportPayload.h"

#include "crypto/ExportBundle.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "store/DataStore.h"
#include "util/IsoDate.h"
#include "util/JsonText.h"

#include <nlohmann/json.hpp>

#include <chrono>

namespace vorlane {

namespace {

using nlohmann::ordered_json;

template <typename T>
void putIfPresent(ordered_json& object, const char* name, const std::optional<T>& value) {
    if (value) {
        object[name] = *value;
    }
}

ordered_json itemJson(const ExportItem& item) {
    ordered_json object;
    object["title"] = item.title;
    object["type"] = item.type;
    object["provider"] = item.provider;
    object["hostname"] = item.hostname;
    object["domain"] = item.domain;
    object["ipAddress"] = item.ipAddress;
    object["loginURL"] = item.loginURL;
    object["username"] = item.username;
    putIfPresent(object, "password", item.password);
    putIfPresent(object, "apiKey", item.apiKey);
    object["email"] = item.email;
    putIfPresent(object, "port", item.port);
    putIfPresent(object, "notes", item.notes);
    putIfPresent(object, "monthlyCost", item.monthlyCost);
    putIfPresent(object, "expirationDate", item.expirationDate);
    return object;
}

} // namespace

std::string ExportPayload::toJson() const {
    ordered_json object;
    object["organizationName"] = organizationName;
    object["projectName"] = projectName;
    object["exportDate"] = JsonText::number(ExportBundle::secondsSinceReferenceDate(exportDate));
    ordered_json list = ordered_json::array();
    for (const ExportItem& item : items) {
        list.push_back(itemJson(item));
    }
    object["items"] = std::move(list);
    return JsonText::compact(object);
}

ExportPayload ExportPayload::build(const Organization& organization,
                                   const std::vector<ServiceRecord*>& services,
                                   const ExportOptions& options, const DataStore& store,
                                   Instant now) {
    ExportPayload payload{organization.name, organization.projectName, now, {}};
    payload.items.reserve(services.size());
    for (const ServiceRecord* service : services) {
        ExportItem item;
        item.title = service->title;
        item.type = service->serviceType().label();
        item.provider = service->provider;
        item.hostname = service->hostname;
        item.domain = service->domain;
        item.ipAddress = service->ipAddress;
        item.loginURL = service->loginURL;
        item.username = service->username;
        if (options.includeSecrets) {
            item.password = store.getPassword(*service);
            item.apiKey = store.getAPIKey(*service);
        }
        item.email = service->emailAddress;
        item.port = service->port;
        if (options.includeNotes) {
            item.notes = service->notes;
        }
        if (options.includeFinancials) {
            item.monthlyCost = service->monthlyCost.toString();
        }
        if (service->expirationDate) {
            item.expirationDate =
                IsoDate::utc(std::chrono::floor<std::chrono::seconds>(*service->expirationDate));
        }
        payload.items.push_back(std::move(item));
    }
    return payload;
}

std::vector<std::string> ExportPayload::redactedFields(const ExportOptions& options) {
    std::vector<std::string> fields;
    if (!options.includeSecrets) {
        fields.insert(fields.end(), {"password", "apiKey"});
    }
    if (!options.includeNotes) {
        fields.emplace_back("notes");
    }
    if (!options.includeFinancials) {
        fields.insert(fields.end(), {"monthlyCost", "yearlyCost"});
    }
    return fields;
}

} // namespace vorlane
