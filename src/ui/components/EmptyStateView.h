// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace vorlane {

struct EmptyState;

// What a screen shows instead of an empty list: a large icon, the title, the message and, when
// the state names one, an action button; `actionTriggered` when it is pressed.
class EmptyStateView : public QWidget {
    Q_OBJECT

public:
    explicit EmptyStateView(const EmptyState& state, QWidget* parent = nullptr);

    // Shows another state in place (the screen's texts may change while it is shown).
    void setState(const EmptyState& state);

    QString title() const;
    QString message() const;
    // Null when the state has no action.
    QPushButton* actionButton() const;

Q_SIGNALS:
    void actionTriggered();

private:
    QLabel* m_icon;
    QLabel* m_title;
    QLabel* m_message;
    QPushButton* m_action;
};

} // namespace vorlane
