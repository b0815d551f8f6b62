// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/RestoreSheet.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "backup/BackupFile.h"
#include "components/ErrorLabel.h"
#include "components/PlainText.h"
#include "components/RunProgress.h"
#include "components/StepIndicator.h"

#include <QFileDialog>
#include <QFont>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QTimer>
#include <QVBoxLayout>

namespace vorlane {

namespace {

// Each secret costs the keyring a few milliseconds, and the secrets of one turn are sent to it
// together; two dozen per turn keep the window answering while the bar moves.
constexpr std::size_t secretsPerTurn = 24;

QWidget* page(QVBoxLayout*& layout) {
    auto* widget = new QWidget;
    layout = new QVBoxLayout(widget);
    layout->setContentsMargins(20, 12, 20, 8);
    return widget;
}

} // namespace

RestoreSheet::RestoreSheet(AppContext& context, QWidget* parent)
    : QDialog(parent)
    , m_flow(context.store, context.calendar)
    , m_frame(*this, QString::fromLatin1(RestoreFlow::title), SheetFrame::CloseButton::hidden)
    , m_indicator(new StepIndicator({QStringLiteral("File"), QStringLiteral("Password"),
                                     QStringLiteral("Summary"), QStringLiteral("Restore")}))
    , m_steps(new QStackedWidget)
    , m_restoreTimer(new QTimer(this)) {
    setWindowModality(Qt::WindowModal);
    resize(560, 480);

    QVBoxLayout* layout = m_frame.content();
    m_indicator->setContentsMargins(20, 0, 20, 0);
    layout->addWidget(m_indicator);
    layout->addWidget(SheetFrame::divider());
    m_steps->addWidget(createFileStep());
    m_steps->addWidget(createPasswordStep());
    m_steps->addWidget(createSummaryStep());
    m_steps->addWidget(createRestoreStep());
    layout->addWidget(m_steps, 1);

    m_restoreTimer->setInterval(0);
    connect(m_restoreTimer, &QTimer::timeout, this, &RestoreSheet::restoreSome);
    connect(m_frame.back(), &QPushButton::clicked, this, [this] {
        m_flow.back();
        refresh();
        if (m_flow.step() == RestoreFlow::Step::password) {
            m_password->setFocus();
        }
    });
    connect(m_frame.main(), &QPushButton::clicked, this, &RestoreSheet::runMainAction);
    m_frame.tabToFooterLast();
    refresh();
    m_frame.main()->setFocus();
}

QWidget* RestoreSheet::createFileStep() {
    QVBoxLayout* layout = nullptr;
    QWidget* widget = page(layout);
    auto* explanation = new QLabel(QString::fromUtf8(RestoreFlow::fileExplanation));
    explanation->setWordWrap(true);
    layout->addWidget(explanation);
    auto* form = new QFormLayout;
    m_path = PlainText::label(QStringLiteral("No file chosen"));
    m_path->setWordWrap(true);
    m_path->setAccessibleName(QStringLiteral("Chosen file"));
    form->addRow(QStringLiteral("File:"), m_path);
    layout->addLayout(form);
    m_fileError = ErrorLabel::create();
    m_fileError->setAccessibleName(QStringLiteral("Error"));
    layout->addWidget(m_fileError);
    layout->addStretch();
    return widget;
}

QWidget* RestoreSheet::createPasswordStep() {
    QVBoxLayout* layout = nullptr;
    QWidget* widget = page(layout);
    auto* form = new QFormLayout;
    m_password = new QLineEdit;
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setAccessibleName(QStringLiteral("Backup password"));
    connect(m_password, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_flow.password = toStdString(text);
        refresh();
    });
    form->addRow(QStringLiteral("Backup password:"), m_password);
    m_passwordError = ErrorLabel::create();
    m_passwordError->setAccessibleName(QStringLiteral("Password error"));
    form->addRow(QString(), m_passwordError);
    layout->addLayout(form);
    m_openingText = new QLabel(QString::fromUtf8(RestoreFlow::openingText));
    layout->addWidget(m_openingText);
    m_opening = new QProgressBar;
    // How long the key derivation takes cannot be told in advance: a busy bar.
    m_opening->setRange(0, 0);
    m_opening->setTextVisible(false);
    m_opening->setAccessibleName(QStringLiteral("Opening progress"));
    layout->addWidget(m_opening);
    layout->addStretch();
    return widget;
}

QWidget* RestoreSheet::createSummaryStep() {
    QVBoxLayout* layout = nullptr;
    QWidget* widget = page(layout);
    auto* heading = new QLabel(QStringLiteral("This backup holds"));
    QFont font = heading->font();
    font.setBold(true);
    heading->setFont(font);
    layout->addWidget(heading);
    m_contents = new QGridLayout;
    m_contents->setColumnStretch(1, 1);
    m_contents->setHorizontalSpacing(24);
    layout->addLayout(m_contents);
    layout->addSpacing(12);
    m_plan = PlainText::label();
    m_plan->setWordWrap(true);
    m_plan->setAccessibleName(QStringLiteral("What the restore will do"));
    layout->addWidget(m_plan);
    layout->addStretch();
    return widget;
}

QWidget* RestoreSheet::createRestoreStep() {
    QVBoxLayout* layout = nullptr;
    QWidget* widget = page(layout);
    m_run = new RunProgress(QStringLiteral("Restore progress"), QStringLiteral("Result"));
    layout->addWidget(m_run);
    layout->addStretch();
    return widget;
}

void RestoreSheet::chooseFile(const QString& path) {
    m_path->setText(path);
    const bool read = m_flow.chooseFile(toStdString(path));
    m_password->clear();
    refresh();
    if (read) {
        m_password->setFocus();
    }
}

void RestoreSheet::runMainAction() {
    if (!m_flow.mainButtonEnabled()) {
        return;
    }
    switch (m_flow.step()) {
    case RestoreFlow::Step::chooseFile: {
        const QString path = QFileDialog::getOpenFileName(
            this, QStringLiteral("Choose a Backup"),
            QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
            QStringLiteral("Vorlane backups (*.vorlanebackup);;All Files (*)"));
        if (!path.isEmpty()) {
            chooseFile(path);
        }
        break;
    }
    case RestoreFlow::Step::password:
        unlock();
        break;
    case RestoreFlow::Step::summary:
        m_flow.startRestore();
        refresh();
        m_restoreTimer->start();
        break;
    case RestoreFlow::Step::restoring:
        break;
    case RestoreFlow::Step::done:
        accept();
        break;
    }
}

void RestoreSheet::unlock() {
    std::optional<RestoreFlow::Job> job = m_flow.unlock();
    refresh();
    if (!job) {
        return;
    }
    const std::uint64_t run = job->run;
    m_job.run<Result<BackupContents, std::string>>(
        [bytes = std::move(job->bytes), password = std::move(job->password)] {
            return BackupFile::open(*bytes, password);
        },
        [this, run](Result<BackupContents, std::string> contents) {
            m_flow.opened(run, std::move(contents));
            if (m_flow.step() == RestoreFlow::Step::summary) {
                fillSummary();
            }
            refresh();
            if (m_flow.step() == RestoreFlow::Step::summary) {
                m_frame.main()->setFocus();
            } else {
                m_password->selectAll();
                m_password->setFocus();
            }
        });
}

void RestoreSheet::restoreSome() {
    if (!m_flow.restoreStep(secretsPerTurn)) {
        m_restoreTimer->stop();
        refresh();
        m_frame.main()->setFocus();
        return;
    }
    refresh();
}

void RestoreSheet::reject() {
    if (m_flow.cancel()) {
        m_restoreTimer->stop();
        refresh();
        if (m_flow.step() == RestoreFlow::Step::done) {
            m_frame.main()->setFocus();
        } else {
            m_password->setFocus();
        }
        return;
    }
    QDialog::reject();
}

void RestoreSheet::fillSummary() {
    while (QLayoutItem* item = m_contents->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    int row = 0;
    for (const auto& [label, value] : m_flow.contentsRows()) {
        auto* name = PlainText::label(toQString(label));
        name->setForegroundRole(QPalette::PlaceholderText);
        auto* text = PlainText::label(toQString(value));
        text->setAccessibleName(toQString(label));
        m_contents->addWidget(name, row, 0);
        m_contents->addWidget(text, row, 1);
        ++row;
    }
    m_plan->setText(toQString(m_flow.planText()));
}

void RestoreSheet::refresh() {
    const RestoreFlow::Step step = m_flow.step();
    m_steps->setCurrentIndex(m_flow.lastReachedMarker());
    m_indicator->setLastReached(m_flow.lastReachedMarker());
    m_frame.subtitle()->setText(toQString(m_flow.subtitle()));
    m_frame.back()->setVisible(m_flow.showsBack());
    m_frame.back()->setEnabled(!m_flow.isOpening());
    m_frame.main()->setText(toMnemonicSafe(m_flow.mainButtonTitle()));
    m_frame.main()->setEnabled(m_flow.mainButtonEnabled());

    ErrorLabel::show(*m_fileError, m_flow.fileError().value_or(std::string()));
    ErrorLabel::show(*m_passwordError, m_flow.passwordError().value_or(std::string()));
    m_password->setEnabled(!m_flow.isOpening());
    m_openingText->setVisible(m_flow.isOpening());
    m_opening->setVisible(m_flow.isOpening());

    const bool done = step == RestoreFlow::Step::done;
    if (done) {
        m_run->showOutcome(toQString(m_flow.resultText()));
    } else {
        m_run->showRunning(toQString(m_flow.progressText()), m_flow.progress());
    }
}

} // namespace vorlane
