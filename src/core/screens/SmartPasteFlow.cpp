// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SmartPasteFlow.h"

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "paste/PasteParser.h"
#include "store/DataStore.h"
#include "util/DateText.h"
#include "util/UserCalendar.h"
#include "util/Whitespace.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

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
        return m_selectedOrg != nullptr && m_parsed && !m_parsed->title.empty();
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
    m_parsed = std::move(parsed);
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
    record.notes = parsed.notes;
    if (!parsed.password.empty()) {
        record.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    }
    ServiceRecord& saved = m_store.insert(std::move(record), *m_selectedOrg);
    if (!parsed.password.empty()) {
        // A refusal leaves the record without a stored password; the credential is still kept.
        m_store.setPassword(parsed.password, saved);
    }
    m_store.save();
    m_step = Step::done;
    return &saved;
}

} // namespace vorlane
