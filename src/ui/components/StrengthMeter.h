// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "passwords/PasswordStrength.h"

#include <QWidget>

#include <optional>

namespace vorlane {

// A thin capsule filled by a password's estimated strength, in red while weak, orange while
// fair and green beyond; empty without a password. Screen readers get the estimate in words as
// the description. Main thread.
class StrengthMeter : public QWidget {
    Q_OBJECT

public:
    explicit StrengthMeter(QWidget* parent = nullptr);

    void setEstimate(std::optional<PasswordStrength::Estimate> estimate);
    const std::optional<PasswordStrength::Estimate>& estimate() const { return m_estimate; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::optional<PasswordStrength::Estimate> m_estimate;
};

} // namespace vorlane
