// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/ImportFormat.h"
#include "importer/ImportMapper.h"
#include "importer/ImportReport.h"
#include "importer/ImportRow.h"
#include "model/ServiceType.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

class DataStore;
class ImportRun;
class UserCalendar;

// The import sheet: choose an export file (its format shown as detected, or forced), preview
// every row with its organization, kind and status, change the organization rule or a row's
// organization and kind, then import with progress and cancel, and read the summary. Nothing
// touches the vault or the keyring before `startImport`. Holds every text and rule the sheet
// shows; the widget draws it. Main thread only; the store and calendar must outlive it.
class ImportFlow {
public:
    enum class Step { chooseFile, preview, importing, done };

    // One row of the preview table, as shown.
    struct RowView {
        std::string organization;
        std::string title;
        std::string serviceType; // the kind's label
        std::string username;
        std::string host;    // hostname, else IP address, else domain
        std::string secrets; // "●" when the row carries a password, API key or one-time code
        std::string expiration;
        std::string status; // "New", "Duplicate", "Duplicate (kept)" or "Rejected: <reason>"
    };

    static constexpr const char* title = "Import";
    static constexpr const char* deleteAdvice =
        "The export file holds your passwords in plain text. Delete it once you have checked "
        "what came in.";

    ImportFlow(DataStore& store, const UserCalendar& calendar);
    ~ImportFlow();

    Step step() const { return m_step; }

    // -- Choose the file. Nothing as the format means "detect it from the content".
    void setFormat(std::optional<ImportFormat> format) { m_format = format; }
    std::optional<ImportFormat> format() const { return m_format; }
    // Reads and previews the file; on failure stays on this step with `error()` set.
    bool chooseFile(const std::string& path);
    const std::string& path() const { return m_path; }
    // Why the chosen file could not be read; empty when it could.
    const std::string& error() const { return m_error; }
    // The format the chosen file was read as; nothing before a file is read.
    std::optional<ImportFormat> readFormat() const { return m_readFormat; }
    // "Format: KeePass XML (detected)" once a file is read.
    std::string formatText() const;
    // Writes the spreadsheet template to `path`; the reason it could not, or empty.
    static std::string saveTemplate(const std::string& path);

    // -- Preview
    std::size_t rowCount() const { return m_rows.size(); }
    RowView row(std::size_t index) const;
    const ImportRow& importRow(std::size_t index) const { return m_rows.at(index); }
    void setRowOrganization(std::size_t index, const std::string& organization);
    void setRowServiceType(std::size_t index, ServiceType type);
    void setKeepDuplicate(std::size_t index, bool keep);
    const ImportMapper::Rule& rule() const { return m_rule; }
    // The organization for rows without one ("Imported" unless changed) and "Put everything
    // into one organization"; both re-run the organization rule and the duplicate check.
    void setFallbackOrganization(const std::string& name);
    void setOneOrganization(bool one);
    // "312 to import, 4 duplicates, 2 rejected".
    std::string previewSummary() const;
    bool canImport() const;
    void back();

    // -- Import
    void startImport();
    // Imports the next few rows; false once the import has finished (then the step is done).
    bool importStep(std::size_t rows);
    void cancel();
    // From 0 to 1.
    double progress() const;
    std::string progressText() const; // "Importing 120 of 312…"

    // -- Done
    const ImportReport& report() const { return m_report; }
    std::string summary() const { return m_report.summary(); }

private:
    void remap();

    DataStore& m_store;
    const UserCalendar& m_calendar;
    Step m_step = Step::chooseFile;
    std::optional<ImportFormat> m_format;
    std::optional<ImportFormat> m_readFormat;
    std::string m_path;
    std::string m_error;
    ImportMapper::Rule m_rule;
    std::vector<ImportRow> m_rows;
    std::unique_ptr<ImportRun> m_run;
    ImportReport m_report;
};

} // namespace vorlane
