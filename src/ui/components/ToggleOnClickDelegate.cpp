// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/ToggleOnClickDelegate.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace vorlane {

bool ToggleOnClickDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                                        const QStyleOptionViewItem& option,
                                        const QModelIndex& index) {
    const QVariant state = index.data(Qt::CheckStateRole);
    if (!state.isValid()) {
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    }
    if (!(index.flags() & Qt::ItemIsEnabled)) {
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonRelease: {
        // The view sends the release only when the press was on the same row.
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() != Qt::LeftButton ||
            !option.rect.contains(mouse->position().toPoint())) {
            return false;
        }
        break;
    }
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key != Qt::Key_Space && key != Qt::Key_Select) {
            return false;
        }
        break;
    }
    default:
        // Presses still select the row and give it focus; double clicks are two clicks.
        return false;
    }
    const bool checked = state.value<Qt::CheckState>() == Qt::Checked;
    return model->setData(index, checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

} // namespace vorlane
