// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/SheetFrame.h"

#include "SymbolIcon.h"
#include "components/PlainText.h"

#include <QDialog>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace vorlane {

SheetFrame::SheetFrame(QDialog& dialog, const QString& title, CloseButton closeButton)
    : m_content(new QVBoxLayout)
    , m_subtitle(PlainText::label())
    , m_dialog(dialog)
    , m_back(new QPushButton(QStringLiteral("Back")))
    , m_cancel(new QPushButton(QStringLiteral("Cancel")))
    , m_main(new QPushButton) {
    dialog.setWindowTitle(title);
    auto* layout = new QVBoxLayout(&dialog);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto* header = new QHBoxLayout;
    // An auto-raised close button carries its own padding, so it sits nearer the edge.
    header->setContentsMargins(20, 16, closeButton == CloseButton::shown ? 12 : 20, 12);
    auto* titles = new QVBoxLayout;
    auto* heading = PlainText::label(title);
    QFont headingFont = heading->font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.4);
    headingFont.setBold(true);
    heading->setFont(headingFont);
    titles->addWidget(heading);
    m_subtitle->setForegroundRole(QPalette::PlaceholderText);
    titles->addWidget(m_subtitle);
    header->addLayout(titles, 1);
    if (closeButton == CloseButton::shown) {
        auto* close = new QToolButton;
        close->setIcon(SymbolIcon::icon("xmark.circle.fill"));
        close->setAutoRaise(true);
        close->setToolTip(QStringLiteral("Close"));
        close->setAccessibleName(QStringLiteral("Close"));
        QObject::connect(close, &QToolButton::clicked, &dialog, &QDialog::reject);
        header->addWidget(close, 0, Qt::AlignTop);
    }
    layout->addLayout(header);

    m_content->setContentsMargins(0, 0, 0, 0);
    m_content->setSpacing(0);
    layout->addLayout(m_content, 1);
    layout->addWidget(divider());

    auto* footer = new QHBoxLayout;
    footer->setContentsMargins(20, 12, 20, 16);
    footer->addWidget(m_back);
    footer->addStretch();
    footer->addWidget(m_cancel);
    footer->addWidget(m_main);
    layout->addLayout(footer);
    m_main->setDefault(true);
    m_back->setAutoDefault(false);
    m_cancel->setAutoDefault(false);
    QObject::connect(m_cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
}

void SheetFrame::tabToFooterLast() {
    // After the content's last Tab stop: the chain ends in widgets Tab never visits (labels, the
    // parts of compound controls), and the buttons go where Tab will find them.
    QWidget* last = m_dialog.previousInFocusChain();
    while (last != &m_dialog && (last == m_back || last == m_cancel || last == m_main ||
                                 (last->focusPolicy() & Qt::TabFocus) == 0)) {
        last = last->previousInFocusChain();
    }
    QWidget::setTabOrder(last, m_back);
    QWidget::setTabOrder(m_back, m_cancel);
    QWidget::setTabOrder(m_cancel, m_main);
}

QFrame* SheetFrame::divider() {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

} // namespace vorlane
