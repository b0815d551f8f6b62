// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace vorlane {

// Edits a table cell with a combo box of the values its model offers under
// ImportPreviewModel::choicesRole; editable (a value not in the list may be typed) when
// `editable` is set. Cells without choices are edited as usual.
class ImportChoiceDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    ImportChoiceDelegate(bool editable, QObject* parent = nullptr);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;

private:
    bool m_editable;
};

} // namespace vorlane
