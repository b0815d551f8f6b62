// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class DataStore;
class UserCalendar;

// The inventory: every service of the vault as one CSV line (RFC 4180, CRLF), without its
// secrets, in the spreadsheet import's own columns and value forms, so that a person can open it
// in a spreadsheet and import it back as the same records: dates YYYY-MM-DD on the user's
// calendar, amounts as exact decimals, kinds, cycles, levels and states as their raw values,
// tags joined with ", ". Values are written exactly as they are (one starting with "=" too),
// so that they read back unchanged.
//
// Archived services are in it too, with the status "archived" (which the import reads back as
// archived): an inventory that silently leaves records out would not be one. Main thread (the
// store's).
class InventoryCsv {
public:
    // The import's columns without "password" and "apiKey", in its order.
    static std::vector<std::string_view> columns();

    // The header line, then one line per service, by title.
    static std::string text(const DataStore& store, const UserCalendar& calendar);

    // "Vorlane-Inventory-YYYY-MM-DD.csv", the day of `now` for the user.
    static std::string fileName(Instant now, const UserCalendar& calendar);

    // `text` written to `path` owner-only and whole or not at all (PrivateFile): an inventory
    // names every client's hosts and accounts. Nothing on success, else what the user reads:
    // "The inventory could not be written to PATH: " and the reason.
    static std::optional<std::string> write(const std::string& path, const DataStore& store,
                                            const UserCalendar& calendar);
};

} // namespace vorlane
