// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SmartPasteFlow.h"

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "paste/PasteParser.h"
#include "store/DataStore.h"
#include "totp/TotpSecret.h"
#include "util/DateText.h"
#include "util/UserCalendar.h"
#include "util/Whitespace.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <memory>

namespace vorlane {

namespace {

std::size_t graphemeCount(const std::string& text) {
    const icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(text);
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> characters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) {
        return static_cast<std::size_t>(unicode.countChar32());
    }
    characters->setText(unicode);
    std::size_t count = 0;
    while (characters->next() != icu::BreakIterator::DONE) {
        ++count;
    }
    return count;
}

// Whether one word of a label, in lower case, names a secret.
bool namesSecret(std::string_view word) {
    static constexpr std::array<std::string_view, 8> secretWords{
        "password", "passwd", "pwd", "pin", "token", "secret", "key", "api"};
    auto isSecretWord = [](std::string_view part) {
        return std::find(secretWords.begin(), secretWords.end(), part) != secretWords.end();
    };
    if (isSecretWord(word) ||
        (word.ends_with('s') && isSecretWord(word.substr(0, word.size() - 1)))) {
        return true;
    }
    for (std::size_t split = 1; split < word.size(); ++split) {
        if (isSecretWord(word.substr(0, split)) && isSecretWord(word.substr(split))) {
            return true;
        }
    }
    return false;
}

// The label of a notes line: the text before its first ":" or "=", when a value follows.
std::optional<std::string_view> labelOf(std::string_view line) {
    const std::size_t separator = line.find_first_of(":=");
    if (separator == std::string_view::npos || isBlank(line.substr(separator + 1))) {
        return std::nullopt;
    }
    return trimmed(line.substr(0, separator));
}

// Words of a label: runs of ASCII letters, also cut where a lower-case letter meets an upper-case
// one ("apiToken"), in lower case.
std::vector<std::string> wordsOf(std::string_view label) {
    std::vector<std::string> words;
    std::string word;
    char previous = 0;
    for (const char c : label) {
        const bool upper = c >= 'A' && c <= 'Z';
        const bool letter = upper || (c >= 'a' && c <= 'z');
        if (!letter || (upper && previous >= 'a' && previous <= 'z')) {
            if (!word.empty()) {
                words.push_back(std::move(word));
                word.clear();
            }
        }
        if (letter) {
            word += upper ? static_cast<char>(c - 'A' + 'a') : c;
        }
        previous = c;
    }
    if (!word.empty()) {
        words.push_back(std::move(word));
    }
    return words;
}

// The first "otpauth://" URI in the text that is a valid one-time code secret, up to the
// whitespace or quote that ends it; empty when there is none.
std::string oneTimeCodeIn(std::string_view text) {
    constexpr std::string_view scheme = "otpauth://";
    for (std::size_t at = text.find(scheme); at != std::string_view::npos;
         at = text.find(scheme, at + scheme.size())) {
        const std::size_t end = text.find_first_of(" \t\r\n\"'<>", at);
        const std::string_view uri =
            text.substr(at, end == std::string_view::npos ? end : end - at);
        if (TotpSecret::isValid(uri)) {
            return std::string(uri);
        }
    }
    return {};
}

std::vector<std::string> notesLines(std::string_view notes) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start <= notes.size()) {
        std::size_t end = notes.find('\n', start);
        if (end == std::string_view::npos) {
            end = notes.size();
        }
        lines.emplace_back(trimmed(notes.substr(start, end - start)));
        start = end + 1;
    }
    return lines;
}

} // namespace

SmartPasteFlow::SmartPasteFlow(DataStore& store, const UserCalendar& calendar,
                               Organization* organization)
    : m_store(store)
    , m_calendar(calendar)
    , m_organization(organization)
    , m_selectedOrg(organization) {}

std::string SmartPasteFlow::subtitle() const {
    switch (m_step) {
    case Step::paste:
        return "Step 1: Paste your credentials";
    case Step::review:
        return "Step 2: Review parsed fields";
    case Step::done:
        return "Saved successfully";
    }
    return {};
}

std::string SmartPasteFlow::characterCount() const {
    return std::to_string(graphemeCount(m_rawText)) + " characters";
}

const std::vector<SmartPasteFlow::Field>& SmartPasteFlow::fields() {
    static const std::vector<Field> rows{
        {"Title", &ParsedCredential::title, false},
        {"Provider", &ParsedCredential::provider, false},
        {"Hostname", &ParsedCredential::hostname, false},
        {"Domain", &ParsedCredential::domain, false},
        {"IP Address", &ParsedCredential::ipAddress, false},
        {"Login URL", &ParsedCredential::loginURL, false},
        {"Username", &ParsedCredential::username, false},
        {"Password", &ParsedCredential::password, true},
        {"Email", &ParsedCredential::email, false},
        {"Port", &ParsedCredential::portString, false},
        {"Notes", &ParsedCredential::notes, false},
    };
    return rows;
}

std::vector<Organization*> SmartPasteFlow::organizations() const {
    return m_store.fetchOrganizations(/*includeArchived=*/true);
}

std::vector<SmartPasteFlow::SecretLine> SmartPasteFlow::secretLines() const {
    std::vector<SecretLine> lines;
    if (!m_parsed) {
        return lines;
    }
    for (std::string& line : notesLines(m_parsed->notes)) {
        const std::optional<std::string_view> label = labelOf(line);
        if (!label) {
            continue;
        }
        const std::vector<std::string> words = wordsOf(*label);
        if (std::none_of(words.begin(), words.end(), namesSecret) ||
            std::any_of(lines.begin(), lines.end(),
                        [&line](const SecretLine& seen) { return seen.line == line; })) {
            continue;
        }
        const bool store = !m_keptInNotes.contains(line);
        std::string labelText(*label);
        lines.push_back({std::move(line), std::move(labelText), store});
    }
    return lines;
}

void SmartPasteFlow::setStoreAsAPIKey(const std::string& line, bool store) {
    if (store) {
        m_keptInNotes.erase(line);
    } else {
        m_keptInNotes.insert(line);
    }
}

void SmartPasteFlow::setOneTimeCode(std::string text) {
    std::fill(m_oneTimeCode.begin(), m_oneTimeCode.end(), '\0');
    m_oneTimeCode = std::move(text);
}

std::string SmartPasteFlow::oneTimeCodeError() const {
    return isBlank(m_oneTimeCode) || TotpSecret::isValid(m_oneTimeCode)
               ? std::string()
               : std::string(TotpSecret::invalidMessage);
}

std::optional<std::string> SmartPasteFlow::detectedDateText() const {
    if (!m_parsed || !m_parsed->detectedDate) {
        return std::nullopt;
    }
    return DateText::format(*m_parsed->detectedDate, DateText::Style::abbreviated, m_calendar);
}

std::string SmartPasteFlow::mainButtonTitle() const {
    switch (m_step) {
    case Step::paste:
        return "Parse";
    case Step::review:
        return "Save Credential";
    case Step::done:
        return "Done";
    }
    return {};
}

bool SmartPasteFlow::mainButtonEnabled() const {
    switch (m_step) {
    case Step::paste:
        return !isBlank(m_rawText);
    case Step::review:
        return m_selectedOrg != nullptr && m_parsed && !m_parsed->title.empty() &&
               oneTimeCodeError().empty();
    case Step::done:
        return true;
    }
    return false;
}

void SmartPasteFlow::parse() {
    applyParse(m_rawText, PasteParser::parse(m_rawText));
}

bool SmartPasteFlow::applyParse(const std::string& parsedFrom, ParsedCredential parsed) {
    if (m_step != Step::paste || parsedFrom != m_rawText) {
        return false;
    }
    m_oneTimeCode = oneTimeCodeIn(parsedFrom);
    if (!m_oneTimeCode.empty()) {
        std::string notes;
        for (const std::string& line : notesLines(parsed.notes)) {
            if (line.find(m_oneTimeCode) == std::string::npos) {
                notes += (notes.empty() ? "" : "\n") + line;
            }
        }
        parsed.notes = std::move(notes);
        if (parsed.loginURL.find("otpauth:") != std::string::npos) {
            parsed.loginURL.clear();
        }
    }
    m_parsed = std::move(parsed);
    m_keptInNotes.clear();
    m_step = Step::review;
    return true;
}

void SmartPasteFlow::back() {
    if (m_step == Step::review) {
        m_step = Step::paste;
    }
}

ServiceRecord* SmartPasteFlow::save() {
    if (m_step != Step::review || !mainButtonEnabled()) {
        return nullptr;
    }
    const ParsedCredential& parsed = *m_parsed;
    const std::string oneTimeCode(trimmed(m_oneTimeCode));
    ServiceRecord record = ServiceRecord::created(m_calendar.now());
    record.setServiceType(parsed.serviceType);
    record.title = parsed.title;
    record.provider = parsed.provider;
    record.hostname = parsed.hostname;
    record.domain = parsed.domain;
    record.ipAddress = parsed.ipAddress;
    record.loginURL = parsed.loginURL;
    record.username = parsed.username;
    record.emailAddress = parsed.email;
    record.port = parsed.portNumber();
    record.expirationDate = parsed.detectedDate;
    std::set<std::string> toStore;
    for (const SecretLine& secret : secretLines()) {
        if (secret.storeAsAPIKey) {
            toStore.insert(secret.line);
        }
    }
    std::string apiKey;
    std::string notes;
    for (const std::string& line : notesLines(parsed.notes)) {
        std::string& into = toStore.contains(line) ? apiKey : notes;
        if (!line.empty()) {
            into += into.empty() ? "" : "\n";
            into += line;
        }
    }
    record.notes = apiKey.empty() ? parsed.notes : notes;
    if (!parsed.password.empty()) {
        record.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    }
    if (!apiKey.empty()) {
        record.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
    }
    if (!oneTimeCode.empty()) {
        record.totpKeychainID = ServiceRecord::makeTOTPKeychainID();
    }
    ServiceRecord& saved = m_store.insert(std::move(record), *m_selectedOrg);
    if (!oneTimeCode.empty() && !m_store.setTOTPSecret(oneTimeCode, saved)) {
        // Not written anywhere: the URI goes back into the notes rather than being lost.
        saved.notes += (saved.notes.empty() ? "" : "\n") + oneTimeCode;
        saved.totpKeychainID.clear();
        m_store.noteChanged(saved);
    }
    // A refusal leaves the record without a stored password; the credential is still kept.
    if (!parsed.password.empty() && m_store.setPassword(parsed.password, saved)) {
        saved.passwordChangedAt = m_calendar.now();
        m_store.noteChanged(saved);
    }
    if (!apiKey.empty() && !m_store.setAPIKey(apiKey, saved)) {
        // Not written anywhere yet: back into the notes, so that nothing pasted is lost.
        saved.notes = parsed.notes;
        saved.apiKeyKeychainID.clear();
        m_store.noteChanged(saved);
    }
    m_store.save();
    m_step = Step::done;
    return &saved;
}

} // namespace vorlane
