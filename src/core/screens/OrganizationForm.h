// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

class AppState;
class DataStore;
struct Organization;
class UserCalendar;

// The sheet in which an organization is created or edited. Its target is the organization the
// navigation state's `editingOrganization` names (what every "Edit" action sets), else the one
// given as `editTarget` (edit mode, which no screen uses today), else none: a new organization.
// The fields start as the target's (`loadExisting`), or empty and active for a new one.
//
// Saving clears `editingOrganization`; cancelling leaves it set on purpose, so the next
// "New Organization" opens on the same organization again. Main thread; the store, state and
// calendar must outlive the form, and the target must stay in the store while the form is open.
class OrganizationForm {
public:
    OrganizationForm(DataStore& store, AppState& state, const UserCalendar& calendar,
                     Organization* editTarget = nullptr);

    // Editable copies of the organization's fields; tags as one comma-separated text.
    std::string name;
    std::string projectName;
    std::string contactName;
    std::string contactEmail;
    std::string contactPhone;
    std::string website;
    std::string notes;
    std::string tagsText;
    bool isActive = true;
    std::optional<std::vector<std::uint8_t>> logoData;

    // "Edit Organization" only in edit mode: an edit started through `editingOrganization` is
    // titled "New Organization", and its button reads "Create Organization".
    std::string title() const;
    std::string saveButtonTitle() const;
    // False while the name, trimmed, is empty.
    bool canSave() const;

    // Limits of a logo: beyond them a file is refused rather than kept in the vault and decoded
    // on every repaint (a hostile image can ask for gigabytes once decoded).
    static constexpr std::uintmax_t largestLogoFile = 5 * 1024 * 1024;
    static constexpr int largestLogoSide = 4096;
    struct PixelSize {
        int width = 0;
        int height = 0;
    };

    // Takes the whole file's bytes as the logo, unchanged. `pixels` is the image's size as the
    // caller read it from the file's header; nothing when it is not an image the caller knows
    // (the bytes are still kept, and show as no logo). A file that cannot be read, one over
    // 5 MiB and an image over 4096 pixels on a side change nothing and give false; the last two
    // set `logoError`, which the next choice clears.
    bool chooseLogo(const std::string& path, std::optional<PixelSize> pixels);
    const std::string& logoError() const { return m_logoError; }
    void removeLogo() { logoData.reset(); }

    // Creates the organization, or writes the fields into the target, and saves; name and project
    // trimmed, tags split at commas, the rest as typed. Clears `editingOrganization`. Returns the
    // organization saved, or null (nothing done) when `canSave` is false.
    Organization* save();

private:
    void loadExisting();
    Organization* target() const;

    DataStore& m_store;
    AppState& m_state;
    const UserCalendar& m_calendar;
    Organization* m_editTarget;
    std::string m_logoError;
};

} // namespace vorlane
