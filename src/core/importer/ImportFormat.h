// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace vorlane {

// The export formats the importer reads. `name` is what `vorlane-cli import --format` takes,
// `label` what the import sheet shows.
enum class ImportFormat {
    keepassXml,
    keepassxcCsv,
    bitwardenJson,
    bitwardenCsv,
    onePasswordCsv,
    lastPassCsv,
    vorlaneCsv,
};

class ImportFormats {
public:
    static constexpr std::array<ImportFormat, 7> all{
        ImportFormat::keepassXml,   ImportFormat::keepassxcCsv,   ImportFormat::bitwardenJson,
        ImportFormat::bitwardenCsv, ImportFormat::onePasswordCsv, ImportFormat::lastPassCsv,
        ImportFormat::vorlaneCsv,
    };

    static std::string_view name(ImportFormat format);
    static std::string_view label(ImportFormat format);
    // The format whose `name` is exactly `name`; nothing for any other text.
    static std::optional<ImportFormat> fromName(std::string_view name);
};

} // namespace vorlane
