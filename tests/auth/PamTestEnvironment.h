// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTemporaryDir>

#include <cstdlib>
#include <fstream>
#include <string>

namespace vorlane::testing {

// The pam_matrix password file for one test. The test run preloads pam_wrapper with a service
// directory whose "vorlane" service checks passwords and accounts with pam_matrix, which reads
// the file named by PAM_MATRIX_PASSWD at every check. Set it up before starting a conversation.
class PamPasswords {
public:
    // One account: `user` with `password`, allowed to use `service`.
    void set(const std::string& user, const std::string& password,
             const std::string& service = "vorlane") {
        const std::string path = m_dir.filePath(QStringLiteral("passdb")).toStdString();
        std::ofstream(path, std::ios::trunc) << user << ':' << password << ':' << service << '\n';
        setenv("PAM_MATRIX_PASSWD", path.c_str(), 1);
    }

    // Whether this process runs under pam_wrapper; without it PAM would ask the real system.
    static bool wrapped() {
        const char* enabled = std::getenv("PAM_WRAPPER");
        return enabled != nullptr && std::string(enabled) == "1" &&
               std::getenv("PAM_WRAPPER_SERVICE_DIR") != nullptr;
    }

private:
    QTemporaryDir m_dir;
};

} // namespace vorlane::testing
