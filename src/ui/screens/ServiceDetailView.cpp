// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ServiceDetailView.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "components/CapsuleLabel.h"
#include "components/PaletteColor.h"
#include "components/PlainText.h"
#include "components/TintedIcon.h"
#include "store/DataStore.h"

#include <QDesktopServices>
#include <QFontDatabase>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
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

} // namespace

ServiceDetailView::ServiceDetailView(AppContext& context, const ServiceRecord& service,
                                     QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_screen(context, service)
    , m_typeIcon(new QLabel)
    , m_title(PlainText::label())
    , m_subtitle(PlainText::label())
    , m_badge(new CapsuleLabel)
    , m_openURL(actionButton("safari", QStringLiteral("Open URL")))
    , m_markRenewed(actionButton("arrow.clockwise", QStringLiteral("Mark Renewed")))
    , m_message(PlainText::label())
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

    m_message->setWordWrap(true);
    QPalette palette = m_message->palette();
    palette.setColor(
        QPalette::WindowText,
        PaletteColor::foreground(PaletteColor::color(Palette::Color::red, palette), palette));
    m_message->setPalette(palette);
    m_message->hide();
    layout->addWidget(m_message);
}

void ServiceDetailView::openAddress() {
    // A refusal sets the screen's message, which `changed` draws.
    if (const std::optional<std::string> address = m_screen.addressToOpen()) {
        QDesktopServices::openUrl(QUrl(toQString(*address)));
    }
}

void ServiceDetailView::confirmDelete() {
    auto* box = new QMessageBox(
        QMessageBox::Warning, toQString(ServiceDetailScreen::deleteConfirmationTitle),
        toQString(m_screen.deleteConfirmationMessage()), QMessageBox::NoButton, this);
    QPushButton* confirm = box->addButton(QStringLiteral("Delete"), QMessageBox::DestructiveRole);
    QPushButton* cancel = box->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    PlainText::apply(*box);
    box->setDefaultButton(cancel);
    box->setEscapeButton(cancel);
    box->setWindowModality(Qt::WindowModal);
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(box, &QMessageBox::buttonClicked, this, [this, confirm](QAbstractButton* clicked) {
        if (clicked == confirm) {
            m_screen.deleteService();
        }
    });
    box->open();
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
    m_message->setText(toQString(m_screen.message()));
    m_message->setVisible(!m_screen.message().empty());

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
        auto* title = new QLabel(toQString(section.title));
        QFont font = title->font();
        font.setWeight(QFont::DemiBold);
        title->setFont(font);
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

} // namespace vorlane
