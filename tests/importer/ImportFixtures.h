// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The committed export files under tests/import/, and a temp folder that cleans up after itself.

#include "RunCommand.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace vorlane::testing {

inline std::string fixturePath(const std::string& name) {
    return std::string(VORLANE_IMPORT_FIXTURES) + "/" + name;
}

inline std::string fixture(const std::string& name) {
    return readFile(fixturePath(name));
}

class TempFolder {
public:
    TempFolder() {
        char pattern[] = "/tmp/vorlane-import-XXXXXX";
        m_path = ::mkdtemp(pattern);
    }
    ~TempFolder() { std::filesystem::remove_all(m_path); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

} // namespace vorlane::testing
