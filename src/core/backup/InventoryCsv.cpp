// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/InventoryCsv.h"

#include "importer/VorlaneCsvReader.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "store/DataStore.h"
#include "util/CsvText.h"
#include "util/DateText.h"
#include "util/PrivateFile.h"
#include "util/TagText.h"
#include "util/UserCalendar.h"

namespace vorlane {

namespace {

std::string dayOf(const std::optional<Instant>& instant, const UserCalendar& calendar) {
    return instant ? DateText::isoDay(*instant, calendar) : std::string();
}

// The column's value of `service`, in the form the spreadsheet import reads.
std::string valueOf(const ServiceRecord& service, std::string_view column,
                    const UserCalendar& calendar) {
    if (column == "organization") {
        return service.organization != nullptr ? service.organization->name : std::string();
    }
    if (column == "title") {
        return service.title;
    }
    // The accessors, not the raw text: a raw value this version does not know would make the
    // import refuse the line, while its fallback is what the vault shows for it anyway.
    if (column == "serviceType") {
        return std::string(service.serviceType().rawValue());
    }
    if (column == "provider") {
        return service.provider;
    }
    if (column == "hostname") {
        return service.hostname;
    }
    if (column == "domain") {
        return service.domain;
    }
    if (column == "ipAddress") {
        return service.ipAddress;
    }
    if (column == "port") {
        return service.port ? std::to_string(*service.port) : std::string();
    }
    if (column == "loginURL") {
        return service.loginURL;
    }
    if (column == "username") {
        return service.username;
    }
    if (column == "emailAddress") {
        return service.emailAddress;
    }
    if (column == "sshKeyReference") {
        return service.sshKeyReference;
    }
    if (column == "purchaseDate") {
        return dayOf(service.purchaseDate, calendar);
    }
    if (column == "renewalDate") {
        return dayOf(service.renewalDate, calendar);
    }
    if (column == "expirationDate") {
        return dayOf(service.expirationDate, calendar);
    }
    if (column == "billingCycle") {
        return std::string(service.billingCycle().rawValue());
    }
    if (column == "monthlyCost") {
        return service.monthlyCost.toString();
    }
    if (column == "yearlyCost") {
        return service.yearlyCost.toString();
    }
    if (column == "autoRenew") {
        return service.autoRenew ? "true" : "false";
    }
    if (column == "riskLevel") {
        return std::string(service.riskLevel().rawValue());
    }
    if (column == "status") {
        // The flag is what hides a service in the vault; the import archives by this column.
        return std::string(service.isArchived ? ServiceStatus(ServiceStatus::archived).rawValue()
                                              : service.status().rawValue());
    }
    if (column == "tags") {
        return joinTags(service.tags);
    }
    if (column == "notes") {
        return service.notes;
    }
    return {};
}

} // namespace

std::vector<std::string_view> InventoryCsv::columns() {
    std::vector<std::string_view> kept;
    for (const std::string_view column : VorlaneCsvReader::columns) {
        if (column != "password" && column != "apiKey") {
            kept.push_back(column);
        }
    }
    return kept;
}

std::string InventoryCsv::text(const DataStore& store, const UserCalendar& calendar) {
    const std::vector<std::string_view> header = columns();
    std::string text;
    for (const std::string_view column : header) {
        text += (text.empty() ? "" : ",") + std::string(column);
    }
    text += "\r\n";
    for (const ServiceRecord* service : store.fetchAllServices(true)) {
        bool first = true;
        for (const std::string_view column : header) {
            text += first ? "" : ",";
            text += csvField(valueOf(*service, column, calendar));
            first = false;
        }
        text += "\r\n";
    }
    return text;
}

std::string InventoryCsv::fileName(Instant now, const UserCalendar& calendar) {
    return "Vorlane-Inventory-" + DateText::isoDay(now, calendar) + ".csv";
}

std::optional<std::string> InventoryCsv::write(const std::string& path, const DataStore& store,
                                               const UserCalendar& calendar) {
    if (const auto error = PrivateFile::write(path, text(store, calendar))) {
        return "The inventory could not be written to " + path + ": " + *error;
    }
    return std::nullopt;
}

} // namespace vorlane
