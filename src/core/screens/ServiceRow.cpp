// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ServiceRow.h"

#include "model/ServiceRecord.h"

namespace vorlane {

ServiceRow ServiceRow::of(ServiceRecord& service, const UserCalendar& calendar) {
    const ServiceType type = service.serviceType();
    return ServiceRow{
        .service = &service,
        .typeIcon = type.icon(),
        .typeTint = type.tintColor(),
        .title = service.title,
        .subtitle = service.displaySubtitle(),
        .status = service.status(),
        .expiration = service.expirationState(calendar),
    };
}

std::string ServiceRow::accessibleText() const {
    std::string text = title.empty() ? std::string("Untitled service") : title;
    text += ", ";
    text += subtitle;
    text += ". Status ";
    text += status.displayName();
    text += ". ";
    text += expiration.displayName();
    text += '.';
    return text;
}

} // namespace vorlane
