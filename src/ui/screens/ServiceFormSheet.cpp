// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ServiceFormSheet.h"

#include "QrCodeReader.h"
#include "QtText.h"
#include "app/AppContext.h"
#include "components/ErrorLabel.h"
#include "components/PaletteColor.h"
#include "components/PasswordGeneratorPopup.h"
#include "components/TintedIcon.h"
#include "model/Organization.h"
#include "util/UserCalendar.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <chrono>

namespace vorlane {

namespace {

using SecretKind = ServiceForm::SecretKind;

QGroupBox* group(const QString& title, QFormLayout*& form) {
    auto* box = new QGroupBox(title);
    form = new QFormLayout(box);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    return box;
}

// Dates are days to the person: a picked day is stored as its start in the local zone, the way
// dates found in pasted text are.
Instant startOfDay(QDate date) {
    return Instant(std::chrono::milliseconds(date.startOfDay().toMSecsSinceEpoch()));
}

QDate localDate(Instant instant) {
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count()).date();
}

} // namespace

ServiceFormSheet::ServiceFormSheet(AppContext& context, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_form(context) {
    setWindowTitle(toQString(m_form.windowTitle()));
    ServiceForm::Values& values = m_form.values();

    auto* body = new QWidget;
    auto* bodyLayout = new QVBoxLayout(body);
    bodyLayout->setSpacing(12);

    QFormLayout* form = nullptr;
    // -- The service
    bodyLayout->addWidget(group(QStringLiteral("Service"), form));
    auto* organization = new QComboBox;
    organization->setAccessibleName(QStringLiteral("Organization"));
    organization->setPlaceholderText(QStringLiteral("Choose an organization"));
    for (const Organization* each : m_form.organizations()) {
        organization->addItem(toQString(each->name));
    }
    const auto& choices = m_form.organizations();
    const auto chosen = std::find(choices.begin(), choices.end(), values.organization);
    organization->setCurrentIndex(
        chosen == choices.end() ? -1 : static_cast<int>(std::distance(choices.begin(), chosen)));
    connect(organization, &QComboBox::currentIndexChanged, this, [this](int index) {
        const auto& list = m_form.organizations();
        m_form.values().organization =
            index >= 0 && index < static_cast<int>(list.size()) ? list[index] : nullptr;
        refresh();
    });
    m_organizationError = ErrorLabel::create();
    auto* organizationLabel = new QLabel(QStringLiteral("Organization"));
    organizationLabel->setBuddy(organization);
    form->addRow(organizationLabel, ErrorLabel::under(organization, m_organizationError));

    auto* type = new QComboBox;
    type->setAccessibleName(QStringLiteral("Service Type"));
    for (const ServiceType kind : ServiceType::allCases()) {
        const QColor tint = PaletteColor::color(kind.tintColor(), type->palette());
        type->addItem(QIcon(TintedIcon::pixmap(kind.icon(), 16,
                                               PaletteColor::foreground(tint, type->palette()),
                                               type->devicePixelRatioF())),
                      toQString(kind.label()));
    }
    type->setCurrentIndex(static_cast<int>(values.serviceType.index()));
    connect(type, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_form.values().serviceType = ServiceType::allCases()[static_cast<std::size_t>(index)];
    });
    form->addRow(QStringLiteral("Service Type"), type);
    QLineEdit* title = addLine(form, QStringLiteral("Title"), values.title, &m_titleError);

    // -- Connection
    bodyLayout->addWidget(group(QStringLiteral("Connection"), form));
    addLine(form, QStringLiteral("Provider"), values.provider);
    addLine(form, QStringLiteral("Hostname"), values.hostname);
    addLine(form, QStringLiteral("Domain"), values.domain);
    addLine(form, QStringLiteral("IP Address"), values.ipAddress);
    addLine(form, QStringLiteral("Login URL"), values.loginURL);
    addLine(form, QStringLiteral("Username"), values.username);
    addLine(form, QStringLiteral("Email"), values.emailAddress);
    addLine(form, QStringLiteral("Port"), values.portText, &m_portError);
    addLine(form, QStringLiteral("SSH Key"), values.sshKeyReference)
        ->setPlaceholderText(QStringLiteral("Name or path of the key"));

    // -- Secrets
    bodyLayout->addWidget(group(QStringLiteral("Secrets"), form));
    form->addRow(QStringLiteral("Password"),
                 createSecretRow(SecretKind::password, QStringLiteral("Password")));
    form->addRow(QStringLiteral("API Key"),
                 createSecretRow(SecretKind::apiKey, QStringLiteral("API Key")));
    m_oneTimeCodeError = ErrorLabel::create();
    form->addRow(
        QStringLiteral("One-Time Code"),
        ErrorLabel::under(createSecretRow(SecretKind::oneTimeCode, QStringLiteral("One-Time Code")),
                          m_oneTimeCodeError));

    // -- Dates
    bodyLayout->addWidget(group(QStringLiteral("Dates"), form));
    form->addRow(QStringLiteral("Purchase Date"),
                 createDateRow(values.purchaseDate, m_purchase, QStringLiteral("Purchase Date")));
    form->addRow(QStringLiteral("Renewal Date"),
                 createDateRow(values.renewalDate, m_renewal, QStringLiteral("Renewal Date")));
    form->addRow(
        QStringLiteral("Expiration Date"),
        createDateRow(values.expirationDate, m_expiration, QStringLiteral("Expiration Date")));

    // -- Billing
    bodyLayout->addWidget(group(QStringLiteral("Billing"), form));
    auto* cycle = new QComboBox;
    cycle->setAccessibleName(QStringLiteral("Billing Cycle"));
    for (const BillingCycle each : BillingCycle::allCases()) {
        cycle->addItem(toQString(each.label()));
    }
    cycle->setCurrentIndex(static_cast<int>(values.billingCycle.index()));
    connect(cycle, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_form.values().billingCycle = BillingCycle::allCases()[static_cast<std::size_t>(index)];
    });
    form->addRow(QStringLiteral("Billing Cycle"), cycle);
    addLine(form, QStringLiteral("Monthly Cost"), values.monthlyCostText, &m_monthlyError)
        ->setPlaceholderText(QStringLiteral("0.00"));
    addLine(form, QStringLiteral("Yearly Cost"), values.yearlyCostText, &m_yearlyError)
        ->setPlaceholderText(QStringLiteral("0.00"));
    auto* autoRenew = new QCheckBox(QStringLiteral("Auto-Renew"));
    autoRenew->setChecked(values.autoRenew);
    connect(autoRenew, &QCheckBox::toggled, this,
            [this](bool on) { m_form.values().autoRenew = on; });
    form->addRow(QString(), autoRenew);

    // -- Details
    bodyLayout->addWidget(group(QStringLiteral("Details"), form));
    addLine(form, QStringLiteral("Tags"), values.tagsText)
        ->setPlaceholderText(QStringLiteral("Comma separated"));
    auto* notes = new QPlainTextEdit(toQString(values.notes));
    notes->setAccessibleName(QStringLiteral("Notes"));
    notes->setTabChangesFocus(true);
    notes->setFixedHeight(80);
    connect(notes, &QPlainTextEdit::textChanged, this,
            [this, notes] { m_form.values().notes = toStdString(notes->toPlainText()); });
    form->addRow(QStringLiteral("Notes"), notes);
    auto* risk = new QComboBox;
    risk->setAccessibleName(QStringLiteral("Risk Level"));
    for (const RiskLevel each : RiskLevel::allCases()) {
        risk->addItem(toQString(each.displayName()));
    }
    risk->setCurrentIndex(static_cast<int>(values.riskLevel.index()));
    connect(risk, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_form.values().riskLevel = RiskLevel::allCases()[static_cast<std::size_t>(index)];
    });
    form->addRow(QStringLiteral("Risk Level"), risk);
    auto* status = new QComboBox;
    status->setAccessibleName(QStringLiteral("Status"));
    for (const ServiceStatus each : ServiceStatus::allCases()) {
        status->addItem(toQString(each.displayName()));
    }
    status->setCurrentIndex(static_cast<int>(values.status.index()));
    connect(status, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_form.values().status = ServiceStatus::allCases()[static_cast<std::size_t>(index)];
    });
    form->addRow(QStringLiteral("Status"), status);
    bodyLayout->addStretch(1);
    // One label column for every group, so that the fields line up from group to group.
    for (QFormLayout* each : body->findChildren<QFormLayout*>()) {
        for (int row = 0; row < each->rowCount(); ++row) {
            if (QLayoutItem* item = each->itemAt(row, QFormLayout::LabelRole)) {
                item->widget()->setMinimumWidth(110);
            }
        }
    }

    auto* scroll = new QScrollArea;
    // Not a stop for Tab: every field inside is, and the area scrolls to the focused one.
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(body);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);

    m_saveError = ErrorLabel::create();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    m_save = buttons->addButton(toQString(m_form.saveText()), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { save(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::finished, this, [this] { m_form.closed(); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(scroll, 1);
    layout->addWidget(m_saveError);
    layout->addWidget(buttons);
    // Only once the button is inside the dialog can it become the dialog's default (Return).
    m_save->setDefault(true);
    // The box lays its buttons out in the desktop's order (Save first under KDE and Windows):
    // Tab follows what is shown rather than the order they were made in.
    const auto order = static_cast<QDialogButtonBox::ButtonLayout>(
        buttons->style()->styleHint(QStyle::SH_DialogButtonLayout, nullptr, buttons));
    if (order == QDialogButtonBox::KdeLayout || order == QDialogButtonBox::WinLayout) {
        setTabOrder(m_save, buttons->button(QDialogButtonBox::Cancel));
    }
    resize(600, 720);
    refresh();
    title->setFocus();
}

ServiceFormSheet::~ServiceFormSheet() = default;

QLineEdit* ServiceFormSheet::addLine(QFormLayout* form, const QString& label, std::string& value,
                                     QLabel** error) {
    auto* edit = new QLineEdit(toQString(value));
    edit->setAccessibleName(label);
    connect(edit, &QLineEdit::textEdited, this, [this, &value](const QString& text) {
        value = toStdString(text);
        refresh();
    });
    auto* caption = new QLabel(label);
    caption->setBuddy(edit);
    if (error != nullptr) {
        *error = ErrorLabel::create();
        form->addRow(caption, ErrorLabel::under(edit, *error));
    } else {
        form->addRow(caption, edit);
    }
    return edit;
}

ServiceFormSheet::SecretWidgets& ServiceFormSheet::widgets(SecretKind kind) {
    return kind == SecretKind::apiKey        ? m_apiKey
           : kind == SecretKind::oneTimeCode ? m_oneTimeCode
                                             : m_password;
}

ServiceForm::SecretInput& ServiceFormSheet::input(SecretKind kind) {
    ServiceForm::Values& values = m_form.values();
    return kind == SecretKind::apiKey        ? values.apiKey
           : kind == SecretKind::oneTimeCode ? values.oneTimeCode
                                             : values.password;
}

QWidget* ServiceFormSheet::createSecretRow(SecretKind kind, const QString& name) {
    SecretWidgets& widgets = this->widgets(kind);
    widgets.edit = new QLineEdit;
    widgets.edit->setEchoMode(QLineEdit::Password);
    widgets.edit->setAccessibleName(name);
    if (kind == SecretKind::oneTimeCode) {
        widgets.edit->setPlaceholderText(QStringLiteral("otpauth:// URI or secret"));
    }
    connect(widgets.edit, &QLineEdit::textEdited, this, [this, kind](const QString& text) {
        input(kind).text = toStdString(text);
        refresh();
    });
    widgets.show = new QToolButton;
    widgets.show->setCheckable(true);
    widgets.show->setIcon(TintedIcon::ink("eye", *widgets.show));
    widgets.show->setToolTip(QStringLiteral("Show"));
    widgets.show->setAccessibleName(QStringLiteral("Show ") + name);
    widgets.show->setFocusPolicy(Qt::StrongFocus);
    QLineEdit* edit = widgets.edit;
    QToolButton* show = widgets.show;
    connect(show, &QToolButton::toggled, this, [edit, show](bool shown) {
        edit->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
        show->setIcon(TintedIcon::ink(shown ? "eye.slash" : "eye", *show));
        show->setToolTip(shown ? QStringLiteral("Hide") : QStringLiteral("Show"));
    });
    QPushButton* extra = nullptr;
    if (kind == SecretKind::oneTimeCode) {
        extra = new QPushButton(QStringLiteral("Paste QR Code"));
        extra->setIcon(TintedIcon::ink("qrcode", *extra));
        extra->setAccessibleName(QStringLiteral("Paste QR Code"));
        connect(extra, &QPushButton::clicked, this, [this, edit] { pasteQRCode(edit); });
    } else {
        extra = new QPushButton(QStringLiteral("Generate"));
        extra->setIcon(TintedIcon::ink("wand.and.stars", *extra));
        extra->setAccessibleName(QStringLiteral("Generate ") + name);
        connect(extra, &QPushButton::clicked, this, [this, kind, edit, extra] {
            PasswordGeneratorPopup::choose(m_context, extra, [this, kind, edit](std::string text) {
                std::string& typed = input(kind).text;
                std::fill(typed.begin(), typed.end(), '\0');
                typed = std::move(text);
                edit->setText(toQString(typed));
                refresh();
            });
        });
    }
    extra->setAutoDefault(false);
    widgets.remove = new QPushButton(QStringLiteral("Remove"));
    widgets.remove->setIcon(TintedIcon::ink("trash", *widgets.remove));
    widgets.remove->setAutoDefault(false);
    widgets.remove->setAccessibleName(QStringLiteral("Remove stored ") + name);
    connect(widgets.remove, &QPushButton::clicked, this, [this, kind, edit] {
        m_form.removeStored(kind);
        edit->clear();
        refreshSecret(kind);
    });

    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(widgets.edit, 1);
    layout->addWidget(widgets.show);
    layout->addWidget(extra);
    layout->addWidget(widgets.remove);
    return row;
}

void ServiceFormSheet::pasteQRCode(QLineEdit* edit) {
    // The clipboard's picture when there is one (a screenshot of the setup page), else a file.
    QImage image;
    if (const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
        copied != nullptr && copied->hasImage()) {
        image = qvariant_cast<QImage>(copied->imageData());
    }
    if (image.isNull()) {
        const QString path = QFileDialog::getOpenFileName(
            this, QStringLiteral("Choose a QR Code Image"), QString(),
            QStringLiteral("Images (*.png *.jpg *.jpeg *.bmp *.gif *.webp)"));
        if (path.isEmpty()) {
            return;
        }
        image.load(path);
    }
    std::vector<std::string> texts;
    if (!image.isNull()) {
        const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
        // One row after another without the padding QImage keeps at the end of each row.
        std::vector<std::uint8_t> pixels;
        pixels.reserve(static_cast<std::size_t>(grey.width()) *
                       static_cast<std::size_t>(grey.height()));
        for (int y = 0; y < grey.height(); ++y) {
            const uchar* line = grey.constScanLine(y);
            pixels.insert(pixels.end(), line, line + grey.width());
        }
        texts = QrCodeReader::decode(pixels, grey.width(), grey.height());
    }
    if (m_form.pasteOneTimeCodeQR(texts)) {
        edit->setText(toQString(m_form.values().oneTimeCode.text));
    }
    refresh();
}

QWidget* ServiceFormSheet::createDateRow(std::optional<Instant>& value, DateWidgets& widgets,
                                         const QString& name) {
    widgets.enabled = new QCheckBox;
    widgets.enabled->setAccessibleName(QStringLiteral("Set ") + name);
    widgets.enabled->setChecked(value.has_value());
    widgets.date = new QDateEdit;
    widgets.date->setCalendarPopup(true);
    widgets.date->setAccessibleName(name);
    widgets.date->setDate(localDate(value.value_or(m_context.calendar.now())));
    widgets.date->setEnabled(value.has_value());
    QDateEdit* date = widgets.date;
    connect(widgets.enabled, &QCheckBox::toggled, this, [&value, date](bool on) {
        date->setEnabled(on);
        value = on ? std::optional(startOfDay(date->date())) : std::nullopt;
    });
    connect(date, &QDateEdit::userDateChanged, this,
            [&value](QDate picked) { value = startOfDay(picked); });
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(widgets.enabled);
    layout->addWidget(widgets.date, 1);
    return row;
}

void ServiceFormSheet::refreshSecret(SecretKind kind) {
    SecretWidgets& widgets = this->widgets(kind);
    widgets.edit->setPlaceholderText(toQString(m_form.secretPlaceholder(kind)));
    widgets.remove->setVisible(m_form.canRemoveStored(kind));
}

void ServiceFormSheet::refresh() {
    const ServiceForm::Errors errors = m_form.errors();
    ErrorLabel::show(*m_organizationError, errors.organization);
    ErrorLabel::show(*m_titleError, errors.title);
    ErrorLabel::show(*m_portError, errors.port);
    ErrorLabel::show(*m_monthlyError, errors.monthlyCost);
    ErrorLabel::show(*m_yearlyError, errors.yearlyCost);
    ErrorLabel::show(*m_oneTimeCodeError,
                     errors.oneTimeCode.empty() ? m_form.qrCodeError() : errors.oneTimeCode);
    m_save->setEnabled(!errors.any());
    refreshSecret(SecretKind::password);
    refreshSecret(SecretKind::apiKey);
    refreshSecret(SecretKind::oneTimeCode);
}

void ServiceFormSheet::save() {
    if (m_form.save()) {
        accept();
        return;
    }
    ErrorLabel::show(*m_saveError, m_form.saveError());
}

} // namespace vorlane
