// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/PasswordGeneratorPopup.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "components/TintedIcon.h"
#include "passwords/PassphraseWords.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace vorlane {

namespace {

using CharacterClass = PasswordGeneratorScreen::CharacterClass;
using Style = PasswordGeneratorScreen::Style;

} // namespace

PasswordGeneratorPopup::PasswordGeneratorPopup(AppContext& context, QWidget* parent, Use use)
    : QDialog(parent)
    , m_screen(context.preferences, PassphraseWords::system())
    , m_use(std::move(use)) {
    setWindowTitle(QStringLiteral("Generate Password"));
    setWindowModality(Qt::WindowModal);

    auto* candidateRow = new QHBoxLayout;
    // Shown literally, and neither selectable nor copyable from the label: it leaves only
    // through "Use Password", into the field it was made for.
    m_candidate = new QLabel;
    m_candidate->setTextFormat(Qt::PlainText);
    m_candidate->setTextInteractionFlags(Qt::NoTextInteraction);
    m_candidate->setContextMenuPolicy(Qt::NoContextMenu);
    m_candidate->setAccessibleName(QStringLiteral("Generated Password"));
    m_candidate->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_candidate->setWordWrap(true);
    m_candidate->setMinimumWidth(360);
    auto* again = new QToolButton;
    again->setIcon(TintedIcon::ink("arrow.clockwise", *again));
    again->setToolTip(QStringLiteral("Regenerate"));
    again->setAccessibleName(QStringLiteral("Regenerate"));
    connect(again, &QToolButton::clicked, this, [this] {
        m_screen.regenerate();
        refresh();
    });
    candidateRow->addWidget(m_candidate, 1);
    candidateRow->addWidget(again);
    m_strength = new QLabel;
    m_strength->setAccessibleName(QStringLiteral("Estimated Strength"));

    auto* form = new QFormLayout;
    m_style = new QComboBox;
    m_style->addItems({QStringLiteral("Characters"), QStringLiteral("Passphrase")});
    m_style->setAccessibleName(QStringLiteral("Kind"));
    form->addRow(QStringLiteral("Kind"), m_style);

    auto* characters = new QWidget;
    auto* characterForm = new QFormLayout(characters);
    characterForm->setContentsMargins(0, 0, 0, 0);
    m_length = new QSpinBox;
    m_length->setRange(PasswordGenerator::minimumLength, PasswordGenerator::maximumLength);
    m_length->setAccessibleName(QStringLiteral("Length"));
    characterForm->addRow(QStringLiteral("Length"), m_length);
    for (const auto& [characterClass, text] :
         {std::pair{CharacterClass::upperCase, QStringLiteral("Upper case (A–Z)")},
          std::pair{CharacterClass::lowerCase, QStringLiteral("Lower case (a–z)")},
          std::pair{CharacterClass::digits, QStringLiteral("Digits (0–9)")},
          std::pair{CharacterClass::symbols, QStringLiteral("Symbols (!#$%&&*+-=?@^_~)")}}) {
        auto* box = new QCheckBox(text);
        const CharacterClass chosen = characterClass;
        connect(box, &QCheckBox::toggled, this, [this, chosen](bool on) {
            m_screen.setClass(chosen, on);
            refresh();
        });
        characterForm->addRow(QString(), box);
        m_classes.emplace_back(characterClass, box);
    }
    m_avoidLookAlikes = new QCheckBox(QStringLiteral("Avoid look-alike characters"));
    characterForm->addRow(QString(), m_avoidLookAlikes);

    auto* passphrase = new QWidget;
    auto* passphraseForm = new QFormLayout(passphrase);
    passphraseForm->setContentsMargins(0, 0, 0, 0);
    m_words = new QSpinBox;
    m_words->setRange(PasswordGenerator::minimumWords, PasswordGenerator::maximumWords);
    m_words->setAccessibleName(QStringLiteral("Words"));
    passphraseForm->addRow(QStringLiteral("Words"), m_words);
    m_separator = new QComboBox;
    m_separator->setAccessibleName(QStringLiteral("Separator"));
    for (const std::string& separator : PasswordGeneratorScreen::separators()) {
        m_separator->addItem(separator == " " ? QStringLiteral("Space")
                                              : QStringLiteral("“%1”").arg(toQString(separator)));
    }
    passphraseForm->addRow(QStringLiteral("Separator"), m_separator);

    m_pages = new QStackedWidget;
    m_pages->addWidget(characters);
    m_pages->addWidget(passphrase);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    m_useButton = buttons->addButton(QStringLiteral("Use Password"), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        if (m_screen.canUse()) {
            m_use(m_screen.take());
            accept();
        }
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(candidateRow);
    layout->addWidget(m_strength);
    layout->addLayout(form);
    layout->addWidget(m_pages);
    layout->addStretch(1);
    layout->addWidget(buttons);
    m_useButton->setDefault(true);

    connect(m_style, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_screen.setStyle(index == 1 ? Style::passphrase : Style::characters);
        refresh();
    });
    connect(m_length, &QSpinBox::valueChanged, this, [this](int length) {
        m_screen.setLength(length);
        refresh();
    });
    connect(m_avoidLookAlikes, &QCheckBox::toggled, this, [this](bool on) {
        m_screen.setAvoidLookAlikes(on);
        refresh();
    });
    connect(m_words, &QSpinBox::valueChanged, this, [this](int count) {
        m_screen.setWordCount(count);
        refresh();
    });
    connect(m_separator, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_screen.setSeparatorIndex(index);
        refresh();
    });
    refresh();
}

void PasswordGeneratorPopup::choose(AppContext& context, QWidget* anchor, Use use) {
    auto* popup = new PasswordGeneratorPopup(context, anchor->window(), std::move(use));
    popup->setAttribute(Qt::WA_DeleteOnClose);
    popup->open();
}

void PasswordGeneratorPopup::refresh() {
    const PasswordGeneratorScreen::Settings& settings = m_screen.settings();
    // Setting the controls from the model must not feed back into it.
    const QSignalBlocker blockStyle(m_style);
    const QSignalBlocker blockLength(m_length);
    const QSignalBlocker blockAvoid(m_avoidLookAlikes);
    const QSignalBlocker blockWords(m_words);
    const QSignalBlocker blockSeparator(m_separator);
    const bool isPassphrase = settings.style == Style::passphrase;
    m_style->setCurrentIndex(isPassphrase ? 1 : 0);
    m_pages->setCurrentIndex(isPassphrase ? 1 : 0);
    m_length->setValue(settings.length);
    for (const auto& [characterClass, box] : m_classes) {
        const QSignalBlocker block(box);
        box->setChecked(m_screen.isChosen(characterClass));
        box->setEnabled(m_screen.canToggle(characterClass));
    }
    m_avoidLookAlikes->setChecked(settings.avoidLookAlikes);
    m_words->setValue(settings.wordCount);
    m_separator->setCurrentIndex(m_screen.separatorIndex());
    m_candidate->setText(toQString(m_screen.candidate()));
    m_strength->setText(toQString(m_screen.strengthText()));
    m_useButton->setEnabled(m_screen.canUse());
}

} // namespace vorlane
