// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/ImportReport.h"
#include "importer/ImportRow.h"
#include "util/Instant.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace vorlane {

class DataStore;
struct Organization;

// Writes the rows of an import into the vault, a few at a time so that the caller can show
// progress and take a cancel between steps (the store is main-thread only, so the steps run on
// the main loop rather than on a thread of their own).
//
// Each row is written whole or not at all: its secrets first (password, API key, one-time code,
// each once), then its record; if
// the secret store refuses, what that row had stored is removed again and the import stops.
// The vault is saved after every step, so a cancel or a failure leaves every written service
// saved with its secrets and nothing half-saved. Organizations are found by name (case
// ignored) or made when their first service is written, so a cancelled import leaves no empty
// ones. The store must outlive the run.
class ImportRun {
public:
    ImportRun(DataStore& store, Instant now, std::vector<ImportRow> rows);

    // The report the run of `rows` would give if nothing failed, without writing anything.
    static ImportReport forecast(const std::vector<ImportRow>& rows);

    // Imports the next `count` rows (at least one) and saves. False once the run has finished:
    // every row done, cancelled, or stopped by a failure.
    bool step(std::size_t count);
    // Takes effect before the next row: the rows already written stay.
    void cancel();

    std::size_t done() const { return m_next; }
    std::size_t total() const { return m_rows.size(); }
    bool finished() const { return m_finished; }
    // Complete once `finished()`; before that, the figures so far.
    const ImportReport& report() const { return m_report; }

private:
    bool importRow(const ImportRow& row);
    Organization& organizationNamed(const std::string& name);
    void finish();

    DataStore& m_store;
    Instant m_now;
    std::vector<ImportRow> m_rows;
    std::size_t m_next = 0;
    bool m_finished = false;
    ImportReport m_report;
    std::unordered_map<std::string, Organization*> m_organizations; // by folded name
    std::unordered_set<Organization*> m_receiving;
};

} // namespace vorlane
