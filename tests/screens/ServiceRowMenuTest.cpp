// SPDX-License-Identifier: GPL-3.0-or-later
// The service row's context menu on a real vault, keyring and PAM: which items it offers and
// when they are enabled, that every copy goes through the guarded 30-second clipboard, and that
// the password is copied only after the person authenticated.

#include "screens/ServiceRowMenu.h"

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;
using Action = ServiceRowMenu::Action;

class ServiceRowMenuTest : public ScreenFixture {
protected:
    ServiceRecord& fullService() {
        Organization& owner = addOrganization("Acme Ltd");
        ServiceRecord& service = addService(owner, "Mail server", [](ServiceRecord& s) {
            s.username = "postmaster";
            s.loginURL = "https://mail.acme.test/admin";
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        });
        EXPECT_TRUE(store().setPassword("hunter2-pw", service));
        return service;
    }

    ServiceRowMenu menuFor(ServiceRecord& service) {
        return ServiceRowMenu(context(), service, [this](ServiceRecord& s) { m_opened = &s; });
    }

    bool enabled(const ServiceRowMenu& menu, Action action) {
        const ServiceRowMenu::Item* item = menu.item(action);
        EXPECT_NE(item, nullptr);
        return item && item->enabled;
    }

    ServiceRecord* m_opened = nullptr;
};

TEST_F(ServiceRowMenuTest, CopyAndURLItemsAreEnabledOnlyWhenTheServiceHasTheValue) {
    Organization& owner = addOrganization("Acme Ltd");
    ServiceRecord& bare = addService(owner, "Bare");
    ServiceRowMenu menu = menuFor(bare);
    for (const Action action :
         {Action::copyUsername, Action::copyPassword, Action::copyURL, Action::openURL}) {
        EXPECT_FALSE(enabled(menu, action)) << static_cast<int>(action);
    }
    EXPECT_TRUE(enabled(menu, Action::open));
    EXPECT_TRUE(enabled(menu, Action::share));

    m_state.copyToClipboard("earlier", 0);
    menu.trigger(Action::copyUsername);
    EXPECT_EQ(clipboardText(), "earlier") << "a disabled item does nothing";

    ServiceRecord& full = fullService();
    ServiceRowMenu fullMenu = menuFor(full);
    for (const Action action :
         {Action::copyUsername, Action::copyPassword, Action::copyURL, Action::openURL}) {
        EXPECT_TRUE(enabled(fullMenu, action)) << static_cast<int>(action);
    }
    EXPECT_EQ(fullMenu.addressToOpen().value(), "https://mail.acme.test/admin");
    ServiceRecord& orphan = store().insert(ServiceRecord::created(m_clock.now()), nullptr);
    EXPECT_TRUE(enabled(menuFor(orphan), Action::duplicate)) << "no organization is no reason";

    // A pasted address of another kind is not handed to the desktop.
    full.loginURL = "vscode://file/etc/passwd";
    const auto refused = menuFor(full).addressToOpen();
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error().message, "This address cannot be opened: vscode");
}

TEST_F(ServiceRowMenuTest, CopiesAreClearedAfterThirtySecondsAndRowActionsReachTheState) {
    ServiceRecord& service = fullService();
    ServiceRowMenu menu = menuFor(service);
    menu.trigger(Action::copyUsername);
    EXPECT_EQ(clipboardText(), "postmaster");
    menu.trigger(Action::copyURL);
    EXPECT_EQ(clipboardText(), "https://mail.acme.test/admin");
    m_timers.advance(30s);
    EXPECT_EQ(clipboardText(), std::nullopt);

    menu.trigger(Action::open);
    EXPECT_EQ(m_opened, &service) << "Open is the list's own choice of row";
    menu.trigger(Action::share);
    EXPECT_TRUE(m_state.showingShareFlow());
    EXPECT_EQ(m_state.shareServices(), std::vector<ServiceRecord*>{&service});
    EXPECT_EQ(m_state.shareOrganization(), service.organization);

    menu.trigger(Action::archive);
    EXPECT_TRUE(service.isArchived);
    EXPECT_EQ(service.status(), ServiceStatus::archived);
    ServiceRowMenu archived = menuFor(service);
    EXPECT_EQ(archived.item(Action::archive), nullptr);
    ASSERT_NE(archived.item(Action::restore), nullptr);
    archived.trigger(Action::restore);
    EXPECT_FALSE(service.isArchived);
    EXPECT_EQ(service.status(), ServiceStatus::active);
}

TEST_F(ServiceRowMenuTest, DeleteConfirmsWithTheServiceTitleThenRemovesRecordAndSecret) {
    ServiceRecord& service = fullService();
    const ServiceRecord copy = service;
    m_state.navigateTo(service);
    ServiceRowMenu menu = menuFor(service);
    EXPECT_EQ(
        menu.deleteConfirmation().message,
        "This will permanently delete \"Mail server\" and its secrets. This cannot be undone.");

    menu.deleteService();
    EXPECT_EQ(store().service(copy.id), nullptr);
    EXPECT_EQ(m_state.selectedService(), nullptr) << "nothing points at the deleted record";
    EXPECT_EQ(store().getPassword(copy), std::nullopt) << "its password left the keyring";
}

TEST_F(ServiceRowMenuTest, PasswordIsCopiedOnlyAfterAuthentication) {
    ServiceRecord& service = fullService();
    connectAuthentication();
    m_state.copyToClipboard("before", 0);

    m_person.willCancel();
    menuFor(service).trigger(Action::copyPassword);
    ASSERT_TRUE(waitFor([&] { return m_person.closedPrompts == 1; }));
    QTest::qWait(50);
    EXPECT_EQ(clipboardText(), "before") << "a refusal copies nothing";

    m_person.willType(userPassword);
    menuFor(service).trigger(Action::copyPassword);
    ASSERT_TRUE(waitFor([&] { return clipboardText() == "hunter2-pw"; }));
    ASSERT_EQ(m_person.requests.size(), 2U);
    EXPECT_EQ(m_person.requests[1].reason, "Copy password for Mail server");
    m_timers.advance(30s);
    EXPECT_EQ(clipboardText(), std::nullopt) << "the password is cleared like every copy";
}

TEST_F(ServiceRowMenuTest, AServiceDeletedWhileThePromptIsOpenIsNotCopied) {
    ServiceRecord& service = fullService();
    const ServiceRecord copy = service;
    connectAuthentication();
    m_state.copyToClipboard("before", 0);
    {
        // The menu closes at once; the reply comes long after it.
        ServiceRowMenu menu = menuFor(service);
        m_person.willType(userPassword);
        menu.trigger(Action::copyPassword);
    }
    m_actions->deleteService(service);
    ASSERT_TRUE(waitFor([&] { return m_person.closedPrompts == 1; }));
    QTest::qWait(50);
    EXPECT_EQ(clipboardText(), "before");
    EXPECT_EQ(store().service(copy.id), nullptr);
}

} // namespace
} // namespace vorlane::testing
