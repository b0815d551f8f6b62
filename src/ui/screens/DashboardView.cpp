// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/DashboardView.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "components/BarChart.h"
#include "components/ListRole.h"
#include "components/OverviewPage.h"
#include "components/RowListView.h"
#include "components/ScreenTitle.h"
#include "components/SectionHeader.h"
#include "components/ServiceContextMenu.h"
#include "components/ServiceListModel.h"
#include "components/ServiceRowDelegate.h"
#include "components/StatCardView.h"
#include "screens/AlertBannerDelegate.h"
#include "screens/AlertListModel.h"
#include "store/DataStore.h"

#include <QEnterEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

namespace vorlane {

namespace {

// The dashboard's stat cards light up under the pointer, as an invitation to look closer.
class HoverStatCard : public StatCardView {
public:
    using StatCardView::StatCardView;

protected:
    void enterEvent(QEnterEvent* event) override {
        StatCardView::enterEvent(event);
        update();
    }
    void leaveEvent(QEvent* event) override {
        StatCardView::leaveEvent(event);
        update();
    }
    void paintEvent(QPaintEvent* event) override {
        StatCardView::paintEvent(event);
        if (!underMouse()) {
            return;
        }
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 10, 10);
        QColor wash = palette().color(QPalette::Highlight);
        wash.setAlphaF(0.08F);
        painter.fillPath(path, wash);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1.5));
        painter.drawPath(path);
    }
};

QLabel* quietLabel(std::string_view text) {
    auto* label = new QLabel(toQString(text));
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setContentsMargins(12, 4, 12, 4);
    return label;
}

} // namespace

DashboardView::DashboardView(AppContext& context, QWidget* parent)
    : QScrollArea(parent)
    , m_context(context)
    , m_screen(context.store, context.state, context.calendar)
    , m_chart(new BarChart(BarChart::Orientation::vertical))
    , m_chartEmpty(quietLabel(CostsDueChart::emptyText))
    , m_alertsHeader(new SectionHeader(toQString(DashboardScreen::alertsTitle)))
    , m_alerts(makeList(toQString(DashboardScreen::alertsTitle)))
    , m_alertModel(new AlertListModel(this))
    , m_expiringHeader(new SectionHeader(toQString(DashboardScreen::expiringTitle)))
    , m_viewAll(new QPushButton(toQString(DashboardScreen::viewAllTitle)))
    , m_expiring(makeList(toQString(DashboardScreen::expiringTitle)))
    , m_expiringModel(new ServiceListModel(context.calendar, this))
    , m_expiringEmpty(quietLabel(DashboardScreen::expiringEmptyText))
    , m_recentHeader(new SectionHeader(toQString(DashboardScreen::recentTitle)))
    , m_recent(makeList(toQString(DashboardScreen::recentTitle)))
    , m_recentModel(new ServiceListModel(context.calendar, this))
    , m_recentEmpty(quietLabel(DashboardScreen::recentEmptyText)) {
    QVBoxLayout* layout = OverviewPage::install(*this);

    QLabel* title =
        ScreenTitle::create(toQString(DashboardScreen::title), ScreenTitle::Kind::overview);
    title->setAccessibleName(title->text());
    layout->addWidget(title);
    layout->addSpacing(4);

    auto* stats = new QGridLayout;
    stats->setSpacing(12);
    for (std::size_t i = 0; i < m_stats.size(); ++i) {
        m_stats[i] = new HoverStatCard(StatCard{});
        m_stats[i]->setAttribute(Qt::WA_Hover);
        stats->addWidget(m_stats[i], 0, static_cast<int>(i));
    }
    layout->addLayout(stats);
    layout->addSpacing(4);

    m_chart->setTitle(toQString(CostsDueChart::title));
    layout->addWidget(m_chart);
    layout->addWidget(m_chartEmpty);

    layout->addWidget(m_alertsHeader);
    m_alerts->setModel(m_alertModel);
    m_alerts->setItemDelegate(new AlertBannerDelegate(m_alerts));
    layout->addWidget(m_alerts);

    auto* expiringBar = new QHBoxLayout;
    expiringBar->setContentsMargins(0, 0, 12, 0);
    expiringBar->addWidget(m_expiringHeader, 1);
    m_viewAll->setFlat(true);
    m_viewAll->setCursor(Qt::PointingHandCursor);
    m_viewAll->setAccessibleName(QStringLiteral("View All, Expiring Soon"));
    expiringBar->addWidget(m_viewAll, 0, Qt::AlignBottom);
    layout->addLayout(expiringBar);
    m_expiring->setModel(m_expiringModel);
    m_expiring->setItemDelegate(new ServiceRowDelegate(m_expiring));
    layout->addWidget(m_expiring);
    layout->addWidget(m_expiringEmpty);

    layout->addWidget(m_recentHeader);
    m_recent->setModel(m_recentModel);
    m_recent->setItemDelegate(new ServiceRowDelegate(m_recent));
    layout->addWidget(m_recent);
    layout->addWidget(m_recentEmpty);
    layout->addStretch();
    for (RowListView* list : {m_alerts, m_expiring, m_recent}) {
        followCurrentRow(list);
    }

    connect(m_viewAll, &QPushButton::clicked, this, [this] { m_screen.viewAll(); });
    connect(m_alerts, &RowListView::rowChosen, this, [this](const QModelIndex& index) {
        if (const DashboardScreen::Alert* alert = m_alertModel->alert(index)) {
            m_screen.open(*alert->service);
        }
    });
    for (auto [list, model] :
         {std::pair{m_expiring, m_expiringModel}, std::pair{m_recent, m_recentModel}}) {
        connect(list, &RowListView::rowChosen, this, [this, model](const QModelIndex& index) {
            if (ServiceRecord* service = model->service(index)) {
                m_screen.open(*service);
            }
        });
        connect(list, &RowListView::rowMenuRequested, this,
                [this, model](const QModelIndex& index, const QPoint& globalPosition) {
                    if (ServiceRecord* service = model->service(index)) {
                        ServiceContextMenu::exec(
                            m_context, *service,
                            [this](ServiceRecord& chosen) { m_screen.open(chosen); }, this,
                            globalPosition);
                    }
                });
    }
    m_storeConnection = ScopedConnection(m_context.store.changed, [this] {
        m_screen.reload();
        showScreen();
    });
    setAccessibleName(QStringLiteral("Dashboard"));
    showScreen();
}

RowListView* DashboardView::makeList(const QString& name) {
    auto* list = new RowListView;
    list->setAccessibleName(name);
    // The page scrolls, not the list: it is always as tall as its rows.
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    list->viewport()->setAutoFillBackground(false);
    return list;
}

void DashboardView::fitHeight(RowListView* list, int rowHeight) {
    list->setFixedHeight(list->model()->rowCount() * rowHeight);
}

void DashboardView::followCurrentRow(RowListView* list) {
    // Moving through a list with the keyboard scrolls the page to the current row.
    connect(list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this, list](const QModelIndex& current) {
                const QRect row = list->visualRect(current);
                const QPoint centre = list->viewport()->mapTo(widget(), row.center());
                ensureVisible(centre.x(), centre.y(), 0, row.height());
            });
}

void DashboardView::showScreen() {
    for (std::size_t i = 0; i < m_stats.size() && i < m_screen.stats().size(); ++i) {
        m_stats[i]->setCard(m_screen.stats()[i]);
    }
    m_chart->setBars(m_screen.costsDue().bars());
    m_chart->setVisible(m_screen.costsDue().hasCostsDue());
    m_chartEmpty->setVisible(!m_screen.costsDue().hasCostsDue());

    m_alertModel->setAlerts(m_screen.alerts());
    m_alertsHeader->setCount(static_cast<int>(m_screen.alerts().size()));
    m_alertsHeader->setVisible(m_screen.showsAlerts());
    m_alerts->setVisible(m_screen.showsAlerts());
    fitHeight(m_alerts, AlertListModel::rowHeight);

    m_expiringModel->setServices(m_screen.expiringThisMonth());
    m_expiringHeader->setCount(static_cast<int>(m_screen.expiringThisMonth().size()));
    m_expiring->setVisible(!m_screen.expiringThisMonth().empty());
    m_expiringEmpty->setVisible(m_screen.expiringThisMonth().empty());
    fitHeight(m_expiring, ListRole::rowHeight);

    m_recentModel->setServices(m_screen.recentlyUpdated());
    m_recentHeader->setCount(static_cast<int>(m_screen.recentlyUpdated().size()));
    m_recent->setVisible(!m_screen.recentlyUpdated().empty());
    m_recentEmpty->setVisible(m_screen.recentlyUpdated().empty());
    fitHeight(m_recent, ListRole::rowHeight);
}

} // namespace vorlane
