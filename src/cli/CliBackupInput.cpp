// SPDX-License-Identifier: GPL-3.0-or-later
#include "CliBackupInput.h"

#include "SecretFile.h"
#include "TerminalPrompt.h"
#include "WipeOnExit.h"
#include "backup/BackupFile.h"
#include "backup/BackupPassword.h"

#include <openssl/crypto.h>

#include <ostream>

namespace vorlane {

namespace {

std::optional<std::string> fromFile(const std::string& path, std::string_view command,
                                    std::ostream& err) {
    std::string password;
    if (const auto error = SecretFile::readPassword(path, password)) {
        OPENSSL_cleanse(password.data(), password.size());
        err << "vorlane-cli " << command << ": cannot read " << path << ": " << *error << "\n";
        return std::nullopt;
    }
    return password;
}

// One typing at the terminal; nothing (and why, on `err`) when nobody is there to ask.
std::optional<std::string> typed(std::string_view prompt, std::string_view command,
                                 std::ostream& err) {
    if (!TerminalPrompt::isInteractive()) {
        err << "vorlane-cli " << command
            << ": no backup password: give it with --password-file FILE, or run this in a "
               "terminal to be asked\n";
        return std::nullopt;
    }
    auto answer = TerminalPrompt::readSecret(prompt);
    if (!answer) {
        err << "vorlane-cli " << command << ": the backup password could not be read\n";
    }
    return answer;
}

} // namespace

std::optional<CliBackupInput::Arguments>
CliBackupInput::parse(const std::vector<std::string>& arguments, std::string_view command,
                      bool takesMerge, std::ostream& err) {
    Arguments parsed;
    bool hasFile = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--password-file") {
            if (i + 1 >= arguments.size()) {
                err << "vorlane-cli " << command << ": --password-file needs a file\n";
                return std::nullopt;
            }
            parsed.passwordFile = arguments[++i];
        } else if (argument == "--merge" && takesMerge) {
            parsed.merge = true;
        } else if (argument.starts_with("-") || hasFile) {
            err << "vorlane-cli " << command << ": unexpected \"" << argument
                << "\" (see --help)\n";
            return std::nullopt;
        } else {
            parsed.file = argument;
            hasFile = true;
        }
    }
    if (!hasFile || parsed.file.empty()) {
        err << "vorlane-cli " << command << ": needs the backup FILE\n";
        return std::nullopt;
    }
    return parsed;
}

std::optional<std::string>
CliBackupInput::newPassword(const std::optional<std::string>& passwordFile,
                            std::string_view command, std::ostream& err) {
    if (passwordFile) {
        auto password = fromFile(*passwordFile, command, err);
        if (!password) {
            return std::nullopt;
        }
        if (const auto problem = BackupPassword::problem(*password)) {
            OPENSSL_cleanse(password->data(), password->size());
            err << "vorlane-cli " << command << ": " << *problem << "\n";
            return std::nullopt;
        }
        return password;
    }
    for (int attempt = 0; attempt < 3; ++attempt) {
        auto password = typed("Backup password: ", command, err);
        if (!password) {
            return std::nullopt;
        }
        std::optional<std::string> problem = BackupPassword::problem(*password);
        if (!problem) {
            auto repeated = typed("Repeat the backup password: ", command, err);
            if (!repeated) {
                OPENSSL_cleanse(password->data(), password->size());
                return std::nullopt;
            }
            const WipeOnExit wipeRepeated(*repeated);
            problem = BackupPassword::problem(*password, *repeated);
        }
        if (!problem) {
            return password;
        }
        OPENSSL_cleanse(password->data(), password->size());
        err << *problem << "\n";
    }
    err << "vorlane-cli " << command << ": no backup was made\n";
    return std::nullopt;
}

std::optional<std::string> CliBackupInput::readFile(const std::string& path,
                                                    std::string_view command, std::ostream& err) {
    std::string bytes;
    if (const auto error = BackupFile::read(path, bytes)) {
        err << "vorlane-cli " << command << ": cannot read " << path << ": " << *error << "\n";
        return std::nullopt;
    }
    if (const auto problem = BackupFile::checkHeader(bytes)) {
        err << "vorlane-cli " << command << ": " << path << ": " << *problem << "\n";
        return std::nullopt;
    }
    return bytes;
}

std::optional<BackupContents> CliBackupInput::open(const std::string& bytes,
                                                   const std::optional<std::string>& passwordFile,
                                                   std::string_view command, std::ostream& err) {
    std::optional<std::string> password = passwordFile ? fromFile(*passwordFile, command, err)
                                                       : typed("Backup password: ", command, err);
    if (!password) {
        return std::nullopt;
    }
    const WipeOnExit wipePassword(*password);
    auto contents = BackupFile::open(bytes, *password);
    if (!contents.ok()) {
        err << "vorlane-cli " << command << ": " << contents.error() << "\n";
        return std::nullopt;
    }
    return std::move(contents).value();
}

void CliBackupInput::wipeSecrets(BackupContents& contents) {
    for (auto& [account, secret] : contents.secrets) {
        OPENSSL_cleanse(secret.data(), secret.size());
    }
}

} // namespace vorlane
