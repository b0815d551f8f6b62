// SPDX-License-Identifier: GPL-3.0-or-later
#include "ReportCommand.h"

#include "CliVault.h"
#include "money/CostReport.h"
#include "money/ReportPeriod.h"
#include "report/CostReportPdf.h"

#include <QGuiApplication>

#include <optional>
#include <ostream>

namespace vorlane {

std::string_view ReportCommand::name() const {
    return "report";
}

std::string_view ReportCommand::usage() const {
    return "report --organization NAME [--from YYYY-MM-DD --to YYYY-MM-DD] (--csv | --pdf FILE)\n"
           "                             an organization's costs, payments and renewals in a\n"
           "                             period (this year unless told; both days included)";
}

int ReportCommand::run(CliInvocation& invocation) {
    std::optional<std::string> organizationName;
    std::optional<std::string> from;
    std::optional<std::string> to;
    std::optional<std::string> pdfPath;
    bool csv = false;
    const auto& arguments = invocation.arguments;
    bool understood = true;
    for (std::size_t i = 0; i < arguments.size() && understood; ++i) {
        const std::string& option = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (option == "--csv") {
            csv = true;
        } else if (hasValue && option == "--organization") {
            organizationName = arguments[++i];
        } else if (hasValue && option == "--from") {
            from = arguments[++i];
        } else if (hasValue && option == "--to") {
            to = arguments[++i];
        } else if (hasValue && option == "--pdf") {
            pdfPath = arguments[++i];
        } else {
            understood = false;
        }
    }
    if (!understood || !organizationName || csv == pdfPath.has_value() ||
        from.has_value() != to.has_value()) {
        invocation.err << "vorlane-cli report: usage: " << usage() << "\n";
        return 2;
    }
    std::optional<std::chrono::year_month_day> first;
    std::optional<std::chrono::year_month_day> last;
    if (from) {
        first = ReportPeriod::parseDate(*from);
        last = ReportPeriod::parseDate(*to);
        if (!first || !last) {
            invocation.err << "vorlane-cli report: dates are written YYYY-MM-DD, such as "
                              "2026-01-31\n";
            return 2;
        }
    }
    // A PDF's fonts and images need a GUI application, made before the vault's own application
    // object would be. No window is ever shown, so no display is needed.
    std::optional<QGuiApplication> gui;
    int argc = 1;
    char programName[] = "vorlane-cli";
    char* argv[] = {programName, nullptr};
    if (pdfPath) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
        }
        gui.emplace(argc, argv);
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    DataStore& store = vault->store();
    Organization* organization = nullptr;
    for (Organization* candidate : store.fetchOrganizations(true)) {
        if (candidate->name == *organizationName) {
            if (organization != nullptr) {
                invocation.err << "vorlane-cli report: more than one organization is called \""
                               << *organizationName << "\"\n";
                return 1;
            }
            organization = candidate;
        }
    }
    if (organization == nullptr) {
        invocation.err << "vorlane-cli report: no organization is called \"" << *organizationName
                       << "\"\n";
        return 1;
    }
    const std::optional<ReportPeriod> period =
        first ? ReportPeriod::between(*first, *last, vault->calendar())
              : ReportPeriod::preset(ReportPeriod::Preset::thisYear, vault->calendar());
    if (!period) {
        invocation.err << "vorlane-cli report: --to is before --from\n";
        return 2;
    }
    const CostReport report(store, *organization, *period, vault->calendar());
    if (csv) {
        invocation.out << report.csv();
        return 0;
    }
    QString error;
    if (!CostReportPdf::write(report, store.logo(*organization), QString::fromStdString(*pdfPath),
                              error)) {
        invocation.err << "vorlane-cli report: cannot write " << *pdfPath << ": "
                       << error.toStdString() << "\n";
        return 1;
    }
    return 0;
}

} // namespace vorlane
