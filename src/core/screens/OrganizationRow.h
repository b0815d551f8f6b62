// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"

#include <string>

namespace vorlane {

struct Organization;

// One organization as the archive and the search results list it: avatar (initials and colour;
// the logo is read by whoever paints), name, project beneath when there is one, and
// "%lld services" counting every service of the organization, archived ones included.
struct OrganizationRow {
    Organization* organization = nullptr;
    std::string name;
    std::string projectName;
    std::string initials;
    Palette::Color avatarColor = Palette::Color::secondary;
    std::string servicesText;

    static OrganizationRow of(Organization& organization);

    // "Acme Ltd, project Website relaunch, 4 services."
    std::string accessibleText() const;
};

} // namespace vorlane
