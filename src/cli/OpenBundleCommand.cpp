// SPDX-License-Identifier: GPL-3.0-or-later
#include "OpenBundleCommand.h"

#include "SecretFile.h"
#include "TerminalPrompt.h"
#include "WipeOnExit.h"
#include "crypto/BundleReader.h"
#include "crypto/ExportBundle.h"

#include <openssl/crypto.h>

#include <cerrno>
#include <cstring>
#include <ostream>

namespace vorlane {

namespace {

constexpr int failed = 1;
constexpr int badUsage = 2;

// No export of a vault comes near this; a bigger file (or an endless one like /dev/zero) is not
// read, rather than read until memory runs out.
constexpr SecretFile::Limit bundleLimit{ExportBundle::largestFile,
                                        "it is larger than 64 MiB, which no export bundle is"};

} // namespace

std::string_view OpenBundleCommand::name() const {
    return "open-bundle";
}

std::string_view OpenBundleCommand::usage() const {
    return "open-bundle FILE [--password-file F | --key-file F]   print an export bundle's payload";
}

int OpenBundleCommand::run(CliInvocation& invocation) {
    std::ostream& err = invocation.err;
    std::optional<std::string> bundlePath;
    std::optional<std::string> passwordFile;
    std::optional<std::string> keyFile;
    const auto& arguments = invocation.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--password-file" || argument == "--key-file") {
            if (i + 1 >= arguments.size()) {
                err << "vorlane-cli: open-bundle: " << argument << " needs a file\n";
                return badUsage;
            }
            (argument == "--password-file" ? passwordFile : keyFile) = arguments[++i];
        } else if (argument.starts_with("--")) {
            err << "vorlane-cli: open-bundle: unknown option " << argument << "\n";
            return badUsage;
        } else if (bundlePath) {
            err << "vorlane-cli: open-bundle: only one bundle FILE at a time\n";
            return badUsage;
        } else {
            bundlePath = argument;
        }
    }
    if (!bundlePath) {
        err << "vorlane-cli: open-bundle: give the bundle FILE to open\n";
        return badUsage;
    }
    if (passwordFile && keyFile) {
        err << "vorlane-cli: open-bundle: give either --password-file or --key-file, not both\n";
        return badUsage;
    }

    std::string fileText;
    if (const auto error = SecretFile::readWhole(*bundlePath, fileText, bundleLimit)) {
        err << "vorlane-cli: cannot read " << *bundlePath << ": " << *error << "\n";
        return failed;
    }
    const auto bundle = ExportBundle::fromJson(fileText);
    if (!bundle) {
        err << "vorlane-cli: " << *bundlePath << ": " << bundle.error() << "\n";
        return failed;
    }

    const bool needsPassword = BundleReader::needsPassword(bundle.value());
    if (needsPassword && keyFile) {
        err << "vorlane-cli: this bundle is protected by a password, not a key: give it with "
               "--password-file FILE or at the prompt\n";
        return failed;
    }
    if (!needsPassword && passwordFile) {
        err << "vorlane-cli: this bundle was sealed with a generated key, not a password: give "
               "the key with --key-file FILE or at the prompt\n";
        return failed;
    }

    std::string secret;
    const WipeOnExit wipeSecret(secret);
    if (const auto& secretFile = needsPassword ? passwordFile : keyFile) {
        if (const auto error =
                SecretFile::readWhole(*secretFile, secret, SecretFile::secretLimit)) {
            err << "vorlane-cli: cannot read " << *secretFile << ": " << *error << "\n";
            return failed;
        }
        SecretFile::dropLineBreak(secret);
    } else if (TerminalPrompt::isInteractive()) {
        auto answer = TerminalPrompt::readSecret(needsPassword ? "Export password: " : "Key: ");
        if (answer) {
            secret.swap(*answer);
        }
    } else if (needsPassword) {
        err << "vorlane-cli: " << errorDescription(CryptoError::passwordRequired)
            << " Give it with --password-file FILE, or run this in a terminal to be asked.\n";
        return failed;
    } else {
        err << "vorlane-cli: this bundle needs the key it was sealed with. Give its text with "
               "--key-file FILE, or run this in a terminal to be asked.\n";
        return failed;
    }

    auto payload = BundleReader::open(bundle.value(), secret);
    if (!payload) {
        err << "vorlane-cli: " << errorDescription(payload.error()) << "\n";
        return failed;
    }
    Bytes& bytes = payload.value();
    invocation.out.write(reinterpret_cast<const char*>(bytes.data()),
                         static_cast<std::streamsize>(bytes.size()));
    invocation.out.flush();
    OPENSSL_cleanse(bytes.data(), bytes.size());
    if (!invocation.out) {
        err << "vorlane-cli: could not write the payload: " << std::strerror(errno) << "\n";
        return failed;
    }
    return 0;
}

} // namespace vorlane
