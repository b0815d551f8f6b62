// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"

#include <QWidget>

#include <string>
#include <string_view>

namespace vorlane {

// A capsule badge as a widget, for screens that lay out their header themselves (the service
// detail's expiration state): CapsuleBadge's look, with the text as its accessible name.
class CapsuleLabel : public QWidget {
    Q_OBJECT

public:
    explicit CapsuleLabel(QWidget* parent = nullptr);

    void setBadge(const QString& text, std::string_view symbol, Palette::Color tint);
    QString text() const { return m_text; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
    std::string m_symbol;
    Palette::Color m_tint = Palette::Color::secondary;
};

} // namespace vorlane
