// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <iosfwd>
#include <vector>

namespace vorlane {

struct Organization;
struct ServiceRecord;
class UserCalendar;

// How the store commands print records: one JSON object per line with --json, otherwise one
// aligned line per record for people.
class StoreListing {
public:
    static void services(std::ostream& out, const std::vector<ServiceRecord*>& services,
                         const UserCalendar& calendar, bool json);
    static void organizations(std::ostream& out, const std::vector<Organization*>& organizations,
                              bool json);
};

} // namespace vorlane
