// SPDX-License-Identifier: GPL-3.0-or-later
// Backup files from anywhere (a USB stick, a synced folder): whatever the bytes, checking the
// header and opening the file give contents or a sentence, never a crash, and opening never
// contradicts the header check. Since a changed byte of a sealed file almost never gets past the
// cipher's tag, input that starts with "{" goes straight to the body reader instead, whose every
// accepted body must write back to the same contents.

#include "backup/BackupBody.h"
#include "backup/BackupFile.h"
#include "backup/BackupHeader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using namespace vorlane;

// The password of the sealed seeds in fuzz/backup-corpus/.
constexpr std::string_view password = "fuzzing password 1";

// A header may ask for up to 4 GiB and 64 passes, which the reader allows; the fuzzer only
// derives keys for cheap ones, so that every input stays fast and small.
bool cheap(const BackupKdfParameters& parameters) {
    return parameters.memoryKiB <= 64 && parameters.passes <= 2 && parameters.lanes <= 2;
}

void fuzzBody(std::string_view json) {
    const auto contents = BackupBody::fromJson(json);
    if (!contents) {
        return;
    }
    const std::string again = BackupBody::toJson(*contents);
    const auto reread = BackupBody::fromJson(again);
    if (!reread || BackupBody::toJson(*reread) != again) {
        std::abort(); // an accepted body writes back to itself
    }
}

void fuzzFile(std::string_view file) {
    const auto checked = BackupFile::checkHeader(file);
    const auto header = BackupHeader::read(file);
    if (checked.has_value() == header.ok() || (checked && *checked != header.error())) {
        std::abort(); // the header check and the reader agree
    }
    if (!header || !cheap(header.value().parameters)) {
        return;
    }
    const auto opened = BackupFile::open(file, password);
    if (!opened && opened.error() != BackupHeader::damagedText) {
        std::abort(); // past the header, the only sentence left is the damaged one
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    if (input.starts_with('{')) {
        fuzzBody(input);
    } else {
        fuzzFile(input);
    }
    return 0;
}
