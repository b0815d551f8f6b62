// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "backup/BackupContents.h"

#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

// A backup's contents as the JSON text that is compressed and sealed in the file: every field of
// every record under the record's own field names, absent values as null, instants as whole
// milliseconds since 1970 UTC, money as exact decimal text, logos and secrets as base64 (a
// secret is bytes to the secret store). The README lists the members.
class BackupBody {
public:
    static std::string toJson(const BackupContents& contents);

    // The contents, or nothing when the text is not such a body: not JSON, a member missing or
    // of the wrong type, an identifier, date, amount or base64 text that does not read, an
    // identifier twice, or a record naming an organization or service the body does not have.
    // Members it does not know are passed over.
    static std::optional<BackupContents> fromJson(std::string_view json);
};

} // namespace vorlane
