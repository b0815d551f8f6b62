// SPDX-License-Identifier: GPL-3.0-or-later
#include "OpenBundleCommand.h"

#include "TerminalPrompt.h"
#include "crypto/BundleReader.h"
#include "crypto/ExportBundle.h"

#include <fcntl.h>
#include <openssl/crypto.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ostream>

namespace vorlane {

namespace {

constexpr int failed = 1;
constexpr int badUsage = 2;

// Wipes a secret's bytes when it goes out of scope, on every return path.
class WipeOnExit {
public:
    explicit WipeOnExit(std::string& text)
        : m_text(text) {}
    WipeOnExit(const WipeOnExit&) = delete;
    WipeOnExit& operator=(const WipeOnExit&) = delete;
    ~WipeOnExit() { OPENSSL_cleanse(m_text.data(), m_text.size()); }

private:
    std::string& m_text;
};

// What a file to read may hold at most, and how its refusal is worded.
struct SizeLimit {
    std::size_t bytes;
    const char* refusal;
};

// No export of a vault comes near this; a bigger file (or an endless one like /dev/zero) is not
// read, rather than read until memory runs out.
constexpr SizeLimit bundleLimit{ExportBundle::largestFile,
                                "it is larger than 64 MiB, which no export bundle is"};
constexpr SizeLimit secretLimit{64 * 1024, "it is larger than 64 KiB, which no password or key is"};

// Reads all of a file, a pipe or a process substitution like <(pass show client) into
// `contents`, up to `limit`. The buffer is grown by hand, wiping each old one, so that a secret
// read this way leaves no copies in freed memory. The error text on failure.
std::optional<std::string> readWholeFile(const std::string& path, std::string& contents,
                                         const SizeLimit& limit) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return std::strerror(errno);
    }
    struct stat status {};
    std::size_t capacity = 4096;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
        if (static_cast<std::uintmax_t>(status.st_size) > limit.bytes) {
            ::close(file);
            return limit.refusal;
        }
        capacity = static_cast<std::size_t>(status.st_size) + 1; // + 1 to see the end at once
    }
    // One byte beyond the limit tells a file that is too long from one that just fits.
    const std::size_t most = limit.bytes + 1;
    contents.assign(std::min(capacity, most), '\0');
    std::size_t done = 0;
    for (;;) {
        if (done == most) {
            ::close(file);
            return limit.refusal;
        }
        if (done == contents.size()) {
            std::string bigger(std::min(contents.size() * 2, most), '\0');
            std::memcpy(bigger.data(), contents.data(), done);
            OPENSSL_cleanse(contents.data(), contents.size());
            contents.swap(bigger);
        }
        const ssize_t got = ::read(file, contents.data() + done, contents.size() - done);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            const int error = errno;
            ::close(file);
            return std::strerror(error);
        }
        if (got == 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    ::close(file);
    contents.resize(done);
    return std::nullopt;
}

// A secret file written by `echo` or an editor ends in a line break that is not part of the
// password; spaces are kept, since they may be.
void dropLineBreak(std::string& text) {
    if (!text.empty() && text.back() == '\n') {
        text.back() = '\0';
        text.pop_back();
        if (!text.empty() && text.back() == '\r') {
            text.back() = '\0';
            text.pop_back();
        }
    }
}

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
    if (const auto error = readWholeFile(*bundlePath, fileText, bundleLimit)) {
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
        if (const auto error = readWholeFile(*secretFile, secret, secretLimit)) {
            err << "vorlane-cli: cannot read " << *secretFile << ": " << *error << "\n";
            return failed;
        }
        dropLineBreak(secret);
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
