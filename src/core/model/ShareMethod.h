// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/RawEnumeration.h"

#include <string_view>

namespace vorlane {

// How a share was made; persisted in a share record.
class ShareMethod : public RawEnumeration<ShareMethod, 3> {
public:
    enum Value : std::uint8_t {
        encryptedExport,
        redactedSummary,
        fullEncryptedBundle,
    };

    static constexpr std::array<std::string_view, caseCount> rawValues{
        "encryptedExport",
        "redactedSummary",
        "fullEncryptedBundle",
    };

    constexpr ShareMethod(Value value)
        : RawEnumeration(value) {}
    constexpr Value value() const { return static_cast<Value>(index()); }

    using RawEnumeration::allCases;

    std::string_view displayName() const;
};

} // namespace vorlane

template <>
struct std::hash<vorlane::ShareMethod> : vorlane::RawEnumerationHash<vorlane::ShareMethod> {};
