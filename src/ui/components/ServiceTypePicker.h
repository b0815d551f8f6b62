// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ServiceType.h"

#include <QComboBox>

#include <optional>
#include <string_view>

namespace vorlane {

// A type filter: "All Types" (or the title given), a separator, then every service kind in
// declaration order with its label and icon. `typeChanged` when the person picks another entry.
class ServiceTypePicker : public QComboBox {
    Q_OBJECT

public:
    ServiceTypePicker(std::string_view allTitle, QWidget* parent = nullptr);

    std::optional<ServiceType> selectedType() const;
    void setSelectedType(std::optional<ServiceType> type);

Q_SIGNALS:
    void typeChanged(std::optional<vorlane::ServiceType> type);
};

} // namespace vorlane
