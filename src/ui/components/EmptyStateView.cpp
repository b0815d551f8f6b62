// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/EmptyStateView.h"

#include "QtText.h"
#include "components/PaletteColor.h"
#include "components/PlainText.h"
#include "components/TintedIcon.h"
#include "screens/EmptyState.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vorlane {

namespace {

constexpr int iconSize = 48;

} // namespace

EmptyStateView::EmptyStateView(const EmptyState& state, QWidget* parent)
    : QWidget(parent)
    , m_icon(new QLabel)
    , m_title(PlainText::label())
    , m_message(PlainText::label())
    , m_action(new QPushButton) {
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(8);
    layout->addStretch();
    m_icon->setAlignment(Qt::AlignCenter);
    layout->addWidget(m_icon);
    QFont titleFont = m_title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.35);
    titleFont.setWeight(QFont::DemiBold);
    m_title->setFont(titleFont);
    m_title->setAlignment(Qt::AlignCenter);
    layout->addWidget(m_title);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setWordWrap(true);
    m_message->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_message);
    layout->addSpacing(8);
    layout->addWidget(m_action, 0, Qt::AlignCenter);
    layout->addStretch();
    connect(m_action, &QPushButton::clicked, this, &EmptyStateView::actionTriggered);
    setState(state);
}

void EmptyStateView::setState(const EmptyState& state) {
    const QColor secondary = PaletteColor::color(Palette::Color::secondary, palette());
    m_icon->setPixmap(TintedIcon::pixmap(state.icon, iconSize, secondary, devicePixelRatioF()));
    m_title->setText(toQString(state.title));
    m_message->setText(toQString(state.message));
    m_action->setText(toQString(state.actionTitle));
    m_action->setVisible(!state.actionTitle.empty());
    setAccessibleName(m_title->text());
    setAccessibleDescription(m_message->text());
}

QString EmptyStateView::title() const {
    return m_title->text();
}

QString EmptyStateView::message() const {
    return m_message->text();
}

QPushButton* EmptyStateView::actionButton() const {
    return m_action->text().isEmpty() ? nullptr : m_action;
}

} // namespace vorlane
