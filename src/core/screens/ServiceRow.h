// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ExpirationState.h"
#include "model/Palette.h"
#include "model/ServiceStatus.h"

#include <string>
#include <string_view>

namespace vorlane {

struct ServiceRecord;
class UserCalendar;

// One service as every list draws it: the kind's icon in its tint, the title, the subtitle, the
// status pill and the expiration badge, and the sentence a screen reader says for the row.
// Built fresh for each paint (the expiration state moves with the clock); points at the record,
// which the store owns.
struct ServiceRow {
    ServiceRecord* service = nullptr;
    std::string_view typeIcon;
    Palette::Color typeTint = Palette::Color::secondary;
    std::string title;
    std::string subtitle;
    ServiceStatus status = ServiceStatus::active;
    ExpirationState expiration = ExpirationState::none;

    static ServiceRow of(ServiceRecord& service, const UserCalendar& calendar);

    // "Main VPS, Hetzner. Status Active. Expiring Soon."
    std::string accessibleText() const;
};

} // namespace vorlane
