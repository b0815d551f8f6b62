// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/CostReportExport.h"

#include "model/Organization.h"
#include "money/CostReport.h"
#include "store/DataStore.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace vorlane {

const std::vector<std::string_view>& CostReportExport::periodChoices() {
    static const std::vector<std::string_view> choices{
        "This Month", "Last Month", "This Quarter", "This Year", "Last Year", "Custom Dates",
    };
    return choices;
}

CostReportExport::CostReportExport(const DataStore& store, Organization& organization,
                                   const UserCalendar& calendar)
    : m_store(store)
    , m_calendar(calendar)
    , m_choices{&organization}
    , m_choosesOrganization(false) {}

CostReportExport::CostReportExport(const DataStore& store, const UserCalendar& calendar,
                                   const Organization* selected)
    : m_store(store)
    , m_calendar(calendar)
    , m_choosesOrganization(true) {
    for (Organization* organization : store.fetchOrganizations(false)) {
        if (organization == selected) {
            m_choice = m_choices.size();
        }
        m_choices.push_back(organization);
    }
}

void CostReportExport::chooseOrganization(std::size_t index) {
    if (index < m_choices.size()) {
        m_choice = index;
    }
}

Organization* CostReportExport::organization() const {
    return m_choice < m_choices.size() ? m_choices[m_choice] : nullptr;
}

std::optional<ReportPeriod> CostReportExport::period(std::size_t choice,
                                                     std::chrono::year_month_day first,
                                                     std::chrono::year_month_day last,
                                                     std::string& error) const {
    static constexpr ReportPeriod::Preset presets[] = {
        ReportPeriod::Preset::thisMonth,   ReportPeriod::Preset::lastMonth,
        ReportPeriod::Preset::thisQuarter, ReportPeriod::Preset::thisYear,
        ReportPeriod::Preset::lastYear,
    };
    const std::optional<ReportPeriod> period =
        choice < customChoice ? ReportPeriod::preset(presets[choice], m_calendar)
                              : ReportPeriod::between(first, last, m_calendar);
    if (!period) {
        error = "The end date is before the start date";
    }
    return period;
}

std::string CostReportExport::suggestedFileName(const ReportPeriod& period,
                                                std::string_view extension) const {
    std::string name = organization()->name + " cost report " +
                       ReportPeriod::dateText(period.first()) + " to " +
                       ReportPeriod::dateText(period.last()) + "." + std::string(extension);
    for (char& c : name) {
        if (c == '/') {
            c = '-';
        }
    }
    return name;
}

std::optional<std::string> CostReportExport::writeCsv(const ReportPeriod& period,
                                                      const std::string& path) const {
    const std::string text = CostReport(m_store, *organization(), period, m_calendar).csv();
    const std::string temporary = path + ".part";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << text;
        out.flush();
        if (!out) {
            const std::string reason = std::strerror(errno);
            std::remove(temporary.c_str());
            return "Could not write " + path + ": " + reason;
        }
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        const std::string reason = std::strerror(errno);
        std::remove(temporary.c_str());
        return "Could not write " + path + ": " + reason;
    }
    return std::nullopt;
}

} // namespace vorlane
