// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Lets the list models hand the core's row descriptions to the delegates through QVariant.

#include "components/ListRole.h"
#include "screens/OrganizationRow.h"
#include "screens/ServiceRow.h"

#include <QMetaType>

Q_DECLARE_METATYPE(vorlane::ServiceRow)
Q_DECLARE_METATYPE(vorlane::OrganizationRow)
Q_DECLARE_METATYPE(vorlane::ListRole::Kind)
