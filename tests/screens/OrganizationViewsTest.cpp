// SPDX-License-Identifier: GPL-3.0-or-later
#include "MainWindow.h"
#include "ScreenFixture.h"
#include "components/OrgAvatar.h"
#include "components/RowListView.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/OrganizationCardDelegate.h"
#include "screens/OrganizationDetailView.h"
#include "screens/OrganizationFormSheet.h"
#include "screens/OrganizationGridView.h"

#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>

namespace vorlane::testing {
namespace {

class OrganizationViewsTest : public ScreenFixture {};

TEST_F(OrganizationViewsTest, TheKeyboardFocusTurnsACardAndReturnOpensIt) {
    addOrganization("Acme");
    Organization& beta = addOrganization("Beta");
    OrganizationGridView view(context(), OrganizationFilter::all);
    view.resize(900, 600);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    RowListView* grid = view.grid();
    ASSERT_EQ(grid->model()->rowCount(), 2);
    EXPECT_EQ(grid->model()->index(1, 0).data(Qt::AccessibleTextRole).toString().left(5),
              QStringLiteral("Beta,"));
    // Both cards on one row at this width.
    EXPECT_EQ(grid->visualRect(grid->model()->index(0, 0)).top(),
              grid->visualRect(grid->model()->index(1, 0)).top());

    grid->setFocus();
    grid->setCurrentIndex(grid->model()->index(1, 0));
    auto* delegate = view.cardDelegate();
    EXPECT_TRUE(waitFor([&] { return delegate->flipProgress(&beta) >= 0.99; }))
        << "the focused card shows its back";
    QTest::keyClick(grid, Qt::Key_Return);
    EXPECT_EQ(m_state.selectedOrganization(), &beta);

    // A store change rebuilds the grid: the deleted organization's card goes.
    m_state.setSelectedOrganization(nullptr);
    OrganizationActions(store(), m_state).deleteOrganization(beta);
    EXPECT_EQ(grid->model()->rowCount(), 1);
    EXPECT_EQ(delegate->flipProgress(&beta), 0.0);
}

TEST_F(OrganizationViewsTest, TheSheetKeepsItsButtonDisabledForABlankNameAndSavesWithReturn) {
    OrganizationFormSheet sheet(context());
    sheet.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&sheet));
    EXPECT_FALSE(sheet.saveButton()->isEnabled());
    QTest::keyClicks(sheet.nameField(), QStringLiteral("   "));
    EXPECT_FALSE(sheet.saveButton()->isEnabled());
    QTest::keyClick(sheet.nameField(), Qt::Key_Return);
    EXPECT_TRUE(store().fetchOrganizations(true).empty());

    // Trimming and splitting the tags are the form's (OrganizationFormTest); here, that what is
    // typed in the fields reaches it.
    QTest::keyClicks(sheet.nameField(), QStringLiteral("Acme"));
    QTest::keyClicks(sheet.tagsField(), QStringLiteral("web, vip"));
    EXPECT_TRUE(sheet.saveButton()->isEnabled());
    QTest::keyClick(sheet.nameField(), Qt::Key_Return);
    EXPECT_EQ(sheet.result(), QDialog::Accepted);
    ASSERT_EQ(store().fetchOrganizations(true).size(), 1U);
    EXPECT_EQ(store().fetchOrganizations(true)[0]->tags, (std::vector<std::string>{"web", "vip"}));
}

// Real image files: the sheet reads the pixel size from the file, shows the form's refusal, and
// a logo is decoded no larger than any avatar draws it.
TEST_F(OrganizationViewsTest, TheSheetRefusesAnOversizedLogoAndAvatarsDecodeLogosScaledDown) {
    const QString wide = m_folder.filePath(QStringLiteral("wide.png"));
    ASSERT_TRUE(QImage(4097, 2, QImage::Format_RGB32).save(wide));
    const QString large = m_folder.filePath(QStringLiteral("large.png"));
    QImage image(1000, 500, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    ASSERT_TRUE(image.save(large));

    OrganizationFormSheet sheet(context());
    sheet.show();
    sheet.chooseLogo(wide);
    EXPECT_FALSE(sheet.form().logoData.has_value());
    EXPECT_TRUE(sheet.logoErrorLabel()->isVisible());
    EXPECT_EQ(
        sheet.logoErrorLabel()->text(),
        QStringLiteral("This logo is larger than 4096 × 4096 pixels. Choose a smaller image."));
    sheet.chooseLogo(large);
    ASSERT_TRUE(sheet.form().logoData.has_value());
    EXPECT_FALSE(sheet.logoErrorLabel()->isVisible());
    QTest::keyClicks(sheet.nameField(), QStringLiteral("Logo Co"));
    QTest::keyClick(sheet.nameField(), Qt::Key_Return);
    ASSERT_EQ(store().fetchOrganizations(true).size(), 1U);

    const QImage decoded = OrgAvatar::logo(store(), *store().fetchOrganizations(true)[0]);
    EXPECT_EQ(decoded.size(),
              QSize(OrgAvatar::largestDecodedSide * 2, OrgAvatar::largestDecodedSide))
        << "the shorter side at the largest avatar's size, the proportions kept";
}

TEST_F(OrganizationViewsTest, TheDetailTabsFollowTheNavigationStateAndNotesAreSavedAsTyped) {
    Organization& acme = addOrganization("Acme");
    addService(acme, "Box", [](ServiceRecord& s) { s.setServiceType(ServiceType::vps); });
    m_state.navigateTo(acme);
    MainWindow window(context());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    auto* detail = qobject_cast<OrganizationDetailView*>(window.detailScreen());
    ASSERT_NE(detail, nullptr);
    EXPECT_EQ(detail->tabBar()->count(), 12);
    EXPECT_EQ(detail->tabBar()->tabText(1), QStringLiteral("Servers (1)"));

    detail->tabBar()->setCurrentIndex(static_cast<int>(OrgDetailTab(OrgDetailTab::notes).index()));
    EXPECT_EQ(m_state.selectedOrgTab(), OrgDetailTab::notes);
    detail->notesEditor()->setFocus();
    QTest::keyClicks(detail->notesEditor(), QStringLiteral("Gate 12"));
    EXPECT_EQ(acme.notes, "Gate 12");
    EXPECT_EQ(detail->notesEditor()->textCursor().position(), 7) << "typing is not disturbed";

    m_state.setSelectedOrgTab(OrgDetailTab::servers);
    EXPECT_EQ(detail->tabBar()->currentIndex(), 1);
    ASSERT_NE(detail->currentList(), nullptr);
    EXPECT_EQ(detail->currentList()->model()->rowCount(), 2) << "the VPS header and its row";

    // Deleting the organization shown closes its screen without touching it again.
    OrganizationActions(store(), m_state).deleteOrganization(acme);
    EXPECT_NE(window.detailRoute(), DetailScreen::organizationDetail);
}

} // namespace
} // namespace vorlane::testing
