// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/OpenableAddress.h"
#include "util/Uuid.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

struct AppContext;
struct ServiceRecord;

// The context menu of a service row, the same in every list: its items in order with their
// enabled states, and what each does. Built for one service when the menu opens and dropped when
// it closes; the service must stay alive while the menu is open (it is read again for every
// action). Main thread only.
//
// Adding an item: a value in `Action`, a line in `buildItems` in the group it belongs to, and its
// case in `trigger`.
class ServiceRowMenu {
public:
    enum class Action {
        open,
        edit,
        duplicate,
        copyUsername,
        copyPassword,
        copyURL,
        openURL,
        share,
        archive,
        restore,
        deleteService,
    };

    struct Item {
        Action action;
        std::string title;
        std::string_view icon;
        bool enabled = true;
        bool separatorBefore = false;
        bool destructive = false;
    };

    struct Confirmation {
        std::string title;
        std::string message;
        std::string confirmTitle;
        std::string cancelTitle;
    };

    // `open` is what the list does when the row itself is chosen (each screen has its own).
    ServiceRowMenu(AppContext& context, ServiceRecord& service,
                   std::function<void(ServiceRecord&)> open);

    const std::vector<Item>& items() const { return m_items; }
    const Item* item(Action action) const;

    // Runs `action` when its item is enabled; a disabled one does nothing. "Edit" opens the
    // service form on it; "Duplicate" makes the copy and shows it. Copying the password first asks
    // the person to authenticate ("Copy password for " + title) and copies only when they did, once
    // the reply comes; the service is looked up again then, so deleting it in the meantime copies
    // nothing. "Open URL" and "Delete…" are not run here: the window opens `addressToOpen` (or
    // shows why not) and asks `deleteConfirmation` before calling `deleteService`.
    void trigger(Action action);

    // What "Open URL" hands to the desktop: the login URL, if its scheme may be opened.
    Result<std::string, OpenableAddress::Refusal> addressToOpen() const;
    Confirmation deleteConfirmation() const;
    // Deletes the service with its secrets; the service is gone afterwards.
    void deleteService();

private:
    void buildItems();
    void copy(const std::string& text);
    void copyPassword();

    AppContext& m_context;
    ServiceRecord& m_service;
    std::function<void(ServiceRecord&)> m_open;
    std::vector<Item> m_items;
};

} // namespace vorlane
