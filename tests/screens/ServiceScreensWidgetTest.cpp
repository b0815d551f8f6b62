// SPDX-License-Identifier: GPL-3.0-or-later
// The service detail pane and the service form sheet as widgets, offscreen: what the person sees
// and presses reaches the screen models, and the window's sheet machinery ends an edit.

#include "MainWindow.h"
#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/ServiceDetailView.h"
#include "screens/ServiceFormSheet.h"
#include "screens/ServiceRowMenu.h"

#include <QApplication>
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
    childNamed<QPushButton>(sheet, QStringLiteral("Generate Password"))->click();
    EXPECT_EQ(childNamed<QLineEdit>(sheet, QStringLiteral("Password"))->text().size(), 20);
    QTest::keyClick(port, Qt::Key_Return);
    EXPECT_EQ(sheet.result(), QDialog::Accepted) << "Return presses the save button";
    ASSERT_EQ(acme.services.size(), 1U);
    EXPECT_EQ(acme.services.front()->port, 443);
    EXPECT_EQ(store().getPassword(*acme.services.front())->size(), 20U);
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
