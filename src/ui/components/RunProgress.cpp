// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/RunProgress.h"

#include "components/PlainText.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace vorlane {

namespace {

// Steps of the bar: fine enough that a run of a hundred thousand items still moves smoothly.
constexpr int barSteps = 1000;

} // namespace

RunProgress::RunProgress(const QString& barName, const QString& outcomeName, QWidget* parent)
    : QWidget(parent)
    , m_text(PlainText::label())
    , m_bar(new QProgressBar)
    , m_outcome(PlainText::label()) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_text->setWordWrap(true);
    m_text->setAccessibleName(QStringLiteral("Progress"));
    layout->addWidget(m_text);
    m_bar->setRange(0, barSteps);
    m_bar->setTextVisible(false);
    m_bar->setAccessibleName(barName);
    layout->addWidget(m_bar);
    m_outcome->setWordWrap(true);
    m_outcome->setAccessibleName(outcomeName);
    QFont bold = m_outcome->font();
    bold.setBold(true);
    m_outcome->setFont(bold);
    m_outcome->hide();
    layout->addWidget(m_outcome);
}

void RunProgress::showRunning(const QString& text, std::optional<double> fraction) {
    m_text->setText(text);
    m_bar->setRange(0, fraction ? barSteps : 0);
    m_bar->setValue(fraction ? static_cast<int>(*fraction * barSteps) : 0);
    m_text->show();
    m_bar->show();
    m_outcome->hide();
}

void RunProgress::showOutcome(const QString& outcome) {
    m_outcome->setText(outcome);
    m_text->hide();
    m_bar->hide();
    m_outcome->show();
}

} // namespace vorlane
