// SPDX-License-Identifier: GPL-3.0-or-later
// Bundle files from a stranger: whatever the bytes, reading them gives a bundle or a sentence,
// opening gives a payload or a CryptoError, and a bundle that reads writes back to the same
// bundle.

#include "crypto/BundleReader.h"
#include "crypto/CryptoManager.h"
#include "crypto/ExportBundle.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    // The first line, if any, is the secret the recipient types; the rest is the file.
    const auto lineEnd = input.find('\n');
    const std::string_view secret =
        lineEnd == std::string_view::npos ? std::string_view() : input.substr(0, lineEnd);
    const std::string_view file =
        lineEnd == std::string_view::npos ? input : input.substr(lineEnd + 1);

    const auto bundle = vorlane::ExportBundle::fromJson(file);
    if (!bundle) {
        if (bundle.error().empty()) {
            std::abort(); // every refusal says why
        }
        return 0;
    }
    const auto again = vorlane::ExportBundle::fromJson(bundle.value().toJson());
    if (!again || !(again.value() == bundle.value())) {
        std::abort();
    }
    const auto opened = vorlane::BundleReader::open(bundle.value(), secret);
    if (opened && vorlane::CryptoManager::integrityOf(opened.value()) != bundle.value().integrity) {
        std::abort(); // a payload is only ever returned when it matches its hash
    }
    return 0;
}
