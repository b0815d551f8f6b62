// SPDX-License-Identifier: GPL-3.0-or-later
// The dashboard and expense widgets on a real vault, offscreen: that they draw what their models
// say, follow the store without being rebuilt, and turn clicks and keys into the models' actions.

#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "components/BarChart.h"
#include "components/RowListView.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/CostReportSheet.h"
#include "screens/DashboardView.h"
#include "screens/ExpenseCardGrid.h"
#include "screens/ExpenseView.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QComboBox>
#include <QFile>
#include <QPushButton>

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
    EXPECT_TRUE(view.costsDueChart()->isHidden());
    EXPECT_FALSE(
        showsLabel(view, QStringLiteral("No renewals with a cost in the next 12 months.")));
    EXPECT_TRUE(showsLabel(view, QStringLiteral("No services with a cost yet.")));
}

// The months ahead drawn as the dashboard draws them, following the store; "Export Cost
// Report…" opens one sheet whose picker starts at the client of the current card, and the file
// it writes is the report of the client chosen there.
TEST_F(DashboardExpenseViewsTest, ExpenseViewDrawsCostsDueAndExportsTheChosenClientsReport) {
    Organization& acme = addOrganization("Acme");
    Organization& bolt = addOrganization("Bolt");
    archiveFlag(addOrganization("Archived client"));
    service(acme, "Web", "10");
    ServiceRecord& mail = service(bolt, "Mail", "4");
    ExpenseView view(context());
    view.resize(1000, 900);
    view.show();

    // Nothing dated yet: the chart gives way to its line.
    EXPECT_TRUE(view.costsDueChart()->isHidden());
    EXPECT_TRUE(showsLabel(view, QStringLiteral("No renewals with a cost in the next 12 months.")));
    mail.expirationDate = utc(2026, 3, 25, 12);
    store().noteChanged(mail);
    EXPECT_TRUE(view.costsDueChart()->isVisible());
    EXPECT_EQ(view.costsDueChart()->accessibleName(), "Costs Due by Month");
    ASSERT_EQ(view.costsDueChart()->bars().size(), 12U);
    EXPECT_EQ(view.costsDueChart()->bars()[0].accessibleText, "March 2026: $4 due");
    EXPECT_EQ(view.costsDueChart()->bars()[1].accessibleText, "April 2026: $0 due");

    view.cardGrid()->setCurrentIndex(view.cardGrid()->model()->index(1, 0)); // Bolt
    EXPECT_TRUE(view.costReportButton()->isEnabled());
    EXPECT_EQ(view.costReportButton()->text(), QStringLiteral("Export Cost Report\u2026"));
    view.costReportButton()->click();
    CostReportSheet* sheet = view.costReportSheet();
    ASSERT_NE(sheet, nullptr);
    ASSERT_TRUE(waitFor([sheet] { return sheet->isVisible(); }));
    view.costReportButton()->click(); // still one sheet
    EXPECT_EQ(view.findChildren<CostReportSheet*>().size(), 1);
    QComboBox* picker = sheet->organizationPicker();
    ASSERT_NE(picker, nullptr);
    QStringList names;
    for (int i = 0; i < picker->count(); ++i) {
        names << picker->itemText(i);
    }
    EXPECT_EQ(names, QStringList({"Acme", "Bolt"}));
    EXPECT_EQ(picker->currentText(), QStringLiteral("Bolt"));
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(picker);
    ASSERT_NE(spoken, nullptr);
    // A combo box says its current choice; its label reaches a screen reader as the relation.
    QStringList labels;
    for (const auto& [label, relation] : spoken->relations(QAccessible::Label)) {
        labels << label->text(QAccessible::Name);
    }
    EXPECT_EQ(labels, QStringList({"Organization"}));

    picker->setCurrentIndex(0);
    EXPECT_EQ(sheet->exporter().organization(), &acme);
    const QString path = m_folder.filePath(QStringLiteral("acme.csv"));
    EXPECT_EQ(sheet->exportTo(path, false), QString());
    QFile written(path);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const QByteArray csv = written.readAll();
    EXPECT_TRUE(csv.contains("Web,")) << csv.constData();
    EXPECT_FALSE(csv.contains("Mail,")) << csv.constData();
    sheet->reject();
    ASSERT_TRUE(waitFor([&view] { return view.costReportSheet() == nullptr; }));

    // Grouped by provider a card is no client: the picker starts at the first.
    view.groupButton(ExpenseScreen::GroupBy::provider)->click();
    view.cardGrid()->setCurrentIndex(view.cardGrid()->model()->index(0, 0));
    view.costReportButton()->click();
    ASSERT_NE(view.costReportSheet(), nullptr);
    EXPECT_EQ(view.costReportSheet()->organizationPicker()->currentText(), QStringLiteral("Acme"));
    view.costReportSheet()->reject();
}

} // namespace
} // namespace vorlane::testing
