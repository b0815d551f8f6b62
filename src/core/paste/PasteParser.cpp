// SPDX-License-Identifier: GPL-3.0-or-later
#include "paste/PasteParser.h"

#include <unicode/locid.h>
#include <unicode/parsepos.h>
#include <unicode/regex.h>
#include <unicode/smpdtfmt.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

namespace vorlane {

namespace {

using icu::RegexPattern;
using icu::UnicodeString;
using Field = std::string ParsedCredential::*;

constexpr std::array<PasteParser::LabelPattern, 26> labelTable{{
    {"username", &ParsedCredential::username},
    {"user", &ParsedCredential::username},
    {"login", &ParsedCredential::username},
    {"password", &ParsedCredential::password},
    {"pass", &ParsedCredential::password},
    {"pwd", &ParsedCredential::password},
    {"host", &ParsedCredential::hostname},
    {"hostname", &ParsedCredential::hostname},
    {"server", &ParsedCredential::hostname},
    {"domain", &ParsedCredential::domain},
    {"ip", &ParsedCredential::ipAddress},
    {"ip address", &ParsedCredential::ipAddress},
    {"url", &ParsedCredential::loginURL},
    {"panel", &ParsedCredential::loginURL},
    {"control panel", &ParsedCredential::loginURL},
    {"email", &ParsedCredential::email},
    {"e-mail", &ParsedCredential::email},
    {"mail", &ParsedCredential::email},
    {"port", &ParsedCredential::portString},
    {"provider", &ParsedCredential::provider},
    {"company", &ParsedCredential::provider},
    {"title", &ParsedCredential::title},
    {"name", &ParsedCredential::title},
    {"label", &ParsedCredential::title},
    {"ssh", &ParsedCredential::hostname},
    {"ftp", &ParsedCredential::hostname},
}};

// The fields that labels fill; a set of them is a bit mask over this order.
constexpr std::array<Field, 10> labelledFields{
    &ParsedCredential::username, &ParsedCredential::password,   &ParsedCredential::hostname,
    &ParsedCredential::domain,   &ParsedCredential::ipAddress,  &ParsedCredential::loginURL,
    &ParsedCredential::email,    &ParsedCredential::portString, &ParsedCredential::provider,
    &ParsedCredential::title,
};
using FieldSet = std::uint32_t;
constexpr FieldSet allFieldSets = FieldSet{1} << labelledFields.size();

constexpr FieldSet fieldBit(Field field) {
    for (std::size_t i = 0; i < labelledFields.size(); ++i) {
        if (labelledFields[i] == field) {
            return FieldSet{1} << i;
        }
    }
    return 0;
}

FieldSet emptyLabelledFields(const ParsedCredential& parsed) {
    FieldSet empty = 0;
    for (const Field field : labelledFields) {
        if ((parsed.*field).empty()) {
            empty |= fieldBit(field);
        }
    }
    return empty;
}

// ICU counts a matcher's time limit in ticks of about ten thousand engine steps. A search of a
// whole 1 MB paste by a well-behaved pattern stays far below this; a pattern that backtracks
// quadratically (the e-mail and domain scans over a megabyte of "a.a.a.") stops here, after
// roughly 60 ms, with nothing found. With nine whole-text scans a parse stays under a second.
constexpr std::int32_t wholeTextWorkLimit = 600;
// A single line is searched up to 53 times; the same bound per search keeps a megabyte-long line
// cheap without ever cutting short a real one.
constexpr std::int32_t lineWorkLimit = 600;
// Backtracking state is kept on ICU's own heap stack; this caps its memory per match.
constexpr std::int32_t backtrackMemoryLimit = 8 * 1024 * 1024;

// UTF-16 indices are 32-bit in ICU; a paste is never near this.
constexpr std::size_t maxTextBytes = INT32_MAX;

UnicodeString fromUtf8(std::string_view text) {
    text = text.substr(0, std::min(text.size(), maxTextBytes));
    return UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::string toUtf8(const UnicodeString& text) {
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

// A read-only view of `length` units of `text` from `start`, without copying.
UnicodeString slice(const UnicodeString& text, std::int32_t start, std::int32_t length) {
    return UnicodeString(false, text.getBuffer() + start, length);
}

std::unique_ptr<RegexPattern> compile(const UnicodeString& source, std::uint32_t flags) {
    UParseError where;
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<RegexPattern> pattern(RegexPattern::compile(source, flags, where, status));
    // A pattern that does not compile finds nothing.
    return U_SUCCESS(status) ? std::move(pattern) : nullptr;
}

UnicodeString labelFormA(std::string_view label) {
    return fromUtf8(label) + UnicodeString(u"\\s*[:=]\\s*(.+)");
}

UnicodeString labelFormB(std::string_view label) {
    return fromUtf8(label) + UnicodeString(u"\\s+(.+)");
}

struct CompiledPatterns {
    std::array<std::unique_ptr<RegexPattern>, labelTable.size()> formA;
    std::array<std::unique_ptr<RegexPattern>, labelTable.size()> formB;
    std::unique_ptr<RegexPattern> ipAddress;
    std::unique_ptr<RegexPattern> email;
    std::unique_ptr<RegexPattern> url;
    std::unique_ptr<RegexPattern> domain;
    std::unique_ptr<RegexPattern> labelledPort;
    std::unique_ptr<RegexPattern> portAfterColon;
    std::array<std::unique_ptr<RegexPattern>, 3> dates;
};

// Compiled on first use; RegexPattern is immutable and safe to share between threads.
const CompiledPatterns& compiledPatterns() {
    static const CompiledPatterns compiled = [] {
        CompiledPatterns patterns;
        for (std::size_t i = 0; i < labelTable.size(); ++i) {
            patterns.formA[i] = compile(labelFormA(labelTable[i].label), UREGEX_CASE_INSENSITIVE);
            patterns.formB[i] = compile(labelFormB(labelTable[i].label), UREGEX_CASE_INSENSITIVE);
        }
        patterns.ipAddress = compile(u"(?:\\d{1,3}\\.){3}\\d{1,3}", 0);
        patterns.email = compile(u"[a-zA-Z0-9._%+-]+@[a-zA-Z0-9.-]+\\.[a-zA-Z]{2,}", 0);
        patterns.url = compile(u"https?://[^\\s,\"]+", 0);
        patterns.domain =
            compile(u"(?:[a-zA-Z0-9](?:[a-zA-Z0-9-]{0,61}[a-zA-Z0-9])?\\.)+[a-zA-Z]{2,}", 0);
        patterns.labelledPort =
            compile(u"(?:port|Port|PORT)[:\\s]+(\\d{2,5})", UREGEX_CASE_INSENSITIVE);
        patterns.portAfterColon = compile(u":(\\d{2,5})(?:\\s|$)", UREGEX_CASE_INSENSITIVE);
        patterns.dates = {compile(u"\\d{4}-\\d{2}-\\d{2}", 0), compile(u"\\d{2}/\\d{2}/\\d{4}", 0),
                          compile(u"\\d{2}-\\d{2}-\\d{4}", 0)};
        return patterns;
    }();
    return compiled;
}

// One pattern that matches a line wherever a label of `emptyFields` would, in either form. Most
// lines of a paste are taken by no label; this lets each of them cost one search instead of up
// to 52. Compiled at most once per set of fields for the life of the process. Null if it does
// not compile, and then every line is tried label by label.
const RegexPattern* anyLabelPattern(FieldSet emptyFields) {
    static std::mutex mutex;
    static std::array<std::unique_ptr<RegexPattern>, allFieldSets> patterns;
    static std::array<bool, allFieldSets> compiled{};
    std::lock_guard lock(mutex);
    if (!compiled[emptyFields]) {
        compiled[emptyFields] = true;
        UnicodeString alternatives;
        for (const auto& [label, field] : labelTable) {
            if ((emptyFields & fieldBit(field)) != 0) {
                alternatives += (alternatives.isEmpty() ? u"" : u"|") + fromUtf8(label);
            }
        }
        patterns[emptyFields] =
            compile(u"(?:" + alternatives + u")(?:\\s*[:=]\\s*|\\s+).", UREGEX_CASE_INSENSITIVE);
    }
    return patterns[emptyFields].get();
}

// A matcher for one compiled pattern, reused for the inputs of one parse and made on first use.
// Owned by one thread.
class Search {
public:
    Search() = default;
    Search(const RegexPattern* pattern, std::int32_t workLimit)
        : m_pattern(pattern)
        , m_workLimit(workLimit) {}

    // The first match in `input`, which must stay alive while the match is read. False when
    // there is none, the pattern did not compile or the work limit ran out.
    bool find(const UnicodeString& input) {
        if (!m_matcher && m_pattern != nullptr) {
            UErrorCode status = U_ZERO_ERROR;
            std::unique_ptr<icu::RegexMatcher> matcher(m_pattern->matcher(status));
            if (matcher) {
                matcher->setTimeLimit(m_workLimit, status);
                matcher->setStackLimit(backtrackMemoryLimit, status);
            }
            if (U_SUCCESS(status)) {
                m_matcher = std::move(matcher);
            }
        }
        if (!m_matcher) {
            return false;
        }
        m_input = &input;
        m_matcher->reset(input);
        UErrorCode status = U_ZERO_ERROR;
        return m_matcher->find(status) && U_SUCCESS(status);
    }

    // Group `number` of the last match (0: the whole match); nothing if it took no part.
    std::optional<UnicodeString> group(std::int32_t number) const {
        if (number > m_matcher->groupCount()) {
            return std::nullopt;
        }
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t start = m_matcher->start(number, status);
        const std::int32_t end = m_matcher->end(number, status);
        if (U_FAILURE(status) || start < 0) {
            return std::nullopt;
        }
        return m_input->tempSubStringBetween(start, end);
    }

private:
    const RegexPattern* m_pattern = nullptr; // shared, lives for the process
    std::int32_t m_workLimit = 0;
    std::unique_ptr<icu::RegexMatcher> m_matcher;
    const UnicodeString* m_input = nullptr; // not owned
};

std::optional<UnicodeString> firstMatch(const RegexPattern* pattern, const UnicodeString& text) {
    Search search(pattern, wholeTextWorkLimit);
    return search.find(text) ? search.group(0) : std::nullopt;
}

std::optional<UnicodeString> firstGroupMatch(const RegexPattern* pattern,
                                             const UnicodeString& text) {
    Search search(pattern, wholeTextWorkLimit);
    return search.find(text) ? search.group(1) : std::nullopt;
}

// Horizontal whitespace only (space separators and tab): line breaks have been split off already.
bool isBlank(UChar32 c) {
    return u_isblank(c) != 0;
}

struct Range {
    std::int32_t start;
    std::int32_t length;
};

Range trimmed(const UnicodeString& text, std::int32_t start, std::int32_t end) {
    const char16_t* units = text.getBuffer();
    while (start < end) {
        std::int32_t next = start;
        UChar32 c;
        U16_NEXT(units, next, end, c);
        if (!isBlank(c)) {
            break;
        }
        start = next;
    }
    while (end > start) {
        std::int32_t previous = end;
        UChar32 c;
        U16_PREV(units, start, previous, c);
        if (!isBlank(c)) {
            break;
        }
        end = previous;
    }
    return {start, end - start};
}

UnicodeString trimmed(const UnicodeString& text) {
    const Range range = trimmed(text, 0, text.length());
    return text.tempSubString(range.start, range.length);
}

// LF, VT, FF, CR, NEL, LINE SEPARATOR and PARAGRAPH SEPARATOR: the mandatory breaks of the
// Unicode line-breaking classes. Each one ends a line, so CR LF leaves an empty line between.
bool isLineBreak(char16_t unit) {
    switch (u_getIntPropertyValue(unit, UCHAR_LINE_BREAK)) {
    case U_LB_MANDATORY_BREAK:
    case U_LB_CARRIAGE_RETURN:
    case U_LB_LINE_FEED:
    case U_LB_NEXT_LINE:
        return true;
    default:
        return false;
    }
}

// The lines of `text`, trimmed, empty ones left out.
std::vector<Range> nonEmptyLines(const UnicodeString& text) {
    std::vector<Range> lines;
    const char16_t* units = text.getBuffer();
    std::int32_t start = 0;
    for (std::int32_t i = 0; i <= text.length(); ++i) {
        if (i == text.length() || isLineBreak(units[i])) {
            const Range line = trimmed(text, start, i);
            if (line.length > 0) {
                lines.push_back(line);
            }
            start = i + 1;
        }
    }
    return lines;
}

// Pass 1: the first label in table order whose field is still empty takes the line.
void takeLabelledLines(const UnicodeString& text, const std::vector<Range>& lines,
                       ParsedCredential& parsed) {
    const CompiledPatterns& patterns = compiledPatterns();
    std::array<Search, labelTable.size()> formA;
    std::array<Search, labelTable.size()> formB;
    for (std::size_t label = 0; label < labelTable.size(); ++label) {
        formA[label] = Search(patterns.formA[label].get(), lineWorkLimit);
        formB[label] = Search(patterns.formB[label].get(), lineWorkLimit);
    }
    FieldSet emptyFields = emptyLabelledFields(parsed);
    const RegexPattern* anyLabel = nullptr;
    Search anyLabelSearch;
    FieldSet anyLabelFields = 0;

    // The value that `label` (form A, then form B) captures in `line`, trimmed; empty if none.
    const auto capture = [&](std::size_t label, const UnicodeString& line) {
        for (Search* search : {&formA[label], &formB[label]}) {
            if (search->find(line)) {
                if (const auto value = search->group(1)) {
                    if (UnicodeString taken = trimmed(*value); !taken.isEmpty()) {
                        return taken;
                    }
                }
            }
        }
        return UnicodeString();
    };

    for (const Range& range : lines) {
        if (emptyFields == 0) {
            return;
        }
        const UnicodeString line = slice(text, range.start, range.length);
        if (anyLabelFields != emptyFields) {
            anyLabel = anyLabelPattern(emptyFields);
            anyLabelSearch = Search(anyLabel, lineWorkLimit);
            anyLabelFields = emptyFields;
        }
        if (anyLabel != nullptr && !anyLabelSearch.find(line)) {
            continue;
        }
        for (std::size_t label = 0; label < labelTable.size(); ++label) {
            const Field field = labelTable[label].field;
            // A field that holds a value keeps it; a later label may still take the line.
            if ((emptyFields & fieldBit(field)) == 0) {
                continue;
            }
            if (const UnicodeString value = capture(label, line); !value.isEmpty()) {
                parsed.*field = toUtf8(value);
                emptyFields &= ~fieldBit(field);
                break;
            }
        }
    }
}

// Pass 2: the fields still empty, from patterns over the whole untrimmed text.
void scanWholeText(const UnicodeString& text, ParsedCredential& parsed) {
    const CompiledPatterns& patterns = compiledPatterns();
    if (parsed.ipAddress.empty()) {
        if (const auto match = firstMatch(patterns.ipAddress.get(), text)) {
            parsed.ipAddress = toUtf8(*match);
            parsed.detectedTypes.emplace_back("IP");
        }
    }
    if (parsed.email.empty()) {
        if (const auto match = firstMatch(patterns.email.get(), text)) {
            parsed.email = toUtf8(*match);
            parsed.detectedTypes.emplace_back("Email");
        }
    }
    if (parsed.loginURL.empty()) {
        if (const auto match = firstMatch(patterns.url.get(), text)) {
            parsed.loginURL = toUtf8(*match);
            parsed.detectedTypes.emplace_back("URL");
            // The host stands in for the domain without counting as a detected domain.
            if (parsed.domain.empty()) {
                parsed.domain = PasteParser::urlHost(parsed.loginURL).value_or(std::string());
            }
        }
    }
    if (parsed.domain.empty()) {
        if (const auto match = firstMatch(patterns.domain.get(), text)) {
            // The e-mail's own domain is part of the address, not a service of its own. Only the
            // first domain-like text is looked at, so a discard leaves the domain empty.
            const std::string found = toUtf8(*match);
            const std::size_t at = parsed.email.rfind('@');
            const std::string_view emailDomain =
                std::string_view(parsed.email).substr(at == std::string::npos ? 0 : at + 1);
            if (found != emailDomain) {
                parsed.domain = found;
                parsed.detectedTypes.emplace_back("Domain");
            }
        }
    }
    if (parsed.portString.empty()) {
        if (const auto labelled = firstGroupMatch(patterns.labelledPort.get(), text)) {
            parsed.portString = toUtf8(*labelled);
            parsed.detectedTypes.emplace_back("Port");
        } else if (const auto afterColon = firstGroupMatch(patterns.portAfterColon.get(), text)) {
            // A bare ":NN" is too often a time of day or a count to be taken below port 20.
            const std::string digits = toUtf8(*afterColon);
            const auto number = ParsedCredential::decimalInteger(digits);
            if (number && *number > 19 && *number < 65536) {
                parsed.portString = digits;
                parsed.detectedTypes.emplace_back("Port");
            }
        }
    }
}

std::optional<Instant> readDate(const UnicodeString& text) {
    static constexpr std::array<std::u16string_view, 4> formats{u"yyyy-MM-dd", u"MM/dd/yyyy",
                                                                u"dd-MM-yyyy", u"dd/MM/yyyy"};
    for (const std::u16string_view format : formats) {
        UErrorCode status = U_ZERO_ERROR;
        // A fresh formatter each time: it follows the default locale and zone of this moment.
        icu::SimpleDateFormat formatter(
            UnicodeString(format.data(), static_cast<std::int32_t>(format.size())),
            icu::Locale::getDefault(), status);
        if (U_FAILURE(status)) {
            continue;
        }
        formatter.setLenient(false);
        icu::ParsePosition position(0);
        const UDate date = formatter.parse(text, position);
        // The whole text must be the date, not just a prefix of it.
        if (position.getErrorIndex() < 0 && position.getIndex() == text.length()) {
            return Instant(std::chrono::milliseconds(static_cast<std::int64_t>(date)));
        }
    }
    return std::nullopt;
}

// Pass 3: the first match of each date pattern in turn, until one reads as a date. Slashed
// dates are tried month first, so "03/04/2025" is 4 March and "13/04/2025" is 13 April.
void detectDate(const UnicodeString& text, ParsedCredential& parsed) {
    for (const auto& pattern : compiledPatterns().dates) {
        if (const auto match = firstMatch(pattern.get(), text)) {
            if (const auto date = readDate(*match)) {
                parsed.detectedDate = date;
                parsed.detectedTypes.emplace_back("Date");
                return;
            }
        }
    }
}

ServiceType inferType(const UnicodeString& text, const ParsedCredential& parsed) {
    UnicodeString lower(text);
    lower.toLower(icu::Locale::getRoot());
    const auto contains = [&lower](std::initializer_list<std::u16string_view> keywords) {
        return std::any_of(keywords.begin(), keywords.end(), [&lower](std::u16string_view k) {
            return lower.indexOf(k.data(), static_cast<std::int32_t>(k.size()), 0) >= 0;
        });
    };
    const std::optional<std::int64_t> port = parsed.portNumber();
    // Order matters: "cPanel" mails mention domains and e-mail, SSH notes mention hosting.
    if (contains({u"cpanel"})) {
        return ServiceType::cpanel;
    }
    if (contains({u"plesk"})) {
        return ServiceType::plesk;
    }
    if (contains({u"wordpress", u"wp-admin"})) {
        return ServiceType::wordpress;
    }
    if (contains({u"ssh"}) || port == 22) {
        return ServiceType::sshAccess;
    }
    if (contains({u"ftp", u"sftp"}) || port == 21) {
        return ServiceType::ftpAccess;
    }
    if (contains({u"vps"})) {
        return ServiceType::vps;
    }
    if (contains({u"dedicated"})) {
        return ServiceType::dedicatedServer;
    }
    if (contains({u"hosting"})) {
        return ServiceType::sharedHosting;
    }
    if (contains({u"domain", u"registrar", u"namecheap", u"godaddy"})) {
        return ServiceType::domainRegistrar;
    }
    if (contains({u"email", u"mailbox", u"smtp", u"imap"})) {
        return ServiceType::mailbox;
    }
    if (contains({u"database", u"mysql", u"postgres", u"mongodb"})) {
        return ServiceType::database;
    }
    if (contains({u"api", u"token", u"secret key"})) {
        return ServiceType::apiKey;
    }
    if (contains({u"cloud", u"aws", u"azure", u"gcloud"})) {
        return ServiceType::cloudAccount;
    }
    return ServiceType::customSecret;
}

// Whether a value occurs in a line, by Knuth-Morris-Pratt: linear in the two lengths whatever
// the text, as a pasted value can be a megabyte long and so can the line it is looked for in.
class SubstringSearch {
public:
    explicit SubstringSearch(std::u16string needle)
        : m_needle(std::move(needle))
        , m_fallback(m_needle.size(), 0) {
        for (std::size_t i = 1, matched = 0; i < m_needle.size(); ++i) {
            while (matched > 0 && m_needle[i] != m_needle[matched]) {
                matched = m_fallback[matched - 1];
            }
            if (m_needle[i] == m_needle[matched]) {
                ++matched;
            }
            m_fallback[i] = matched;
        }
    }

    bool isIn(std::u16string_view haystack) const {
        if (m_needle.empty()) {
            return true;
        }
        std::size_t matched = 0;
        for (const char16_t unit : haystack) {
            while (matched > 0 && unit != m_needle[matched]) {
                matched = m_fallback[matched - 1];
            }
            if (unit == m_needle[matched] && ++matched == m_needle.size()) {
                return true;
            }
        }
        return false;
    }

private:
    std::u16string m_needle;
    // For each prefix, the length of its longest proper prefix that is also its suffix.
    std::vector<std::size_t> m_fallback;
};

// Case folding stands in for a locale's case-insensitive comparison; Turkish and Azeri fold the
// dotted and dotless i their own way.
std::uint32_t foldOptions() {
    const std::string_view language = icu::Locale::getDefault().getLanguage();
    return language == "tr" || language == "az" ? U_FOLD_CASE_EXCLUDE_SPECIAL_I
                                                : U_FOLD_CASE_DEFAULT;
}

// Pass 5: the lines that hold none of the values found, so nothing pasted is lost.
void collectNotes(const UnicodeString& text, const std::vector<Range>& lines,
                  ParsedCredential& parsed) {
    const std::uint32_t options = foldOptions();
    std::vector<SubstringSearch> values;
    for (const std::string* value :
         {&parsed.ipAddress, &parsed.domain, &parsed.email, &parsed.loginURL, &parsed.username,
          &parsed.password, &parsed.hostname, &parsed.provider, &parsed.portString,
          &parsed.title}) {
        if (!value->empty()) {
            UnicodeString folded = fromUtf8(*value);
            folded.foldCase(options);
            values.emplace_back(
                std::u16string(folded.getBuffer(), static_cast<std::size_t>(folded.length())));
        }
    }

    std::string notes;
    for (const Range& range : lines) {
        const UnicodeString line = slice(text, range.start, range.length);
        UnicodeString foldedLine(line);
        foldedLine.foldCase(options);
        const std::u16string_view folded(foldedLine.getBuffer(),
                                         static_cast<std::size_t>(foldedLine.length()));
        const bool holdsValue =
            std::any_of(values.begin(), values.end(),
                        [folded](const SubstringSearch& value) { return value.isIn(folded); });
        if (!holdsValue) {
            notes += notes.empty() ? "" : "\n";
            notes += toUtf8(line);
        }
    }
    parsed.notes = std::move(notes);
}

} // namespace

const std::array<PasteParser::LabelPattern, 26>& PasteParser::labelPatterns() {
    return labelTable;
}

ParsedCredential PasteParser::parse(std::string_view utf8) {
    const UnicodeString text = fromUtf8(utf8);
    const std::vector<Range> lines = nonEmptyLines(text);
    ParsedCredential parsed;
    takeLabelledLines(text, lines, parsed);
    scanWholeText(text, parsed);
    detectDate(text, parsed);
    parsed.serviceType = inferType(text, parsed);
    if (parsed.title.empty()) {
        parsed.title = generateTitle(parsed);
    }
    collectNotes(text, lines, parsed);
    return parsed;
}

std::optional<Instant> PasteParser::parseDate(std::string_view text) {
    return readDate(fromUtf8(text));
}

ServiceType PasteParser::inferServiceType(std::string_view text, const ParsedCredential& parsed) {
    return inferType(fromUtf8(text), parsed);
}

std::string PasteParser::generateTitle(const ParsedCredential& parsed) {
    std::string title(parsed.serviceType.label());
    for (const std::string* value :
         {&parsed.domain, &parsed.hostname, &parsed.ipAddress, &parsed.provider}) {
        if (!value->empty()) {
            return title + " \u2014 " + *value;
        }
    }
    return title;
}

std::optional<std::string> PasteParser::urlHost(std::string_view url) {
    const std::size_t schemeEnd = url.find("://");
    if (schemeEnd == std::string_view::npos) {
        return std::nullopt;
    }
    std::string_view authority = url.substr(schemeEnd + 3);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    // Letters, digits, "-._~", the sub-delimiters, "%" escapes and, as in IRIs, any non-ASCII.
    const auto allowed = [](std::string_view part, std::string_view extra) {
        return std::all_of(part.begin(), part.end(), [extra](char c) {
            const bool asciiAlphanumeric =
                (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
            return static_cast<unsigned char>(c) >= 0x80 || asciiAlphanumeric ||
                   std::string_view("-._~!$&'()*+,;=%").find(c) != std::string_view::npos ||
                   extra.find(c) != std::string_view::npos;
        });
    };
    if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos) {
        if (!allowed(authority.substr(0, at), ":")) {
            return std::nullopt;
        }
        authority.remove_prefix(at + 1);
    }
    std::string_view host = authority;
    std::string_view port;
    if (authority.starts_with('[')) {
        const std::size_t close = authority.find(']');
        if (close == std::string_view::npos || !allowed(authority.substr(1, close - 1), ":")) {
            return std::nullopt;
        }
        host = authority.substr(1, close - 1);
        const std::string_view after = authority.substr(close + 1);
        if (!after.empty() && !after.starts_with(':')) {
            return std::nullopt;
        }
        port = after.empty() ? after : after.substr(1);
    } else if (const std::size_t colon = authority.rfind(':'); colon != std::string_view::npos) {
        host = authority.substr(0, colon);
        port = authority.substr(colon + 1);
    }
    const bool literal = authority.starts_with('[');
    if (host.empty() || !allowed(host, literal ? ":" : "") ||
        !std::all_of(port.begin(), port.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        return std::nullopt;
    }
    return std::string(host);
}

} // namespace vorlane
