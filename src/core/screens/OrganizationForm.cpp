// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationForm.h"

#include "app/AppState.h"
#include "model/Organization.h"
#include "store/DataStore.h"
#include "util/TagText.h"
#include "util/UserCalendar.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace vorlane {

OrganizationForm::OrganizationForm(DataStore& store, AppState& state, const UserCalendar& calendar,
                                   Organization* editTarget)
    : m_store(store)
    , m_state(state)
    , m_calendar(calendar)
    , m_editTarget(editTarget) {
    loadExisting();
}

void OrganizationForm::loadExisting() {
    // The edit mode's organization comes first here, while saving prefers `editingOrganization`:
    // the two only differ if both are set, which no screen does.
    Organization* organization =
        m_editTarget != nullptr ? m_editTarget : m_state.editingOrganization();
    if (organization == nullptr) {
        return;
    }
    name = organization->name;
    projectName = organization->projectName;
    contactName = organization->contactName;
    contactEmail = organization->contactEmail;
    contactPhone = organization->contactPhone;
    website = organization->website;
    notes = organization->notes;
    tagsText = joinTags(organization->tags);
    isActive = organization->isActive;
    logoData = m_store.logo(*organization);
}

Organization* OrganizationForm::target() const {
    return m_state.editingOrganization() != nullptr ? m_state.editingOrganization() : m_editTarget;
}

std::string OrganizationForm::title() const {
    return m_editTarget != nullptr ? "Edit Organization" : "New Organization";
}

std::string OrganizationForm::saveButtonTitle() const {
    return m_editTarget != nullptr ? "Save Changes" : "Create Organization";
}

bool OrganizationForm::canSave() const {
    return !trimmed(name).empty();
}

bool OrganizationForm::chooseLogo(const std::string& path, std::optional<PixelSize> pixels) {
    m_logoError.clear();
    // A directory opens as a stream on Linux and only fails on reading.
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return false;
    }
    const auto tooLarge = [this] {
        m_logoError = "This logo is larger than 5 MB. Choose a smaller image.";
        return false;
    };
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!error && size > largestLogoFile) {
        return tooLarge();
    }
    // Read one byte beyond the limit at most: a file that is not a regular one has no size.
    std::vector<std::uint8_t> bytes(largestLogoFile + 1);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (file.bad()) {
        return false;
    }
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    if (bytes.size() > largestLogoFile) {
        return tooLarge();
    }
    if (pixels && (pixels->width > largestLogoSide || pixels->height > largestLogoSide)) {
        m_logoError = "This logo is larger than 4096 × 4096 pixels. Choose a smaller image.";
        return false;
    }
    logoData = std::move(bytes);
    return true;
}

Organization* OrganizationForm::save() {
    if (!canSave()) {
        return nullptr;
    }
    const Instant now = m_calendar.now();
    auto fill = [&](Organization& organization) {
        organization.name = std::string(trimmed(name));
        organization.projectName = std::string(trimmed(projectName));
        organization.contactName = contactName;
        organization.contactEmail = contactEmail;
        organization.contactPhone = contactPhone;
        organization.website = website;
        organization.notes = notes;
        organization.tags = splitTags(tagsText);
        organization.isActive = isActive;
        organization.updatedAt = now;
    };
    Organization* organization = target();
    if (organization == nullptr) {
        // Filled before it is inserted, so that no screen ever sees it half made.
        Organization created = Organization::created(now);
        fill(created);
        created.logoData = logoData;
        organization = &m_store.insert(std::move(created));
    } else {
        fill(*organization);
        m_store.setLogo(*organization, logoData);
    }
    m_store.save();
    m_state.setEditingOrganization(nullptr);
    return organization;
}

} // namespace vorlane
