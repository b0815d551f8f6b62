// SPDX-License-Identifier: GPL-3.0-or-later
#include "ReminderSettingsSection.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "calendar/RenewalsCalendarFile.h"
#include "components/PlainText.h"
#include "store/DataStore.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>

namespace vorlane {

ReminderSettingsSection::ReminderSettingsSection(AppContext& context, QWidget* parent)
    : QGroupBox(toQString(ReminderSettingsScreen::remindMeLabel), parent)
    , m_context(context)
    , m_screen(context.preferences) {
    auto* form = new QFormLayout(this);
    auto* boxes = new QGridLayout;
    boxes->setHorizontalSpacing(12);
    const auto leadTimes = ReminderSettingsScreen::leadTimes();
    for (std::size_t i = 0; i < leadTimes.size(); ++i) {
        auto* box = new QCheckBox(toQString(leadTimes[i].label));
        const int days = leadTimes[i].daysBefore;
        connect(box, &QCheckBox::toggled, this, [this, days](bool on) {
            m_screen.setChosen(days, on);
            changed();
        });
        boxes->addWidget(box, static_cast<int>(i / 3), static_cast<int>(i % 3));
        m_leadTimes.emplace_back(days, box);
    }
    // The section's title says "Remind me": the boxes take the whole width.
    form->addRow(boxes);
    m_remindAt = new QComboBox;
    for (const std::string& choice : ReminderSettingsScreen::remindAtChoices()) {
        m_remindAt->addItem(toQString(choice));
    }
    connect(m_remindAt, &QComboBox::activated, this, [this](int index) {
        m_screen.setRemindAtIndex(index);
        changed();
    });
    form->addRow(toQString(ReminderSettingsScreen::remindAtLabel), m_remindAt);
    m_autoRenewing = new QCheckBox(toQString(ReminderSettingsScreen::autoRenewingLabel));
    connect(m_autoRenewing, &QCheckBox::toggled, this, [this](bool on) {
        m_screen.setIncludesAutoRenewing(on);
        changed();
    });
    form->addRow(m_autoRenewing);
    m_calendarFile = new QCheckBox(toQString(ReminderSettingsScreen::keepCalendarLabel));
    connect(m_calendarFile, &QCheckBox::toggled, this, [this](bool on) {
        m_screen.setKeepsCalendarFile(on);
        m_calendarHelp->setVisible(on);
        changed();
    });
    form->addRow(m_calendarFile);
    m_calendarHelp = PlainText::label(toQString(ReminderSettingsScreen::calendarHelp(
        RenewalsCalendarFile::pathBeside(m_context.store.path()))));
    m_calendarHelp->setWordWrap(true);
    m_calendarHelp->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow(m_calendarHelp);
    reload();
}

QCheckBox* ReminderSettingsSection::leadTimeBox(int daysBefore) const {
    for (const auto& [days, box] : m_leadTimes) {
        if (days == daysBefore) {
            return box;
        }
    }
    return nullptr;
}

void ReminderSettingsSection::reload() {
    for (const auto& [days, box] : m_leadTimes) {
        const QSignalBlocker quiet(box);
        box->setChecked(m_screen.isChosen(days));
    }
    const QSignalBlocker quietPicker(m_remindAt);
    m_remindAt->setCurrentIndex(m_screen.remindAtIndex());
    const QSignalBlocker quietToggle(m_autoRenewing);
    m_autoRenewing->setChecked(m_screen.includesAutoRenewing());
    const QSignalBlocker quietCalendar(m_calendarFile);
    m_calendarFile->setChecked(m_screen.keepsCalendarFile());
    m_calendarHelp->setVisible(m_screen.keepsCalendarFile());
}

void ReminderSettingsSection::changed() {
    // The reminder schedule follows the vault's changes: this is one for it.
    m_context.store.changed.emit();
}

} // namespace vorlane
