// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ShareSheet.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "components/PaletteColor.h"
#include "components/PasswordGeneratorPopup.h"
#include "components/PlainText.h"
#include "components/SheetFrame.h"
#include "components/StepIndicator.h"
#include "components/StrengthMeter.h"
#include "components/TintedIcon.h"
#include "components/ToggleOnClickDelegate.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "util/PrivateFile.h"
#include "util/UserCalendar.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDateEdit>
#include <QDir>
#include <QFileDialog>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTimeZone>
#include <QVBoxLayout>

namespace vorlane {

namespace {

// A tinted box with an icon beside its text, for what the user must know before exporting.
QFrame* notice(std::string_view symbol, const QColor& tint, QLabel* text) {
    auto* box = new QFrame;
    box->setObjectName(QStringLiteral("notice"));
    QColor fill = tint;
    fill.setAlphaF(0.06);
    box->setStyleSheet(QStringLiteral("QFrame#notice { background: %1; border-radius: 8px; }")
                           .arg(fill.name(QColor::HexArgb)));
    auto* layout = new QHBoxLayout(box);
    layout->setContentsMargins(12, 12, 12, 12);
    auto* icon = new QLabel;
    icon->setPixmap(SymbolIcon::icon(symbol).pixmap(16, 16));
    layout->addWidget(icon, 0, Qt::AlignTop);
    text->setWordWrap(true);
    layout->addWidget(text, 1);
    return box;
}

// The share's expiry is a day: the picker shows the user's calendar date, the flow keeps the
// instant at the same wall-clock time of that day.
QDate localDate(Instant instant) {
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count()).date();
}

} // namespace

ShareSheet::ShareSheet(AppContext& context, Organization& organization,
                       std::vector<ServiceRecord*> services, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_flow(context.store, context.auth, context.state, context.calendar, organization,
             std::move(services))
    , m_frame(*this, toQString(m_flow.title()), SheetFrame::CloseButton::shown)
    , m_indicator(new StepIndicator(
          {QStringLiteral("Select"), QStringLiteral("Configure"), QStringLiteral("Confirm")}))
    , m_steps(new QStackedWidget) {
    resize(620, 640);

    QVBoxLayout* layout = m_frame.content();
    m_indicator->setContentsMargins(20, 0, 20, 0);
    layout->addWidget(m_indicator);
    layout->addWidget(SheetFrame::divider());
    m_steps->addWidget(createSelectStep());
    m_steps->addWidget(createConfigureStep());
    m_steps->addWidget(createConfirmStep());
    layout->addWidget(m_steps, 1);

    connect(m_frame.back(), &QPushButton::clicked, this, [this] {
        m_flow.back();
        refresh();
    });
    connect(m_frame.main(), &QPushButton::clicked, this, &ShareSheet::runMainAction);

    m_chooseFile = [this](const QString& proposedName) {
        return askForFile(proposedName);
    };
    m_frame.tabToFooterLast();
    refresh();
    m_serviceList->setFocus();
}

QWidget* ShareSheet::createSelectStep() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 12, 20, 8);
    auto* row = new QHBoxLayout;
    auto* selectAll = new QPushButton(QStringLiteral("Select All"));
    auto* deselectAll = new QPushButton(QStringLiteral("Deselect All"));
    selectAll->setAutoDefault(false);
    deselectAll->setAutoDefault(false);
    row->addWidget(selectAll);
    row->addWidget(deselectAll);
    row->addStretch();
    m_selectedCount = new QLabel;
    m_selectedCount->setForegroundRole(QPalette::PlaceholderText);
    row->addWidget(m_selectedCount);
    layout->addLayout(row);

    m_serviceList = new QListWidget;
    m_serviceList->setAccessibleName(QStringLiteral("Services to share"));
    m_serviceList->setIconSize(QSize(24, 24));
    m_serviceList->setSpacing(2);
    // A click anywhere on a row, or Space on the current one, toggles it once.
    m_serviceList->setItemDelegate(new ToggleOnClickDelegate(m_serviceList));
    for (const ServiceRecord* service : m_flow.services()) {
        const ServiceType type = service->serviceType();
        const QColor tint =
            PaletteColor::foreground(PaletteColor::color(type.tintColor(), palette()), palette());
        auto* item = new QListWidgetItem(
            QIcon(TintedIcon::pixmap(type.icon(), 24, tint, devicePixelRatioF())),
            toQString(service->title) + u'\n' + toQString(service->displaySubtitle()));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
        item->setData(Qt::AccessibleTextRole,
                      toQString(service->title + ", " + service->displaySubtitle()));
        m_serviceList->addItem(item);
    }
    connect(m_serviceList, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
        const ServiceRecord& service =
            *m_flow.services()[static_cast<std::size_t>(m_serviceList->row(item))];
        if (m_flow.isSelected(service) != (item->checkState() == Qt::Checked)) {
            m_flow.toggle(service);
            refresh();
        }
    });
    layout->addWidget(m_serviceList, 1);

    auto setAll = [this](bool selected) {
        selected ? m_flow.selectAll() : m_flow.deselectAll();
        const QSignalBlocker quiet(m_serviceList);
        for (int i = 0; i < m_serviceList->count(); ++i) {
            m_serviceList->item(i)->setCheckState(selected ? Qt::Checked : Qt::Unchecked);
        }
        refresh();
    };
    connect(selectAll, &QPushButton::clicked, this, [setAll] { setAll(true); });
    connect(deselectAll, &QPushButton::clicked, this, [setAll] { setAll(false); });
    return page;
}

QWidget* ShareSheet::createConfigureStep() {
    auto* scroll = new QScrollArea;
    // Not a stop for Tab: every field inside is, and the area scrolls to the focused one.
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 12, 20, 8);

    auto* recipientBox = new QGroupBox(QStringLiteral("Recipient"));
    auto* recipientLayout = new QVBoxLayout(recipientBox);
    auto* recipient = new QLineEdit;
    recipient->setPlaceholderText(QStringLiteral("Recipient name or label (optional)"));
    recipient->setAccessibleName(QStringLiteral("Recipient"));
    connect(recipient, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_flow.recipientLabel = toStdString(text); });
    recipientLayout->addWidget(recipient);
    layout->addWidget(recipientBox);

    auto* formatBox = new QGroupBox(QStringLiteral("Share Format"));
    auto* formatLayout = new QVBoxLayout(formatBox);
    formatLayout->addWidget(new QLabel(QStringLiteral("Method")));
    auto* methods = new QButtonGroup(formatBox);
    const std::pair<ShareMethod, std::string_view> methodIcons[] = {
        {ShareMethod::encryptedExport, "lock.doc"},
        {ShareMethod::redactedSummary, "doc.text.magnifyingglass"},
        {ShareMethod::fullEncryptedBundle, "shippingbox"},
    };
    for (const auto& [method, symbol] : methodIcons) {
        auto* choice = new QRadioButton(toQString(method.displayName()));
        choice->setIcon(SymbolIcon::icon(symbol));
        choice->setChecked(method == m_flow.shareMethod);
        connect(choice, &QRadioButton::toggled, this, [this, method](bool on) {
            if (on) {
                m_flow.shareMethod = method;
            }
        });
        methods->addButton(choice);
        formatLayout->addWidget(choice);
    }
    layout->addWidget(formatBox);

    auto* contentBox = new QGroupBox(QStringLiteral("Content && Redaction"));
    auto* contentLayout = new QVBoxLayout(contentBox);
    auto* secrets = new QCheckBox(QStringLiteral("Include secrets (passwords, API keys)"));
    contentLayout->addWidget(secrets);
    m_secretsCaption = new QLabel(QStringLiteral("Secrets will be encrypted in the export."));
    m_secretsCaption->setContentsMargins(20, 0, 0, 0);
    QPalette orange = m_secretsCaption->palette();
    orange.setColor(
        QPalette::WindowText,
        PaletteColor::foreground(PaletteColor::color(Palette::Color::orange, orange), orange));
    m_secretsCaption->setPalette(orange);
    contentLayout->addWidget(m_secretsCaption);
    m_redactPasswords = new QCheckBox(QStringLiteral("Redact passwords"));
    m_redactAPIKeys = new QCheckBox(QStringLiteral("Redact API keys"));
    for (QCheckBox* redact : {m_redactPasswords, m_redactAPIKeys}) {
        // They only show that secrets are withheld; what goes out follows the secrets toggle.
        redact->setChecked(true);
        redact->setEnabled(false);
        contentLayout->addWidget(redact);
    }
    auto* notes = new QCheckBox(QStringLiteral("Include notes"));
    notes->setChecked(m_flow.options.includeNotes);
    auto* financials = new QCheckBox(QStringLiteral("Include financial data"));
    financials->setChecked(m_flow.options.includeFinancials);
    contentLayout->addWidget(notes);
    contentLayout->addWidget(financials);
    connect(secrets, &QCheckBox::toggled, this, [this](bool on) {
        m_flow.options.includeSecrets = on;
        refresh();
    });
    connect(notes, &QCheckBox::toggled, this,
            [this](bool on) { m_flow.options.includeNotes = on; });
    connect(financials, &QCheckBox::toggled, this,
            [this](bool on) { m_flow.options.includeFinancials = on; });
    layout->addWidget(contentBox);

    auto* protectionBox = new QGroupBox(QStringLiteral("Protection"));
    auto* protection = new QGridLayout(protectionBox);
    auto* expiry = new QCheckBox(QStringLiteral("Set expiration date"));
    protection->addWidget(expiry, 0, 0, 1, 2);
    m_expiresLabel = new QLabel(QStringLiteral("Expires"));
    m_expires = new QDateEdit(localDate(m_flow.expirationDate));
    m_expires->setCalendarPopup(true);
    m_expiresLabel->setBuddy(m_expires);
    m_expires->setAccessibleName(QStringLiteral("Expires"));
    protection->addWidget(m_expiresLabel, 1, 0);
    protection->addWidget(m_expires, 1, 1);
    connect(expiry, &QCheckBox::toggled, this, [this](bool on) {
        m_flow.hasExpiration = on;
        refresh();
    });
    connect(m_expires, &QDateEdit::dateChanged, this, [this](QDate date) {
        const QDateTime previous =
            QDateTime::fromMSecsSinceEpoch(m_flow.expirationDate.time_since_epoch().count());
        const QDateTime chosen(date, previous.time());
        m_flow.expirationDate = Instant(std::chrono::milliseconds(chosen.toMSecsSinceEpoch()));
    });
    m_passwordLabel = new QLabel(QStringLiteral("Export password (recommended)"));
    m_password = new QLineEdit;
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setPlaceholderText(QStringLiteral("Export password (recommended)"));
    m_password->setAccessibleName(QStringLiteral("Export password"));
    m_passwordLabel->setBuddy(m_password);
    m_passwordMeter = new StrengthMeter;
    m_passwordStrength = new QLabel;
    m_passwordStrength->setForegroundRole(QPalette::PlaceholderText);
    m_passwordWarning = new QLabel(QString::fromLatin1(ShareFlow::weakPasswordWarning));
    m_passwordWarning->setWordWrap(true);
    QPalette red = m_passwordWarning->palette();
    red.setColor(QPalette::WindowText,
                 PaletteColor::foreground(PaletteColor::color(Palette::Color::red, red), red));
    m_passwordWarning->setPalette(red);
    connect(m_password, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_flow.password = toStdString(text);
        refresh();
    });
    protection->addWidget(m_passwordLabel, 2, 0, 1, 2);
    auto* generate = new QPushButton(QStringLiteral("Generate"));
    generate->setIcon(TintedIcon::ink("wand.and.stars", *generate));
    generate->setAccessibleName(QStringLiteral("Generate export password"));
    generate->setAutoDefault(false);
    connect(generate, &QPushButton::clicked, this, [this, generate] {
        // Setting the text goes through textChanged, so the flow and the meter follow.
        PasswordGeneratorPopup::choose(m_context, generate, [this](std::string text) {
            m_password->setText(toQString(text));
        });
    });
    auto* passwordRow = new QHBoxLayout;
    passwordRow->addWidget(m_password, 1);
    passwordRow->addWidget(generate);
    protection->addLayout(passwordRow, 3, 0, 1, 2);
    protection->addWidget(m_passwordMeter, 4, 0, 1, 2);
    protection->addWidget(m_passwordStrength, 5, 0, 1, 2);
    protection->addWidget(m_passwordWarning, 6, 0, 1, 2);
    protection->setColumnStretch(1, 1);
    layout->addWidget(protectionBox);
    layout->addStretch();
    scroll->setWidget(page);
    return scroll;
}

QWidget* ShareSheet::createConfirmStep() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 12, 20, 8);
    auto* heading = new QLabel(QStringLiteral("Share Summary"));
    QFont font = heading->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.15);
    heading->setFont(font);
    layout->addWidget(heading);
    m_summary = new QGridLayout;
    m_summary->setColumnStretch(1, 1);
    m_summary->setHorizontalSpacing(24);
    layout->addLayout(m_summary);
    m_secretsNotice = notice("lock.shield", PaletteColor::color(Palette::Color::orange, palette()),
                             new QLabel(QString::fromLatin1(ShareFlow::secretsNotice)));
    layout->addWidget(m_secretsNotice);
    m_errorText = PlainText::label();
    m_errorNotice = notice("exclamationmark.triangle",
                           PaletteColor::color(Palette::Color::red, palette()), m_errorText);
    layout->addWidget(m_errorNotice);
    layout->addStretch();
    return page;
}

std::optional<QString> ShareSheet::askForFile(const QString& proposedName) {
    const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Save Encrypted Export"),
                                                      QDir::home().filePath(proposedName),
                                                      QStringLiteral("JSON (*.json *.vorlane)"));
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return path;
}

void ShareSheet::runMainAction() {
    if (!m_flow.mainButtonEnabled()) {
        return;
    }
    if (m_flow.step() != ShareFlow::Step::confirm) {
        m_flow.next();
        if (m_flow.step() == ShareFlow::Step::confirm) {
            fillSummary();
        }
        refresh();
        return;
    }
    auto chooseFile = [this](const std::string& proposedName) -> std::optional<std::string> {
        const std::optional<QString> path = m_chooseFile(toQString(proposedName));
        return path ? std::optional(toStdString(*path)) : std::nullopt;
    };
    auto writeFile = [](const std::string& path,
                        const std::string& bytes) -> std::optional<std::string> {
        if (const std::optional<std::string> error = PrivateFile::write(path, bytes)) {
            return "The export could not be saved: " + *error + ".";
        }
        return std::nullopt;
    };
    m_flow.performExport(chooseFile, writeFile, [this](bool close) {
        if (close) {
            accept();
        } else {
            refresh();
        }
    });
    refresh();
}

void ShareSheet::fillSummary() {
    while (QLayoutItem* item = m_summary->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    int row = 0;
    for (const auto& [label, value] : m_flow.summaryRows()) {
        auto* name = PlainText::label(toQString(label));
        name->setForegroundRole(QPalette::PlaceholderText);
        auto* text = PlainText::label(toQString(value));
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        m_summary->addWidget(name, row, 0);
        m_summary->addWidget(text, row, 1);
        ++row;
    }
}

void ShareSheet::refresh() {
    m_steps->setCurrentIndex(static_cast<int>(m_flow.step()));
    m_indicator->setLastReached(static_cast<int>(m_flow.step()));
    m_frame.subtitle()->setText(toQString(m_flow.subtitle()));
    m_selectedCount->setText(toQString(m_flow.selectedCountText()));
    const bool secrets = m_flow.options.includeSecrets;
    m_secretsCaption->setVisible(secrets);
    m_redactPasswords->setVisible(!secrets);
    m_redactAPIKeys->setVisible(!secrets);
    m_expiresLabel->setVisible(m_flow.hasExpiration);
    m_expires->setVisible(m_flow.hasExpiration);
    m_passwordLabel->setVisible(m_flow.showsPasswordField());
    m_password->setVisible(m_flow.showsPasswordField());
    const std::optional<PasswordStrength::Estimate> strength = m_flow.passwordStrength();
    m_passwordMeter->setEstimate(strength);
    m_passwordMeter->setVisible(m_flow.showsPasswordField());
    m_passwordStrength->setText(strength ? toQString(PasswordStrength::summary(*strength))
                                         : QString());
    m_passwordStrength->setVisible(m_flow.showsPasswordField() && strength.has_value());
    m_passwordWarning->setVisible(m_flow.showsPasswordField() &&
                                  m_flow.passwordWarning().has_value());
    m_secretsNotice->setVisible(m_flow.showsSecretsNotice());
    const std::optional<std::string>& error = m_flow.exportError();
    m_errorNotice->setVisible(error.has_value());
    m_errorText->setText(error ? toQString(*error) : QString());
    m_frame.back()->setVisible(m_flow.showsBack());
    m_frame.main()->setText(toMnemonicSafe(m_flow.mainButtonTitle()));
    m_frame.main()->setEnabled(m_flow.mainButtonEnabled());
}

} // namespace vorlane
