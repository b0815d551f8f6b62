// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/ImportedEntry.h"
#include "util/Result.h"

#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// Bitwarden's unencrypted JSON export: folders (or an organization's collections) and items.
// Logins and secure notes become entries; other kinds of item are rejected with a reason, and
// items in the trash (with a deletedDate) are skipped. An entry's `line` is the item's number
// (from 1), since the JSON parser keeps no positions. Custom fields of type 1 are hidden.
class BitwardenJsonReader {
public:
    static constexpr const char* encryptedMessage =
        "This Bitwarden export is encrypted. Export it again as JSON (unencrypted) or import it "
        "into another manager first.";

    // Whether `text` (a leading BOM and whitespace already gone) is a JSON object.
    static bool recognizes(std::string_view text);
    // The entries in item order; an error for JSON that does not parse (with its line), for an
    // encrypted export (`encryptedMessage`) and for JSON without "items".
    static Result<std::vector<ImportedEntry>, std::string> read(std::string_view text);
};

} // namespace vorlane
