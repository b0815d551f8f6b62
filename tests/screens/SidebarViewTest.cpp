// SPDX-License-Identifier: GPL-3.0-or-later
// The sidebar widget's wiring, offscreen: counts that follow the store, the selection bound to
// the navigation state, and the keyboard reaching every row and the footer button.

#include "screens/SidebarView.h"

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <QAbstractItemModel>
#include <QListView>
#include <QToolButton>

namespace vorlane::testing {
namespace {

class SidebarViewTest : public ScreenFixture {
protected:
    static QString spoken(const QListView& list, int row) {
        return list.model()->index(row, 0).data(Qt::AccessibleTextRole).toString();
    }
    static int rowTitled(const QListView& list, const QString& title) {
        for (int row = 0; row < list.model()->rowCount(); ++row) {
            if (list.model()->index(row, 0).data(Qt::DisplayRole).toString() == title) {
                return row;
            }
        }
        return -1;
    }
};

TEST_F(SidebarViewTest, CountsFollowTheStoreAndRowsSayThem) {
    Organization& acme = addOrganization("Acme");
    SidebarView sidebar(context());
    sidebar.show();
    QListView& list = *sidebar.list();
    const int allCredentials = rowTitled(list, QStringLiteral("All Credentials"));
    ASSERT_GE(allCredentials, 0);
    EXPECT_EQ(spoken(list, allCredentials), QStringLiteral("All Credentials"));

    addService(acme, "Mail");
    addService(acme, "Server");
    EXPECT_TRUE(waitFor([&] {
        return spoken(list, allCredentials) == QStringLiteral("All Credentials, 2 credentials");
    })) << spoken(list, allCredentials).toStdString();

    // A new organization joins the quick list in its place by name.
    addOrganization("Aardvark");
    EXPECT_TRUE(waitFor([&] { return rowTitled(list, QStringLiteral("Aardvark")) >= 0; }));
    EXPECT_EQ(rowTitled(list, QStringLiteral("Aardvark")) + 1,
              rowTitled(list, QStringLiteral("Acme")));
}

TEST_F(SidebarViewTest, TheKeyboardChoosesDestinationsAndOpensOrganizations) {
    Organization& acme = addOrganization("Acme");
    SidebarView sidebar(context());
    sidebar.show();
    QListView& list = *sidebar.list();
    list.setFocus();
    ASSERT_TRUE(waitFor([&] { return list.hasFocus(); }));
    EXPECT_EQ(list.currentIndex().row(), rowTitled(list, QStringLiteral("Dashboard")));

    // Down passes over the "Smart Views" header to reach Favorites.
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_EQ(m_state.selectedSidebarItem(), SidebarItem::favorites);

    // End reaches the quick list; moving there does not navigate, Return does.
    QTest::keyClick(&list, Qt::Key_End);
    EXPECT_EQ(list.currentIndex().row(), rowTitled(list, QStringLiteral("Acme")));
    EXPECT_EQ(m_state.selectedOrganization(), nullptr);
    QTest::keyClick(&list, Qt::Key_Return);
    EXPECT_EQ(m_state.selectedOrganization(), &acme);
    EXPECT_EQ(m_state.selectedSidebarItem(), SidebarItem::organizations);

    // A menu command moves the selection the other way.
    m_state.showExpiringSoon();
    EXPECT_EQ(list.currentIndex().row(), rowTitled(list, QStringLiteral("Expiring Soon")));

    QToolButton& footer = *sidebar.newOrganizationButton();
    footer.setFocus();
    QTest::keyClick(&footer, Qt::Key_Space);
    EXPECT_TRUE(m_state.showingNewOrganization());
}

} // namespace
} // namespace vorlane::testing
