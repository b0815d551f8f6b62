// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/PasswordHealthScreen.h"

#include <QAbstractListModel>

#include <vector>

namespace vorlane {

class DataStore;
class UserCalendar;

// The password report's sections as one list for the shared sectioned row delegate: a header per
// section, then each finding drawn like any service row, its subtitle saying whose it is and
// which secret. A row whose service was deleted since the check answers nothing. Main thread; the
// store and calendar must outlive it.
class PasswordHealthListModel : public QAbstractListModel {
    Q_OBJECT

public:
    PasswordHealthListModel(DataStore& store, const UserCalendar& calendar,
                            QObject* parent = nullptr);

    void setSections(const std::vector<PasswordHealthScreen::Section>& sections);
    // Null for a header.
    const PasswordHealthScreen::Row* row(const QModelIndex& index) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    struct Line {
        QString header; // headers only
        int count = 0;  // headers only: the rows under it
        PasswordHealthScreen::Row row;
        bool isHeader = false;
    };

    DataStore& m_store;
    const UserCalendar& m_calendar;
    std::vector<Line> m_lines;
};

} // namespace vorlane
