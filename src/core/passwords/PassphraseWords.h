// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace vorlane {

// The words passphrases are made of: the system's word list (Debian's `wamerican`,
// /usr/share/dict/words), keeping only words of 3 to 9 plain lower-case letters, so that no
// proper name, possessive or accented word turns up and every word is easy to type.
class PassphraseWords {
public:
    static constexpr const char* systemPath = "/usr/share/dict/words";

    // The usable words of the file at `path`, each once, in the file's order; empty when the file
    // cannot be read.
    static std::vector<std::string> load(const std::string& path);
    // The system's list, read on first use and kept (it holds no secret). Main thread.
    static const std::vector<std::string>& system();
};

} // namespace vorlane
