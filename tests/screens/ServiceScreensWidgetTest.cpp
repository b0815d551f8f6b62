// SPDX-License-Identifier: GPL-3.0-or-later
// The service detail pane and the service form sheet as widgets, offscreen: what the person sees
// and presses reaches the screen models, and the window's sheet machinery ends an edit.

#include "MainWindow.h"
#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "components/PasswordGeneratorPopup.h"
#include "model/Organization.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "screens/ServiceDetailView.h"
#include "screens/ServiceFormSheet.h"
#include "screens/ServiceRowMenu.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>

namespace vorlane::testing {
namespace {

class ServiceScreensWidgetTest : public ScreenFixture {};

TEST_F(ServiceScreensWidgetTest, RevealKeepsTheFocusOnItsButtonAndDeleteAsksFirst) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& service = addService(acme, "Mail server", [](ServiceRecord& s) {
        s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    });
    ASSERT_TRUE(store().setPassword("hunter2-pw", service));
    connectAuthentication();
    m_state.navigateTo(service);
    ServiceDetailView view(context(), service);
    view.show();

    QToolButton* reveal = childNamed<QToolButton>(view, QStringLiteral("Reveal Password"));
    QLabel* value = childNamed<QLabel>(view, QStringLiteral("Password"));
    ASSERT_TRUE(reveal && value);
    EXPECT_EQ(value->text().toStdString(), ServiceDetailScreen::maskedText);
    reveal->setFocus();
    m_person.willType(userPassword);
    reveal->click();
    ASSERT_TRUE(waitFor([&] { return value->text() == QStringLiteral("hunter2-pw"); }));
    EXPECT_EQ(reveal->text(), QStringLiteral("Hide"));
    EXPECT_EQ(QApplication::focusWidget(), reveal) << "the row was updated, not rebuilt";

    buttonTitled(view, QStringLiteral("Delete Service"))->click();
    auto* box = view.findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->text().contains(QStringLiteral("\"Mail server\""))) << "asks about this one";
    EXPECT_EQ(store().fetchAllServices().size(), 1U) << "nothing is deleted before the answer";
    for (QAbstractButton* button : box->buttons()) {
        if (button->text() == QStringLiteral("Delete")) {
            button->click();
        }
    }
    EXPECT_TRUE(store().fetchAllServices().empty());
    EXPECT_EQ(m_state.selectedService(), nullptr);
}

TEST_F(ServiceScreensWidgetTest, TheSheetShowsWhatIsWrongBesideTheFieldAndSavesWhenRight) {
    Organization& acme = addOrganization("Acme");
    m_state.setSelectedOrganization(&acme);
    ServiceFormSheet sheet(context());
    sheet.show();
    QLineEdit* title = childNamed<QLineEdit>(sheet, QStringLiteral("Title"));
    QLineEdit* port = childNamed<QLineEdit>(sheet, QStringLiteral("Port"));
    ASSERT_TRUE(title && port);
    EXPECT_FALSE(sheet.saveButton()->isEnabled()) << "no title yet";

    QTest::keyClicks(title, QStringLiteral("Web server"));
    EXPECT_TRUE(sheet.saveButton()->isEnabled());
    QTest::keyClicks(port, QStringLiteral("70000"));
    EXPECT_FALSE(sheet.saveButton()->isEnabled());
    const QString portError = QStringLiteral("Enter a whole number from 0 to 65535.");
    EXPECT_TRUE(showsLabel(sheet, portError));

    port->clear();
    QTest::keyClicks(port, QStringLiteral("443"));
    EXPECT_FALSE(showsLabel(sheet, portError));
    // "Generate" offers the generator's candidate; using it fills the field and is what is saved.
    childNamed<QPushButton>(sheet, QStringLiteral("Generate Password"))->click();
    auto* popup = sheet.findChild<PasswordGeneratorPopup*>();
    ASSERT_NE(popup, nullptr);
    const std::string candidate = popup->screen().candidate();
    ASSERT_FALSE(candidate.empty());
    QTest::mouseClick(buttonTitled(*popup, QStringLiteral("Use Password")), Qt::LeftButton);
    EXPECT_EQ(childNamed<QLineEdit>(sheet, QStringLiteral("Password"))->text().toStdString(),
              candidate);
    QTest::keyClick(port, Qt::Key_Return);
    EXPECT_EQ(sheet.result(), QDialog::Accepted) << "Return presses the save button";
    ASSERT_EQ(acme.services.size(), 1U);
    EXPECT_EQ(acme.services.front()->port, 443);
    EXPECT_EQ(store().getPassword(*acme.services.front()), candidate);
}

// The open sheet titled `title`: a closed one lingers until the event loop deletes it.
QDialog* openSheet(const QWidget& parent, const QString& title) {
    for (QDialog* dialog : parent.findChildren<QDialog*>()) {
        if (dialog->isVisible() && dialog->accessibleName() == title) {
            return dialog;
        }
    }
    ADD_FAILURE() << "no open sheet " << title.toStdString();
    return nullptr;
}

void fillAndSave(QDialog& sheet, const QString& amount, const QString& note) {
    auto* amountEdit = childNamed<QLineEdit>(sheet, QStringLiteral("Amount"));
    auto* noteEdit = childNamed<QLineEdit>(sheet, QStringLiteral("Note"));
    ASSERT_TRUE(amountEdit && noteEdit);
    amountEdit->clear();
    QTest::keyClicks(amountEdit, amount);
    noteEdit->clear();
    QTest::keyClicks(noteEdit, note);
    sheet.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click();
}

TEST_F(ServiceScreensWidgetTest, PaymentsAreAddedCorrectedAndDeletedThroughTheSection) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& domain = addService(acme, "acme.example");
    ServiceDetailView view(context(), domain);
    view.show();
    // Rows added to a shown window appear once the event loop has run.
    const auto shows = [&](const QString& text) {
        return waitFor([&] { return showsLabel(view, text); });
    };
    EXPECT_TRUE(shows(QStringLiteral("No payments recorded.")));

    // A payment recorded elsewhere (a renewal) appears without reopening the service.
    PaymentRecord renewal;
    renewal.id = Uuid::generate();
    renewal.datePaid = utc(2025, 3, 10, 17);
    renewal.periodFrom = utc(2025, 3, 10, 17);
    renewal.periodTo = utc(2026, 3, 10, 17);
    renewal.amount = Decimal(15);
    store().insert(renewal, domain);
    EXPECT_TRUE(shows(QStringLiteral("Total paid: $15.00")));
    EXPECT_TRUE(shows(QStringLiteral("Covers Mar 10, 2025 \u2013 Mar 10, 2026")));
    EXPECT_FALSE(showsLabel(view, QStringLiteral("No payments recorded.")));

    // Add Payment: a wrong amount is refused in the sheet, which keeps what was typed.
    buttonTitled(view, QStringLiteral("Add Payment"))->click();
    QDialog* add = openSheet(view, QStringLiteral("Add Payment"));
    ASSERT_NE(add, nullptr);
    fillAndSave(*add, QStringLiteral("12,50"), QStringLiteral("<b>Invoice 7</b>"));
    EXPECT_TRUE(add->isVisible());
    EXPECT_TRUE(showsLabel(*add, QStringLiteral("Not a valid amount")));
    EXPECT_EQ(store().fetchPayments(domain).size(), 1U);
    fillAndSave(*add, QStringLiteral("12.50"), QStringLiteral("<b>Invoice 7</b>"));
    EXPECT_FALSE(add->isVisible());
    std::vector<PaymentRecord*> payments = store().fetchPayments(domain);
    ASSERT_EQ(payments.size(), 2U);
    EXPECT_EQ(payments[0]->amount, *Decimal::fromString("12.50")) << "newest first";
    EXPECT_EQ(payments[0]->note, "<b>Invoice 7</b>");
    EXPECT_TRUE(shows(QStringLiteral("Total paid: $27.50")));
    EXPECT_TRUE(shows(QStringLiteral("<b>Invoice 7</b>"))) << "the note, as typed";

    // Edit: the sheet starts from the payment's amount and note; both are kept.
    childNamed<QToolButton>(view, QStringLiteral("Edit payment of Mar 10, 2026"))->click();
    QDialog* edit = openSheet(view, QStringLiteral("Edit Payment"));
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(Decimal::fromString(
                  childNamed<QLineEdit>(*edit, QStringLiteral("Amount"))->text().toStdString()),
              Decimal::fromString("12.50"));
    fillAndSave(*edit, QStringLiteral("14"), QStringLiteral("Invoice 8"));
    EXPECT_FALSE(edit->isVisible());
    payments = store().fetchPayments(domain);
    ASSERT_EQ(payments.size(), 2U);
    EXPECT_EQ(payments[0]->amount, Decimal(14));
    EXPECT_EQ(payments[0]->note, "Invoice 8");
    EXPECT_EQ(payments[1]->amount, Decimal(15)) << "only the one edited";
    EXPECT_TRUE(shows(QStringLiteral("Total paid: $29.00")));

    // Delete asks first; Cancel keeps the payment, Delete removes that one only.
    const auto answer = [&](const QString& text) {
        childNamed<QToolButton>(view, QStringLiteral("Delete payment of Mar 10, 2026"))->click();
        auto* box = openSheet(view, QStringLiteral("Delete Payment"));
        ASSERT_NE(box, nullptr);
        EXPECT_TRUE(qobject_cast<QMessageBox*>(box)->text().contains(QStringLiteral("$14.00")));
        for (QAbstractButton* button : qobject_cast<QMessageBox*>(box)->buttons()) {
            if (button->text() == text) {
                button->click();
            }
        }
    };
    answer(QStringLiteral("Cancel"));
    EXPECT_EQ(store().fetchPayments(domain).size(), 2U);
    answer(QStringLiteral("Delete"));
    payments = store().fetchPayments(domain);
    ASSERT_EQ(payments.size(), 1U);
    EXPECT_EQ(payments[0]->amount, Decimal(15));
    EXPECT_TRUE(shows(QStringLiteral("Total paid: $15.00")));
}

TEST_F(ServiceScreensWidgetTest, EditFromTheRowMenuOpensTheFormAndClosingItEndsTheEdit) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& service = addService(acme, "DB");
    MainWindow window(context());
    window.show();

    ServiceRowMenu(context(), service, [](ServiceRecord&) {}).trigger(ServiceRowMenu::Action::edit);
    QDialog* sheet = window.sheet(Sheet::newService);
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(sheet->windowTitle(), QStringLiteral("Edit Service"));
    EXPECT_EQ(childNamed<QLineEdit>(*sheet, QStringLiteral("Title"))->text(), QStringLiteral("DB"));
    sheet->reject();
    EXPECT_EQ(m_state.editingService(), nullptr);
    EXPECT_FALSE(m_state.showingNewService());

    // Duplicate from the menu shows the copy in the detail pane.
    ServiceRowMenu(context(), service, [](ServiceRecord&) {
    }).trigger(ServiceRowMenu::Action::duplicate);
    ASSERT_NE(m_state.selectedService(), nullptr);
    EXPECT_EQ(m_state.selectedService()->title, "DB (Copy)");
    auto* detail = qobject_cast<ServiceDetailView*>(window.detailScreen());
    ASSERT_NE(detail, nullptr);
    EXPECT_EQ(detail->screen().title(), "DB (Copy)");
}

} // namespace
} // namespace vorlane::testing
