// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/BackupPassword.h"

#include "backup/BackupFile.h"
#include "passwords/PasswordStrength.h"

namespace vorlane {

std::optional<std::string> BackupPassword::problem(std::string_view password) {
    if (PasswordStrength::length(password) < BackupFile::minimumPasswordLength) {
        return tooShort;
    }
    if (!PasswordStrength::suitsEncryption(password)) {
        return tooWeak;
    }
    return std::nullopt;
}

std::optional<std::string> BackupPassword::problem(std::string_view password,
                                                   std::string_view repeated) {
    if (auto first = problem(password)) {
        return first;
    }
    if (password != repeated) {
        return notRepeated;
    }
    return std::nullopt;
}

} // namespace vorlane
