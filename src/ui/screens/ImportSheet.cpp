// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ImportSheet.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "components/PaletteColor.h"
#include "components/PlainText.h"
#include "components/RunProgress.h"
#include "model/Organization.h"
#include "screens/ImportChoiceDelegate.h"
#include "screens/ImportPreviewModel.h"
#include "store/DataStore.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

namespace vorlane {

namespace {

// Each row may wait on the keyring for tens of milliseconds; a couple per turn keeps the window
// answering while the bar moves.
constexpr std::size_t rowsPerTurn = 2;

QStringList organizationNames(const DataStore& store) {
    QStringList names;
    for (const Organization* organization : store.fetchOrganizations(true)) {
        names << toQString(organization->name);
    }
    return names;
}

} // namespace

ImportSheet::ImportSheet(AppContext& context, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_flow(context.store, context.calendar)
    , m_frame(*this, QString::fromLatin1(ImportFlow::title), SheetFrame::CloseButton::hidden)
    , m_steps(new QStackedWidget)
    , m_importTimer(new QTimer(this)) {
    setWindowModality(Qt::WindowModal);
    resize(860, 620);

    m_steps->addWidget(createChooseStep());
    m_steps->addWidget(createPreviewStep());
    m_steps->addWidget(createImportStep());
    m_frame.content()->addWidget(m_steps, 1);

    m_importTimer->setInterval(0);
    connect(m_importTimer, &QTimer::timeout, this, &ImportSheet::importSome);
    connect(m_frame.back(), &QPushButton::clicked, this, [this] {
        m_flow.back();
        m_model->reload();
        refresh();
    });
    connect(m_frame.main(), &QPushButton::clicked, this, &ImportSheet::runMainAction);

    m_frame.tabToFooterLast();
    refresh();
    m_frame.main()->setFocus();
}

ImportSheet::~ImportSheet() {
    // The records written so far stay consistent with their secrets; the rest is not started.
    m_flow.cancel();
}

QWidget* ImportSheet::createChooseStep() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 8, 20, 8);
    auto* explanation = new QLabel(QStringLiteral(
        "Bring in the services of a password manager's export (KeePass XML, KeePassXC, "
        "Bitwarden, 1Password or LastPass) or of a spreadsheet saved as CSV. Nothing is written "
        "before you confirm the preview."));
    explanation->setWordWrap(true);
    layout->addWidget(explanation);

    auto* form = new QFormLayout;
    m_format = new QComboBox;
    m_format->addItem(QStringLiteral("Detect from the file"));
    for (const ImportFormat format : ImportFormats::all) {
        m_format->addItem(toQString(ImportFormats::label(format)), static_cast<int>(format));
    }
    m_format->setAccessibleName(QStringLiteral("Format"));
    connect(m_format, &QComboBox::activated, this, [this](int index) {
        m_flow.setFormat(index == 0 ? std::nullopt
                                    : std::optional(static_cast<ImportFormat>(
                                          m_format->itemData(index).toInt())));
    });
    form->addRow(QStringLiteral("Format:"), m_format);
    m_path = PlainText::label(QStringLiteral("No file chosen"));
    m_path->setWordWrap(true);
    m_path->setAccessibleName(QStringLiteral("Chosen file"));
    form->addRow(QStringLiteral("File:"), m_path);
    layout->addLayout(form);

    m_error = PlainText::label();
    m_error->setWordWrap(true);
    QPalette red = m_error->palette();
    red.setColor(QPalette::WindowText,
                 PaletteColor::foreground(PaletteColor::color(Palette::Color::red, red), red));
    m_error->setPalette(red);
    m_error->setAccessibleName(QStringLiteral("Error"));
    m_error->hide();
    layout->addWidget(m_error);
    layout->addStretch();

    auto* row = new QHBoxLayout;
    auto* templateButton = new QPushButton(QStringLiteral("Save Template\u2026"));
    templateButton->setAutoDefault(false);
    templateButton->setAccessibleName(QStringLiteral("Save Template"));
    connect(templateButton, &QPushButton::clicked, this, &ImportSheet::saveTemplate);
    row->addWidget(templateButton);
    auto* hint = new QLabel(QStringLiteral("A spreadsheet with our column names, to fill in."));
    hint->setForegroundRole(QPalette::PlaceholderText);
    row->addWidget(hint, 1);
    layout->addLayout(row);
    return page;
}

QWidget* ImportSheet::createPreviewStep() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 8, 20, 8);

    auto* rule = new QHBoxLayout;
    auto* fallbackLabel = new QLabel(QStringLiteral("Rows without an organization go to:"));
    m_fallback = new QLineEdit(toQString(m_flow.rule().fallbackOrganization));
    m_fallback->setAccessibleName(QStringLiteral("Organization for rows without one"));
    fallbackLabel->setBuddy(m_fallback);
    connect(m_fallback, &QLineEdit::editingFinished, this, [this] {
        const QString name = m_fallback->text().trimmed();
        if (name.isEmpty()) {
            m_fallback->setText(toQString(m_flow.rule().fallbackOrganization));
            return;
        }
        m_flow.setFallbackOrganization(toStdString(name));
        m_model->reload();
        refresh();
    });
    rule->addWidget(fallbackLabel);
    rule->addWidget(m_fallback, 1);
    m_oneOrganization = new QCheckBox(QStringLiteral("Put everything into one organization"));
    m_oneOrganization->setAccessibleName(m_oneOrganization->text());
    connect(m_oneOrganization, &QCheckBox::toggled, this, [this](bool one) {
        m_flow.setOneOrganization(one);
        m_model->reload();
        refresh();
    });
    rule->addWidget(m_oneOrganization);
    layout->addLayout(rule);

    m_model = new ImportPreviewModel(m_flow, organizationNames(m_context.store), this);
    connect(m_model, &QAbstractItemModel::dataChanged, this, [this] { refresh(); });
    m_table = new QTableView;
    m_table->setModel(m_model);
    m_table->setAccessibleName(QStringLiteral("Rows to import"));
    m_table->setItemDelegateForColumn(ImportPreviewModel::organization,
                                      new ImportChoiceDelegate(true, m_table));
    m_table->setItemDelegateForColumn(ImportPreviewModel::serviceType,
                                      new ImportChoiceDelegate(false, m_table));
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                             QAbstractItemView::SelectedClicked);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setAccessibleName(QStringLiteral("Columns"));
    m_table->setWordWrap(false);
    layout->addWidget(m_table, 1);

    m_previewSummary = PlainText::label();
    m_previewSummary->setAccessibleName(QStringLiteral("Preview summary"));
    layout->addWidget(m_previewSummary);
    return page;
}

QWidget* ImportSheet::createImportStep() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 8, 20, 8);
    m_run = new RunProgress(QStringLiteral("Import progress"), QStringLiteral("Summary"));
    layout->addWidget(m_run);
    m_details = new QPlainTextEdit;
    m_details->setReadOnly(true);
    m_details->setTabChangesFocus(true);
    m_details->setAccessibleName(QStringLiteral("Rows not imported"));
    layout->addWidget(m_details, 1);
    m_advice = new QLabel(QString::fromLatin1(ImportFlow::deleteAdvice));
    m_advice->setWordWrap(true);
    layout->addWidget(m_advice);
    layout->addStretch();
    return page;
}

void ImportSheet::chooseFile(const QString& path) {
    m_path->setText(path);
    if (!m_flow.chooseFile(toStdString(path))) {
        showError(toQString(m_flow.error()));
        refresh();
        return;
    }
    showError({});
    // The combo box names what was detected, and still detects the next file chosen.
    m_format->setItemText(0, m_flow.readFormat() && !m_flow.format()
                                 ? QStringLiteral("Detected: ") +
                                       toQString(ImportFormats::label(*m_flow.readFormat()))
                                 : QStringLiteral("Detect from the file"));
    m_model->reload();
    m_table->resizeColumnsToContents();
    refresh();
    m_table->setFocus();
}

void ImportSheet::runMainAction() {
    switch (m_flow.step()) {
    case ImportFlow::Step::chooseFile: {
        const QString path = QFileDialog::getOpenFileName(
            this, QStringLiteral("Choose an Export File"), QDir::homePath(),
            QStringLiteral("Exports (*.xml *.csv *.json);;All Files (*)"));
        if (!path.isEmpty()) {
            chooseFile(path);
        }
        break;
    }
    case ImportFlow::Step::preview:
        if (m_flow.canImport()) {
            m_flow.startImport();
            refresh();
            m_importTimer->start();
        }
        break;
    case ImportFlow::Step::importing:
        break;
    case ImportFlow::Step::done:
        accept();
        break;
    }
}

void ImportSheet::importSome() {
    if (!m_flow.importStep(rowsPerTurn)) {
        m_importTimer->stop();
    }
    refresh();
}

void ImportSheet::reject() {
    if (m_flow.step() == ImportFlow::Step::importing) {
        m_importTimer->stop();
        m_flow.cancel();
        refresh();
        return;
    }
    QDialog::reject();
}

void ImportSheet::saveTemplate() {
    const QString path = QFileDialog::getSaveFileName(
        this, QStringLiteral("Save Template"), QDir::home().filePath(QStringLiteral("vorlane.csv")),
        QStringLiteral("CSV (*.csv)"));
    if (!path.isEmpty()) {
        showError(toQString(ImportFlow::saveTemplate(toStdString(path))));
    }
}

void ImportSheet::showError(const QString& text) {
    m_error->setText(text);
    m_error->setVisible(!text.isEmpty());
}

void ImportSheet::refresh() {
    const ImportFlow::Step step = m_flow.step();
    m_steps->setCurrentIndex(step == ImportFlow::Step::done ? 2 : static_cast<int>(step));
    m_frame.back()->setVisible(step == ImportFlow::Step::preview);
    QString subtitle;
    QString main;
    switch (step) {
    case ImportFlow::Step::chooseFile:
        subtitle = QStringLiteral("Choose an export file");
        main = QStringLiteral("Choose File\u2026");
        break;
    case ImportFlow::Step::preview:
        subtitle = toQString(m_flow.formatText());
        main = QStringLiteral("Import");
        m_previewSummary->setText(toQString(m_flow.previewSummary()));
        break;
    case ImportFlow::Step::importing:
        subtitle = QStringLiteral("Importing");
        main = QStringLiteral("Import");
        break;
    case ImportFlow::Step::done:
        subtitle = m_flow.report().cancelled ? QStringLiteral("Import cancelled")
                                             : QStringLiteral("Import finished");
        main = QStringLiteral("Done");
        break;
    }
    m_frame.subtitle()->setText(subtitle);
    m_frame.main()->setText(main);
    const bool done = step == ImportFlow::Step::done;
    m_frame.main()->setEnabled(step == ImportFlow::Step::chooseFile || done || m_flow.canImport());

    if (done) {
        m_run->showOutcome(toQString(m_flow.summary()));
    } else {
        m_run->showRunning(toQString(m_flow.progressText()), m_flow.progress());
    }
    m_details->setVisible(done);
    m_advice->setVisible(done);
    if (done) {
        const ImportReport& report = m_flow.report();
        QStringList lines;
        if (!report.failure.empty()) {
            lines << QStringLiteral("Stopped: ") + toQString(report.failure);
        }
        for (const ImportReport::Rejected& rejected : report.rejected) {
            // The reason names the line or element already.
            lines << QStringLiteral("Rejected: %1 \u2014 %2")
                         .arg(toQString(rejected.title), toQString(rejected.reason));
        }
        for (const std::string& sentence : report.notImported) {
            lines << toQString(sentence);
        }
        m_details->setPlainText(lines.join(u'\n'));
        m_details->setVisible(!lines.isEmpty());
    }
}

} // namespace vorlane
