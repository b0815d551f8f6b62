// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ImportChoiceDelegate.h"

#include "screens/ImportPreviewModel.h"

#include <QAbstractItemModel>
#include <QComboBox>

namespace vorlane {

ImportChoiceDelegate::ImportChoiceDelegate(bool editable, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_editable(editable) {}

QWidget* ImportChoiceDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                            const QModelIndex& index) const {
    const QVariant choices = index.data(ImportPreviewModel::choicesRole);
    if (!choices.isValid()) {
        return QStyledItemDelegate::createEditor(parent, option, index);
    }
    auto* combo = new QComboBox(parent);
    combo->setEditable(m_editable);
    combo->addItems(choices.toStringList());
    combo->setAccessibleName(
        index.model()->headerData(index.column(), Qt::Horizontal, Qt::DisplayRole).toString());
    return combo;
}

void ImportChoiceDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        combo->setCurrentText(index.data(Qt::EditRole).toString());
        return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
}

void ImportChoiceDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                        const QModelIndex& index) const {
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        model->setData(index, combo->currentText().trimmed(), Qt::EditRole);
        return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
}

} // namespace vorlane
