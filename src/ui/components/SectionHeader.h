// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace vorlane {

// A section's title with the number of its rows beside it ("Archived Services  12"). A widget for
// screens that lay sections out themselves, and a paint function for lists that mix headers with
// rows. The count is announced with the title.
class SectionHeader : public QWidget {
    Q_OBJECT

public:
    explicit SectionHeader(const QString& title, int count = 0, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    void setCount(int count);
    QString title() const { return m_title; }
    int count() const { return m_count; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    // Title and count along the bottom of `rect` (space above separates sections).
    static void paint(QPainter& painter, const QRect& rect, const QString& title, int count,
                      const QPalette& palette, const QFont& font);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void updateAccessibleName();

    QString m_title;
    int m_count;
};

} // namespace vorlane
