// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/BackupSheet.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "backup/BackupFile.h"
#include "components/ErrorLabel.h"
#include "components/PasswordGeneratorPopup.h"
#include "components/PlainText.h"
#include "components/RunProgress.h"
#include "components/StepIndicator.h"
#include "components/StrengthMeter.h"
#include "components/TintedIcon.h"

#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace vorlane {

namespace {

QLabel* explanation(const char* text) {
    auto* label = new QLabel(QString::fromUtf8(text));
    label->setWordWrap(true);
    return label;
}

} // namespace

BackupSheet::BackupSheet(AppContext& context, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_flow(context.store, context.auth, context.calendar)
    , m_frame(*this, QString::fromLatin1(BackupFlow::title), SheetFrame::CloseButton::hidden)
    , m_indicator(new StepIndicator(
          {QStringLiteral("Authenticate"), QStringLiteral("Password"), QStringLiteral("Save")}))
    , m_steps(new QStackedWidget) {
    setWindowModality(Qt::WindowModal);
    resize(560, 520);

    QVBoxLayout* layout = m_frame.content();
    m_indicator->setContentsMargins(20, 0, 20, 0);
    layout->addWidget(m_indicator);
    layout->addWidget(SheetFrame::divider());
    m_steps->addWidget(createAuthenticateStep());
    m_steps->addWidget(createPasswordStep());
    m_steps->addWidget(createSaveStep());
    layout->addWidget(m_steps, 1);

    connect(m_frame.main(), &QPushButton::clicked, this, &BackupSheet::runMainAction);
    m_chooseFile = [this](const QString& proposedPath) -> std::optional<QString> {
        const QString path =
            QFileDialog::getSaveFileName(this, QStringLiteral("Save Backup"), proposedPath,
                                         QStringLiteral("Vorlane backups (*.vorlanebackup)"));
        return path.isEmpty() ? std::nullopt : std::optional(path);
    };
    m_frame.tabToFooterLast();
    refresh();
    // The first thing to do is to authenticate: Return or Space start it.
    m_frame.main()->setFocus();
}

QWidget* BackupSheet::createAuthenticateStep() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 12, 20, 8);
    layout->addWidget(explanation(BackupFlow::authenticationExplanation));
    m_authenticationError = ErrorLabel::create();
    m_authenticationError->setAccessibleName(QStringLiteral("Authentication error"));
    layout->addWidget(m_authenticationError);
    layout->addStretch();
    return page;
}

QWidget* BackupSheet::createPasswordStep() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 12, 20, 8);
    layout->addWidget(explanation(BackupFlow::passwordExplanation));
    layout->addSpacing(8);

    auto* fields = new QGridLayout;
    auto* passwordLabel = new QLabel(QStringLiteral("Backup password:"));
    m_password = new QLineEdit;
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setAccessibleName(QStringLiteral("Backup password"));
    passwordLabel->setBuddy(m_password);
    auto* generate = new QPushButton(QStringLiteral("Generate"));
    generate->setIcon(TintedIcon::ink("wand.and.stars", *generate));
    generate->setAccessibleName(QStringLiteral("Generate backup password"));
    generate->setAutoDefault(false);
    connect(generate, &QPushButton::clicked, this, [this, generate] {
        PasswordGeneratorPopup::choose(m_context, generate, [this](std::string text) {
            m_flow.useGeneratedPassword(text);
            const QSignalBlocker quietPassword(m_password);
            const QSignalBlocker quietConfirmation(m_confirmation);
            m_password->setText(toQString(m_flow.password));
            m_confirmation->setText(toQString(m_flow.confirmation));
            refresh();
            m_frame.main()->setFocus();
        });
    });
    // One row of one height: the field grows to the button's, so that both start on the same
    // line for the eye and for Tab (the field would otherwise sit lower and read second).
    m_password->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    auto* passwordRow = new QHBoxLayout;
    passwordRow->addWidget(m_password, 1);
    passwordRow->addWidget(generate);
    fields->addWidget(passwordLabel, 0, 0);
    fields->addLayout(passwordRow, 0, 1);
    m_meter = new StrengthMeter;
    fields->addWidget(m_meter, 1, 1);
    m_strength = new QLabel;
    m_strength->setForegroundRole(QPalette::PlaceholderText);
    fields->addWidget(m_strength, 2, 1);
    m_passwordProblem = ErrorLabel::create();
    m_passwordProblem->setAccessibleName(QStringLiteral("Backup password problem"));
    fields->addWidget(m_passwordProblem, 3, 1);

    auto* confirmationLabel = new QLabel(QStringLiteral("Repeat password:"));
    m_confirmation = new QLineEdit;
    m_confirmation->setEchoMode(QLineEdit::Password);
    m_confirmation->setAccessibleName(QStringLiteral("Repeat backup password"));
    confirmationLabel->setBuddy(m_confirmation);
    fields->addWidget(confirmationLabel, 4, 0);
    fields->addWidget(m_confirmation, 4, 1);
    m_confirmationProblem = ErrorLabel::create();
    m_confirmationProblem->setAccessibleName(QStringLiteral("Repeated password problem"));
    fields->addWidget(m_confirmationProblem, 5, 1);
    fields->setColumnStretch(1, 1);
    layout->addLayout(fields);

    connect(m_password, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_flow.password = toStdString(text);
        refresh();
    });
    connect(m_confirmation, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_flow.confirmation = toStdString(text);
        refresh();
    });

    m_saveError = ErrorLabel::create();
    m_saveError->setAccessibleName(QStringLiteral("Error"));
    layout->addWidget(m_saveError);
    layout->addStretch();
    return page;
}

QWidget* BackupSheet::createSaveStep() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 12, 20, 8);
    m_run = new RunProgress(QStringLiteral("Backup progress"), QStringLiteral("Summary"));
    layout->addWidget(m_run);
    m_savedPath = PlainText::label();
    m_savedPath->setWordWrap(true);
    m_savedPath->setAccessibleName(QStringLiteral("Saved to"));
    m_savedPath->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_savedPath);
    m_missing = new QPlainTextEdit;
    m_missing->setReadOnly(true);
    m_missing->setTabChangesFocus(true);
    m_missing->setAccessibleName(QStringLiteral("Secrets missing from the backup"));
    layout->addWidget(m_missing, 1);
    layout->addStretch();
    return page;
}

void BackupSheet::runMainAction() {
    if (!m_flow.mainButtonEnabled()) {
        return;
    }
    switch (m_flow.step()) {
    case BackupFlow::Step::authenticate:
        m_flow.authenticate([this] {
            refresh();
            if (m_flow.step() == BackupFlow::Step::password) {
                m_password->setFocus();
            }
        });
        refresh();
        break;
    case BackupFlow::Step::password:
        backUp();
        break;
    case BackupFlow::Step::working:
        break;
    case BackupFlow::Step::done:
        accept();
        break;
    }
}

void BackupSheet::backUp() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const std::optional<QString> path =
        m_chooseFile(QDir(folder).filePath(toQString(m_flow.proposedFileName())));
    if (!path) {
        return;
    }
    std::optional<BackupFlow::Job> job = m_flow.start(toStdString(*path));
    refresh();
    if (!job) {
        return;
    }
    const std::uint64_t run = job->run;
    m_job.run<std::string>(
        [contents = std::move(job->contents), password = std::move(job->password)] {
            return BackupFile::seal(contents, password);
        },
        [this, run](std::string bytes) {
            m_flow.sealed(run, bytes);
            refresh();
            m_frame.main()->setFocus();
        });
}

void BackupSheet::reject() {
    if (m_flow.step() == BackupFlow::Step::working) {
        m_flow.cancel();
        refresh();
        m_password->setFocus();
        return;
    }
    QDialog::reject();
}

void BackupSheet::refresh() {
    const BackupFlow::Step step = m_flow.step();
    m_steps->setCurrentIndex(m_flow.lastReachedMarker());
    m_indicator->setLastReached(m_flow.lastReachedMarker());
    m_frame.subtitle()->setText(toQString(m_flow.subtitle()));
    m_frame.back()->setVisible(false);
    m_frame.main()->setText(toMnemonicSafe(m_flow.mainButtonTitle()));
    m_frame.main()->setEnabled(m_flow.mainButtonEnabled());

    ErrorLabel::show(*m_authenticationError, step == BackupFlow::Step::authenticate
                                                 ? m_flow.error().value_or(std::string())
                                                 : std::string());
    ErrorLabel::show(*m_saveError, step == BackupFlow::Step::password
                                       ? m_flow.error().value_or(std::string())
                                       : std::string());
    const std::optional<PasswordStrength::Estimate> strength = m_flow.passwordStrength();
    m_meter->setEstimate(strength);
    m_strength->setText(strength ? toQString(PasswordStrength::summary(*strength)) : QString());
    m_strength->setVisible(strength.has_value());
    ErrorLabel::show(*m_passwordProblem, m_flow.passwordMessage().value_or(std::string()));
    ErrorLabel::show(*m_confirmationProblem, m_flow.confirmationMessage().value_or(std::string()));

    const bool done = step == BackupFlow::Step::done;
    if (done) {
        m_run->showOutcome(toQString(m_flow.doneText()));
    } else {
        // How long the key derivation takes cannot be told in advance: a busy bar.
        m_run->showRunning(QString::fromUtf8(BackupFlow::progressText), std::nullopt);
    }
    m_savedPath->setVisible(done);
    m_missing->setVisible(done && !m_flow.missingSecrets().empty());
    if (done) {
        m_savedPath->setText(QStringLiteral("Saved to %1").arg(toQString(m_flow.savedPath())));
        QStringList missing;
        for (const std::string& secret : m_flow.missingSecrets()) {
            missing << toQString(secret);
        }
        m_missing->setPlainText(QStringLiteral("Missing from the backup:\n") + missing.join(u'\n'));
    }
}

} // namespace vorlane
