// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ImportFlow.h"

#include "importer/ImportReader.h"
#include "importer/ImportRun.h"
#include "importer/VorlaneCsvReader.h"
#include "store/DataStore.h"
#include "util/DateText.h"
#include "util/UserCalendar.h"

#include <algorithm>
#include <fstream>

namespace vorlane {

ImportFlow::ImportFlow(DataStore& store, const UserCalendar& calendar)
    : m_store(store)
    , m_calendar(calendar) {}

ImportFlow::~ImportFlow() = default;

bool ImportFlow::chooseFile(const std::string& path) {
    if (m_step != Step::chooseFile) {
        return false;
    }
    m_path = path;
    auto file = ImportReader::readFile(path, m_format);
    if (!file) {
        m_error = file.error();
        m_rows.clear();
        return false;
    }
    m_error.clear();
    m_readFormat = file.value().format;
    m_rows = ImportMapper::map(std::move(file).value().entries, m_rule);
    ImportMapper::markDuplicates(m_rows, m_store);
    m_step = Step::preview;
    return true;
}

std::string ImportFlow::formatText() const {
    if (!m_readFormat) {
        return {};
    }
    return "Format: " + std::string(ImportFormats::label(*m_readFormat)) +
           (m_format ? "" : " (detected)");
}

std::string ImportFlow::saveTemplate(const std::string& path) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << VorlaneCsvReader::templateText();
    return out.flush() ? std::string() : "Could not write " + path;
}

ImportFlow::RowView ImportFlow::row(std::size_t index) const {
    const ImportRow& row = m_rows.at(index);
    const ServiceRecord& record = row.record;
    RowView view;
    view.organization = row.organization;
    view.title = record.title;
    view.serviceType = record.serviceType().label();
    view.username = record.username;
    view.host = !record.hostname.empty()    ? record.hostname
                : !record.ipAddress.empty() ? record.ipAddress
                                            : record.domain;
    view.secrets = (row.password.empty() && row.apiKey.empty() && row.totp.empty()) ? "" : "\u25CF";
    if (record.expirationDate) {
        view.expiration =
            DateText::format(*record.expirationDate, DateText::Style::abbreviated, m_calendar);
    }
    switch (row.status) {
    case ImportRow::Status::ready:
        view.status = "New";
        break;
    case ImportRow::Status::duplicate:
        view.status = row.keepDuplicate ? "Duplicate (kept)" : "Duplicate";
        break;
    case ImportRow::Status::rejected:
        view.status = "Rejected: " + row.reason;
        break;
    }
    return view;
}

void ImportFlow::setRowOrganization(std::size_t index, const std::string& organization) {
    ImportRow& row = m_rows.at(index);
    row.organization = organization;
    row.organizationEdited = true;
    ImportMapper::markDuplicates(m_rows, m_store);
}

void ImportFlow::setRowServiceType(std::size_t index, ServiceType type) {
    m_rows.at(index).record.setServiceType(type);
}

void ImportFlow::setKeepDuplicate(std::size_t index, bool keep) {
    ImportRow& row = m_rows.at(index);
    if (row.status == ImportRow::Status::duplicate) {
        row.keepDuplicate = keep;
    }
}

void ImportFlow::setFallbackOrganization(const std::string& name) {
    m_rule.fallbackOrganization = name;
    remap();
}

void ImportFlow::setOneOrganization(bool one) {
    m_rule.oneOrganization = one;
    remap();
}

void ImportFlow::remap() {
    ImportMapper::applyRule(m_rows, m_rule);
    ImportMapper::markDuplicates(m_rows, m_store);
}

std::string ImportFlow::previewSummary() const {
    const ImportReport forecast = ImportRun::forecast(m_rows);
    return std::to_string(forecast.created) + " to import, " +
           std::to_string(forecast.duplicatesSkipped) +
           (forecast.duplicatesSkipped == 1 ? " duplicate, " : " duplicates, ") +
           std::to_string(forecast.rejected.size()) + " rejected";
}

bool ImportFlow::canImport() const {
    return m_step == Step::preview &&
           std::any_of(m_rows.begin(), m_rows.end(),
                       [](const ImportRow& row) { return row.willImport(); });
}

void ImportFlow::back() {
    if (m_step == Step::preview) {
        m_step = Step::chooseFile;
        m_rows.clear();
        m_readFormat.reset();
    }
}

void ImportFlow::startImport() {
    if (!canImport()) {
        return;
    }
    m_run = std::make_unique<ImportRun>(m_store, m_calendar.now(), m_rows);
    m_step = Step::importing;
}

bool ImportFlow::importStep(std::size_t rows) {
    if (m_step != Step::importing) {
        return false;
    }
    if (m_run->step(rows)) {
        return true;
    }
    m_report = m_run->report();
    m_step = Step::done;
    return false;
}

void ImportFlow::cancel() {
    if (m_step == Step::importing) {
        m_run->cancel();
        m_report = m_run->report();
        m_step = Step::done;
    }
}

double ImportFlow::progress() const {
    if (!m_run || m_run->total() == 0) {
        return m_step == Step::done ? 1.0 : 0.0;
    }
    return static_cast<double>(m_run->done()) / static_cast<double>(m_run->total());
}

std::string ImportFlow::progressText() const {
    if (!m_run) {
        return {};
    }
    return "Importing " + std::to_string(m_run->done()) + " of " + std::to_string(m_run->total()) +
           "\u2026";
}

} // namespace vorlane
