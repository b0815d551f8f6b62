// SPDX-License-Identifier: GPL-3.0-or-later
#include "BackupPasswordSheet.h"

#include "QtText.h"
#include "components/PaletteColor.h"
#include "components/PlainText.h"
#include "components/StrengthMeter.h"
#include "screens/BackupSettingsScreen.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vorlane {

BackupPasswordSheet::BackupPasswordSheet(BackupSettingsScreen& screen, QWidget* parent)
    : QDialog(parent)
    , m_screen(screen)
    , m_frame(*this, toQString(BackupSettingsScreen::passwordSheetTitle),
              SheetFrame::CloseButton::hidden)
    , m_password(new QLineEdit)
    , m_repeat(new QLineEdit)
    , m_meter(new StrengthMeter)
    , m_problem(PlainText::label()) {
    setWindowModality(Qt::WindowModal);
    setWindowTitle(toQString(BackupSettingsScreen::passwordSheetTitle));
    resize(460, 320);
    m_frame.subtitle()->setText(toQString(BackupSettingsScreen::passwordSheetText));
    m_frame.subtitle()->setWordWrap(true);
    m_frame.back()->hide();
    m_frame.main()->setText(toMnemonicSafe(BackupSettingsScreen::savePasswordTitle));

    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    // The frame's content runs edge to edge; the fields line up with the title above them.
    form->setContentsMargins(20, 12, 20, 8);
    for (QLineEdit* field : {m_password, m_repeat}) {
        field->setEchoMode(QLineEdit::Password);
    }
    form->addRow(toQString(BackupSettingsScreen::newPasswordLabel), m_password);
    form->addRow(QString(), m_meter);
    form->addRow(toQString(BackupSettingsScreen::repeatPasswordLabel), m_repeat);
    m_password->setAccessibleName(toQString(BackupSettingsScreen::newPasswordLabel));
    m_repeat->setAccessibleName(toQString(BackupSettingsScreen::repeatPasswordLabel));
    m_meter->setAccessibleName(QStringLiteral("Password strength"));
    m_problem->setWordWrap(true);
    QPalette red = m_problem->palette();
    red.setColor(QPalette::WindowText,
                 PaletteColor::foreground(PaletteColor::color(Palette::Color::red, red), red));
    m_problem->setPalette(red);
    m_problem->hide();
    form->addRow(m_problem);
    m_frame.content()->addLayout(form);
    m_frame.content()->addStretch(1);
    m_frame.tabToFooterLast();

    connect(m_password, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_meter->setEstimate(text.isEmpty()
                                 ? std::nullopt
                                 : std::optional(PasswordStrength::estimate(toStdString(text))));
    });
    connect(m_frame.main(), &QPushButton::clicked, this, &BackupPasswordSheet::save);
    m_password->setFocus();
}

void BackupPasswordSheet::save() {
    const std::optional<std::string> problem =
        m_screen.setPassword(toStdString(m_password->text()), toStdString(m_repeat->text()));
    if (!problem) {
        accept();
        return;
    }
    m_problem->setText(toQString(*problem));
    m_problem->show();
}

} // namespace vorlane
