// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SmartPasteSheet.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "app/Clipboard.h"
#include "components/ErrorLabel.h"
#include "components/PasswordGeneratorPopup.h"
#include "components/PlainText.h"
#include "components/SheetFrame.h"
#include "components/TintedIcon.h"
#include "model/Organization.h"
#include "paste/PasteParser.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QThreadPool>
#include <QVBoxLayout>

namespace vorlane {

namespace {

// Pastes up to this size parse in a few milliseconds; longer ones go to a worker thread.
constexpr std::size_t parseInBackgroundFrom = 64 * 1024;
constexpr int labelColumnWidth = 100;

QLabel* headline(const QString& text, double scale) {
    auto* label = new QLabel(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * scale);
    font.setBold(true);
    label->setFont(font);
    return label;
}

QLabel* checkMark() {
    auto* mark = new QLabel;
    mark->setPixmap(SymbolIcon::icon("checkmark.circle.fill").pixmap(16, 16));
    mark->setFixedWidth(20);
    mark->setAccessibleName(QStringLiteral("Filled"));
    return mark;
}

// A small capsule naming one kind of value the parser found by its pattern.
QLabel* tag(const QString& text) {
    auto* label = PlainText::label(text);
    label->setStyleSheet(QStringLiteral(
        "QLabel { border: 1px solid palette(mid); border-radius: 8px; padding: 1px 8px; }"));
    return label;
}

} // namespace

SmartPasteSheet::SmartPasteSheet(AppContext& context, Organization* organization, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_flow(context.store, context.calendar, organization)
    , m_frame(*this, QString::fromLatin1(SmartPasteFlow::title), SheetFrame::CloseButton::hidden)
    , m_steps(new QStackedWidget) {
    resize(600, 680);

    m_steps->addWidget(createPasteStep());
    m_steps->addWidget(createReviewStep());
    m_steps->addWidget(createDoneStep());
    m_frame.content()->addWidget(m_steps, 1);

    connect(m_frame.back(), &QPushButton::clicked, this, [this] {
        m_flow.back();
        refresh();
        m_editor->setFocus();
    });
    connect(m_frame.main(), &QPushButton::clicked, this, &SmartPasteSheet::runMainAction);

    m_frame.tabToFooterLast();
    refresh();
    m_editor->setFocus();
}

QWidget* SmartPasteSheet::createPasteStep() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 8, 20, 8);
    auto* explanation = new QLabel(QString::fromLatin1(SmartPasteFlow::explanation));
    explanation->setWordWrap(true);
    layout->addWidget(explanation);

    m_editor = new QPlainTextEdit;
    m_editor->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_editor->setAccessibleName(QStringLiteral("Pasted text"));
    m_editor->setTabChangesFocus(true);
    connect(m_editor, &QPlainTextEdit::textChanged, this, [this] {
        m_flow.setRawText(toStdString(m_editor->toPlainText()));
        refresh();
    });
    layout->addWidget(m_editor, 1);

    auto* row = new QHBoxLayout;
    auto* paste = new QPushButton(SymbolIcon::icon("doc.on.clipboard"),
                                  QStringLiteral("Paste from Clipboard"));
    paste->setAutoDefault(false);
    connect(paste, &QPushButton::clicked, this, &SmartPasteSheet::pasteFromClipboard);
    row->addWidget(paste);
    m_busy = new QProgressBar;
    m_busy->setRange(0, 0);
    m_busy->setMaximumWidth(120);
    m_busy->setAccessibleName(QStringLiteral("Parsing"));
    m_busy->hide();
    row->addWidget(m_busy);
    row->addStretch();
    m_characterCount = new QLabel;
    m_characterCount->setForegroundRole(QPalette::PlaceholderText);
    row->addWidget(m_characterCount);
    layout->addLayout(row);
    return page;
}

QWidget* SmartPasteSheet::createReviewStep() {
    auto* scroll = new QScrollArea;
    // Not a stop for Tab: every field inside is, and the area scrolls to the focused one.
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    grid->setContentsMargins(20, 8, 20, 8);
    grid->setColumnMinimumWidth(0, labelColumnWidth);
    grid->setColumnStretch(1, 1);
    int row = 0;

    auto addRow = [&](const QString& text, QWidget* field, QWidget* mark = nullptr) {
        auto* label = new QLabel(text);
        label->setFixedWidth(labelColumnWidth);
        label->setBuddy(field);
        field->setAccessibleName(text);
        grid->addWidget(label, row, 0);
        grid->addWidget(field, row, 1);
        if (mark != nullptr) {
            grid->addWidget(mark, row, 2);
        }
        ++row;
        return label;
    };

    m_organization = new QComboBox;
    connect(m_organization, &QComboBox::activated, this, [this](int index) {
        m_flow.setSelectedOrg(
            static_cast<Organization*>(m_organization->itemData(index).value<void*>()));
        refresh();
    });
    addRow(QStringLiteral("Organization"), m_organization);

    m_serviceType = new QComboBox;
    for (const ServiceType type : ServiceType::allCases()) {
        m_serviceType->addItem(SymbolIcon::icon(type.icon()), toQString(type.label()));
    }
    connect(m_serviceType, &QComboBox::activated, this, [this](int index) {
        if (ParsedCredential* parsed = m_flow.editableParsed()) {
            parsed->serviceType = ServiceType::allCases()[static_cast<std::size_t>(index)];
        }
    });
    addRow(QStringLiteral("Service Type"), m_serviceType);

    for (const SmartPasteFlow::Field& field : SmartPasteFlow::fields()) {
        QLabel* mark = checkMark();
        m_fieldChecks.push_back(mark);
        const auto member = field.member;
        if (member == &ParsedCredential::notes) {
            m_notes = new QPlainTextEdit;
            m_notes->setTabChangesFocus(true);
            m_notes->setFixedHeight(m_notes->fontMetrics().lineSpacing() * 4 + 12);
            connect(m_notes, &QPlainTextEdit::textChanged, this, [this, member, mark] {
                if (ParsedCredential* parsed = m_flow.editableParsed()) {
                    parsed->*member = toStdString(m_notes->toPlainText());
                    mark->setVisible(!(parsed->*member).empty());
                    fillSecretLines();
                }
            });
            addRow(toQString(field.label), m_notes, mark);
            continue;
        }
        auto* edit = new QLineEdit;
        if (field.isSecure) {
            edit->setEchoMode(QLineEdit::Password);
        }
        connect(edit, &QLineEdit::textEdited, this, [this, member, mark](const QString& text) {
            if (ParsedCredential* parsed = m_flow.editableParsed()) {
                parsed->*member = toStdString(text);
                mark->setVisible(!text.isEmpty());
                refresh();
            }
        });
        m_fieldEdits.push_back(edit);
        if (!field.isSecure) {
            addRow(toQString(field.label), edit, mark);
            continue;
        }
        auto* generate = new QPushButton(QStringLiteral("Generate"));
        generate->setIcon(TintedIcon::ink("wand.and.stars", *generate));
        generate->setAccessibleName(QStringLiteral("Generate ") + toQString(field.label));
        generate->setAutoDefault(false);
        connect(generate, &QPushButton::clicked, this, [this, member, mark, edit, generate] {
            PasswordGeneratorPopup::choose(
                m_context, generate, [this, member, mark, edit](std::string text) {
                    if (ParsedCredential* parsed = m_flow.editableParsed()) {
                        edit->setText(toQString(text));
                        parsed->*member = std::move(text);
                        mark->setVisible(true);
                        refresh();
                    }
                });
        });
        auto* withGenerate = new QWidget;
        auto* line = new QHBoxLayout(withGenerate);
        line->setContentsMargins(0, 0, 0, 0);
        line->addWidget(edit, 1);
        line->addWidget(generate);
        // The label reads and focuses the field itself, not the pair.
        addRow(toQString(field.label), withGenerate, mark)->setBuddy(edit);
        edit->setAccessibleName(toQString(field.label));

        // The one-time code is a secret too, and belongs beside the password.
        m_oneTimeCodeCheck = checkMark();
        const QString codeLabel = QString::fromLatin1(SmartPasteFlow::oneTimeCodeLabel);
        addRow(codeLabel, createOneTimeCodeField(), m_oneTimeCodeCheck)->setBuddy(m_oneTimeCode);
        m_oneTimeCode->setAccessibleName(codeLabel);
    }

    m_secretLines = new QWidget;
    m_secretLines->setLayout(new QVBoxLayout);
    m_secretLines->layout()->setContentsMargins(0, 8, 0, 8);
    m_secretLines->hide();
    grid->addWidget(m_secretLines, row++, 0, 1, 3);

    m_detectedDate = PlainText::label();
    m_detectedDateLabel = addRow(QStringLiteral("Detected Date"), m_detectedDate);

    m_detectedTypes = new QWidget;
    auto* tags = new QHBoxLayout(m_detectedTypes);
    tags->setContentsMargins(0, 4, 0, 0);
    tags->addStretch();
    grid->addWidget(m_detectedTypes, row++, 0, 1, 3);
    grid->setRowStretch(row, 1);
    scroll->setWidget(page);
    return scroll;
}

// The field with the problem under it; masked, as the password above it.
QWidget* SmartPasteSheet::createOneTimeCodeField() {
    m_oneTimeCode = new QLineEdit;
    m_oneTimeCode->setEchoMode(QLineEdit::Password);
    m_oneTimeCode->setPlaceholderText(QStringLiteral("otpauth:// URI or secret"));
    connect(m_oneTimeCode, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_flow.setOneTimeCode(toStdString(text));
        m_oneTimeCodeCheck->setVisible(!text.isEmpty());
        refresh();
    });
    m_oneTimeCodeError = ErrorLabel::create();
    return ErrorLabel::under(m_oneTimeCode, m_oneTimeCodeError);
}

QWidget* SmartPasteSheet::createDoneStep() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    auto* mark = new QLabel;
    mark->setPixmap(SymbolIcon::icon("checkmark.circle.fill").pixmap(64, 64));
    mark->setAlignment(Qt::AlignCenter);
    mark->setAccessibleName(QStringLiteral("Saved"));
    QLabel* title = headline(QStringLiteral("Credential Saved"), 1.3);
    title->setAlignment(Qt::AlignCenter);
    auto* text = new QLabel(QStringLiteral("The parsed credential has been saved to your vault."));
    text->setAlignment(Qt::AlignCenter);
    text->setForegroundRole(QPalette::PlaceholderText);
    layout->addStretch();
    layout->addWidget(mark);
    layout->addWidget(title);
    layout->addWidget(text);
    layout->addStretch();
    return page;
}

void SmartPasteSheet::pasteFromClipboard() {
    const std::optional<std::string> text = m_context.clipboard.text();
    if (!text) {
        return;
    }
    m_editor->setPlainText(toQString(*text));
    m_editor->setFocus();
}

void SmartPasteSheet::runMainAction() {
    if (!m_flow.mainButtonEnabled() || m_parsing) {
        return;
    }
    switch (m_flow.step()) {
    case SmartPasteFlow::Step::paste:
        startParse();
        break;
    case SmartPasteFlow::Step::review:
        if (m_flow.save() != nullptr) {
            refresh();
            m_frame.main()->setFocus();
        }
        break;
    case SmartPasteFlow::Step::done:
        accept();
        break;
    }
}

void SmartPasteSheet::startParse() {
    const std::string text = m_flow.rawText();
    if (text.size() < parseInBackgroundFrom) {
        m_flow.parse();
        fillReview();
        return;
    }
    m_parsing = true;
    refresh();
    QPointer<SmartPasteSheet> sheet(this);
    QThreadPool::globalInstance()->start([sheet, text] {
        ParsedCredential parsed = PasteParser::parse(text);
        // Back on the main thread, where the sheet may have gone or the text changed.
        QMetaObject::invokeMethod(
            sheet.data(),
            [sheet, text, parsed = std::move(parsed)]() mutable {
                if (sheet.isNull()) {
                    return;
                }
                sheet->m_parsing = false;
                if (sheet->m_flow.applyParse(text, std::move(parsed))) {
                    sheet->fillReview();
                } else {
                    sheet->refresh();
                }
            },
            Qt::QueuedConnection);
    });
}

void SmartPasteSheet::fillReview() {
    const ParsedCredential& parsed = *m_flow.parsed();
    m_organization->clear();
    m_organization->addItem(QString::fromLatin1(SmartPasteFlow::noOrganization),
                            QVariant::fromValue<void*>(nullptr));
    for (Organization* organization : m_flow.organizations()) {
        m_organization->addItem(toQString(organization->name),
                                QVariant::fromValue<void*>(organization));
        if (organization == m_flow.selectedOrg()) {
            m_organization->setCurrentIndex(m_organization->count() - 1);
        }
    }
    m_serviceType->setCurrentIndex(static_cast<int>(parsed.serviceType.index()));

    std::size_t edit = 0;
    const auto& fields = SmartPasteFlow::fields();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const QString value = toQString(parsed.*fields[i].member);
        if (fields[i].member == &ParsedCredential::notes) {
            const QSignalBlocker quiet(m_notes);
            m_notes->setPlainText(value);
        } else {
            m_fieldEdits[edit++]->setText(value);
        }
        m_fieldChecks[i]->setVisible(!value.isEmpty());
    }

    const QString oneTimeCode = toQString(m_flow.oneTimeCode());
    m_oneTimeCode->setText(oneTimeCode);
    m_oneTimeCodeCheck->setVisible(!oneTimeCode.isEmpty());

    m_shownSecretLines.clear();
    fillSecretLines();

    const std::optional<std::string> date = m_flow.detectedDateText();
    m_detectedDateLabel->setVisible(date.has_value());
    m_detectedDate->setVisible(date.has_value());
    m_detectedDate->setText(date ? toQString(*date) : QString());

    auto* tags = static_cast<QHBoxLayout*>(m_detectedTypes->layout());
    while (tags->count() > 1) {
        QLayoutItem* item = tags->takeAt(0);
        delete item->widget();
        delete item;
    }
    for (std::size_t i = 0; i < parsed.detectedTypes.size(); ++i) {
        tags->insertWidget(static_cast<int>(i), tag(toQString(parsed.detectedTypes[i])));
    }
    QStringList detected;
    for (const std::string& type : parsed.detectedTypes) {
        detected << toQString(type);
    }
    m_detectedTypes->setAccessibleName(QStringLiteral("Detected by pattern: ") +
                                       detected.join(QStringLiteral(", ")));
    refresh();
    (m_flow.selectedOrg() == nullptr ? static_cast<QWidget*>(m_organization) : m_fieldEdits[0])
        ->setFocus();
}

// Rebuilt only when the notes' secret lines change, so that typing elsewhere in the notes keeps
// the choices as they are shown.
void SmartPasteSheet::fillSecretLines() {
    const std::vector<SmartPasteFlow::SecretLine> secrets = m_flow.secretLines();
    std::vector<std::string> lines;
    for (const SmartPasteFlow::SecretLine& secret : secrets) {
        lines.push_back(secret.line);
    }
    if (lines == m_shownSecretLines) {
        return;
    }
    m_shownSecretLines = lines;
    // One content widget, made afresh: deleting it takes its labels and choices with it.
    QLayout* container = m_secretLines->layout();
    while (QLayoutItem* item = container->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    m_secretLines->setVisible(!secrets.empty());
    if (secrets.empty()) {
        return;
    }
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(headline(QString::fromLatin1(SmartPasteFlow::secretsHeading), 1.0));
    auto* explanation = new QLabel(QString::fromLatin1(SmartPasteFlow::secretsExplanation));
    explanation->setWordWrap(true);
    explanation->setForegroundRole(QPalette::PlaceholderText);
    column->addWidget(explanation);
    auto* rows = new QGridLayout;
    rows->setColumnStretch(0, 1);
    for (int i = 0; i < static_cast<int>(secrets.size()); ++i) {
        const SmartPasteFlow::SecretLine& secret = secrets[static_cast<std::size_t>(i)];
        // The label only: the value is a secret, and the notes field above shows it already.
        auto* label = new QLabel(toQString(secret.label));
        label->setTextFormat(Qt::PlainText);
        auto* choice = new QComboBox;
        choice->addItem(QString::fromLatin1(SmartPasteFlow::storeAsAPIKeyTitle));
        choice->addItem(QString::fromLatin1(SmartPasteFlow::keepInNotesTitle));
        choice->setCurrentIndex(secret.storeAsAPIKey ? 0 : 1);
        choice->setAccessibleName(toQString(secret.label));
        label->setBuddy(choice);
        connect(choice, &QComboBox::activated, this, [this, line = secret.line](int index) {
            m_flow.setStoreAsAPIKey(line, index == 0);
        });
        rows->addWidget(label, i, 0);
        rows->addWidget(choice, i, 1);
    }
    column->addLayout(rows);
    container->addWidget(content);
}

void SmartPasteSheet::refresh() {
    m_steps->setCurrentIndex(static_cast<int>(m_flow.step()));
    m_frame.subtitle()->setText(toQString(m_flow.subtitle()));
    m_characterCount->setText(toQString(m_flow.characterCount()));
    m_busy->setVisible(m_parsing);
    m_editor->setReadOnly(m_parsing);
    m_frame.back()->setVisible(m_flow.showsBack());
    m_frame.main()->setText(toMnemonicSafe(m_flow.mainButtonTitle()));
    m_frame.main()->setEnabled(m_flow.mainButtonEnabled() && !m_parsing);
    ErrorLabel::show(*m_oneTimeCodeError, m_flow.oneTimeCodeError());
}

} // namespace vorlane
