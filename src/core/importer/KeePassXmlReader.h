// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/ImportedEntry.h"
#include "util/Result.h"

#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// KeePass 2 XML, as KeePass and KeePassXC export it: one root group, nested groups, entries with
// String key/value pairs, Tags and Times. Entries in History and in the recycle bin group are
// skipped. A value marked Protected="True" was encrypted by the database's inner stream and
// cannot be read outside it: its entry is rejected. A custom attribute marked
// ProtectInMemory="True" is a secret (a hidden field); KeePassXC's "otp" attribute is a
// one-time code. ExpiryTime counts only when Expires is True.
//
// Read with expat and nothing else: no DTD is accepted (so no entity can expand and no external
// file is ever loaded), and the caller caps the size of the text.
class KeePassXmlReader {
public:
    // Whether `text` (a leading BOM and whitespace already gone) starts like a KeePass file.
    static bool recognizes(std::string_view text);
    // The entries in file order; an error naming the line when the XML is damaged or is not a
    // KeePass file, in which case nothing of it is used.
    static Result<std::vector<ImportedEntry>, std::string> read(std::string_view text);
};

} // namespace vorlane
