// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/BackupHeader.h"

#include <algorithm>

namespace vorlane {

namespace {

constexpr std::size_t versionOffset = 14;
constexpr std::size_t kdfOffset = 16;
constexpr std::size_t compressionOffset = 17;
constexpr std::size_t memoryOffset = 18;
constexpr std::size_t passesOffset = 22;
constexpr std::size_t lanesOffset = 26;
constexpr std::size_t bodyLengthOffset = 30;
constexpr std::size_t saltOffset = 38;

constexpr std::uint8_t argon2idV13 = 1;
constexpr std::uint8_t zlibCompression = 1;

void putLittleEndian(std::string& out, std::uint64_t value, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) {
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xff));
    }
}

std::uint64_t getLittleEndian(std::string_view bytes, std::size_t offset, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t i = width; i-- > 0;) {
        value = (value << 8) | static_cast<std::uint8_t>(bytes[offset + i]);
    }
    return value;
}

std::uint32_t get32(std::string_view bytes, std::size_t offset) {
    return static_cast<std::uint32_t>(getLittleEndian(bytes, offset, 4));
}

} // namespace

std::string BackupHeader::newerFormatText(unsigned version) {
    return "This backup was made by a newer version of Vorlane (format " + std::to_string(version) +
           ").";
}

bool BackupHeader::acceptable(const BackupKdfParameters& parameters) {
    return parameters.passes >= 1 && parameters.passes <= maximumPasses && parameters.lanes >= 1 &&
           parameters.lanes <= maximumLanes && parameters.memoryKiB >= 8 * parameters.lanes &&
           parameters.memoryKiB <= maximumMemoryKiB;
}

std::string BackupHeader::bytes() const {
    std::string out;
    out.reserve(size);
    out.append(magic);
    putLittleEndian(out, static_cast<std::uint64_t>(BackupFile::formatVersion), 2);
    out.push_back(static_cast<char>(argon2idV13));
    out.push_back(static_cast<char>(zlibCompression));
    putLittleEndian(out, parameters.memoryKiB, 4);
    putLittleEndian(out, parameters.passes, 4);
    putLittleEndian(out, parameters.lanes, 4);
    putLittleEndian(out, bodyLength, 8);
    out.append(reinterpret_cast<const char*>(salt.data()), salt.size());
    out.append(reinterpret_cast<const char*>(nonce.data()), nonce.size());
    return out;
}

Result<BackupHeader, std::string> BackupHeader::read(std::string_view file) {
    // A file that starts like a backup but stops within the name is one cut short; an empty one
    // could be anything.
    const std::size_t named = std::min(file.size(), magic.size());
    if (file.empty() || file.substr(0, named) != magic.substr(0, named)) {
        return std::string(notABackupText);
    }
    if (file.size() < kdfOffset) {
        return std::string(incompleteText);
    }
    // The version comes before anything else is read: a newer format may lay out the rest
    // differently.
    const auto version = static_cast<unsigned>(getLittleEndian(file, versionOffset, 2));
    if (version == 0) {
        return std::string(notABackupText);
    }
    if (version > static_cast<unsigned>(BackupFile::formatVersion)) {
        return newerFormatText(version);
    }
    if (file.size() < size) {
        return std::string(incompleteText);
    }
    BackupHeader header;
    header.parameters.memoryKiB = get32(file, memoryOffset);
    header.parameters.passes = get32(file, passesOffset);
    header.parameters.lanes = get32(file, lanesOffset);
    if (static_cast<std::uint8_t>(file[kdfOffset]) != argon2idV13 ||
        static_cast<std::uint8_t>(file[compressionOffset]) != zlibCompression ||
        !acceptable(header.parameters)) {
        return std::string(damagedText);
    }
    header.bodyLength = getLittleEndian(file, bodyLengthOffset, 8);
    const std::size_t afterHeader = file.size() - size;
    if (afterHeader < AesGcm::tagSize || afterHeader - AesGcm::tagSize < header.bodyLength) {
        return std::string(incompleteText);
    }
    if (afterHeader - AesGcm::tagSize > header.bodyLength) {
        return std::string(damagedText);
    }
    std::copy_n(file.begin() + saltOffset, saltSize, header.salt.begin());
    std::copy_n(file.begin() + nonceOffset, AesGcm::nonceSize, header.nonce.begin());
    return header;
}

} // namespace vorlane
