// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vorlane {

class AppState;
class DataStore;
struct Organization;

// What every screen can do to one organization, in one place: the grid's card menu, the
// organization detail's header and the archive's organization rows all call these, and draw the
// same menu from `menu`. Main thread only; the store and state must outlive it.
class OrganizationActions {
public:
    enum class Action { open, toggleFavorite, edit, share, archive, restore, deleteOrganization };

    // One entry of an organization's context menu; no action means a separator.
    struct MenuItem {
        std::optional<Action> action;
        std::string title;
        std::string icon;
        bool destructive = false;
    };

    OrganizationActions(DataStore& store, AppState& state);

    // "Open", separator, "Add to Favorites" / "Remove from Favorites", "Edit", "Share", separator,
    // "Archive" (or "Restore" for an archived organization), "Delete".
    static std::vector<MenuItem> menu(const Organization& organization);

    // Runs `action`. After `deleteOrganization` the organization is gone.
    void perform(Action action, Organization& organization) const;

    // The organization detail, on its overview tab.
    void open(Organization& organization) const;
    // Flips `isFavorite` and saves.
    void toggleFavorite(Organization& organization) const;
    // The organization form, opened on this organization (it stays the form's target until saved).
    void edit(Organization& organization) const;
    // The share sheet on every service of the organization.
    void share(Organization& organization) const;
    // In or out of the archive, then saved.
    void archive(Organization& organization) const;
    void restore(Organization& organization) const;
    // At once, without asking: the navigation state lets go of it and of its services, then the
    // store removes its services' secrets, the organization, its services and share records.
    void deleteOrganization(Organization& organization) const;

private:
    void setArchived(Organization& organization, bool archived) const;

    DataStore& m_store;
    AppState& m_state;
};

} // namespace vorlane
