#include "MainWindow.h"

#include "SymbolIcon.h"
#include "model/ExpirationState.h"
#include "model/OrgDetailTab.h"
#include "model/ServiceType.h"
#include "model/SidebarItem.h"

#include <QListWidget>

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace vorlane {
namespace {

TEST(MainWindowTest, OpensAtDefaultSizeWithTitleAndMinimum) {
    MainWindow window;
    window.show();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Vorlane"));
    EXPECT_EQ(window.minimumSize(), QSize(1000, 650));
    EXPECT_EQ(window.size(), QSize(1280, 800));
}

TEST(MainWindowTest, SidebarListsEveryDestinationInOrderWithAnIcon) {
    MainWindow window;
    const auto* sidebar = window.findChild<QListWidget*>();
    ASSERT_NE(sidebar, nullptr);
    const auto items = SidebarItem::allCases();
    ASSERT_EQ(sidebar->count(), static_cast<int>(items.size()));
    for (int row = 0; row < sidebar->count(); ++row) {
        const SidebarItem item = items[static_cast<std::size_t>(row)];
        EXPECT_EQ(sidebar->item(row)->text().toStdString(), item.displayName());
        EXPECT_FALSE(sidebar->item(row)->icon().isNull()) << item.rawValue();
    }
    EXPECT_EQ(sidebar->currentRow(), 0);
}

TEST(SymbolIconTest, EverySymbolOfTheVocabulariesHasAThemeIcon) {
    std::vector<std::string_view> symbols;
    for (const ServiceType type : ServiceType::allCases()) {
        symbols.push_back(type.icon());
    }
    for (const OrgDetailTab tab : OrgDetailTab::allCases()) {
        symbols.push_back(tab.icon());
    }
    for (const SidebarItem item : SidebarItem::allCases()) {
        symbols.push_back(item.icon());
    }
    for (std::size_t i = 0; i < ExpirationState::caseCount; ++i) {
        symbols.push_back(ExpirationState(static_cast<ExpirationState::Value>(i)).icon());
    }
    for (const std::string_view symbol : symbols) {
        const QString name = SymbolIcon::themeName(symbol);
        EXPECT_FALSE(name.isEmpty()) << symbol << " has no entry in the icon table";
        EXPECT_TRUE(QIcon::hasThemeIcon(name)) << symbol << " -> " << name.toStdString();
        EXPECT_FALSE(SymbolIcon::icon(symbol).pixmap(32, 32).isNull()) << symbol;
    }
}

} // namespace
} // namespace vorlane
