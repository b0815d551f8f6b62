// SPDX-License-Identifier: GPL-3.0-or-later
#include "passwords/PassphraseWords.h"

#include <algorithm>
#include <fstream>
#include <unordered_set>

namespace vorlane {

std::vector<std::string> PassphraseWords::load(const std::string& path) {
    std::vector<std::string> words;
    std::ifstream file(path);
    std::unordered_set<std::string> seen;
    std::string line;
    while (std::getline(file, line)) {
        const bool usable =
            line.size() >= 3 && line.size() <= 9 &&
            std::all_of(line.begin(), line.end(), [](char c) { return c >= 'a' && c <= 'z'; });
        // Words appear once, so that none is likelier than another in a passphrase.
        if (usable && seen.insert(line).second) {
            words.push_back(line);
        }
    }
    return words;
}

const std::vector<std::string>& PassphraseWords::system() {
    static const std::vector<std::string> words = load(systemPath);
    return words;
}

} // namespace vorlane
