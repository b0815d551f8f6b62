// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/ImportReader.h"

#include "importer/BitwardenCsvReader.h"
#include "importer/BitwardenJsonReader.h"
#include "importer/CsvTable.h"
#include "importer/KeePassXcCsvReader.h"
#include "importer/KeePassXmlReader.h"
#include "importer/LastPassCsvReader.h"
#include "importer/OnePasswordCsvReader.h"
#include "importer/VorlaneCsvReader.h"

#include <sys/stat.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace vorlane {

namespace {

std::string_view withoutBom(std::string_view bytes) {
    return bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes;
}

std::string_view withoutLeadingSpace(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

std::size_t lineAt(std::string_view text, std::size_t offset) {
    return 1 + static_cast<std::size_t>(std::count(text.begin(), text.begin() + offset, '\n'));
}

// Why the text cannot be read as UTF-8 text, or empty when it can.
std::string encodingProblem(std::string_view text) {
    if (const std::size_t zero = text.find('\0'); zero != std::string_view::npos) {
        return "this is a binary file, not an export (a zero byte on line " +
               std::to_string(lineAt(text, zero)) + ")";
    }
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t i = 0; i < length;) {
        const std::int32_t start = i;
        UChar32 c = 0;
        U8_NEXT(bytes, i, length, c);
        if (c < 0) {
            return "line " + std::to_string(lineAt(text, static_cast<std::size_t>(start))) +
                   " is not UTF-8 text: export the file again as UTF-8";
        }
    }
    return {};
}

std::optional<ImportFormat> csvFormat(const CsvTable& table) {
    // Most specific header first: the spreadsheet's only needs a title column.
    if (KeePassXcCsvReader::recognizes(table)) {
        return ImportFormat::keepassxcCsv;
    }
    if (BitwardenCsvReader::recognizes(table)) {
        return ImportFormat::bitwardenCsv;
    }
    if (OnePasswordCsvReader::recognizes(table)) {
        return ImportFormat::onePasswordCsv;
    }
    if (LastPassCsvReader::recognizes(table)) {
        return ImportFormat::lastPassCsv;
    }
    if (VorlaneCsvReader::recognizes(table)) {
        return ImportFormat::vorlaneCsv;
    }
    return std::nullopt;
}

Result<std::vector<ImportedEntry>, std::string> readCsv(ImportFormat format,
                                                        const CsvTable& table) {
    switch (format) {
    case ImportFormat::keepassxcCsv:
        return KeePassXcCsvReader::read(table);
    case ImportFormat::bitwardenCsv:
        return BitwardenCsvReader::read(table);
    case ImportFormat::onePasswordCsv:
        return OnePasswordCsvReader::read(table);
    case ImportFormat::lastPassCsv:
        return LastPassCsvReader::read(table);
    default:
        return VorlaneCsvReader::read(table);
    }
}

} // namespace

Result<ImportedFile, std::string> ImportReader::readFile(const std::string& path,
                                                         std::optional<ImportFormat> format) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return path + ": " + std::strerror(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return path + " is a folder, not a file";
    }
    if (static_cast<std::size_t>(status.st_size) > maxBytes) {
        return path + " is " + std::to_string(status.st_size / (1024 * 1024)) +
               " MB; an export Vorlane can import is at most " +
               std::to_string(maxBytes / (1024 * 1024)) + " MB";
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return path + ": " + std::strerror(errno);
    }
    // One byte more than the cap, so that a file that grew since stat() is still refused.
    std::string bytes(maxBytes + 1, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (file.bad()) {
        return path + ": the file could not be read";
    }
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    if (bytes.size() > maxBytes) {
        return path + " is larger than " + std::to_string(maxBytes / (1024 * 1024)) + " MB";
    }
    return read(bytes, format);
}

std::optional<ImportFormat> ImportReader::detect(std::string_view bytes) {
    const std::string_view text = withoutLeadingSpace(withoutBom(bytes));
    if (KeePassXmlReader::recognizes(text)) {
        return ImportFormat::keepassXml;
    }
    if (BitwardenJsonReader::recognizes(text)) {
        return ImportFormat::bitwardenJson;
    }
    // Only the header decides, so only the first record is read.
    const std::size_t firstLines = std::min<std::size_t>(text.size(), 64 * 1024);
    auto table = CsvTable::read(text.substr(0, firstLines));
    return table ? csvFormat(table.value()) : std::nullopt;
}

Result<ImportedFile, std::string> ImportReader::read(std::string_view bytes,
                                                     std::optional<ImportFormat> format) {
    if (bytes.size() > maxBytes) {
        return "the file is larger than " + std::to_string(maxBytes / (1024 * 1024)) + " MB";
    }
    const std::string_view text = withoutBom(bytes);
    if (const std::string problem = encodingProblem(text); !problem.empty()) {
        return problem;
    }
    if (withoutLeadingSpace(text).empty()) {
        return std::string("the file is empty");
    }
    if (!format) {
        format = detect(text);
    }
    if (!format) {
        return std::string("this is not an export Vorlane can read: expected KeePass XML, "
                           "Bitwarden JSON, or a CSV file whose first line is the header of "
                           "KeePassXC, Bitwarden, 1Password, LastPass or Vorlane's template");
    }
    Result<std::vector<ImportedEntry>, std::string> entries = std::string();
    if (*format == ImportFormat::keepassXml) {
        entries = KeePassXmlReader::read(withoutLeadingSpace(text));
    } else if (*format == ImportFormat::bitwardenJson) {
        entries = BitwardenJsonReader::read(text);
    } else {
        auto table = CsvTable::read(text);
        if (!table) {
            return table.error();
        }
        entries = readCsv(*format, table.value());
    }
    if (!entries) {
        return entries.error();
    }
    return ImportedFile{*format, std::move(entries).value()};
}

} // namespace vorlane
