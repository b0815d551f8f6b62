// SPDX-License-Identifier: GPL-3.0-or-later
#include "passwords/PasswordStrength.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace vorlane {

namespace {

// The passwords and words people choose most, most common first: an attacker tries them in
// about this order, so a word's place in the list is what guessing it costs. Keyboard walks are
// words too. Digits-only favourites ("123456") are left out because the sequence and repeat
// rules already price them.
constexpr std::array commonWords{
    "password", "qwerty",     "iloveyou",   "admin",    "welcome",   "monkey",    "dragon",
    "letmein",  "football",   "baseball",   "sunshine", "princess",  "master",    "shadow",
    "superman", "trustno",    "whatever",   "freedom",  "secret",    "login",     "hello",
    "charlie",  "michael",    "jordan",     "hunter",   "ranger",    "buster",    "soccer",
    "hockey",   "killer",     "george",     "andrew",   "harley",    "batman",    "thomas",
    "robert",   "daniel",     "jessica",    "ashley",   "bailey",    "pepper",    "ginger",
    "summer",   "winter",     "spring",     "autumn",   "flower",    "cookie",    "cheese",
    "coffee",   "chocolate",  "banana",     "orange",   "purple",    "yellow",    "silver",
    "golden",   "diamond",    "starwars",   "pokemon",  "matrix",    "computer",  "internet",
    "access",   "service",    "server",     "system",   "default",   "changeme",  "guest",
    "root",     "user",       "test",       "demo",     "temp",      "backup",    "office",
    "company",  "business",   "money",      "lucky",    "happy",     "family",    "friend",
    "friends",  "lovely",     "angel",      "heaven",   "jesus",     "blessed",   "forever",
    "always",   "nothing",    "everything", "someone",  "qazwsx",    "1q2w3e4r",  "1qaz2wsx",
    "zaq12wsx", "qwertyuiop", "asdfghjkl",  "asdfgh",   "zxcvbn",    "asdf",      "zxcv",
    "qwertz",   "azerty",     "abc",        "love",     "god",       "january",   "february",
    "march",    "april",      "june",       "july",     "august",    "september", "october",
    "november", "december",   "monday",     "tuesday",  "wednesday", "thursday",  "friday",
    "saturday", "sunday",     "london",     "paris",    "berlin",    "america",   "canada",
    "england",  "germany",    "france",     "mustang",  "ferrari",   "porsche",   "corvette",
    "mercedes", "yankees",    "lakers",     "chelsea",  "arsenal",   "liverpool", "barcelona",
    "madrid",   "tigger",     "snoopy",     "kitty",    "puppy",     "doggy",     "tiger",
    "lion",     "bear",       "eagle",      "falcon",   "phoenix",   "wolf",      "fish",
    "horse",    "music",      "guitar",     "piano",    "dance",     "party",     "beach",
    "ocean",    "river",      "mountain",   "forest",   "garden",    "house",     "home",
    "car",      "bike",       "game",       "games",    "gamer",     "player",    "winner",
    "champion", "legend",     "ninja",      "samurai",  "pirate",    "wizard",    "magic",
    "dream",    "dreams",     "star",       "stars",    "moon",      "sun",       "sky",
    "fire",     "water",      "earth",      "storm",    "thunder",   "light",     "dark",
    "black",    "white",      "red",        "blue",     "green",     "pink",      "gold",
    "baby",     "girl",       "boy",        "man",      "woman",     "king",      "queen",
    "prince",   "boss",       "chief",      "captain",  "doctor",    "teacher",   "student",
    "school",   "college",    "work",       "job",      "life",      "time",      "world",
    "peace",    "power",      "energy",     "hope",     "faith",     "trust",     "truth",
    "smile",    "sweet",      "sugar",      "honey",    "candy",     "apple",     "cherry",
    "lemon",    "mango",      "pizza",      "pass",     "word",      "key",       "code",
    "pin",      "vault",      "private",    "secure",   "security",  "safe",      "open",
    "sesame",   "mypass",     "mypassword", "pass123",  "vorlane",   "freelance", "client",
    "project",  "invoice",    "hosting",    "domain",   "email",     "mail",      "cloud",
    "linux",    "windows",    "google",     "facebook", "twitter",   "amazon",    "github",
    "ubuntu",   "debian"};

using Text = std::vector<UChar32>;

// Past this many characters the rest is priced as brute force: a longer password is strong
// unless its start already repeats, and the search is quadratic to cubic in the length.
constexpr std::size_t analysedLength = 256;

const double log10Of2 = std::log10(2.0);

Text decode(std::string_view text) {
    Text characters;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int32_t>(std::min<std::size_t>(
        text.size(), static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())));
    std::int32_t i = 0;
    while (i < length) {
        UChar32 c = 0;
        U8_NEXT(bytes, i, length, c);
        characters.push_back(c < 0 ? 0xFFFD : c);
    }
    return characters;
}

bool isLower(UChar32 c) {
    return c >= 'a' && c <= 'z';
}
bool isUpper(UChar32 c) {
    return c >= 'A' && c <= 'Z';
}
bool isDigit(UChar32 c) {
    return c >= '0' && c <= '9';
}
bool isAsciiSymbol(UChar32 c) {
    return c >= ' ' && c <= '~' && !isLower(c) && !isUpper(c) && !isDigit(c);
}

// How many characters brute force has to try per position: the classes the password uses.
double bruteForcePool(const Text& text) {
    bool lower = false, upper = false, digit = false, symbol = false, other = false;
    for (const UChar32 c : text) {
        lower |= isLower(c);
        upper |= isUpper(c);
        digit |= isDigit(c);
        symbol |= isAsciiSymbol(c);
        other |= c > '~' || c < ' ';
    }
    return (lower ? 26 : 0) + (upper ? 26 : 0) + (digit ? 10 : 0) + (symbol ? 33 : 0) +
           (other ? 100 : 0);
}

UChar32 lowered(UChar32 c) {
    return isUpper(c) ? c - 'A' + 'a' : c;
}

// Whether `typed` stands for the letter `letter`, directly or as one of the usual digit and
// symbol stand-ins; `substituted` tells which.
bool standsFor(UChar32 typed, char letter, bool& substituted) {
    substituted = false;
    if (lowered(typed) == letter) {
        return true;
    }
    static constexpr std::array<std::pair<char, const char*>, 11> standIns{{{'a', "4@"},
                                                                            {'b', "8"},
                                                                            {'c', "(<"},
                                                                            {'e', "3"},
                                                                            {'g', "69"},
                                                                            {'i', "1!|"},
                                                                            {'l', "1|"},
                                                                            {'o', "0"},
                                                                            {'s', "$5"},
                                                                            {'t', "7+"},
                                                                            {'z', "2"}}};
    for (const auto& [plain, marks] : standIns) {
        if (plain == letter && typed < 128 &&
            std::string_view(marks).find(static_cast<char>(typed)) != std::string_view::npos) {
            substituted = true;
            return true;
        }
    }
    return false;
}

double log10Binomial(double n, double k) {
    return (std::lgamma(n + 1) - std::lgamma(k + 1) - std::lgamma(n - k + 1)) / std::log(10.0);
}

// Guesses (log10) for `text[begin, end)` being the common word ranked `rank`: its rank, times
// the ways to capitalise it, times the ways to swap in stand-ins.
double wordCost(const Text& text, std::size_t begin, std::size_t end, std::size_t rank,
                std::size_t substitutions) {
    std::size_t upper = 0;
    for (std::size_t i = begin; i < end; ++i) {
        upper += isUpper(text[i]) ? 1 : 0;
    }
    const std::size_t length = end - begin;
    double cost = std::log10(static_cast<double>(rank));
    if (upper > 0) {
        const bool obvious =
            upper == length || (upper == 1 && (isUpper(text[begin]) || isUpper(text[end - 1])));
        cost += obvious ? log10Of2
                        : log10Binomial(static_cast<double>(length),
                                        static_cast<double>(std::min(upper, length - upper)));
    }
    return cost + static_cast<double>(substitutions) * log10Of2;
}

// A run of characters one apart in the same class, up or down ("abcd", "9876"): the first
// character, the length and the direction are all an attacker has to guess.
double sequenceCost(const Text& text, std::size_t begin, std::size_t end) {
    const UChar32 first = text[begin];
    double start = 26;
    if (first == 'a' || first == 'A' || first == 'z' || first == 'Z' || first == '0' ||
        first == '1' || first == '9') {
        start = 4;
    } else if (isDigit(first)) {
        start = 10;
    }
    const bool descending = text[begin + 1] < first;
    return std::log10(start * static_cast<double>(end - begin)) + (descending ? log10Of2 : 0);
}

bool sameClass(UChar32 a, UChar32 b) {
    return (isLower(a) && isLower(b)) || (isUpper(a) && isUpper(b)) || (isDigit(a) && isDigit(b));
}

// The cheapest pricing of the whole `text`, by dynamic programming over where pieces end:
// cost[j] is the cheapest for the first j characters.
double cheapestCost(const Text& text, double pool) {
    const std::size_t n = text.size();
    const double perCharacter = std::log10(pool);
    std::vector<double> cost(n + 1, std::numeric_limits<double>::infinity());
    cost[0] = 0;
    auto offer = [&](std::size_t begin, std::size_t end, double pieceCost) {
        cost[end] = std::min(cost[end], cost[begin] + pieceCost);
    };
    for (std::size_t i = 0; i < n; ++i) {
        offer(i, i + 1, perCharacter);

        for (std::size_t rank = 0; rank < commonWords.size(); ++rank) {
            const std::string_view word = commonWords[rank];
            if (i + word.size() > n) {
                continue;
            }
            std::size_t substitutions = 0;
            bool matches = true;
            for (std::size_t k = 0; k < word.size() && matches; ++k) {
                bool substituted = false;
                matches = standsFor(text[i + k], word[k], substituted);
                substitutions += substituted ? 1 : 0;
            }
            if (matches) {
                offer(i, i + word.size(),
                      wordCost(text, i, i + word.size(), rank + 1, substitutions));
            }
        }

        // Sequences of three or more, and every shorter end of a longer one.
        if (i + 1 < n && sameClass(text[i], text[i + 1]) && std::abs(text[i + 1] - text[i]) == 1) {
            const int step = text[i + 1] - text[i];
            std::size_t end = i + 2;
            while (end < n && sameClass(text[end - 1], text[end]) &&
                   text[end] - text[end - 1] == step) {
                ++end;
                offer(i, end, sequenceCost(text, i, end));
            }
        }

        // Years from 1900 to 2099: birthdays and anniversaries.
        if (i + 4 <= n && isDigit(text[i + 2]) && isDigit(text[i + 3]) &&
            ((text[i] == '1' && text[i + 1] == '9') || (text[i] == '2' && text[i + 1] == '0'))) {
            offer(i, i + 4, std::log10(200.0));
        }

        // A block repeated: the block once, then how many times. The shortest repeating block
        // is the one to price ("abab" is "ab" twice, not "abab" once).
        for (std::size_t period = 1; i + 2 * period <= n; ++period) {
            if (!std::equal(text.begin() + static_cast<std::ptrdiff_t>(i),
                            text.begin() + static_cast<std::ptrdiff_t>(i + period),
                            text.begin() + static_cast<std::ptrdiff_t>(i + period))) {
                continue;
            }
            std::size_t end = i + 2 * period;
            while (end + period <= n &&
                   std::equal(text.begin() + static_cast<std::ptrdiff_t>(i),
                              text.begin() + static_cast<std::ptrdiff_t>(i + period),
                              text.begin() + static_cast<std::ptrdiff_t>(end))) {
                end += period;
            }
            const Text block(text.begin() + static_cast<std::ptrdiff_t>(i),
                             text.begin() + static_cast<std::ptrdiff_t>(i + period));
            const double blockCost = cheapestCost(block, pool);
            for (std::size_t repeatEnd = i + 2 * period; repeatEnd <= end; repeatEnd += period) {
                offer(i, repeatEnd,
                      blockCost + std::log10(static_cast<double>((repeatEnd - i) / period)));
            }
            break;
        }
    }
    return cost[n];
}

} // namespace

PasswordStrength::Estimate PasswordStrength::estimate(std::string_view password) {
    Text text = decode(password);
    if (text.empty()) {
        return {};
    }
    const double pool = bruteForcePool(text);
    double tail = 0;
    if (text.size() > analysedLength) {
        tail = static_cast<double>(text.size() - analysedLength) * std::log10(pool);
        text.resize(analysedLength);
    }
    Estimate result;
    result.log10Guesses = cheapestCost(text, pool) + tail;
    if (result.log10Guesses < weakBelowLog10) {
        result.level = Level::weak;
    } else if (result.log10Guesses < 14) {
        result.level = Level::fair;
    } else if (result.log10Guesses < 18) {
        result.level = Level::strong;
    } else {
        result.level = Level::veryStrong;
    }
    return result;
}

bool PasswordStrength::suitsEncryption(std::string_view password) {
    return length(password) >= minimumEncryptionLength && estimate(password).level != Level::weak;
}

std::size_t PasswordStrength::length(std::string_view password) {
    return decode(password).size();
}

std::string PasswordStrength::levelText(Level level) {
    switch (level) {
    case Level::weak:
        return "Weak";
    case Level::fair:
        return "Fair";
    case Level::strong:
        return "Strong";
    case Level::veryStrong:
        return "Very Strong";
    }
    return {};
}

std::string PasswordStrength::summary(const Estimate& estimate) {
    return levelText(estimate.level) + ": about 10^" +
           std::to_string(static_cast<long long>(std::floor(estimate.log10Guesses))) + " guesses";
}

double PasswordStrength::meterFraction(const Estimate& estimate) {
    return std::clamp(estimate.log10Guesses / 20, 0.0, 1.0);
}

} // namespace vorlane
