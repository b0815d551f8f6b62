// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/BackupRotation.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <system_error>

namespace vorlane {

namespace {

constexpr std::string_view prefix = "Vorlane-Backup-";
constexpr std::string_view suffix = ".vorlanebackup";
constexpr std::string_view datePattern = "dddd-dd-dd";

} // namespace

bool BackupRotation::isBackupName(std::string_view fileName) {
    if (fileName.size() != prefix.size() + datePattern.size() + suffix.size() ||
        !fileName.starts_with(prefix) || !fileName.ends_with(suffix)) {
        return false;
    }
    const std::string_view date = fileName.substr(prefix.size(), datePattern.size());
    for (std::size_t i = 0; i < datePattern.size(); ++i) {
        const bool digit = date[i] >= '0' && date[i] <= '9';
        if (datePattern[i] == 'd' ? !digit : date[i] != datePattern[i]) {
            return false;
        }
    }
    return true;
}

Result<std::vector<std::string>, std::string> BackupRotation::backupsIn(const std::string& folder) {
    namespace fs = std::filesystem;
    std::error_code error;
    fs::directory_iterator entries(folder, error);
    if (error) {
        return error.message();
    }
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : entries) {
        std::string name = entry.path().filename().string();
        // symlink_status: a link named like a backup points somewhere this program did not write.
        if (isBackupName(name) && fs::is_regular_file(entry.symlink_status(error))) {
            names.push_back(std::move(name));
        }
    }
    // The date is the only part that differs, and ISO dates sort as text.
    std::ranges::sort(names, std::greater<>());
    return names;
}

std::optional<std::string> BackupRotation::keepNewest(const std::string& folder, int keep) {
    auto backups = backupsIn(folder);
    if (!backups) {
        return backups.error();
    }
    const auto kept = static_cast<std::size_t>(std::max(keep, 1));
    const std::vector<std::string>& names = backups.value();
    for (std::size_t i = kept; i < names.size(); ++i) {
        std::error_code error;
        std::filesystem::remove(std::filesystem::path(folder) / names[i], error);
        if (error) {
            return error.message();
        }
    }
    return std::nullopt;
}

} // namespace vorlane
