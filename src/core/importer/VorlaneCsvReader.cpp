// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/VorlaneCsvReader.h"

#include "model/BillingCycle.h"
#include "model/RiskLevel.h"
#include "model/ServiceStatus.h"
#include "model/ServiceType.h"
#include "paste/ParsedCredential.h"
#include "paste/PasteParser.h"
#include "util/TagText.h"
#include "util/Whitespace.h"

#include <algorithm>

namespace vorlane {

namespace {

// The case whose raw value or display name is `text`, case ignored.
template <typename Enumeration, typename Name>
std::optional<Enumeration> enumeration(std::string_view text, Name displayName) {
    const std::string wanted = CsvTable::normalized(text);
    for (const Enumeration value : Enumeration::allCases()) {
        if (CsvTable::normalized(value.rawValue()) == wanted ||
            CsvTable::normalized(displayName(value)) == wanted) {
            return value;
        }
    }
    return std::nullopt;
}

std::optional<Instant> date(std::string_view text) {
    const bool shaped = text.size() == 10 && text[4] == '-' && text[7] == '-' &&
                        std::all_of(text.begin(), text.end(),
                                    [](char c) { return c == '-' || (c >= '0' && c <= '9'); });
    return shaped ? PasteParser::parseDate(text) : std::nullopt;
}

// Sets the column's value on the entry; the reason when the value does not read.
std::string take(ImportedEntry& entry, std::string_view column, std::string_view text) {
    ServiceRecord& record = entry.record;
    const std::string value(text);
    const auto dateInto = [&](std::optional<Instant>& field) -> std::string {
        field = date(text);
        return field ? std::string() : "\"" + value + "\" is not a date (YYYY-MM-DD)";
    };
    const auto costInto = [&](Decimal& field) -> std::string {
        const auto cost = Decimal::fromString(text);
        if (!cost || cost->isNegative()) {
            return "\"" + value + "\" is not an amount (digits and a \".\", e.g. 12.50)";
        }
        field = *cost;
        return {};
    };
    const auto unknown = [&] {
        return "\"" + value + "\" is not a known value";
    };
    if (column == "organization") {
        entry.organization = value;
    } else if (column == "title") {
        record.title = value;
    } else if (column == "serviceType") {
        const auto type = enumeration<ServiceType>(text, [](ServiceType t) { return t.label(); });
        if (!type) {
            return unknown();
        }
        record.setServiceType(*type);
        entry.hasServiceType = true;
    } else if (column == "provider") {
        record.provider = value;
    } else if (column == "hostname") {
        record.hostname = value;
    } else if (column == "domain") {
        record.domain = value;
    } else if (column == "ipAddress") {
        record.ipAddress = value;
    } else if (column == "port") {
        const auto port = ParsedCredential::decimalInteger(text);
        if (!port || *port < 0 || *port > 65535) {
            return "\"" + value + "\" is not a port (0 to 65535)";
        }
        record.port = port;
    } else if (column == "loginURL") {
        record.loginURL = value;
    } else if (column == "username") {
        record.username = value;
    } else if (column == "emailAddress") {
        record.emailAddress = value;
    } else if (column == "sshKeyReference") {
        record.sshKeyReference = value;
    } else if (column == "password") {
        entry.password = value;
    } else if (column == "apiKey") {
        entry.apiKey = value;
    } else if (column == "purchaseDate") {
        return dateInto(record.purchaseDate);
    } else if (column == "renewalDate") {
        return dateInto(record.renewalDate);
    } else if (column == "expirationDate") {
        return dateInto(record.expirationDate);
    } else if (column == "billingCycle") {
        const auto cycle =
            enumeration<BillingCycle>(text, [](BillingCycle c) { return c.label(); });
        if (!cycle) {
            return unknown();
        }
        record.setBillingCycle(*cycle);
    } else if (column == "monthlyCost") {
        return costInto(record.monthlyCost);
    } else if (column == "yearlyCost") {
        return costInto(record.yearlyCost);
    } else if (column == "autoRenew") {
        const std::string flag = CsvTable::normalized(text);
        if (flag != "true" && flag != "false" && flag != "yes" && flag != "no" && flag != "1" &&
            flag != "0") {
            return "\"" + value + "\" is not true or false";
        }
        record.autoRenew = flag == "true" || flag == "yes" || flag == "1";
    } else if (column == "riskLevel") {
        const auto level =
            enumeration<RiskLevel>(text, [](RiskLevel r) { return r.displayName(); });
        if (!level) {
            return unknown();
        }
        record.setRiskLevel(*level);
    } else if (column == "status") {
        const auto status =
            enumeration<ServiceStatus>(text, [](ServiceStatus s) { return s.displayName(); });
        if (!status) {
            return unknown();
        }
        record.setStatus(*status);
        record.isArchived = *status == ServiceStatus::archived;
    } else if (column == "tags") {
        record.tags = splitTags(text);
    } else if (column == "notes") {
        record.notes = value;
    }
    return {};
}

} // namespace

bool VorlaneCsvReader::recognizes(const CsvTable& table) {
    return table.column("title").has_value();
}

Result<std::vector<ImportedEntry>, std::string> VorlaneCsvReader::read(const CsvTable& table) {
    // Each header column as the vault's field name it stands for.
    std::vector<std::string_view> fields;
    for (std::size_t i = 0; i < table.header().size(); ++i) {
        const auto known = std::find_if(columns.begin(), columns.end(), [&](std::string_view c) {
            return CsvTable::normalized(c) == table.header()[i];
        });
        if (known == columns.end()) {
            return "line 1, column " + std::to_string(i + 1) + ": \"" + table.header()[i] +
                   "\" is not a field Vorlane knows (see the template)";
        }
        fields.push_back(*known);
    }
    if (!recognizes(table)) {
        return std::string("line 1 has no \"title\" column");
    }
    std::vector<ImportedEntry> entries;
    entries.reserve(table.rows().size());
    for (const CsvReader::Row& row : table.rows()) {
        ImportedEntry entry = ImportedEntry::at(row.line);
        entry.rejection = table.shapeProblem(row);
        for (std::size_t i = 0; i < row.fields.size() && i < fields.size(); ++i) {
            if (trimmed(row.fields[i]).empty()) {
                continue;
            }
            // Secrets and notes as written: a space may belong to a password.
            const bool verbatim =
                fields[i] == "password" || fields[i] == "apiKey" || fields[i] == "notes";
            const std::string problem =
                take(entry, fields[i], verbatim ? row.fields[i] : trimmed(row.fields[i]));
            if (!problem.empty() && entry.rejection.empty()) {
                entry.rejection = "line " + std::to_string(row.line) + ", " +
                                  std::string(fields[i]) + ": " + problem;
            }
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::string VorlaneCsvReader::templateText() {
    std::string text;
    for (const std::string_view column : columns) {
        text += text.empty() ? "" : ",";
        text += column;
    }
    return text + "\r\n";
}

} // namespace vorlane
