// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationFormSheet.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "components/OrgAvatar.h"
#include "components/PaletteColor.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

#include <functional>

namespace vorlane {

namespace {

constexpr int previewSize = 72;

QLabel* sectionTitle(const QString& text) {
    auto* label = new QLabel(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

QFrame* separator() {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

// A line edit bound to one text field of the form.
QLineEdit* boundField(std::string& field, const QString& placeholder,
                      const std::function<void()>& changed = {}) {
    auto* edit = new QLineEdit(toQString(field));
    edit->setPlaceholderText(placeholder);
    QObject::connect(edit, &QLineEdit::textChanged, edit, [&field, changed](const QString& text) {
        field = toStdString(text);
        if (changed) {
            changed();
        }
    });
    return edit;
}

} // namespace

OrganizationFormSheet::OrganizationFormSheet(AppContext& context, QWidget* parent)
    : QDialog(parent)
    , m_form(context.store, context.state, context.calendar)
    , m_preview(new QLabel)
    , m_removeLogo(new QPushButton(QStringLiteral("Remove")))
    , m_logoError(new QLabel)
    , m_name(nullptr)
    , m_tags(nullptr)
    , m_save(new QPushButton(toQString(m_form.saveButtonTitle()))) {
    const QString title = toQString(m_form.title());
    setWindowTitle(title);
    setAccessibleName(title);
    resize(520, 620);

    // Header: the title and a close button that dismisses without saving.
    auto* heading = new QLabel(title);
    QFont headingFont = heading->font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.3);
    headingFont.setBold(true);
    heading->setFont(headingFont);
    auto* close = new QToolButton;
    close->setIcon(SymbolIcon::icon("xmark.circle.fill"));
    close->setAutoRaise(true);
    close->setAccessibleName(QStringLiteral("Close"));
    close->setToolTip(QStringLiteral("Close"));
    connect(close, &QToolButton::clicked, this, &QDialog::reject);
    auto* header = new QHBoxLayout;
    header->setContentsMargins(24, 16, 16, 12);
    header->addWidget(heading);
    header->addStretch();
    header->addWidget(close);

    // Logo.
    m_preview->setFixedSize(previewSize, previewSize);
    m_preview->setAlignment(Qt::AlignCenter);
    m_preview->setFrameShape(QFrame::StyledPanel);
    m_preview->setAccessibleName(QStringLiteral("Logo"));
    auto* choose = new QPushButton(QStringLiteral("Choose Logo..."));
    connect(choose, &QPushButton::clicked, this, &OrganizationFormSheet::pickLogo);
    connect(m_removeLogo, &QPushButton::clicked, this, [this] {
        m_form.removeLogo();
        updateLogo();
    });
    auto* logoButtons = new QVBoxLayout;
    logoButtons->addStretch();
    logoButtons->addWidget(choose);
    logoButtons->addWidget(m_removeLogo);
    logoButtons->addStretch();
    auto* logoRow = new QHBoxLayout;
    logoRow->setSpacing(16);
    logoRow->addWidget(m_preview);
    logoRow->addLayout(logoButtons);
    logoRow->addStretch();

    // Identity.
    m_name = boundField(m_form.name, QString(), [this] { m_save->setEnabled(m_form.canSave()); });
    // One form for every section, so that the labels of all sections share one column.
    auto* fields = new QFormLayout;
    fields->addRow(sectionTitle(QStringLiteral("Identity")));
    QFormLayout* identity = fields;
    identity->addRow(QStringLiteral("Organization / Client Name"), m_name);
    identity->addRow(QStringLiteral("Project Name (optional)"),
                     boundField(m_form.projectName, QString()));
    auto* active = new QCheckBox(QStringLiteral("Active"));
    active->setChecked(m_form.isActive);
    connect(active, &QCheckBox::toggled, this, [this](bool on) { m_form.isActive = on; });
    identity->addRow(QString(), active);

    // Contact.
    QFormLayout* contact = fields;
    contact->addRow(sectionTitle(QStringLiteral("Contact")));
    contact->addRow(QStringLiteral("Contact Name"), boundField(m_form.contactName, QString()));
    contact->addRow(QStringLiteral("Contact Email"), boundField(m_form.contactEmail, QString()));
    contact->addRow(QStringLiteral("Contact Phone"), boundField(m_form.contactPhone, QString()));
    contact->addRow(QStringLiteral("Website"), boundField(m_form.website, QString()));

    // Details.
    m_tags = boundField(m_form.tagsText, QStringLiteral("web, client, vip"));
    auto* notes = new QPlainTextEdit(toQString(m_form.notes));
    notes->setFixedHeight(80);
    notes->setTabChangesFocus(true);
    notes->setAccessibleName(QStringLiteral("Notes"));
    connect(notes, &QPlainTextEdit::textChanged, this,
            [this, notes] { m_form.notes = toStdString(notes->toPlainText()); });
    QFormLayout* details = fields;
    details->addRow(sectionTitle(QStringLiteral("Details")));
    details->addRow(QStringLiteral("Tags (comma separated)"), m_tags);
    details->addRow(QStringLiteral("Notes"), notes);

    auto* body = new QWidget;
    auto* bodyLayout = new QVBoxLayout(body);
    bodyLayout->setContentsMargins(24, 24, 24, 24);
    bodyLayout->setSpacing(12);
    bodyLayout->addLayout(logoRow);
    m_logoError->setTextFormat(Qt::PlainText);
    m_logoError->setWordWrap(true);
    QPalette red = m_logoError->palette();
    red.setColor(QPalette::WindowText,
                 PaletteColor::foreground(PaletteColor::color(Palette::Color::red, red), red));
    m_logoError->setPalette(red);
    m_logoError->hide();
    bodyLayout->addWidget(m_logoError);
    bodyLayout->addLayout(fields);
    bodyLayout->addStretch();
    auto* scroll = new QScrollArea;
    // Not a stop for Tab: every field inside is, and the area scrolls to the focused one.
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(body);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);

    // Footer: Escape is the cancel button (QDialog's own), Return the default one.
    auto* cancel = new QPushButton(QStringLiteral("Cancel"));
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    m_save->setDefault(true);
    m_save->setEnabled(m_form.canSave());
    connect(m_save, &QPushButton::clicked, this, &OrganizationFormSheet::save);
    auto* footer = new QHBoxLayout;
    footer->setContentsMargins(24, 12, 24, 16);
    footer->addStretch();
    footer->addWidget(cancel);
    footer->addWidget(m_save);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(separator());
    layout->addWidget(scroll, 1);
    layout->addWidget(separator());
    layout->addLayout(footer);

    updateLogo();
    m_name->setFocus();
}

void OrganizationFormSheet::pickLogo() {
    QStringList patterns;
    for (const QByteArray& format : QImageReader::supportedImageFormats()) {
        patterns << QStringLiteral("*.") + QString::fromLatin1(format);
    }
    const QString path =
        QFileDialog::getOpenFileName(this, QStringLiteral("Choose Logo"), QString(),
                                     QStringLiteral("Images (%1)").arg(patterns.join(u' ')));
    if (!path.isEmpty()) {
        chooseLogo(path);
    }
}

void OrganizationFormSheet::chooseLogo(const QString& path) {
    std::optional<OrganizationForm::PixelSize> pixels;
    if (const QSize size = QImageReader(path).size(); size.isValid()) {
        pixels = OrganizationForm::PixelSize{size.width(), size.height()};
    }
    if (m_form.chooseLogo(toStdString(path), pixels)) {
        updateLogo();
    }
    m_logoError->setText(toQString(m_form.logoError()));
    m_logoError->setVisible(!m_form.logoError().empty());
}

void OrganizationFormSheet::updateLogo() {
    QImage logo;
    if (m_form.logoData) {
        logo = OrgAvatar::decode(
            QByteArray::fromRawData(reinterpret_cast<const char*>(m_form.logoData->data()),
                                    static_cast<qsizetype>(m_form.logoData->size())),
            QSize(previewSize, previewSize) * devicePixelRatioF(), Qt::KeepAspectRatio);
    }
    if (logo.isNull()) {
        // No logo, or bytes that are not an image (kept as they are): the placeholder.
        m_preview->setPixmap(SymbolIcon::icon("photo.badge.plus").pixmap(32, 32));
    } else {
        QPixmap scaled = QPixmap::fromImage(logo);
        scaled.setDevicePixelRatio(devicePixelRatioF());
        m_preview->setPixmap(scaled);
    }
    m_removeLogo->setVisible(m_form.logoData.has_value());
}

void OrganizationFormSheet::save() {
    if (m_form.save() != nullptr) {
        accept();
    }
}

} // namespace vorlane
