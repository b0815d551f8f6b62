#pragma once

#include "model/Palette.h"

#include <QWidget>

#include <string>

namespace vorlane {

// A small rounded card with a figure: the icon in its colour, the value large, the title beneath
// ("Monthly Cost", "$1,240"). The value is text: money and counts arrive already written by the
// screen model. Announced as "title: value".
class StatCard : public QWidget {
    Q_OBJECT

public:
    StatCard(const QString& title, const QString& value, std::string symbol, Palette::Color color,
             QWidget* parent = nullptr);

    void setValue(const QString& value);
    QString title() const { return m_title; }
    QString value() const { return m_value; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void updateAccessibleName();

    QString m_title;
    QString m_value;
    std::string m_symbol;
    Palette::Color m_color;
};

} // namespace vorlane
