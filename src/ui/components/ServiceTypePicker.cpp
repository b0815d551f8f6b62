// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/ServiceTypePicker.h"

#include "QtText.h"
#include "SymbolIcon.h"

namespace vorlane {

ServiceTypePicker::ServiceTypePicker(std::string_view allTitle, QWidget* parent)
    : QComboBox(parent) {
    addItem(toQString(allTitle));
    insertSeparator(count());
    for (const ServiceType type : ServiceType::allCases()) {
        addItem(SymbolIcon::icon(type.icon()), toQString(type.label()), toQString(type.rawValue()));
    }
    setMaxVisibleItems(count());
    connect(this, &QComboBox::currentIndexChanged, this,
            [this] { Q_EMIT typeChanged(selectedType()); });
}

std::optional<ServiceType> ServiceTypePicker::selectedType() const {
    return ServiceType::fromRaw(toStdString(currentData().toString()));
}

void ServiceTypePicker::setSelectedType(std::optional<ServiceType> type) {
    setCurrentIndex(type ? findData(toQString(type->rawValue())) : 0);
}

} // namespace vorlane
