// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SettingsView.h"

#include "BackupSettingsSection.h"
#include "QtText.h"
#include "ReminderSettingsSection.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "store/DataStore.h"
#include "util/CurrencyFormat.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace vorlane {

namespace {

using Options = std::vector<SettingsScreen::Option>;

QComboBox* picker(const Options& options, const std::function<void(double)>& chosen,
                  QWidget* parent) {
    auto* combo = new QComboBox(parent);
    for (const SettingsScreen::Option& option : options) {
        combo->addItem(toQString(option.label), option.value);
    }
    QObject::connect(combo, &QComboBox::activated, combo,
                     [combo, chosen](int index) { chosen(combo->itemData(index).toDouble()); });
    return combo;
}

void showValue(QComboBox* combo, const Options& options, double value) {
    const QSignalBlocker quiet(combo);
    const auto index = SettingsScreen::indexOf(options, value);
    // A value edited by hand that no entry offers selects nothing rather than a wrong entry.
    combo->setCurrentIndex(index ? static_cast<int>(*index) : -1);
}

QLabel* caption(const QString& text) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    QPalette secondary = label->palette();
    secondary.setColor(QPalette::WindowText, secondary.color(QPalette::PlaceholderText));
    label->setPalette(secondary);
    return label;
}

// A titled group with a form inside: the grouped form of each tab.
QFormLayout* section(QVBoxLayout* tab, std::string_view title) {
    auto* group = new QGroupBox(toQString(title));
    auto* form = new QFormLayout(group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    tab->addWidget(group);
    return form;
}

QVBoxLayout* tabLayout(QWidget* tab) {
    auto* layout = new QVBoxLayout(tab);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(12);
    return layout;
}

} // namespace

SettingsView::SettingsView(AppContext& context, QWidget* parent)
    : QTabWidget(parent)
    , m_context(context)
    , m_screen(context.preferences, context.auth) {
    setFixedSize(fixedSize);
    setAccessibleName(QStringLiteral("Settings"));
    const auto& tabs = SettingsScreen::tabs();
    QWidget* pages[] = {generalTab(), securityTab(), notificationsTab()};
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        addTab(pages[i], SymbolIcon::icon(tabs[i].icon), toQString(tabs[i].title));
    }
    if (context.backups != nullptr) {
        addTab(new BackupSettingsSection(*context.backups, context.calendar),
               SymbolIcon::icon(BackupSettingsScreen::tabIcon),
               toQString(BackupSettingsScreen::tabTitle));
    }
    reload();
}

QWidget* SettingsView::generalTab() {
    auto* tab = new QWidget;
    QVBoxLayout* layout = tabLayout(tab);
    QFormLayout* appearance = section(layout, SettingsScreen::appearanceSection);
    auto* followsSystem = new QLabel(toQString(SettingsScreen::appearanceText));
    followsSystem->setWordWrap(true);
    appearance->addRow(followsSystem);
    QFormLayout* dataSection = section(layout, SettingsScreen::dataSection);
    auto* storage = new QLabel(toQString(SettingsScreen::storageValue));
    storage->setWordWrap(true);
    dataSection->addRow(toQString(SettingsScreen::storageLabel), storage);
    // Searchable: typing "eur" or "yen" anywhere in "EUR — Euro" finds it.
    m_currency = new QComboBox;
    m_currency->setEditable(true);
    m_currency->setInsertPolicy(QComboBox::NoInsert);
    for (const CurrencyChoice& choice : SettingsScreen::currencyChoices()) {
        m_currency->addItem(toQString(choice.code + " \xE2\x80\x94 " + choice.name),
                            toQString(choice.code));
    }
    m_currency->completer()->setCompletionMode(QCompleter::PopupCompletion);
    m_currency->completer()->setFilterMode(Qt::MatchContains);
    m_currency->completer()->setCaseSensitivity(Qt::CaseInsensitive);
    connect(m_currency, &QComboBox::activated, this, [this](int index) {
        if (m_screen.setCurrency(m_currency->itemData(index).toString().toStdString())) {
            // Every screen writes its amounts again, in the new currency.
            m_context.store.changed.emit();
        }
    });
    dataSection->addRow(toQString(SettingsScreen::currencyLabel), m_currency);
    auto* currencyNote =
        new QLabel(QStringLiteral("One currency for the whole vault; amounts are not converted."));
    currencyNote->setWordWrap(true);
    currencyNote->setForegroundRole(QPalette::PlaceholderText);
    dataSection->addRow(QString(), currencyNote);
    layout->addStretch(1);
    return tab;
}

QWidget* SettingsView::securityTab() {
    auto* tab = new QWidget;
    QVBoxLayout* layout = tabLayout(tab);
    QFormLayout* clipboard = section(layout, SettingsScreen::clipboardSection);
    m_clipboard = picker(
        SettingsScreen::clipboardOptions(),
        [this](double seconds) { m_screen.setClipboardTimeout(seconds); }, tab);
    clipboard->addRow(toQString(SettingsScreen::clipboardLabel), m_clipboard);

    m_autoLockForm = section(layout, SettingsScreen::autoLockSection);
    m_autoLock = picker(
        SettingsScreen::autoLockOptions(),
        [this](double seconds) { m_screen.setAutoLockTimeout(seconds); }, tab);
    m_autoLockForm->addRow(toQString(SettingsScreen::autoLockLabel), m_autoLock);
    m_biometricsValue = caption({});
    m_autoLockForm->addRow(toQString(SettingsScreen::biometricsLabel), m_biometricsValue);

    QFormLayout* authentication = section(layout, SettingsScreen::authenticationSection);
    m_authenticationText = caption({});
    authentication->addRow(m_authenticationText);
    layout->addStretch(1);
    return tab;
}

QWidget* SettingsView::notificationsTab() {
    // More than the sheet's fixed height holds once the reminder choices and the calendar file's
    // instructions are there: the tab scrolls rather than squeezing its rows.
    auto* scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->viewport()->setAutoFillBackground(false);
    auto* tab = new QWidget;
    tab->setAutoFillBackground(false);
    scroll->setWidget(tab);
    QVBoxLayout* layout = tabLayout(tab);
    QFormLayout* warnings = section(layout, SettingsScreen::warningsSection);
    m_warningDays = picker(
        SettingsScreen::warningDayOptions(),
        [this](double days) { m_screen.setWarningDays(static_cast<int>(days)); }, tab);
    warnings->addRow(toQString(SettingsScreen::warningDaysLabel), m_warningDays);
    m_expenseReminders = new QCheckBox(toQString(SettingsScreen::expenseRemindersLabel));
    connect(m_expenseReminders, &QCheckBox::toggled, this,
            [this](bool on) { m_screen.setShowExpenseReminders(on); });
    warnings->addRow(m_expenseReminders);
    layout->addWidget(new ReminderSettingsSection(m_context));
    QFormLayout* note = section(layout, {});
    note->addRow(caption(toQString(SettingsScreen::notificationsText)));
    layout->addStretch(1);
    return scroll;
}

void SettingsView::reload() {
    showValue(m_clipboard, SettingsScreen::clipboardOptions(), m_screen.clipboardTimeout());
    m_currency->setCurrentIndex(m_currency->findData(toQString(m_screen.currency())));
    showValue(m_autoLock, SettingsScreen::autoLockOptions(), m_screen.autoLockTimeout());
    showValue(m_warningDays, SettingsScreen::warningDayOptions(), m_screen.warningDays());
    {
        const QSignalBlocker quiet(m_expenseReminders);
        m_expenseReminders->setChecked(m_screen.showExpenseReminders());
    }
    // A reader plugged in or enrolled since the last look shows up here.
    const bool biometrics = m_screen.showsBiometricsRow();
    m_autoLockForm->setRowVisible(m_biometricsValue, biometrics);
    m_biometricsValue->setText(biometrics ? toQString(m_screen.biometricsValue()) : QString());
    m_authenticationText->setText(toQString(m_screen.authenticationText()));
}

void SettingsView::showEvent(QShowEvent* event) {
    reload();
    QTabWidget::showEvent(event);
}

void SettingsView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        reload();
    }
    QTabWidget::changeEvent(event);
}

} // namespace vorlane
