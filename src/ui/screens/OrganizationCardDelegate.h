// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QPointer>
#include <QStyledItemDelegate>

class QAbstractItemView;
class QVariantAnimation;

namespace vorlane {

class DataStore;
struct Organization;
class OrganizationGridScreen;

// Paints the organization cards of a grid: the front face (avatar, name, project, favourite,
// expiring and services badges) and the back face (active dot, the four summary rows, the next
// expiration), turned about the vertical axis while a card flips. `setFlipped` starts the turn,
// a short spring that overshoots a little; the view repaints the card at every step.
// Reads the cards of the screen model by row. Main thread only; the screen, store and view must
// outlive the delegate.
class OrganizationCardDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int cardHeight = 200;
    static constexpr int minimumCardWidth = 240;

    OrganizationCardDelegate(const OrganizationGridScreen& screen, DataStore& store,
                             QAbstractItemView& view);

    // The width every card takes (the grid fits as many columns as it can).
    void setCardWidth(int width) { m_cardWidth = width; }

    // Turns the organization's card to its back (true) or its front.
    void setFlipped(Organization* organization, bool flipped);
    // How far the card has turned: 0 front, 1 back (a little beyond while it overshoots).
    qreal flipProgress(Organization* organization) const;
    // Forgets the turns of organizations no longer shown.
    void keepOnly(const QList<Organization*>& shown);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    struct Flip {
        qreal progress = 0;
        bool flipped = false;
        QPointer<QVariantAnimation> animation;
    };

    void paintFront(QPainter& painter, const QRect& rect, const QStyleOptionViewItem& option,
                    int row) const;
    void paintBack(QPainter& painter, const QRect& rect, const QStyleOptionViewItem& option,
                   int row) const;

    const OrganizationGridScreen& m_screen;
    DataStore& m_store;
    QAbstractItemView& m_view;
    int m_cardWidth = minimumCardWidth;
    QHash<Organization*, Flip> m_flips;
};

} // namespace vorlane
