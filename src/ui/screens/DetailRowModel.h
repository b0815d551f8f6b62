// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"

#include <QAbstractListModel>

#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// The rows of the organization detail's expense, renewal and sharing tabs: section headers and
// rows with an icon, a title, a subtitle, a trailing text, an optional capsule badge and an
// optional action button ("Mark Renewed", "Mark Revoked"). The screen fills it from its screen
// model after every change; `record` points at what a row stands for (a service or a share).
class DetailRowModel : public QAbstractListModel {
    Q_OBJECT

public:
    struct Row {
        bool isHeader = false;
        QString title;
        QString subtitle;
        int count = 0;    // a header's number of rows
        QString trailing; // at the right; for a header, e.g. the band's cost
        Palette::Color trailingColor = Palette::Color::secondary;
        // Owned copies: the screen model's rows they come from are rebuilt on every change.
        std::string icon;
        Palette::Color tint = Palette::Color::secondary;
        QString badge; // a capsule before the trailing text, when not empty
        std::string badgeIcon;
        Palette::Color badgeColor = Palette::Color::secondary;
        QString actionTitle; // a button at the right, when not empty
        QString accessibleText;
        void* record = nullptr;
    };

    enum Role { rowRole = Qt::UserRole + 40 };

    using QAbstractListModel::QAbstractListModel;

    void setRows(std::vector<Row> rows);
    const Row* row(const QModelIndex& index) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    // Headers are neither selectable nor enabled, so the keyboard steps over them.
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // DisplayRole: the title; AccessibleTextRole: the sentence.
    QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<Row> m_rows;
};

} // namespace vorlane
