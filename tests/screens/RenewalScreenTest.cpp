// SPDX-License-Identifier: GPL-3.0-or-later
// The renewal screen on a real vault: its bands and their boundaries, the texts as shown, the
// three filters and their empty states, Mark Renewed by billing cycle in the user's calendar, and
// the widget in the window: the item count, the button, the keyboard.

#include "screens/RenewalScreen.h"

#include "MainWindow.h"
#include "ScreenFixture.h"
#include "components/RowListView.h"
#include "model/Organization.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "screens/RenewalListModel.h"
#include "screens/RenewalRowDelegate.h"
#include "screens/RenewalView.h"
#include "util/CurrencyFormat.h"

#include <QLabel>
#include <QPushButton>

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono;

class RenewalScreenTest : public ScreenFixture {
protected:
    ServiceRecord& dated(const std::string& title, std::optional<Instant> expiration,
                         Organization* owner = nullptr) {
        return addService(owner != nullptr ? *owner : m_acme, title,
                          [&](ServiceRecord& s) { s.expirationDate = expiration; });
    }

    static std::vector<std::string> titles(const RenewalScreen::Band& band) {
        std::vector<std::string> result;
        for (const RenewalScreen::Row& row : band.rows) {
            result.push_back(row.title);
        }
        return result;
    }

    static std::vector<std::string> bandTitles(const RenewalScreen& screen) {
        std::vector<std::string> result;
        for (const RenewalScreen::Band& band : screen.bands()) {
            result.push_back(band.title);
        }
        return result;
    }

    Organization& m_acme = addOrganization("Acme");
};

TEST_F(RenewalScreenTest, AllRenewalsBandsEveryDatedLiveServiceWithTheStatedBoundaries) {
    const Instant now = m_clock.now();
    dated("in 31 days", now + days(31));
    dated("in 30 days", now + days(30));
    dated("in 8 days", now + days(8));
    dated("in 7 days", now + days(7));
    dated("in 2 days and 5 hours", now + days(2) + hours(5));
    dated("in 47 hours 59", now + hours(47) + minutes(59));
    dated("a minute ago", now - minutes(1));
    dated("undated", std::nullopt);
    ServiceRecord& archived = dated("archived", now + days(3));
    archiveFlag(archived);
    Organization& other = addOrganization("Borealis");
    dated("other's", now + days(3), &other);

    RenewalScreen screen(context(), RenewalFilter::all);
    EXPECT_EQ(screen.title(), "All Renewals");
    EXPECT_EQ(screen.countText(), "8 item(s)");
    EXPECT_EQ(bandTitles(screen), (std::vector<std::string>{"Expired", "Critical (1 day)",
                                                            "This Week", "This Month", "Later"}));
    EXPECT_EQ(titles(screen.bands()[0]), std::vector<std::string>{"a minute ago"});
    EXPECT_EQ(titles(screen.bands()[1]), std::vector<std::string>{"in 47 hours 59"});
    EXPECT_EQ(titles(screen.bands()[2]),
              (std::vector<std::string>{"in 2 days and 5 hours", "other's", "in 7 days"}))
        << "by expiration date";
    EXPECT_EQ(titles(screen.bands()[3]), (std::vector<std::string>{"in 8 days", "in 30 days"}));
    EXPECT_EQ(titles(screen.bands()[4]), std::vector<std::string>{"in 31 days"});
    EXPECT_EQ(screen.bands()[2].count, 3);

    // The organization's Renewals tab: only its own services, in the same bands.
    RenewalScreen tab(context(), RenewalFilter::all, &other);
    EXPECT_EQ(tab.countText(), "1 item(s)");
    EXPECT_EQ(bandTitles(tab), std::vector<std::string>{"This Week"});
}

TEST_F(RenewalScreenTest, RowsAndBandsCarryTheirTextsColoursAndExactTotals) {
    const Instant now = m_clock.now();
    ServiceRecord& vps = dated("Main VPS", now + days(12) + hours(1));
    vps.setServiceType(ServiceType::vps);
    vps.monthlyCost = Decimal::fromString("0.10").value();
    ServiceRecord& mail = dated("Mailbox", now + days(20));
    mail.setServiceType(ServiceType::mailbox);
    mail.monthlyCost = Decimal::fromString("0.20").value();
    dated("Old domain", now - days(3) - hours(2)).setServiceType(ServiceType::domainRegistrar);

    RenewalScreen screen(context(), RenewalFilter::all);
    ASSERT_EQ(screen.bands().size(), 2U);
    const RenewalScreen::Band& expired = screen.bands()[0];
    EXPECT_EQ(expired.totalCostText, "") << "a band that costs nothing shows no amount";
    EXPECT_EQ(expired.rows[0].daysText, "3 days ago");
    EXPECT_EQ(expired.rows[0].expiration, ExpirationState::expired);
    EXPECT_EQ(expired.rows[0].daysColor, ExpirationState(ExpirationState::expired).color());

    const RenewalScreen::Band& month = screen.bands()[1];
    EXPECT_EQ(month.totalCostText, "$0.3");
    EXPECT_EQ(month.accessibleText, "This Month, 2 item(s), $0.3 a month, $0.30 due.");
    const RenewalScreen::Row& row = month.rows[0];
    EXPECT_EQ(row.daysText, "12 days left");
    EXPECT_EQ(row.expiration, ExpirationState::soon);
    EXPECT_EQ(row.typeIcon, ServiceType(ServiceType::vps).icon());
    EXPECT_EQ(row.accessibleText, "Main VPS, VPS. Expiring Soon, 12 days left, Due: $0.10.");
}

// A screen reader hears what each row and header shows, the amount due with the rest; a row or
// band with nothing due says no amount.
TEST_F(RenewalScreenTest, ListModelSaysTheAmountDueOfEachRowAndBand) {
    const Instant now = m_clock.now();
    ServiceRecord& domain = dated("Domain", now + days(5));
    domain.setServiceType(ServiceType::domainRegistrar);
    domain.setBillingCycle(BillingCycle::annual);
    domain.yearlyCost = Decimal::fromString("15").value();
    ServiceRecord& vps = dated("VPS", now + days(6));
    vps.setServiceType(ServiceType::vps);
    vps.setBillingCycle(BillingCycle::quarterly);
    vps.monthlyCost = Decimal::fromString("4.5").value();
    dated("Free login", now + days(20)).setServiceType(ServiceType::vps);

    RenewalListModel model;
    model.setBands(RenewalScreen(context(), RenewalFilter::all).bands());
    std::vector<std::string> spoken;
    for (int row = 0; row < model.rowCount(); ++row) {
        spoken.push_back(
            model.data(model.index(row, 0), Qt::AccessibleTextRole).toString().toStdString());
    }
    EXPECT_EQ(spoken, (std::vector<std::string>{
                          "This Week, 2 item(s), $5.75 a month, $28.50 due.",
                          "Domain, Domain Registrar. Upcoming, 5 days left, Due: $15.00.",
                          "VPS, VPS. Upcoming, 6 days left, Due: $13.50.",
                          "This Month, 1 item(s).",
                          "Free login, VPS. Expiring Soon, 20 days left.",
                      }));
}

TEST_F(RenewalScreenTest, ExpiringSoonAndExpiredListTheirOwnServicesOrShowTheirEmptyStates) {
    RenewalScreen soon(context(), RenewalFilter::expiringSoon);
    RenewalScreen expired(context(), RenewalFilter::expired);
    // Each filter has its own empty state.
    ASSERT_TRUE(soon.emptyState() && expired.emptyState());
    EXPECT_EQ(soon.emptyState()->title, "All Clear");
    EXPECT_EQ(expired.emptyState()->title, "Nothing Expired");
    EXPECT_EQ(soon.countText(), "0 item(s)");

    const Instant now = m_clock.now();
    dated("in 31 days", now + days(31));
    dated("in 30 days", now + days(30));
    dated("in 2 days", now + days(2));
    dated("last week", now - days(7));
    dated("yesterday", now - days(1));
    soon.rebuild();
    expired.rebuild();
    EXPECT_EQ(soon.title(), "Expiring Soon");
    EXPECT_EQ(soon.countText(), "2 item(s)") << "30 days is the horizon, whatever the setting";
    EXPECT_EQ(bandTitles(soon), (std::vector<std::string>{"This Week", "This Month"}));
    EXPECT_EQ(soon.emptyState(), std::nullopt);
    EXPECT_EQ(expired.title(), "Expired");
    ASSERT_EQ(bandTitles(expired), std::vector<std::string>{"Expired"});
    EXPECT_EQ(titles(expired.bands()[0]), (std::vector<std::string>{"last week", "yesterday"}));
}

// The cycle arithmetic is ServiceActions' (ServiceActionsTest); here, that the screen renews
// through it and then follows the store.
TEST_F(RenewalScreenTest, MarkRenewedRenewsThroughTheSharedActionAndTheListFollowsTheStore) {
    // 31 January 2026, 09:00 in New York: a month later is the end of February, still expired.
    ServiceRecord& monthly = dated("Monthly", utc(2026, 1, 31, 14));
    monthly.setBillingCycle(BillingCycle::monthly);
    monthly.setStatus(ServiceStatus::expired);
    ServiceRecord& once = dated("One time", utc(2026, 3, 1, 14));
    once.setBillingCycle(BillingCycle::oneTime);
    store().save();

    RenewalScreen screen(context(), RenewalFilter::expired);
    EXPECT_EQ(screen.countText(), "2 item(s)");
    screen.markRenewed(monthly);
    EXPECT_EQ(monthly.expirationDate, utc(2026, 2, 28, 14));
    EXPECT_FALSE(store().hasUnsavedChanges()) << "saved at once";
    screen.markRenewed(once); // a year ahead: no longer expired
    screen.rebuild();
    EXPECT_EQ(screen.countText(), "1 item(s)") << "Monthly is still expired after one month";
}

TEST_F(RenewalScreenTest, InEurosADomainDueThisWeekShowsItsChargeAndEachRenewalRecordsAPayment) {
    ASSERT_TRUE(setVaultCurrency("EUR"));
    struct DefaultCurrency {
        ~DefaultCurrency() { setVaultCurrency(defaultCurrency); }
    } restore;
    // 15 a year, due in 5 days (15 March 2026, noon in New York).
    ServiceRecord& domain = dated("acme.example", m_clock.now() + days(5));
    domain.setBillingCycle(BillingCycle::annual);
    domain.yearlyCost = money("15");
    ServiceRecord& hosting = dated("Hosting", m_clock.now() + days(6));
    hosting.setBillingCycle(BillingCycle::quarterly);
    hosting.monthlyCost = money("9.5");
    dated("Free", m_clock.now() + days(4));
    store().save();

    RenewalScreen screen(context(), RenewalFilter::all);
    ASSERT_EQ(bandTitles(screen), std::vector<std::string>{"This Week"});
    const RenewalScreen::Band& week = screen.bands()[0];
    EXPECT_EQ(week.totalCostText, "€10.75") << "the monthly total as before";
    EXPECT_EQ(week.dueText, "€43.50 due");
    EXPECT_EQ(titles(week), (std::vector<std::string>{"Free", "acme.example", "Hosting"}));
    EXPECT_EQ(week.rows[0].dueText, "") << "nothing due, nothing shown";
    EXPECT_EQ(week.rows[1].dueText, "Due: €15.00");
    EXPECT_EQ(week.rows[2].dueText, "Due: €28.50");
    EXPECT_EQ(screen.renewalNotice(), std::nullopt);

    const Instant oldExpiration = *domain.expirationDate;
    screen.markRenewed(domain);
    std::vector<PaymentRecord*> payments = store().fetchPayments(domain);
    ASSERT_EQ(payments.size(), 1u);
    EXPECT_EQ(payments[0]->amount.toString(), "15");
    EXPECT_EQ(payments[0]->datePaid, m_clock.now());
    EXPECT_EQ(payments[0]->periodFrom, oldExpiration);
    EXPECT_EQ(payments[0]->periodTo, domain.expirationDate);
    EXPECT_EQ(screen.renewalNotice(), "Renewed until Mar 15, 2027 \u2014 €15.00 recorded");
    EXPECT_EQ(screen.renewalAmountText(), "15");

    // A wrong amount is refused where it was typed; a right one is kept and saved.
    EXPECT_EQ(screen.editRenewalAmount("fifteen"), "Not a valid amount");
    EXPECT_EQ(screen.editRenewalAmount("-1"), "Not a valid amount");
    EXPECT_EQ(payments[0]->amount.toString(), "15");
    EXPECT_EQ(screen.editRenewalAmount(" 16.2 "), std::nullopt);
    EXPECT_EQ(screen.renewalNotice(), "Renewed until Mar 15, 2027 \u2014 €16.20 recorded");
    EXPECT_FALSE(store().hasUnsavedChanges());

    // A second renewal is a second payment; the corrected first one stays as corrected.
    m_clock.advance(hours(1));
    screen.markRenewed(domain);
    payments = store().fetchPayments(domain);
    ASSERT_EQ(payments.size(), 2u);
    EXPECT_EQ(payments[0]->amount.toString(), "15");
    EXPECT_EQ(payments[1]->amount.toString(), "16.2");
    EXPECT_EQ(screen.renewalNotice(), "Renewed until Mar 15, 2028 \u2014 €15.00 recorded");
    // Once the service is gone, so is the notice.
    m_actions->deleteService(domain);
    EXPECT_EQ(screen.renewalNotice(), std::nullopt);
}

TEST_F(RenewalScreenTest, WidgetInTheWindowRenewsByButtonAndKeyAndOpensByReturn) {
    const Instant now = m_clock.now();
    ServiceRecord& late = dated("Late site", now - days(2));
    late.setBillingCycle(BillingCycle::annual);
    ServiceRecord& older = dated("Older site", now - days(9));
    older.setBillingCycle(BillingCycle::annual);
    MainWindow window(context());
    window.show();
    m_state.setSelectedSidebarItem(SidebarItem::expired);
    auto* view = qobject_cast<RenewalView*>(window.detailScreen());
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->countLabel()->text(), QStringLiteral("2 item(s)"));
    RowListView* list = view->list();
    ASSERT_TRUE(waitFor([&] { return list->isVisible(); }));
    // Row 0 is the "Expired" header; row 1 the older site.
    const QModelIndex olderRow = list->model()->index(1, 0);
    EXPECT_EQ(olderRow.data(Qt::AccessibleTextRole).toString(),
              QStringLiteral("Older site, Custom Secret. Expired, 9 days ago."));
    QStyleOptionViewItem option;
    option.rect = list->visualRect(olderRow);
    option.font = list->font();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      RenewalRowDelegate::buttonRect(option).center());
    ASSERT_TRUE(waitFor([&] { return *older.expirationDate > now; }));
    EXPECT_EQ(m_state.selectedService(), nullptr) << "the button renews, it does not open";
    ASSERT_TRUE(waitFor([&] { return view->countLabel()->text() == QStringLiteral("1 item(s)"); }));

    // The bar above the list says what the renewal recorded (a service of no cost: nothing).
    ASSERT_TRUE(waitFor([&] { return view->noticeLabel()->isVisible(); }));
    EXPECT_EQ(view->noticeLabel()->text(),
              QStringLiteral("Renewed until Mar 1, 2027 \u2014 $0.00 recorded"));
    EXPECT_EQ(view->editAmountButton()->text(), QStringLiteral("Edit Amount"));

    list->setFocus();
    list->setCurrentIndex(list->model()->index(1, 0));
    QTest::keyClick(list, Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] { return *late.expirationDate > now; }));
    // Nothing expired any more: the empty state, and the window keeps this screen.
    ASSERT_TRUE(waitFor([&] { return view->countLabel()->text() == QStringLiteral("0 item(s)"); }));

    m_state.setSelectedSidebarItem(SidebarItem::expiringSoon);
    late.expirationDate = now + days(5);
    store().noteChanged(late);
    auto* soon = qobject_cast<RenewalView*>(window.detailScreen());
    ASSERT_NE(soon, nullptr);
    ASSERT_TRUE(waitFor([&] { return soon->list()->model()->rowCount() == 2; }));
    soon->list()->setFocus();
    soon->list()->setCurrentIndex(soon->list()->model()->index(1, 0));
    QTest::keyClick(soon->list(), Qt::Key_Return);
    EXPECT_EQ(m_state.selectedService(), &late);
}

} // namespace
} // namespace vorlane::testing
