// SPDX-License-Identifier: GPL-3.0-or-later
#include "crypto/ExportBundle.h"

#include "crypto/Base64.h"
#include "util/JsonText.h"

#include <chrono>
#include <cmath>

namespace vorlane {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

// Bundle times count from the first instant of 2001 (UTC), not from 1970, so that files written
// on either platform read the same.
constexpr auto referenceDate =
    std::chrono::sys_days(std::chrono::year(2001) / std::chrono::January / 1);

// Beyond this many seconds either side of the reference date a time is not a real creation
// time, and converting it to milliseconds could overflow.
constexpr double maximumSeconds = 1e12;

std::string notABundle(std::string_view why) {
    return "This file is not a Vorlane export bundle: " + std::string(why) + ".";
}

std::string damaged(std::string_view member, std::string_view why) {
    return "This export bundle is damaged: \"" + std::string(member) + "\" " + std::string(why) +
           ".";
}

bool isLowercaseHexDigest(const std::string& text) {
    if (text.size() != 64) {
        return false;
    }
    for (const char c : text) {
        if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) {
            return false;
        }
    }
    return true;
}

} // namespace

double ExportBundle::secondsSinceReferenceDate(Instant instant) {
    return static_cast<double>((instant - referenceDate).count()) / 1000.0;
}

std::string ExportBundle::toJson() const {
    ordered_json object;
    object["version"] = version;
    object["salt"] = Base64::encode(salt);
    object["encryptedPayload"] = Base64::encode(encryptedPayload);
    object["createdAt"] = JsonText::number(secondsSinceReferenceDate(createdAt));
    object["integrity"] = integrity;
    return JsonText::compact(object);
}

CryptoResult<ExportBundle, std::string> ExportBundle::fromJson(std::string_view text) {
    const json object = json::parse(text.begin(), text.end(), nullptr, false);
    if (object.is_discarded()) {
        return notABundle("it is not valid JSON");
    }
    if (!object.is_object()) {
        return notABundle("it is not a JSON object");
    }
    for (const char* member : {"version", "salt", "encryptedPayload", "createdAt", "integrity"}) {
        if (!object.contains(member)) {
            return notABundle("it has no \"" + std::string(member) + "\"");
        }
    }

    ExportBundle bundle;
    const json& version = object["version"];
    if (!version.is_number_integer()) {
        return damaged("version", "is not a whole number");
    }
    if (version.get<std::int64_t>() != currentVersion) {
        return "This export bundle has format version " + version.dump() +
               ", which this version of Vorlane cannot open.";
    }

    for (const auto& [member, target] : {std::pair{"salt", &bundle.salt},
                                         std::pair{"encryptedPayload", &bundle.encryptedPayload}}) {
        const json& value = object[member];
        if (!value.is_string()) {
            return damaged(member, "is not a text");
        }
        auto decoded = Base64::decode(value.get_ref<const std::string&>());
        if (!decoded) {
            return damaged(member, "is not valid base64");
        }
        *target = std::move(*decoded);
    }
    if (!bundle.salt.empty() && bundle.salt.size() != saltSize) {
        return damaged("salt", "is neither empty nor 32 bytes long");
    }

    const json& createdAt = object["createdAt"];
    if (!createdAt.is_number()) {
        return damaged("createdAt", "is not a number");
    }
    const double seconds = createdAt.get<double>();
    if (!(std::fabs(seconds) <= maximumSeconds)) {
        return damaged("createdAt", "is not a plausible time");
    }
    bundle.createdAt = referenceDate + std::chrono::milliseconds(std::llround(seconds * 1000.0));

    const json& integrity = object["integrity"];
    if (!integrity.is_string() || !isLowercaseHexDigest(integrity.get<std::string>())) {
        return damaged("integrity", "is not a SHA-256 digest in hexadecimal");
    }
    bundle.integrity = integrity.get<std::string>();
    return bundle;
}

} // namespace vorlane
