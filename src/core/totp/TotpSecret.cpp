// SPDX-License-Identifier: GPL-3.0-or-later
#include "totp/TotpSecret.h"

#include "totp/Base32.h"
#include "util/TagText.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace vorlane {

namespace {

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

// "%XX" escapes (and "+" in the query, as HTML forms write a space); nothing for a broken escape.
std::optional<std::string> percentDecoded(std::string_view text, bool plusIsSpace) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (i + 2 >= text.size()) {
                return std::nullopt;
            }
            const int high = hexValue(text[i + 1]);
            const int low = hexValue(text[i + 2]);
            if (high < 0 || low < 0) {
                return std::nullopt;
            }
            result.push_back(static_cast<char>(high * 16 + low));
            i += 2;
        } else if (text[i] == '+' && plusIsSpace) {
            result.push_back(' ');
        } else {
            result.push_back(text[i]);
        }
    }
    return result;
}

std::optional<int> smallNumber(std::string_view text) {
    if (text.empty() || text.size() > 3 ||
        !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        return std::nullopt;
    }
    return std::stoi(std::string(text));
}

bool keyIsUsable(const std::optional<Bytes>& key) {
    return key && key->size() >= TotpSecret::minimumKeyBytes;
}

} // namespace

Result<TotpSecret, std::string> TotpSecret::parse(std::string_view text) {
    const std::string invalid(invalidMessage);
    text = trimmed(text);
    TotpSecret secret;
    constexpr std::string_view scheme = "otpauth://";
    if (lowered(text.substr(0, scheme.size())) != scheme) {
        std::optional<Bytes> key = Base32::decode(text);
        if (!keyIsUsable(key)) {
            return invalid;
        }
        secret.key = std::move(*key);
        return secret;
    }

    std::string_view rest = text.substr(scheme.size());
    const std::size_t slash = rest.find('/');
    // Counter-based codes (hotp) need a counter kept in step with the service: not supported.
    if (slash == std::string_view::npos || lowered(rest.substr(0, slash)) != "totp") {
        return invalid;
    }
    rest = rest.substr(slash + 1);
    const std::size_t question = rest.find('?');
    const std::optional<std::string> label = percentDecoded(rest.substr(0, question), false);
    if (!label) {
        return invalid;
    }
    // "Issuer:account", or only the account.
    const std::size_t colon = label->find(':');
    secret.account =
        std::string(trimmed(colon == std::string::npos ? *label : label->substr(colon + 1)));
    if (colon != std::string::npos) {
        secret.issuer = std::string(trimmed(label->substr(0, colon)));
    }

    std::string_view query =
        question == std::string_view::npos ? std::string_view() : rest.substr(question + 1);
    bool hasSecret = false;
    while (!query.empty()) {
        const std::size_t amp = query.find('&');
        const std::string_view pair = query.substr(0, amp);
        query = amp == std::string_view::npos ? std::string_view() : query.substr(amp + 1);
        const std::size_t equals = pair.find('=');
        const std::string name = lowered(pair.substr(0, equals));
        const std::optional<std::string> value = percentDecoded(
            equals == std::string_view::npos ? std::string_view() : pair.substr(equals + 1), true);
        if (!value) {
            return invalid;
        }
        if (name == "secret") {
            std::optional<Bytes> key = Base32::decode(*value);
            if (!keyIsUsable(key)) {
                return invalid;
            }
            secret.key = std::move(*key);
            hasSecret = true;
        } else if (name == "issuer") {
            secret.issuer = *value;
        } else if (name == "algorithm") {
            const std::string algorithm = lowered(*value);
            if (algorithm == "sha1") {
                secret.algorithm = Algorithm::sha1;
            } else if (algorithm == "sha256") {
                secret.algorithm = Algorithm::sha256;
            } else if (algorithm == "sha512") {
                secret.algorithm = Algorithm::sha512;
            } else {
                return invalid;
            }
        } else if (name == "digits") {
            const std::optional<int> digits = smallNumber(*value);
            if (digits != 6 && digits != 8) {
                return invalid;
            }
            secret.digits = *digits;
        } else if (name == "period") {
            const std::optional<int> period = smallNumber(*value);
            if (period != 30 && period != 60) {
                return invalid;
            }
            secret.periodSeconds = *period;
        }
        // Other parameters (an image, other apps' extensions) do not change the code.
    }
    if (!hasSecret) {
        return invalid;
    }
    return secret;
}

} // namespace vorlane
