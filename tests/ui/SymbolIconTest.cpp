// SPDX-License-Identifier: GPL-3.0-or-later
#include "SymbolIcon.h"

#include "model/ExpirationState.h"
#include "model/OrgDetailTab.h"
#include "model/ServiceType.h"
#include "model/SidebarItem.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace vorlane {
namespace {

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
