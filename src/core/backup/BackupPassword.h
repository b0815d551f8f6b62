// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

// The bar a backup password must clear, with the words the window and vorlane-cli both say
// when it does not. A backup holds every secret of the vault and may sit on a USB stick or in a
// synced folder, where anyone who copies it can try guesses for as long as they like: hence a
// length and the strength meter, not a warning that can be clicked away. Pure; any thread.
class BackupPassword {
public:
    static constexpr const char* tooShort = "A backup password needs at least 12 characters.";
    static constexpr const char* tooWeak =
        "This password can be guessed quickly. Use a longer one or add unrelated words.";
    static constexpr const char* notRepeated = "The two passwords are not the same.";

    // Nothing when `password` will do for a new backup; otherwise `tooShort` or `tooWeak`.
    static std::optional<std::string> problem(std::string_view password);
    // `problem`, or `notRepeated` when the second typing differs from the first.
    static std::optional<std::string> problem(std::string_view password, std::string_view repeated);
};

} // namespace vorlane
