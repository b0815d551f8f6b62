// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/ImportMapper.h"

#include "model/Organization.h"
#include "paste/ParsedCredential.h"
#include "paste/PasteParser.h"
#include "store/DataStore.h"
#include "store/SearchText.h"
#include "totp/TotpSecret.h"
#include "util/Whitespace.h"

#include <algorithm>
#include <unordered_set>

namespace vorlane {

namespace {

bool isIpAddress(std::string_view host) {
    const bool ipv4 = std::all_of(host.begin(), host.end(),
                                  [](char c) { return c == '.' || (c >= '0' && c <= '9'); }) &&
                      std::count(host.begin(), host.end(), '.') == 3;
    return ipv4 || host.find(':') != std::string_view::npos;
}

// The host, hostname, domain or IP address of the login URL, where the source gave none. A
// URL written without a scheme ("example.com/login") is read as https.
void takeHost(ServiceRecord& record) {
    if (record.loginURL.empty()) {
        return;
    }
    const std::string url = record.loginURL.find("://") == std::string::npos
                                ? "https://" + record.loginURL
                                : record.loginURL;
    const std::optional<std::string> host = PasteParser::urlHost(url);
    if (!host) {
        return;
    }
    if (isIpAddress(*host)) {
        if (record.ipAddress.empty()) {
            record.ipAddress = *host;
        }
        return;
    }
    if (record.hostname.empty()) {
        record.hostname = *host;
    }
    if (record.domain.empty()) {
        record.domain = *host;
    }
}

void appendLine(std::string& notes, const std::string& line) {
    if (!notes.empty()) {
        notes += '\n';
    }
    notes += line;
}

ImportRow rowFrom(ImportedEntry entry) {
    ImportRow row;
    row.line = entry.line;
    row.record = std::move(entry.record);
    row.password = std::move(entry.password);
    row.apiKey = std::move(entry.apiKey);
    row.createdAt = entry.createdAt;
    row.updatedAt = entry.updatedAt;
    // Without a date of its own, the password is at least as old as the entry's last change,
    // which is the closest the source tells.
    row.passwordChangedAt = entry.passwordChangedAt ? entry.passwordChangedAt : entry.updatedAt;
    row.groups = std::move(entry.groups);
    row.sourceOrganization = std::move(entry.organization);
    row.sourceTags = row.record.tags;
    ServiceRecord& record = row.record;
    const std::string sourceNotes = record.notes;

    takeHost(record);
    if (!entry.hasServiceType) {
        ParsedCredential found;
        found.portString = record.port ? std::to_string(*record.port) : std::string();
        record.setServiceType(PasteParser::inferServiceType(
            record.title + "\n" + record.loginURL + "\n" + sourceNotes, found));
    }
    if (record.title.empty()) {
        ParsedCredential named;
        named.serviceType = record.serviceType();
        named.domain = record.domain;
        named.hostname = record.hostname;
        named.ipAddress = record.ipAddress;
        named.provider = record.provider;
        record.title = PasteParser::generateTitle(named);
    }
    const std::string quotedTitle = "'" + record.title + "'";
    for (const ImportedEntry::Field& field : entry.fields) {
        if (!field.isHidden) {
            appendLine(record.notes,
                       field.name.empty() ? field.value : field.name + ": " + field.value);
        } else if (row.apiKey.empty()) {
            row.apiKey = field.value;
        } else {
            row.notImported.push_back("hidden field '" + field.name + "' of " + quotedTitle +
                                      " not imported");
        }
    }
    if (TotpSecret::isValid(entry.totp)) {
        row.totp = std::move(entry.totp);
    } else if (!trimmed(entry.totp).empty()) {
        // Never into the notes, where a secret would sit in plain text.
        row.notImported.push_back("one-time code of " + quotedTitle +
                                  " not imported: " + std::string(TotpSecret::invalidMessage));
    }
    if (!entry.rejection.empty()) {
        row.status = ImportRow::Status::rejected;
        row.reason = std::move(entry.rejection);
    }
    return row;
}

} // namespace

std::vector<ImportRow> ImportMapper::map(std::vector<ImportedEntry> entries, const Rule& rule) {
    std::vector<ImportRow> rows;
    rows.reserve(entries.size());
    for (ImportedEntry& entry : entries) {
        rows.push_back(rowFrom(std::move(entry)));
    }
    applyRule(rows, rule);
    return rows;
}

void ImportMapper::applyRule(std::vector<ImportRow>& rows, const Rule& rule) {
    const std::string fallback =
        rule.fallbackOrganization.empty() ? defaultOrganization : rule.fallbackOrganization;
    for (ImportRow& row : rows) {
        std::vector<std::string> tags = row.sourceTags;
        std::size_t firstTagGroup = 0;
        if (rule.oneOrganization) {
            if (!row.organizationEdited) {
                row.organization = fallback;
            }
        } else {
            if (!row.organizationEdited) {
                if (row.sourceOrganization && !row.sourceOrganization->empty()) {
                    row.organization = *row.sourceOrganization;
                } else if (!row.groups.empty()) {
                    row.organization = row.groups.front();
                } else {
                    row.organization = fallback;
                }
            }
            firstTagGroup = (row.sourceOrganization || row.groups.empty()) ? 0 : 1;
        }
        for (std::size_t i = firstTagGroup; i < row.groups.size(); ++i) {
            if (std::find(tags.begin(), tags.end(), row.groups[i]) == tags.end()) {
                tags.push_back(row.groups[i]);
            }
        }
        row.record.tags = std::move(tags);
    }
}

void ImportMapper::markDuplicates(std::vector<ImportRow>& rows, const DataStore& store) {
    std::unordered_set<std::string> seen;
    for (const ServiceRecord* service : store.fetchAllServices(/*includeArchived=*/true)) {
        seen.insert(
            duplicateKey(service->organization ? service->organization->name : "", *service));
    }
    for (ImportRow& row : rows) {
        if (row.status == ImportRow::Status::rejected) {
            continue;
        }
        const bool isNew = seen.insert(duplicateKey(row.organization, row.record)).second;
        row.status = isNew ? ImportRow::Status::ready : ImportRow::Status::duplicate;
        if (isNew) {
            row.keepDuplicate = false;
        }
    }
}

std::string ImportMapper::duplicateKey(std::string_view organization, const ServiceRecord& record) {
    std::string key = SearchText::fold(organization);
    for (const std::string* part : {&record.title, &record.username, &record.hostname}) {
        key += SearchText::fieldSeparator;
        key += SearchText::fold(*part);
    }
    return key;
}

} // namespace vorlane
