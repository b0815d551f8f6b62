// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/ImportFormat.h"

namespace vorlane {

std::string_view ImportFormats::name(ImportFormat format) {
    switch (format) {
    case ImportFormat::keepassXml:
        return "keepass-xml";
    case ImportFormat::keepassxcCsv:
        return "keepassxc-csv";
    case ImportFormat::bitwardenJson:
        return "bitwarden-json";
    case ImportFormat::bitwardenCsv:
        return "bitwarden-csv";
    case ImportFormat::onePasswordCsv:
        return "1password-csv";
    case ImportFormat::lastPassCsv:
        return "lastpass-csv";
    case ImportFormat::vorlaneCsv:
        return "csv";
    }
    return {};
}

std::string_view ImportFormats::label(ImportFormat format) {
    switch (format) {
    case ImportFormat::keepassXml:
        return "KeePass XML";
    case ImportFormat::keepassxcCsv:
        return "KeePassXC CSV";
    case ImportFormat::bitwardenJson:
        return "Bitwarden JSON";
    case ImportFormat::bitwardenCsv:
        return "Bitwarden CSV";
    case ImportFormat::onePasswordCsv:
        return "1Password CSV";
    case ImportFormat::lastPassCsv:
        return "LastPass CSV";
    case ImportFormat::vorlaneCsv:
        return "Spreadsheet (Vorlane CSV)";
    }
    return {};
}

std::optional<ImportFormat> ImportFormats::fromName(std::string_view name) {
    for (const ImportFormat format : all) {
        if (ImportFormats::name(format) == name) {
            return format;
        }
    }
    return std::nullopt;
}

} // namespace vorlane
