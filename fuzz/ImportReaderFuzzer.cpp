// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer target: any bytes given to the importer as one export format (IMPORT_FORMAT, set
// per target in CMakeLists.txt, so that each reader gets a fuzzer of its own), then mapped as
// the import sheet would. Besides crashes and what the sanitizers find, it checks what must
// hold for every input.

#include "importer/ImportMapper.h"
#include "importer/ImportReader.h"

#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale("en_US"), status);
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("America/New_York"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vorlane;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto file = ImportReader::read(bytes, ImportFormat::IMPORT_FORMAT);
    if (!file) {
        require(!file.error().empty()); // a refusal always says why
        return 0;
    }
    require(file.value().format == ImportFormat::IMPORT_FORMAT);
    for (const ImportedEntry& entry : file.value().entries) {
        require(entry.line >= 1);
    }
    auto rows = ImportMapper::map(file.value().entries, {});
    require(rows.size() == file.value().entries.size());
    for (const ImportRow& row : rows) {
        require(!row.organization.empty() && !row.record.title.empty());
        require((row.status == ImportRow::Status::rejected) == !row.reason.empty());
    }
    // Reading is a pure function of the bytes.
    const auto again = ImportReader::read(bytes, ImportFormat::IMPORT_FORMAT);
    require(again && again.value().entries.size() == file.value().entries.size());
    return 0;
}
