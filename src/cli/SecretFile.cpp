// SPDX-License-Identifier: GPL-3.0-or-later
#include "SecretFile.h"

#include <fcntl.h>
#include <openssl/crypto.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

namespace vorlane {

// The buffer is grown by hand, wiping each old one, so that a secret read this way leaves no
// copies in freed memory.
std::optional<std::string> SecretFile::readWhole(const std::string& path, std::string& contents,
                                                 const Limit& limit) {
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

void SecretFile::dropLineBreak(std::string& text) {
    if (!text.empty() && text.back() == '\n') {
        text.back() = '\0';
        text.pop_back();
        if (!text.empty() && text.back() == '\r') {
            text.back() = '\0';
            text.pop_back();
        }
    }
}

std::optional<std::string> SecretFile::readPassword(const std::string& path,
                                                    std::string& password) {
    if (auto error = readWhole(path, password, secretLimit)) {
        return error;
    }
    const std::size_t lineEnd = password.find('\n');
    if (lineEnd != std::string::npos) {
        OPENSSL_cleanse(password.data() + lineEnd + 1, password.size() - lineEnd - 1);
        password.resize(lineEnd + 1);
        dropLineBreak(password);
    }
    return std::nullopt;
}

} // namespace vorlane
