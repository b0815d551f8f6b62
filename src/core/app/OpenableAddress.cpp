// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/OpenableAddress.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace vorlane {

namespace {

bool isAsciiSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isAsciiSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isAsciiSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// The scheme of `text` as written (RFC 3986: a letter, then letters, digits, "+", "-", "."; then
// ":"), or nothing. "host:2083" and "host:2083/path" are a host and port, not a scheme "host".
std::optional<std::string_view> schemeOf(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == 0 || colon == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view scheme = text.substr(0, colon);
    const bool wellFormed = std::isalpha(static_cast<unsigned char>(scheme.front())) != 0 &&
                            std::ranges::all_of(scheme, [](char c) {
                                return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
                                       c == '+' || c == '-' || c == '.';
                            });
    if (!wellFormed) {
        return std::nullopt;
    }
    std::string_view rest = text.substr(colon + 1);
    const std::size_t digits =
        static_cast<std::size_t>(std::ranges::find_if_not(rest, isDigit) - rest.begin());
    if (digits > 0 && (digits == rest.size() || rest[digits] == '/' || rest[digits] == '?' ||
                       rest[digits] == '#')) {
        return std::nullopt;
    }
    return scheme;
}

} // namespace

Result<std::string, OpenableAddress::Refusal> OpenableAddress::resolve(std::string_view text) {
    const std::string_view address = trimmed(text);
    const std::string refused = "This address cannot be opened: ";
    if (address.empty()) {
        return Refusal{refused};
    }
    const std::optional<std::string_view> written = schemeOf(address);
    if (!written) {
        return "http://" + std::string(address);
    }
    std::string scheme(*written);
    std::ranges::transform(scheme, scheme.begin(),
                           [](char c) { return static_cast<char>(std::tolower(c)); });
    if (std::ranges::find(allowedSchemes, scheme) == allowedSchemes.end()) {
        return Refusal{refused + scheme};
    }
    return std::string(address);
}

} // namespace vorlane
