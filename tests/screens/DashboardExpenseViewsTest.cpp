// SPDX-License-Identifier: GPL-3.0-or-later
// The dashboard and expense widgets on a real vault, offscreen: that they draw what their models
// say, follow the store without being rebuilt, and turn clicks and keys into the models' actions.

#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "components/BarChart.h"
#include "components/RowListView.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/DashboardView.h"
#include "screens/ExpenseCardGrid.h"
#include "screens/ExpenseView.h"

#include <QAbstractButton>

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

class DashboardExpenseViewsTest : public ScreenFixture {
protected:
    ServiceRecord& service(Organization& owner, const std::string& title, const char* monthly,
                           std::optional<Instant> expiration = std::nullopt,
                           const std::string& provider = {}) {
        return addService(owner, title, [&](ServiceRecord& s) {
            s.monthlyCost = Decimal::fromString(monthly).value();
            s.expirationDate = expiration;
            s.provider = provider;
        });
    }

    static QStringList rowTexts(const QAbstractItemView* list) {
        QStringList texts;
        for (int row = 0; row < list->model()->rowCount(); ++row) {
            texts << list->model()->index(row, 0).data(Qt::AccessibleTextRole).toString();
        }
        return texts;
    }

    static void pressReturnOn(RowListView* list, int row) {
        list->setFocus();
        list->setCurrentIndex(list->model()->index(row, 0));
        QTest::keyClick(list, Qt::Key_Return);
    }
};

TEST_F(DashboardExpenseViewsTest,
       DashboardBannersAndRowsOpenTheirServiceAndViewAllSwitchesSidebar) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& lapsed = service(acme, "Lapsed domain", "0", m_clock.now() - 48h);
    ServiceRecord& soon = service(acme, "Soon VPS", "0", m_clock.now() + 20h);
    DashboardView view(context());
    view.resize(900, 700);
    view.show();

    EXPECT_EQ(rowTexts(view.alertList()), QStringList({"Alert: Lapsed domain, Expired",
                                                       "Alert: Soon VPS, Expires in 0 day(s)"}));
    // The lists never scroll themselves: the page does.
    EXPECT_EQ(view.alertList()->height(), 2 * view.alertList()->sizeHintForRow(0));
    EXPECT_EQ(view.expiringList()->model()->rowCount(), 1);

    pressReturnOn(view.alertList(), 0);
    EXPECT_EQ(m_state.selectedService(), &lapsed);
    m_state.setSelectedService(nullptr);
    QTest::mouseClick(
        view.expiringList()->viewport(), Qt::LeftButton, {},
        view.expiringList()->visualRect(view.expiringList()->model()->index(0, 0)).center());
    EXPECT_EQ(m_state.selectedService(), &soon);

    view.viewAllButton()->click();
    EXPECT_EQ(m_state.selectedSidebarItem(), SidebarItem::expiringSoon);
}

TEST_F(DashboardExpenseViewsTest, DashboardFollowsTheStoreAndHidesAlertsWhenThereAreNone) {
    Organization& acme = addOrganization("Acme");
    DashboardView view(context());
    view.show();
    EXPECT_TRUE(view.alertList()->isHidden());
    EXPECT_EQ(view.recentList()->model()->rowCount(), 0);

    ServiceRecord& added = service(acme, "New mailbox", "12.5", m_clock.now() + 36h);
    EXPECT_FALSE(view.alertList()->isHidden());
    EXPECT_EQ(rowTexts(view.alertList()), QStringList({"Alert: New mailbox, Expires in 1 day(s)"}));
    EXPECT_EQ(view.recentList()->model()->rowCount(), 1);
    EXPECT_EQ(view.screen().stats()[2].value, "$12.5");

    archiveFlag(added);
    EXPECT_TRUE(view.alertList()->isHidden());
    EXPECT_EQ(view.recentList()->model()->rowCount(), 0);
}

TEST_F(DashboardExpenseViewsTest, ExpensePickerRegroupsCardsAndChartAndTheStoreUpdatesThem) {
    Organization& acme = addOrganization("Acme");
    Organization& bolt = addOrganization("Bolt");
    service(acme, "Web", "10", std::nullopt, "Hetzner");
    service(bolt, "Mail", "4", std::nullopt, "Fastmail");
    ExpenseView view(context());
    view.resize(1000, 800);
    view.show();

    const auto cardTitles = [&view] {
        QStringList titles;
        const QAbstractItemModel* cards = view.cardGrid()->model();
        for (int row = 0; row < cards->rowCount(); ++row) {
            titles << cards->index(row, 0).data().toString();
        }
        return titles;
    };
    EXPECT_EQ(cardTitles(), QStringList({"Acme", "Bolt"}));
    EXPECT_TRUE(view.groupButton(ExpenseScreen::GroupBy::organization)->isChecked());
    EXPECT_EQ(view.chart()->accessibleName(), "Monthly Cost by Organization");

    view.groupButton(ExpenseScreen::GroupBy::provider)->click();
    EXPECT_EQ(view.screen().groupBy(), ExpenseScreen::GroupBy::provider);
    EXPECT_EQ(cardTitles(), QStringList({"Fastmail", "Hetzner"}));
    EXPECT_EQ(view.chart()->bars().size(), 2U);
    EXPECT_EQ(view.chart()->accessibleDescription(), "Fastmail: $4 a month. Hetzner: $10 a month");
    EXPECT_EQ(view.cardGrid()->model()->index(1, 0).data(Qt::AccessibleTextRole).toString(),
              "Hetzner: $10 a month, $120 a year, 1 service");

    // A new provider arrives while the grouping stays as chosen; the grid grows to hold it.
    const int heightBefore = view.cardGrid()->height();
    service(acme, "Backups", "2", std::nullopt, "Backblaze");
    EXPECT_EQ(cardTitles(), QStringList({"Backblaze", "Fastmail", "Hetzner"}));
    EXPECT_EQ(view.screen().summary()[0].value, "$16");
    EXPECT_GE(view.cardGrid()->height(), heightBefore);
}

TEST_F(DashboardExpenseViewsTest, ExpenseViewWithoutCostsShowsOnlyTheEmptyLine) {
    Organization& acme = addOrganization("Acme");
    addService(acme, "Free login");
    ExpenseView view(context());
    view.show();
    EXPECT_TRUE(view.cardGrid()->isHidden());
    EXPECT_TRUE(view.chart()->isHidden());
    EXPECT_TRUE(showsLabel(view, QStringLiteral("No services with a cost yet.")));
}

} // namespace
} // namespace vorlane::testing
