// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/SectionedRowDelegate.h"

#include "components/OrganizationRowDelegate.h"
#include "components/RowVariant.h"
#include "components/SectionHeader.h"
#include "components/ServiceRowDelegate.h"

#include <QImage>
#include <QPainter>

namespace vorlane {

void SectionedRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    switch (index.data(ListRole::kind).value<ListRole::Kind>()) {
    case ListRole::Kind::sectionHeader:
        // Headers are disabled items (the keyboard skips them) but must not look disabled.
        opt.palette.setCurrentColorGroup(QPalette::Active);
        SectionHeader::paint(*painter, opt.rect, index.data(Qt::DisplayRole).toString(),
                             index.data(ListRole::sectionCount).toInt(), opt.palette, opt.font);
        return;
    case ListRole::Kind::organization:
        OrganizationRowDelegate::paintRow(
            *painter, opt, index.data(ListRole::organizationRow).value<OrganizationRow>(),
            index.data(ListRole::logo).value<QImage>());
        return;
    case ListRole::Kind::service:
        ServiceRowDelegate::paintRow(*painter, opt,
                                     index.data(ListRole::serviceRow).value<ServiceRow>());
        return;
    }
}

QSize SectionedRowDelegate::sizeHint(const QStyleOptionViewItem& /*option*/,
                                     const QModelIndex& /*index*/) const {
    // Rows take the view's width; asking for none keeps a horizontal scroll bar away.
    return {1, ListRole::rowHeight};
}

} // namespace vorlane
