// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImportCommand.h"

#include "CliVault.h"
#include "importer/ImportMapper.h"
#include "importer/ImportReader.h"
#include "importer/ImportRun.h"
#include "importer/VorlaneCsvReader.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <optional>
#include <ostream>

namespace vorlane {

namespace {

// Rows per step of the run: each step ends with a save, so this is also how much a failure
// or an interrupted process can leave unsaved.
constexpr std::size_t rowsPerStep = 50;

void printReport(CliInvocation& invocation, const ImportReport& report, const std::string& file) {
    if (invocation.json) {
        nlohmann::ordered_json object;
        object["created"] = report.created;
        object["organizations"] = report.organizations;
        object["duplicates"] = report.duplicatesSkipped;
        object["rejected"] = nlohmann::ordered_json::array();
        for (const ImportReport::Rejected& rejected : report.rejected) {
            object["rejected"].push_back(
                {{"line", rejected.line}, {"title", rejected.title}, {"reason", rejected.reason}});
        }
        invocation.out << object.dump(-1, ' ', false,
                                      nlohmann::ordered_json::error_handler_t::replace)
                       << "\n";
        return;
    }
    invocation.out << report.summary() << "\n";
    for (const ImportReport::Rejected& rejected : report.rejected) {
        invocation.out << "  rejected: " << rejected.title << " — " << rejected.reason << "\n";
    }
    for (const std::string& line : report.notImported) {
        invocation.out << "  " << line << "\n";
    }
    if (!report.isForecast && report.created > 0) {
        invocation.out << "The export holds your passwords in plain text: delete " << file
                       << " once you have checked the import.\n";
    }
}

} // namespace

std::string_view ImportCommand::name() const {
    return "import";
}

std::string_view ImportCommand::usage() const {
    return "import FILE [--format F] [--organization NAME] [--dry-run]\n"
           "                             another manager's export or a spreadsheet into the "
           "vault\n"
           "                             (F: keepass-xml, keepassxc-csv, bitwarden-json, "
           "bitwarden-csv,\n"
           "                             1password-csv, lastpass-csv, csv)\n"
           "  import --template FILE     write the spreadsheet template's header to FILE";
}

int ImportCommand::run(CliInvocation& invocation) {
    std::optional<std::string> file;
    std::optional<ImportFormat> format;
    std::optional<std::string> templatePath;
    ImportMapper::Rule rule;
    bool dryRun = false;
    const auto& arguments = invocation.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == "--format" && hasValue) {
            format = ImportFormats::fromName(arguments[++i]);
            if (!format) {
                invocation.err << "vorlane-cli import: unknown format \"" << arguments[i]
                               << "\" (see --help)\n";
                return 2;
            }
        } else if (argument == "--organization" && hasValue) {
            rule.fallbackOrganization = arguments[++i];
        } else if (argument == "--template" && hasValue) {
            templatePath = arguments[++i];
        } else if (argument == "--dry-run") {
            dryRun = true;
        } else if (!argument.starts_with("--") && !file) {
            file = argument;
        } else {
            invocation.err << "vorlane-cli import: unexpected \"" << argument
                           << "\" (see --help)\n";
            return 2;
        }
    }
    if (templatePath) {
        std::ofstream out(*templatePath, std::ios::binary | std::ios::trunc);
        out << VorlaneCsvReader::templateText();
        if (!out.flush()) {
            invocation.err << "vorlane-cli import: cannot write " << *templatePath << "\n";
            return 1;
        }
        return 0;
    }
    if (!file) {
        invocation.err << "vorlane-cli import: needs the FILE to import\n";
        return 2;
    }
    auto imported = ImportReader::readFile(*file, format);
    if (!imported) {
        invocation.err << "vorlane-cli import: " << imported.error() << "\n";
        return 1;
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    std::vector<ImportRow> rows = ImportMapper::map(std::move(imported).value().entries, rule);
    ImportMapper::markDuplicates(rows, vault->store());
    if (dryRun) {
        printReport(invocation, ImportRun::forecast(rows), *file);
        return 0;
    }
    ImportRun run(vault->store(), vault->calendar().now(), std::move(rows));
    while (run.step(rowsPerStep)) {
    }
    printReport(invocation, run.report(), *file);
    if (!run.report().failure.empty()) {
        invocation.err << "vorlane-cli import: " << run.report().failure << "\n";
        return 1;
    }
    return 0;
}

} // namespace vorlane
