// SPDX-License-Identifier: GPL-3.0-or-later
#include "BackupSettingsSection.h"

#include "BackupPasswordSheet.h"
#include "QtText.h"
#include "backup/AutomaticBackup.h"
#include "components/PaletteColor.h"
#include "components/PlainText.h"

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

namespace vorlane {

namespace {

QLabel* secondary(QLabel* label) {
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

// A value with its button beside it, the button at its natural width.
QHBoxLayout* withButton(QWidget* value, QPushButton* button) {
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(value, 1);
    row->addWidget(button);
    return row;
}

} // namespace

BackupSettingsSection::BackupSettingsSection(AutomaticBackup& backups, const UserCalendar& calendar,
                                             QWidget* parent)
    : QWidget(parent)
    , m_screen(backups, calendar)
    , m_automatic(new QCheckBox(toQString(BackupSettingsScreen::automaticLabel)))
    , m_missing(secondary(new QLabel))
    // The folder is the person's own text: shown literally.
    , m_folder(PlainText::label())
    , m_chooseFolderButton(new QPushButton(toMnemonicSafe(BackupSettingsScreen::chooseFolderTitle)))
    , m_keepCount(new QSpinBox)
    , m_password(new QLabel)
    , m_passwordButton(new QPushButton)
    , m_lastBackup(PlainText::label())
    , m_backUpNow(new QPushButton(toMnemonicSafe(BackupSettingsScreen::backUpNowTitle))) {
    setAccessibleName(toQString(BackupSettingsScreen::tabTitle));
    m_chooseFolder = [this](const QString& current) -> std::optional<QString> {
        const QString chosen = QFileDialog::getExistingDirectory(
            this, toQString(BackupSettingsScreen::chooseFolderDialogTitle),
            current.isEmpty() ? QDir::homePath() : current);
        return chosen.isEmpty() ? std::nullopt : std::optional(chosen);
    };

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(12);
    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(m_automatic);
    form->addRow(m_missing);

    m_folder->setWordWrap(true);
    m_folder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* folderLabel = new QLabel(toQString(BackupSettingsScreen::folderLabel));
    form->addRow(folderLabel, withButton(m_folder, m_chooseFolderButton));
    m_folder->setAccessibleName(QStringLiteral("Backup folder"));
    m_chooseFolderButton->setAccessibleDescription(QStringLiteral("Choose the backup folder"));

    m_keepCount->setRange(BackupSettingsScreen::minimumKeepCount(),
                          BackupSettingsScreen::maximumKeepCount());
    m_keepCount->setAccessibleName(toQString(BackupSettingsScreen::keepLabel));
    // A count of up to three digits: the box need not span the sheet.
    m_keepCount->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    form->addRow(toQString(BackupSettingsScreen::keepLabel), m_keepCount);

    auto* passwordLabel = new QLabel(toQString(BackupSettingsScreen::passwordLabel));
    form->addRow(passwordLabel, withButton(m_password, m_passwordButton));
    m_password->setAccessibleName(QStringLiteral("Backup password"));
    layout->addLayout(form);
    layout->addWidget(secondary(new QLabel(toQString(BackupSettingsScreen::explanation))));

    m_lastBackup->setWordWrap(true);
    m_lastBackup->setAccessibleName(QStringLiteral("Last backup"));
    auto* backUpRow = withButton(m_lastBackup, m_backUpNow);
    layout->addLayout(backUpRow);
    layout->addStretch(1);

    connect(m_automatic, &QCheckBox::toggled, this,
            [this](bool on) { m_screen.setBacksUpAutomatically(on); });
    connect(m_chooseFolderButton, &QPushButton::clicked, this,
            &BackupSettingsSection::chooseFolder);
    connect(m_keepCount, &QSpinBox::valueChanged, this,
            [this](int value) { m_screen.setKeepCount(value); });
    connect(m_passwordButton, &QPushButton::clicked, this, &BackupSettingsSection::askPassword);
    connect(m_backUpNow, &QPushButton::clicked, this, [this] { m_screen.backUpNow(); });
    m_backupsChanged = ScopedConnection(backups.changed, [this] { reload(); });
    reload();
}

void BackupSettingsSection::reload() {
    {
        const QSignalBlocker quiet(m_automatic);
        m_automatic->setChecked(m_screen.backsUpAutomatically());
    }
    const std::optional<std::string> missing = m_screen.missingText();
    m_missing->setText(missing ? toQString(*missing) : QString());
    m_missing->setVisible(missing.has_value());
    m_folder->setText(toQString(m_screen.folderText()));
    {
        const QSignalBlocker quiet(m_keepCount);
        m_keepCount->setValue(m_screen.keepCount());
    }
    m_password->setText(toQString(m_screen.passwordText()));
    m_passwordButton->setText(toMnemonicSafe(m_screen.passwordButtonTitle()));
    m_lastBackup->setText(toQString(m_screen.lastBackupText()));
    QPalette palette = this->palette();
    if (m_screen.lastBackupFailed()) {
        palette.setColor(
            QPalette::WindowText,
            PaletteColor::foreground(PaletteColor::color(Palette::Color::red, palette), palette));
    }
    m_lastBackup->setPalette(palette);
    m_backUpNow->setEnabled(m_screen.backUpNowEnabled());
}

void BackupSettingsSection::chooseFolder() {
    if (const std::optional<QString> chosen = m_chooseFolder(toQString(m_screen.folder()))) {
        m_screen.setFolder(toStdString(*chosen));
    }
}

void BackupSettingsSection::askPassword() {
    auto* sheet = new BackupPasswordSheet(m_screen, window());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

} // namespace vorlane
