// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/PrivateFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace vorlane {

namespace {

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace

std::optional<std::string> PrivateFile::write(const std::string& path, std::string_view bytes) {
    // mkostemp creates the file 0600 from the start: the data is never readable by others, not
    // even for the moment between creating and restricting it.
    std::string temporary = path + ".XXXXXX";
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        return std::strerror(errno);
    }
    bool written = ::fchmod(fd, S_IRUSR | S_IWUSR) == 0 && writeAll(fd, bytes) && ::fsync(fd) == 0;
    int error = errno;
    if (::close(fd) != 0 && written) {
        written = false;
        error = errno;
    }
    if (written && ::rename(temporary.c_str(), path.c_str()) != 0) {
        written = false;
        error = errno;
    }
    if (!written) {
        ::unlink(temporary.c_str());
        return std::strerror(error);
    }
    // The rename itself reaches the disk with the folder.
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    const int folderFd =
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderFd >= 0) {
        ::fsync(folderFd);
        ::close(folderFd);
    }
    return std::nullopt;
}

} // namespace vorlane
