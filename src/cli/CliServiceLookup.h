// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <iosfwd>
#include <string>

namespace vorlane {

class DataStore;
struct ServiceRecord;

// The service a command argument names: its id, or a title (any case) that exactly one service
// has, archived ones included. Nothing when none or several match; a line on `err` then says
// which, so that a script never acts on the wrong service.
class CliServiceLookup {
public:
    static ServiceRecord* find(DataStore& store, const std::string& idOrTitle, std::ostream& err);
};

} // namespace vorlane
