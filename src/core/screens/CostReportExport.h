// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "money/ReportPeriod.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class DataStore;
struct Organization;
class UserCalendar;

// The "Export Cost Report…" sheet: which organization (only when opened from the expense screen;
// an organization's own detail reports on that one), which period (this month, last month, this
// quarter, this year, last year, or two dates), then a file. The CSV is written here; the PDF by
// the window from the same report (see CostReport). Main thread; the store, the organizations and
// the calendar must outlive it.
class CostReportExport {
public:
    static constexpr std::string_view title = "Export Cost Report\xE2\x80\xA6";
    static constexpr std::string_view organizationLabel = "Organization";
    static constexpr std::string_view periodLabel = "Period";
    static constexpr std::string_view fromLabel = "From";
    static constexpr std::string_view toLabel = "To";
    // The choices in order; "This Year" is chosen at first. The last one takes the two dates.
    static const std::vector<std::string_view>& periodChoices();
    static constexpr std::size_t thisYearChoice = 3;
    static constexpr std::size_t customChoice = 5;

    // The report of `organization`, with no choice of another.
    CostReportExport(const DataStore& store, Organization& organization,
                     const UserCalendar& calendar);
    // The report of one of the organizations not archived, by name: `selected` at first when it
    // is one of them, else the first.
    CostReportExport(const DataStore& store, const UserCalendar& calendar,
                     const Organization* selected);

    // Whether the sheet shows the organization picker.
    bool choosesOrganization() const { return m_choosesOrganization; }
    // The picker's organizations in order (just the one reported on when there is no choice).
    const std::vector<Organization*>& organizationChoices() const { return m_choices; }
    std::size_t organizationChoice() const { return m_choice; }
    // An index past the choices changes nothing.
    void chooseOrganization(std::size_t index);
    // The organization reported on; null only when there is none to choose (a vault without
    // organizations, or all archived), and then nothing can be exported.
    Organization* organization() const;

    // The period of a choice (`first` and `last` count only for the custom one); nothing, with
    // the reason in `error`, when the dates do not make a period.
    std::optional<ReportPeriod> period(std::size_t choice, std::chrono::year_month_day first,
                                       std::chrono::year_month_day last, std::string& error) const;
    // The two functions below need `organization()` to be set.
    // "Acme Corp cost report 2026-01-01 to 2026-12-31.csv" (or ".pdf"), with any "/" in the name
    // replaced so that it stays one file name.
    std::string suggestedFileName(const ReportPeriod& period, std::string_view extension) const;
    // Writes the CSV to `path` under a temporary name first, moved into place when complete:
    // nothing, or the reason it could not be written (no half file is left).
    std::optional<std::string> writeCsv(const ReportPeriod& period, const std::string& path) const;

private:
    const DataStore& m_store;
    const UserCalendar& m_calendar;
    std::vector<Organization*> m_choices;
    std::size_t m_choice = 0;
    bool m_choosesOrganization;
};

} // namespace vorlane
