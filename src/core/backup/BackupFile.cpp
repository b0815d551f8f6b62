// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/BackupFile.h"

#include "backup/BackupBody.h"
#include "backup/BackupHeader.h"
#include "crypto/AesGcm.h"
#include "crypto/Argon2id.h"
#include "crypto/SymmetricKey.h"
#include "util/DateText.h"
#include "util/PrivateFile.h"
#include "util/Zlib.h"

#include <fcntl.h>
#include <openssl/crypto.h>
#include <openssl/rand.h>
#include <sys/stat.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace vorlane {

namespace {

// Wipes a buffer of plaintext (JSON with every secret in it) when it goes.
template <typename Buffer> struct Wiped {
    Buffer value;
    ~Wiped() { OPENSSL_cleanse(value.data(), value.size()); }
};

// The key of a backup: Argon2id of the password, normalized to NFC first. A backup is meant to
// be opened on another machine, whose keyboard or input method may compose an accented letter
// differently; the same password has to give the same key there.
std::optional<SymmetricKey> keyFor(std::string_view password, const BackupHeader& header) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    icu::UnicodeString text = icu::UnicodeString::fromUTF8(
        icu::StringPiece(password.data(), static_cast<std::int32_t>(password.size())));
    icu::UnicodeString normalized = nfc->normalize(text, status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    Wiped<std::string> bytes;
    // Room for the longest UTF-8 form up front, so that no partial copy is left behind in memory
    // the string gave up while growing.
    bytes.value.reserve(static_cast<std::size_t>(normalized.length()) * 3);
    normalized.toUTF8String(bytes.value);
    // The UTF-16 copies are wiped too: they held the password as much as the UTF-8 text.
    for (icu::UnicodeString* copy : {&text, &normalized}) {
        const std::int32_t length = copy->length();
        char16_t* buffer = copy->getBuffer(-1);
        if (buffer) {
            std::fill_n(buffer, length, u'\0');
            copy->releaseBuffer(0);
        }
    }
    const Argon2id::Cost cost{header.parameters.memoryKiB, header.parameters.passes,
                              header.parameters.lanes};
    auto derived = Argon2id::derive(asBytes(bytes.value), header.salt, cost, SymmetricKey::size);
    if (!derived) {
        return std::nullopt;
    }
    auto key = SymmetricKey::fromBytes(*derived);
    OPENSSL_cleanse(derived->data(), derived->size());
    return key;
}

} // namespace

std::string BackupFile::fileName(Instant createdAt, const UserCalendar& calendar) {
    return "Vorlane-Backup-" + DateText::isoDay(createdAt, calendar) + ".vorlanebackup";
}

std::string BackupFile::seal(const BackupContents& contents, std::string_view password,
                             const BackupKdfParameters& parameters) {
    if (!BackupHeader::acceptable(parameters)) {
        return {};
    }
    BackupHeader header;
    header.parameters = parameters;
    const auto nonce = AesGcm::randomNonce();
    if (!nonce || RAND_bytes(header.salt.data(), static_cast<int>(header.salt.size())) != 1) {
        return {};
    }
    header.nonce = *nonce;
    const auto key = keyFor(password, header);
    if (!key) {
        return {};
    }
    std::optional<Bytes> compressed;
    {
        const Wiped<std::string> json{BackupBody::toJson(contents)};
        compressed = Zlib::compress(json.value);
    }
    if (!compressed) {
        return {};
    }
    const Wiped<Bytes> plaintext{std::move(*compressed)};
    header.bodyLength = plaintext.value.size();
    std::string file = header.bytes();
    const auto sealed = AesGcm::seal(plaintext.value, *key, header.nonce, asBytes(file));
    if (!sealed) {
        return {};
    }
    // The sealed form starts with the nonce, which the header already ends with.
    const Bytes& combined = sealed.value();
    file.reserve(file.size() + combined.size() - AesGcm::nonceSize);
    file.append(reinterpret_cast<const char*>(combined.data()) + AesGcm::nonceSize,
                combined.size() - AesGcm::nonceSize);
    return file;
}

std::optional<std::string> BackupFile::checkHeader(std::string_view bytes) {
    auto header = BackupHeader::read(bytes);
    if (!header) {
        return header.error();
    }
    return std::nullopt;
}

Result<BackupContents, std::string> BackupFile::open(std::string_view bytes,
                                                     std::string_view password) {
    const auto header = BackupHeader::read(bytes);
    if (!header) {
        return header.error();
    }
    const std::string damaged(BackupHeader::damagedText);
    const auto key = keyFor(password, header.value());
    if (!key) {
        return damaged;
    }
    const std::span<const std::uint8_t> file = asBytes(bytes);
    auto opened =
        AesGcm::open(file.subspan(BackupHeader::nonceOffset), *key, file.first(BackupHeader::size));
    if (!opened) {
        return damaged;
    }
    const Wiped<Bytes> compressed{std::move(opened).value()};
    auto json = Zlib::decompress(compressed.value);
    if (!json) {
        return damaged;
    }
    const Wiped<std::string> text{std::move(*json)};
    auto contents = BackupBody::fromJson(text.value);
    if (!contents) {
        return damaged;
    }
    return std::move(*contents);
}

std::optional<std::string> BackupFile::write(const std::string& path,
                                             const BackupContents& contents,
                                             std::string_view password,
                                             const BackupKdfParameters& parameters) {
    const std::string file = seal(contents, password, parameters);
    if (file.empty()) {
        return "The backup could not be encrypted.";
    }
    return PrivateFile::write(path, file);
}

std::optional<std::string> BackupFile::read(const std::string& path, std::string& bytes) {
    bytes.clear();
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return std::strerror(errno);
    }
    // Only a regular file has an end: /dev/zero or a pipe chosen by mistake would be read
    // until memory runs out, or forever.
    struct stat status {};
    const bool found = ::fstat(fd, &status) == 0;
    const int statError = errno;
    if (!found || !S_ISREG(status.st_mode)) {
        ::close(fd);
        if (!found) {
            return std::strerror(statError);
        }
        return S_ISDIR(status.st_mode) ? std::strerror(EISDIR) : "Not a regular file";
    }
    bytes.reserve(static_cast<std::size_t>(status.st_size));
    char buffer[64 * 1024];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            const int error = errno;
            ::close(fd);
            bytes.clear();
            return std::strerror(error);
        }
        if (got == 0) {
            break;
        }
        bytes.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(fd);
    return std::nullopt;
}

} // namespace vorlane
