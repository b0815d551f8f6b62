// SPDX-License-Identifier: GPL-3.0-or-later
// The sidebar widget's wiring, offscreen: counts that follow the store, the selection bound to
// the navigation state, and the keyboard reaching every row and the footer button.

#include "screens/SidebarView.h"

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <QAbstractItemModel>
#include <QImage>
#include <QListView>
#include <QToolButton>

#include <cstdlib>

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

// A tinted count on the chosen row is drawn in the selection's text colour, as the title is: an
// orange count mixed into the blue selection could hardly be read, in either palette.
TEST_F(SidebarViewTest, TheChosenRowsCountIsWrittenInTheSelectionsTextColour) {
    m_state.setPasswordHealthFindings(8);
    m_state.setSelectedSidebarItem(SidebarItem::passwordHealth);
    SidebarView sidebar(context());
    sidebar.resize(240, 600);
    sidebar.show();
    QListView& list = *sidebar.list();
    const int health = rowTitled(list, QStringLiteral("Password Health"));
    ASSERT_GE(health, 0);
    ASSERT_TRUE(list.selectionModel()->isSelected(list.model()->index(health, 0)));

    QPalette dark = list.palette();
    dark.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x20));
    dark.setColor(QPalette::Text, QColor(0xe8, 0xe8, 0xea));
    dark.setColor(QPalette::Highlight, QColor(0x3d, 0x7a, 0xed));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    for (const QPalette& palette : {list.palette(), dark}) {
        list.setPalette(palette);
        const QImage image = list.viewport()->grab().toImage();
        const QRect row = list.visualRect(list.model()->index(health, 0));
        // The badge sits at the row's right end.
        const QRect badge(row.right() - 48, row.top(), 48, row.height());
        const QColor ink = palette.color(QPalette::HighlightedText);
        int inked = 0;
        int orange = 0;
        for (int y = badge.top(); y <= badge.bottom(); ++y) {
            for (int x = badge.left(); x <= badge.right(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                inked += std::abs(pixel.red() - ink.red()) + std::abs(pixel.green() - ink.green()) +
                             std::abs(pixel.blue() - ink.blue()) <
                         60;
                orange += pixel.red() - pixel.blue() > 60;
            }
        }
        EXPECT_GT(inked, 4) << "the count's strokes are in the selection's text colour";
        EXPECT_EQ(orange, 0) << "no trace of the orange tint on the selection";
    }
}

} // namespace
} // namespace vorlane::testing
