// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ServiceDetailView.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "components/CapsuleLabel.h"
#include "components/DestructiveConfirmation.h"
#include "components/ErrorLabel.h"
#include "components/PaletteColor.h"
#include "components/PlainText.h"
#include "components/TintedIcon.h"
#include "model/PaymentRecord.h"
#include "store/DataStore.h"

#include <QDesktopServices>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QToolButton>
#include <QUrl>

namespace vorlane {

namespace {

using Field = ServiceDetailScreen::Field;
using RowKind = ServiceDetailScreen::RowKind;

constexpr int rowIconSize = 16;

QToolButton* rowButton(std::string_view symbol, const QString& text, const QString& name) {
    auto* button = new QToolButton;
    button->setIcon(TintedIcon::ink(symbol, *button));
    button->setText(text);
    button->setToolTip(text);
    button->setAccessibleName(name);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

QPushButton* actionButton(std::string_view symbol, const QString& text) {
    auto* button = new QPushButton(text);
    button->setIcon(TintedIcon::ink(symbol, *button));
    button->setAutoDefault(false);
    return button;
}

// Secondary text: the palette's own, dimmed, so that it follows a dark theme.
void makeSecondary(QLabel* label) {
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText,
                     PaletteColor::color(Palette::Color::secondary, label->palette()));
    label->setPalette(palette);
}

QLabel* sectionTitle(const QString& text) {
    auto* title = new QLabel(text);
    QFont font = title->font();
    font.setWeight(QFont::DemiBold);
    title->setFont(font);
    return title;
}

} // namespace

ServiceDetailView::ServiceDetailView(AppContext& context, const ServiceRecord& service,
                                     QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_screen(context, service)
    , m_serviceId(service.id)
    , m_typeIcon(new QLabel)
    , m_title(PlainText::label())
    , m_subtitle(PlainText::label())
    , m_badge(new CapsuleLabel)
    , m_openURL(actionButton("safari", QStringLiteral("Open URL")))
    , m_markRenewed(actionButton("arrow.clockwise", QStringLiteral("Mark Renewed")))
    , m_message(ErrorLabel::create())
    , m_sectionsHost(new QWidget)
    , m_sectionsLayout(new QVBoxLayout(m_sectionsHost)) {
    setAccessibleName(QStringLiteral("Service"));
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(24, 16, 24, 24);
    layout->setSpacing(12);
    buildHeader(layout);
    buildActions(layout);
    m_sectionsLayout->setContentsMargins(0, 0, 0, 0);
    m_sectionsLayout->setSpacing(16);
    layout->addWidget(m_sectionsHost);
    buildPayments(layout);
    layout->addStretch(1);

    auto* scroll = new QScrollArea;
    // A stop of its own for the keyboard, so that the sections without a button (notes) can be
    // scrolled to and read.
    scroll->setAccessibleName(QStringLiteral("Service details"));
    scroll->setWidget(content);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(scroll);

    m_screenConnection = ScopedConnection(m_screen.changed, [this] { refresh(); });
    m_storeConnection = ScopedConnection(m_context.store.changed, [this] { refresh(); });
    refresh();
}

ServiceDetailView::~ServiceDetailView() = default;

void ServiceDetailView::buildHeader(QVBoxLayout* layout) {
    auto* back = new QToolButton;
    back->setIcon(TintedIcon::ink("chevron.left", *back));
    back->setText(QStringLiteral("Back"));
    back->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    back->setAutoRaise(true);
    back->setFocusPolicy(Qt::StrongFocus);
    connect(back, &QToolButton::clicked, this, [this] { m_screen.back(); });
    auto* backShortcut = new QShortcut(QKeySequence(QKeySequence::Back), this);
    connect(backShortcut, &QShortcut::activated, this, [this] { m_screen.back(); });
    auto* backRow = new QHBoxLayout;
    backRow->addWidget(back);
    backRow->addStretch(1);
    layout->addLayout(backRow);

    QFont titleFont = m_title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    titleFont.setWeight(QFont::DemiBold);
    m_title->setFont(titleFont);
    m_title->setTextInteractionFlags(Qt::TextSelectableByMouse);
    makeSecondary(m_subtitle);
    m_typeIcon->setFixedSize(40, 40);
    m_typeIcon->setAlignment(Qt::AlignCenter);

    auto* titles = new QVBoxLayout;
    titles->setSpacing(2);
    auto* titleRow = new QHBoxLayout;
    titleRow->setSpacing(10);
    titleRow->addWidget(m_title, 0, Qt::AlignVCenter);
    titleRow->addWidget(m_badge, 0, Qt::AlignVCenter);
    titleRow->addStretch(1);
    titles->addLayout(titleRow);
    titles->addWidget(m_subtitle);
    auto* header = new QHBoxLayout;
    header->setSpacing(12);
    header->addWidget(m_typeIcon, 0, Qt::AlignTop);
    header->addLayout(titles, 1);
    layout->addLayout(header);
}

void ServiceDetailView::buildActions(QVBoxLayout* layout) {
    auto* copyAll = actionButton("doc.on.doc", QStringLiteral("Copy All"));
    auto* edit = actionButton("pencil", QStringLiteral("Edit"));
    auto* duplicate = actionButton("plus.square.on.square", QStringLiteral("Duplicate"));
    auto* remove = actionButton("trash", QStringLiteral("Delete Service"));
    connect(m_openURL, &QPushButton::clicked, this, &ServiceDetailView::openAddress);
    connect(copyAll, &QPushButton::clicked, this, [this] { m_screen.copyAll(); });
    connect(m_markRenewed, &QPushButton::clicked, this, [this] { m_screen.markRenewed(); });
    connect(edit, &QPushButton::clicked, this, [this] { m_screen.edit(); });
    connect(duplicate, &QPushButton::clicked, this, [this] { m_screen.duplicate(); });
    connect(remove, &QPushButton::clicked, this, [this] { confirmDelete(); });

    auto* bar = new QHBoxLayout;
    bar->setSpacing(8);
    for (QPushButton* button : {m_openURL, copyAll, m_markRenewed, edit, duplicate}) {
        bar->addWidget(button);
    }
    bar->addStretch(1);
    bar->addWidget(remove);
    layout->addLayout(bar);

    layout->addWidget(m_message);
}

void ServiceDetailView::openAddress() {
    // A refusal sets the screen's message, which `changed` draws.
    if (const std::optional<std::string> address = m_screen.addressToOpen()) {
        QDesktopServices::openUrl(QUrl(toQString(*address)));
    }
}

void ServiceDetailView::confirmDelete() {
    DestructiveConfirmation::ask(this, toQString(ServiceDetailScreen::deleteConfirmationTitle),
                                 toQString(m_screen.deleteConfirmationMessage()),
                                 QStringLiteral("Delete"), [this] { m_screen.deleteService(); });
}

void ServiceDetailView::refresh() {
    m_title->setText(toQString(m_screen.title()));
    m_subtitle->setText(toQString(m_screen.subtitle()));
    const QColor tint = PaletteColor::color(m_screen.typeTint(), palette());
    m_typeIcon->setPixmap(TintedIcon::pixmap(
        m_screen.typeIcon(), 32, PaletteColor::foreground(tint, palette()), devicePixelRatioF()));
    const ExpirationState state = m_screen.expirationState();
    m_badge->setBadge(toQString(state.displayName()), state.icon(), state.color());
    m_openURL->setEnabled(m_screen.canOpenURL());
    m_markRenewed->setEnabled(m_screen.canMarkRenewed());
    ErrorLabel::show(*m_message, m_screen.message());

    refreshPayments();

    const std::vector<ServiceDetailScreen::Section> sections = m_screen.sections();
    Layout layout;
    for (const auto& section : sections) {
        std::vector<Field> fields;
        for (const auto& row : section.rows) {
            fields.push_back(row.field);
        }
        layout.emplace_back(section.title, std::move(fields));
    }
    if (layout != m_layout) {
        m_layout = std::move(layout);
        rebuildSections(sections);
        return;
    }
    for (const auto& section : sections) {
        for (const auto& row : section.rows) {
            updateRow(row);
        }
    }
}

void ServiceDetailView::rebuildSections(const std::vector<ServiceDetailScreen::Section>& sections) {
    while (QLayoutItem* item = m_sectionsLayout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    m_rows.clear();
    for (const auto& section : sections) {
        QLabel* title = sectionTitle(toQString(section.title));
        auto* card = new QFrame;
        card->setFrameShape(QFrame::StyledPanel);
        card->setAccessibleName(toQString(section.title));
        auto* rows = new QVBoxLayout(card);
        rows->setContentsMargins(12, 8, 12, 8);
        rows->setSpacing(4);
        for (const auto& row : section.rows) {
            rows->addWidget(createRow(row));
        }
        auto* box = new QWidget;
        auto* boxLayout = new QVBoxLayout(box);
        boxLayout->setContentsMargins(0, 0, 0, 0);
        boxLayout->setSpacing(6);
        boxLayout->addWidget(title);
        boxLayout->addWidget(card);
        m_sectionsLayout->addWidget(box);
    }
}

QWidget* ServiceDetailView::createRow(const ServiceDetailScreen::Row& row) {
    auto* widget = new QWidget;
    auto* layout = new QHBoxLayout(widget);
    layout->setContentsMargins(0, 2, 0, 2);
    layout->setSpacing(8);
    RowWidgets& parts = m_rows[row.field];
    parts.value = PlainText::label();
    parts.value->setWordWrap(true);

    if (row.kind == RowKind::caption) {
        makeSecondary(parts.value);
        QFont small = parts.value->font();
        small.setPointSizeF(small.pointSizeF() * 0.9);
        parts.value->setFont(small);
        layout->addWidget(parts.value, 1);
        updateRow(row);
        return widget;
    }

    auto* icon = new QLabel;
    icon->setPixmap(TintedIcon::pixmap(row.icon, rowIconSize,
                                       PaletteColor::color(Palette::Color::secondary, palette()),
                                       devicePixelRatioF()));
    icon->setFixedWidth(rowIconSize + 4);
    auto* label = new QLabel(toQString(row.label));
    makeSecondary(label);
    label->setFixedWidth(120);
    label->setBuddy(parts.value);
    parts.value->setAccessibleName(toQString(row.label));
    if (row.kind == RowKind::secure) {
        // Masked or revealed, a secret leaves only through the copy button.
        PlainText::applySecret(*parts.value);
        parts.value->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    } else {
        parts.value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    // Single-line rows centre on their buttons; a long note starts level with its label.
    const Qt::Alignment align = row.field == Field::notes ? Qt::AlignTop : Qt::AlignVCenter;
    parts.value->setAlignment(Qt::AlignLeft | align);
    layout->addWidget(icon, 0, align);
    layout->addWidget(label, 0, align);
    layout->addWidget(parts.value, 1);

    const Field field = row.field;
    const QString name = toQString(row.label);
    if (row.kind == RowKind::secure) {
        parts.reveal = rowButton("eye", QStringLiteral("Reveal"), QStringLiteral("Reveal ") + name);
        parts.reveal->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        connect(parts.reveal, &QToolButton::clicked, this,
                [this, field] { m_screen.toggleReveal(field); });
        layout->addWidget(parts.reveal, 0, align);
    }
    if (row.kind == RowKind::url) {
        auto* open = rowButton("arrow.up.right.square", QStringLiteral("Open in Browser"),
                               QStringLiteral("Open in Browser"));
        connect(open, &QToolButton::clicked, this, &ServiceDetailView::openAddress);
        layout->addWidget(open, 0, align);
    }
    if (row.kind != RowKind::info) {
        parts.copy =
            rowButton("doc.on.doc", QStringLiteral("Copy"), QStringLiteral("Copy ") + name);
        connect(parts.copy, &QToolButton::clicked, this, [this, field] { m_screen.copy(field); });
        layout->addWidget(parts.copy, 0, align);
    }
    updateRow(row);
    return widget;
}

void ServiceDetailView::updateRow(const ServiceDetailScreen::Row& row) {
    const auto found = m_rows.find(row.field);
    if (found == m_rows.end()) {
        return;
    }
    RowWidgets& parts = found->second;
    parts.value->setText(toQString(row.value));
    QPalette palette = this->palette();
    if (row.valueColor) {
        palette.setColor(
            QPalette::WindowText,
            PaletteColor::foreground(PaletteColor::color(*row.valueColor, palette), palette));
        parts.value->setPalette(palette);
    }
    if (parts.copy != nullptr) {
        parts.copy->setIcon(TintedIcon::ink(row.copyIcon(), *parts.copy));
        parts.copy->setToolTip(row.copied ? QStringLiteral("Copied") : QStringLiteral("Copy"));
    }
    if (parts.reveal != nullptr) {
        parts.reveal->setText(toQString(row.revealText()));
        parts.reveal->setIcon(TintedIcon::ink(row.revealIcon(), *parts.reveal));
        parts.reveal->setAccessibleName(toQString(row.revealText()) + QLatin1Char(' ') +
                                        toQString(row.label));
    }
}

void ServiceDetailView::buildPayments(QVBoxLayout* layout) {
    if (ServiceRecord* service = m_context.store.service(m_serviceId)) {
        m_payments.emplace(m_context.store, *service, m_context.calendar);
    }
    m_paymentsTotal = PlainText::label();
    makeSecondary(m_paymentsTotal);
    auto* add = actionButton("plus", toQString(ServicePayments::addTitle));
    add->setAccessibleName(toQString(ServicePayments::addTitle));
    connect(add, &QPushButton::clicked, this, [this] {
        askPayment(toQString(ServicePayments::addTitle), {}, {},
                   [this](const std::string& amount, const std::string& note) {
                       return m_payments->add(amount, note);
                   });
    });
    auto* header = new QHBoxLayout;
    header->setSpacing(8);
    header->addWidget(sectionTitle(toQString(ServicePayments::title)));
    header->addStretch(1);
    header->addWidget(m_paymentsTotal);
    header->addWidget(add);

    auto* card = new QFrame;
    card->setFrameShape(QFrame::StyledPanel);
    card->setAccessibleName(toQString(ServicePayments::title));
    m_paymentsRows = new QVBoxLayout(card);
    m_paymentsRows->setContentsMargins(12, 8, 12, 8);
    m_paymentsRows->setSpacing(8);

    auto* box = new QWidget;
    auto* boxLayout = new QVBoxLayout(box);
    boxLayout->setContentsMargins(0, 8, 0, 0);
    boxLayout->setSpacing(6);
    boxLayout->addLayout(header);
    boxLayout->addWidget(card);
    box->setVisible(m_payments.has_value());
    layout->addWidget(box);
}

void ServiceDetailView::refreshPayments() {
    // A deleted service leaves the store before this view is closed: its payments went with it.
    if (!m_payments || !m_screen.exists()) {
        return;
    }
    m_payments->rebuild();
    m_paymentsTotal->setText(toQString(m_payments->totalText()));
    std::vector<std::string> drawn;
    for (const ServicePayments::Row& row : m_payments->rows()) {
        drawn.push_back(row.payment->id.toString() + '\n' + row.amountText + '\n' + row.dateText +
                        '\n' + row.periodText + '\n' + row.note);
    }
    // Rebuilt only on a change of its own, so that an unrelated save keeps the keyboard focus.
    if (drawn == m_paymentsDrawn && m_paymentsRows->count() > 0) {
        return;
    }
    m_paymentsDrawn = std::move(drawn);
    while (QLayoutItem* item = m_paymentsRows->takeAt(0)) {
        // Later: the change may come from a click on a button of the row being replaced.
        if (QWidget* widget = item->widget()) {
            widget->hide();
            widget->deleteLater();
        }
        delete item;
    }
    if (m_payments->rows().empty()) {
        QLabel* empty = PlainText::label(toQString(ServicePayments::emptyText));
        makeSecondary(empty);
        m_paymentsRows->addWidget(empty);
        return;
    }
    for (const ServicePayments::Row& row : m_payments->rows()) {
        m_paymentsRows->addWidget(createPaymentRow(row));
    }
}

QWidget* ServiceDetailView::createPaymentRow(const ServicePayments::Row& row) {
    auto* widget = new QWidget;
    widget->setAccessibleName(toQString(row.accessibleText));
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);

    QLabel* date = PlainText::label(toQString(row.dateText));
    QLabel* amount = PlainText::label(toQString(row.amountText));
    amount->setAccessibleName(QStringLiteral("Amount paid on ") + toQString(row.dateText));
    amount->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QFont bold = amount->font();
    bold.setWeight(QFont::DemiBold);
    amount->setFont(bold);
    const Uuid id = row.payment->id;
    auto* edit = rowButton("pencil", QStringLiteral("Edit"),
                           QStringLiteral("Edit payment of ") + toQString(row.dateText));
    edit->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    connect(edit, &QToolButton::clicked, this, [this, id] { editPayment(id); });
    auto* remove = rowButton("trash", QStringLiteral("Delete"),
                             QStringLiteral("Delete payment of ") + toQString(row.dateText));
    remove->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    connect(remove, &QToolButton::clicked, this, [this, id] { confirmDeletePayment(id); });

    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    line->addWidget(date);
    line->addStretch(1);
    line->addWidget(amount);
    line->addWidget(edit);
    line->addWidget(remove);
    layout->addLayout(line);
    if (!row.periodText.empty()) {
        QLabel* period = PlainText::label(QStringLiteral("Covers ") + toQString(row.periodText));
        makeSecondary(period);
        layout->addWidget(period);
    }
    if (!row.note.empty()) {
        QLabel* note = PlainText::label(toQString(row.note));
        note->setWordWrap(true);
        note->setTextInteractionFlags(Qt::TextSelectableByMouse);
        layout->addWidget(note);
    }
    return widget;
}

PaymentRecord* ServiceDetailView::paymentWithId(const Uuid& id) const {
    if (!m_payments || !m_screen.exists()) {
        return nullptr;
    }
    for (const ServicePayments::Row& row : m_payments->rows()) {
        if (row.payment->id == id) {
            return row.payment;
        }
    }
    return nullptr;
}

void ServiceDetailView::askPayment(const QString& title, const QString& amount, const QString& note,
                                   PaymentApply apply) {
    auto* dialog = new QDialog(this);
    dialog->setWindowTitle(title);
    dialog->setAccessibleName(title);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    auto* amountEdit = new QLineEdit(amount);
    amountEdit->setAccessibleName(QStringLiteral("Amount"));
    amountEdit->setPlaceholderText(QStringLiteral("15.00"));
    auto* noteEdit = new QLineEdit(note);
    noteEdit->setAccessibleName(QStringLiteral("Note"));
    QLabel* error = ErrorLabel::create();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Amount:"), amountEdit);
    form->addRow(QString(), error);
    form->addRow(QStringLiteral("Note:"), noteEdit);
    auto* layout = new QVBoxLayout(dialog);
    layout->addLayout(form);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::accepted, dialog,
            [dialog, amountEdit, noteEdit, error, apply = std::move(apply)] {
                const std::optional<std::string> refusal =
                    apply(toStdString(amountEdit->text()), toStdString(noteEdit->text()));
                if (refusal) {
                    // The typed text stays, to be corrected rather than typed again.
                    ErrorLabel::show(*error, *refusal);
                    amountEdit->setFocus();
                    return;
                }
                dialog->accept();
            });
    amountEdit->setFocus();
    dialog->open();
}

void ServiceDetailView::editPayment(const Uuid& id) {
    const PaymentRecord* payment = paymentWithId(id);
    if (payment == nullptr) {
        return;
    }
    askPayment(
        QStringLiteral("Edit Payment"), toQString(payment->amount.toString()),
        toQString(payment->note), [this, id](const std::string& amount, const std::string& note) {
            // Looked up again: the store may have changed while the sheet was open.
            PaymentRecord* current = paymentWithId(id);
            if (current == nullptr) {
                return std::optional<std::string>();
            }
            if (std::optional<std::string> refusal = m_payments->setAmount(*current, amount)) {
                return refusal;
            }
            if (PaymentRecord* again = paymentWithId(id); again && again->note != note) {
                m_payments->setNote(*again, note);
            }
            return std::optional<std::string>();
        });
}

void ServiceDetailView::confirmDeletePayment(const Uuid& id) {
    const PaymentRecord* payment = paymentWithId(id);
    if (payment == nullptr) {
        return;
    }
    DestructiveConfirmation::ask(this, QStringLiteral("Delete Payment"),
                                 toQString(m_payments->deleteConfirmationMessage(*payment)),
                                 QStringLiteral("Delete"), [this, id] {
                                     if (PaymentRecord* current = paymentWithId(id)) {
                                         m_payments->remove(*current);
                                     }
                                 });
}

} // namespace vorlane
