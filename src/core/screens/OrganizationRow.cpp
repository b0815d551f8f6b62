// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationRow.h"

#include "model/Organization.h"

namespace vorlane {

OrganizationRow OrganizationRow::of(Organization& organization) {
    return OrganizationRow{
        .organization = &organization,
        .name = organization.name,
        .projectName = organization.projectName,
        .initials = organization.initials(),
        .avatarColor = organization.avatarColor(),
        // Plural even for one, as the row has always read.
        .servicesText = std::to_string(organization.services.size()) + " services",
    };
}

std::string OrganizationRow::accessibleText() const {
    std::string text = name;
    if (!projectName.empty()) {
        text += ", project " + projectName;
    }
    text += ", " + servicesText + '.';
    return text;
}

} // namespace vorlane
