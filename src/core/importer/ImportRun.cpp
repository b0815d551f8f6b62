// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/ImportRun.h"

#include "model/Organization.h"
#include "store/DataStore.h"
#include "store/SearchText.h"

#include <algorithm>

namespace vorlane {

namespace {

// The rejected and skipped rows, which are known before anything is written.
ImportReport reportOfSkipped(const std::vector<ImportRow>& rows) {
    ImportReport report;
    for (const ImportRow& row : rows) {
        if (row.status == ImportRow::Status::rejected) {
            report.rejected.push_back({row.line, row.record.title, row.reason});
        } else if (!row.willImport()) {
            ++report.duplicatesSkipped;
        }
    }
    return report;
}

} // namespace

ImportRun::ImportRun(DataStore& store, Instant now, std::vector<ImportRow> rows)
    : m_store(store)
    , m_now(now)
    , m_rows(std::move(rows))
    , m_report(reportOfSkipped(m_rows)) {
    for (Organization* organization : m_store.fetchOrganizations(/*includeArchived=*/true)) {
        // The first of two that fold alike, in name order, takes the import.
        m_organizations.emplace(SearchText::fold(organization->name), organization);
    }
    if (m_rows.empty()) {
        finish();
    }
}

ImportReport ImportRun::forecast(const std::vector<ImportRow>& rows) {
    ImportReport report = reportOfSkipped(rows);
    report.isForecast = true;
    std::unordered_set<std::string> organizations;
    for (const ImportRow& row : rows) {
        if (row.willImport()) {
            ++report.created;
            organizations.insert(SearchText::fold(row.organization));
            report.notImported.insert(report.notImported.end(), row.notImported.begin(),
                                      row.notImported.end());
        }
    }
    report.organizations = organizations.size();
    return report;
}

bool ImportRun::step(std::size_t count) {
    if (m_finished) {
        return false;
    }
    const std::size_t end = std::min(m_rows.size(), m_next + std::max<std::size_t>(count, 1));
    bool refused = false;
    while (m_next < end && !refused) {
        const ImportRow& row = m_rows[m_next];
        if (row.willImport() && !importRow(row)) {
            refused = true;
            break;
        }
        ++m_next;
    }
    if (m_report.created > 0 && !m_store.save()) {
        m_report.failure = "The vault could not be saved (is the disk full?). The services "
                           "imported so far are kept and saved with the next change; the rest "
                           "were not imported.";
        finish();
        return false;
    }
    if (refused) {
        m_report.failure = "The Secret Service refused to store the secrets of '" +
                           m_rows[m_next].record.title +
                           "' (is the keyring locked?). The import stopped there; every service "
                           "imported before it has its secrets.";
        finish();
        return false;
    }
    if (m_next == m_rows.size()) {
        finish();
        return false;
    }
    return true;
}

void ImportRun::cancel() {
    if (!m_finished) {
        m_report.cancelled = true;
        finish();
    }
}

bool ImportRun::importRow(const ImportRow& row) {
    ServiceRecord record = row.record;
    record.id = Uuid::generate();
    record.createdAt = row.createdAt.value_or(m_now);
    record.updatedAt = row.updatedAt.value_or(std::max(record.createdAt, m_now));
    record.secretKeychainID =
        row.password.empty() ? std::string() : ServiceRecord::makeSecretKeychainID();
    record.passwordChangedAt = row.password.empty()
                                   ? std::nullopt
                                   : std::optional<Instant>(row.passwordChangedAt.value_or(m_now));
    record.apiKeyKeychainID =
        row.apiKey.empty() ? std::string() : ServiceRecord::makeAPIKeyKeychainID();
    record.totpKeychainID = row.totp.empty() ? std::string() : ServiceRecord::makeTOTPKeychainID();
    // Secrets before the record: a record never points at a secret that was not stored.
    const bool stored = (row.password.empty() || m_store.setPassword(row.password, record)) &&
                        (row.apiKey.empty() || m_store.setAPIKey(row.apiKey, record)) &&
                        (row.totp.empty() || m_store.setTOTPSecret(row.totp, record));
    if (!stored) {
        m_store.deleteServiceSecrets(record);
        return false;
    }
    Organization& owner = organizationNamed(row.organization);
    m_store.insert(std::move(record), owner);
    m_receiving.insert(&owner);
    ++m_report.created;
    m_report.notImported.insert(m_report.notImported.end(), row.notImported.begin(),
                                row.notImported.end());
    return true;
}

Organization& ImportRun::organizationNamed(const std::string& name) {
    const std::string key = SearchText::fold(name);
    if (const auto found = m_organizations.find(key); found != m_organizations.end()) {
        return *found->second;
    }
    Organization organization = Organization::created(m_now);
    organization.name = name;
    Organization& inserted = m_store.insert(std::move(organization));
    m_organizations.emplace(key, &inserted);
    ++m_report.organizationsCreated;
    return inserted;
}

void ImportRun::finish() {
    m_finished = true;
    m_report.organizations = m_receiving.size();
    m_report.notReached = static_cast<std::size_t>(
        std::count_if(m_rows.begin() + static_cast<std::ptrdiff_t>(m_next), m_rows.end(),
                      [](const ImportRow& row) { return row.willImport(); }));
}

} // namespace vorlane
