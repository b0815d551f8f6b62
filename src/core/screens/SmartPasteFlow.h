// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "paste/ParsedCredential.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vorlane {

class DataStore;
struct Organization;
struct ServiceRecord;
class UserCalendar;

// The smart-paste sheet: pasted text, parsed into a credential, reviewed, saved as a new service
// of the chosen organization with its password in the secret store. Holds the sheet's state and
// every rule and text it shows; the widget only draws it. Main thread only; the store and
// calendar must outlive it. The organizations are the store's.
class SmartPasteFlow {
public:
    enum class Step { paste, review, done };

    // One editable text row of the review step, in order.
    struct Field {
        std::string label;
        std::string ParsedCredential::*member;
        bool isSecure;
    };

    static constexpr const char* title = "Smart Paste";
    static constexpr const char* explanation =
        "Paste raw credential text below. Vorlane will detect IP addresses, domains, emails, "
        "ports, usernames, URLs, and dates automatically.";
    static constexpr const char* noOrganization = "Select...";

    // `organization` is the one the sheet was opened for (preselected), or none.
    SmartPasteFlow(DataStore& store, const UserCalendar& calendar, Organization* organization);

    Step step() const { return m_step; }
    std::string subtitle() const;

    const std::string& rawText() const { return m_rawText; }
    void setRawText(std::string text) { m_rawText = std::move(text); }
    // "N characters": user-perceived characters, as the editor counts them.
    std::string characterCount() const;

    // Present from the first parse on; the review step edits it in place.
    const std::optional<ParsedCredential>& parsed() const { return m_parsed; }
    ParsedCredential* editableParsed() { return m_parsed ? &*m_parsed : nullptr; }
    static const std::vector<Field>& fields();

    Organization* organization() const { return m_organization; }
    Organization* selectedOrg() const { return m_selectedOrg; }
    void setSelectedOrg(Organization* organization) { m_selectedOrg = organization; }
    // What the organization picker offers after "Select...": every organization, by name.
    std::vector<Organization*> organizations() const;

    // Notes lines whose label (the text before the first ":" or "=") names a secret: a word of
    // it is password, passwd, pwd, pin, token, secret, key or api, a plural of one, or two of
    // them run together ("apiKey"). The parser leaves a second password or an API token in the
    // notes, which the vault file holds and shows unmasked; each such line is offered to be
    // stored as the service's API key in the secret store instead, which is the default. Read
    // from the notes as they are now, in their order; a line that appears twice is one entry.
    struct SecretLine {
        std::string line;  // trimmed, as in the notes
        std::string label; // the part before the separator, trimmed
        bool storeAsAPIKey;
    };
    std::vector<SecretLine> secretLines() const;
    // "Store as API Key" (true) or "Keep in Notes" (false) for the line with this text.
    void setStoreAsAPIKey(const std::string& line, bool store);
    static constexpr const char* secretsHeading = "Secrets in Notes";
    static constexpr const char* secretsExplanation =
        "These lines look like secrets. Stored as an API key they are kept in the keyring, not "
        "in the vault's notes.";
    static constexpr const char* storeAsAPIKeyTitle = "Store as API Key";
    static constexpr const char* keepInNotesTitle = "Keep in Notes";

    // "One-Time Code": the first valid "otpauth://" URI anywhere in the parsed text, stored as
    // the service's one-time code secret; empty when there is none. The parser knows nothing of
    // these, so the flow takes the URI out of the notes and the login address, where it would sit
    // in the clear. The review shows it masked, like every secret, and lets it be changed or
    // cleared: a bare base32 secret is taken too, surrounding blanks are not stored, and anything
    // else is refused in place (`oneTimeCodeError`) and keeps the credential from being saved.
    static constexpr const char* oneTimeCodeLabel = "One-Time Code";
    const std::string& oneTimeCode() const { return m_oneTimeCode; }
    void setOneTimeCode(std::string text);
    // TotpSecret::invalidMessage while the field holds something that is not a secret; else empty.
    std::string oneTimeCodeError() const;

    // "Detected Date" value; nothing when no date was detected.
    std::optional<std::string> detectedDateText() const;

    // The footer: "Back" only on review; the main button's title and whether it can be pressed.
    bool showsBack() const { return m_step == Step::review; }
    std::string mainButtonTitle() const;
    bool mainButtonEnabled() const;

    // "Parse": parses the text as it is (untrimmed) and moves to review, replacing every edit.
    void parse();
    // The same in two halves, for a widget that parses a long text off the main thread: the
    // result of parsing `parsedFrom` is taken only if the text has not changed since.
    bool applyParse(const std::string& parsedFrom, ParsedCredential parsed);
    // Review back to paste, keeping the text and the parsed credential.
    void back();
    // "Save Credential": the new service, inserted, its password stored and dated (a refusal of
    // the secret store does not stop the save), the secret lines chosen for it stored as its API
    // key (one per line, in notes order) and taken out of its notes, the vault saved, the done
    // step. Should the secret store refuse the API key, those lines stay in the notes rather
    // than being lost. Nothing when the button is disabled.
    ServiceRecord* save();

private:
    DataStore& m_store;
    const UserCalendar& m_calendar;
    Organization* m_organization;
    Organization* m_selectedOrg;
    std::string m_rawText;
    std::optional<ParsedCredential> m_parsed;
    std::string m_oneTimeCode;
    // Secret lines the user chose to keep in the notes; every other one is stored as API key.
    std::set<std::string> m_keptInNotes;
    Step m_step = Step::paste;
};

} // namespace vorlane
