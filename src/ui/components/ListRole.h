// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Qt>

namespace vorlane {

// What the list models of the components answer beyond Qt's own roles, and what their delegates
// read. Every row is `rowHeight` tall, so that views can use uniform item sizes and scroll through
// 100,000 rows without measuring them.
struct ListRole {
    enum Role : int {
        kind = Qt::UserRole + 1, // a Kind
        serviceRow,              // a ServiceRow (service rows)
        organizationRow,         // an OrganizationRow (organization rows)
        logo,                    // the organization's decoded logo, a QImage (may be null)
        sectionCount,            // the number of rows under a section header
    };

    enum class Kind { sectionHeader, organization, service };

    static constexpr int rowHeight = 52;
};

} // namespace vorlane
