// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "passwords/PasswordHealth.h"
#include "screens/EmptyState.h"
#include "util/Signal.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

struct AppContext;
class KeychainManager;

// The "Password Health" view: empty until the user authenticates ("Authenticate to check your
// passwords"), then the report's counts and its sections of rows, each row opening its service.
// Holds only the report (titles and kinds; the digests go with the check); it is dropped when the
// view goes and on `clear`, which the window calls when the vault is locked. `changed` fires when
// the report arrives or is dropped. Authentication replies arriving after the screen is gone are
// dropped. Main thread; the context outlives it.
class PasswordHealthScreen {
public:
    static constexpr std::string_view title = "Password Health";
    static constexpr std::string_view authenticateReason = "Authenticate to check your passwords";

    struct Row {
        Uuid serviceId;
        std::string title;    // the service's title
        std::string subtitle; // "Acme · API key"
    };
    struct Section {
        std::string title; // "Reused Secret 1 (3 services)", "Weak", "Unchanged for a Year",
                           // "Without a Password"
        std::vector<Row> rows;
    };

    PasswordHealthScreen(AppContext& context, KeychainManager& keychain);
    ~PasswordHealthScreen();
    PasswordHealthScreen(const PasswordHealthScreen&) = delete;
    PasswordHealthScreen& operator=(const PasswordHealthScreen&) = delete;

    Signal<> changed;

    bool hasReport() const { return m_findings.has_value(); }
    // Asks, then reads every secret once. A refusal leaves the screen as it was; an unreadable
    // keyring sets `message`.
    void authenticate();
    const std::string& message() const { return m_message; }

    // "Reused: 3  Weak: 2  Old: 1  Without a password: 2"; empty before the report.
    std::string countsText() const;
    // What the sidebar shows beside "Password Health"; nothing before the report.
    std::optional<std::size_t> findingsCount() const;
    std::vector<Section> sections() const;
    // What shows instead of the list: the button that starts the check (with the keyring's
    // failure, if the last try had one) before the report, a clean bill when the report found
    // nothing, and nothing when there are rows to show.
    std::optional<EmptyState> emptyState() const;
    // Opens the row's service in the detail pane.
    void open(const Row& row);
    void clear();

private:
    AppContext& m_context;
    std::optional<PasswordHealth::Findings> m_findings;
    std::string m_message;
    KeychainManager& m_keychain;
    std::shared_ptr<PasswordHealthScreen*> m_self;
};

} // namespace vorlane
