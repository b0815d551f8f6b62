// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ExpirationState.h"
#include "model/Palette.h"
#include "util/Signal.h"
#include "util/Timers.h"
#include "util/Uuid.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

struct AppContext;
struct ServiceRecord;

// The service detail screen: every field of one service in sections, copy buttons, the password,
// API key and one-time code revealed only after the user authenticates (every time), "Copy All",
// and the actions bar (open the login URL, mark renewed, edit, duplicate, delete).
//
// Holds the service by id and looks it up on every call, so a service deleted meanwhile reads as
// gone (`exists` false, no sections) instead of dangling. Revealed secrets live only in this
// object and are wiped when it goes: leaving the screen hides them. Authentication replies
// arriving after it is gone are dropped. `changed` fires when what is drawn changes for a reason
// the store does not announce (a reveal, the copied check mark, a message); widgets also redraw
// on the store's and navigation state's signals. Main thread; the context outlives it.
class ServiceDetailScreen {
public:
    // How long a row shows its check mark after a copy.
    static constexpr std::chrono::milliseconds copiedMarkDuration{1500};
    // What a secure row shows until revealed; the same whatever the secret's length.
    static constexpr std::string_view maskedText = "••••••••••••";

    enum class Field {
        loginURL,
        hostname,
        domain,
        ipAddress,
        port,
        username,
        emailAddress,
        sshKey,
        password,
        apiKey,
        oneTimeCode,
        billingCycle,
        monthlyCost,
        yearlyCost,
        purchaseDate,
        renewalDate,
        expirationDate,
        autoRenew,
        tags,
        notes,
        riskLevel,
        createdAt,
        updatedAt,
    };

    enum class RowKind {
        info,     // label and value
        copyable, // with "Copy"
        url,      // with "Copy" and "Open in Browser"
        secure,   // masked, with "Reveal"/"Hide" and "Copy"
        caption,  // a line of small text, no label ("Created Mar 10, 2026")
    };

    struct Row {
        Field field;
        RowKind kind;
        std::string label;
        std::string value; // as shown: the mask for a secure row until it is revealed
        std::string_view icon;
        std::optional<Palette::Color> valueColor; // none: the palette's text colour
        bool revealed = false;                    // secure rows
        bool copied = false;                      // the check mark replaces the copy image

        std::string_view copyIcon() const { return copied ? "checkmark" : "doc.on.doc"; }
        std::string_view revealText() const { return revealed ? "Hide" : "Reveal"; }
        std::string_view revealIcon() const { return revealed ? "eye.slash" : "eye"; }
    };

    struct Section {
        std::string title;
        std::vector<Row> rows;
    };

    ServiceDetailScreen(AppContext& context, const ServiceRecord& service);
    ~ServiceDetailScreen();
    ServiceDetailScreen(const ServiceDetailScreen&) = delete;
    ServiceDetailScreen& operator=(const ServiceDetailScreen&) = delete;

    Signal<> changed;

    bool exists() const;

    // -- Header
    std::string title() const;
    // The kind's label, and the organization's name when there is one: "VPS · Acme".
    std::string subtitle() const;
    std::string_view typeIcon() const;
    Palette::Color typeTint() const;
    ExpirationState expirationState() const;

    // The sections that have rows, in order: "Credentials", "Billing & Dates",
    // "Additional Information". A row is there only when its value is (costs when not zero).
    std::vector<Section> sections() const;

    // -- Rows
    // Copies the row's value with the usual 30-second clear. A secure row that is revealed
    // copies at once; a masked one asks for authentication first ("Copy password for <title>")
    // and copies nothing on a refusal or an unreadable secret.
    void copy(Field field);
    // Hides a revealed secret; otherwise asks for authentication ("Reveal password for <title>",
    // "Reveal API key for <title>", "Reveal one-time code for <title>") and shows the secret on
    // success (empty when it cannot be read). Ignored while that secret's prompt is open.
    // A revealed one-time code shows the current code in two groups and the seconds it stays
    // valid ("123 456 · 17 s"); it is redrawn every second (`changed`) and so moves on to the
    // next code by itself at the end of its period. Copying it copies the digits alone.
    void toggleReveal(Field secret);

    // -- Actions bar
    bool canOpenURL() const;
    // What "Open URL" and "Open in Browser" hand to the desktop; nothing when its scheme may not
    // be opened, and `message` then says so ("This address cannot be opened: file").
    std::optional<std::string> addressToOpen();
    // "Title: ", "URL: ", "Host: ", "Domain: ", "IP: ", "Username: ", "Email: ", "Port: " lines,
    // each only when its value is there; never a secret.
    std::string copyAllText() const;
    void copyAll();
    bool canMarkRenewed() const; // only a dated service moves
    void markRenewed();
    void edit();
    // Shows the copy; on a refusal of the secret store sets `message` instead.
    void duplicate();
    static constexpr std::string_view deleteConfirmationTitle = "Delete Service";
    std::string deleteConfirmationMessage() const;
    // The confirmed "Delete": secrets, then the record; the pane returns to what lies beneath.
    void deleteService();
    // "Back": closes the service.
    void back();

    // A failure to show under the actions bar; empty when there is none.
    const std::string& message() const { return m_message; }

private:
    struct Secret {
        bool revealed = false;
        bool asking = false;
        std::string value;
    };

    ServiceRecord* service() const;
    Secret& secret(Field field);
    const Secret& secret(Field field) const;
    void hide(Secret& secret);
    // The current code of the revealed one-time code secret; nothing when it does not parse.
    std::optional<std::string> currentCode(const std::string& secretText,
                                           int* validFor = nullptr) const;
    // Redraws a revealed one-time code each second until it is hidden or the screen goes.
    void tickOneTimeCode();
    // Runs `then` with the secret's current text after the user authenticates with `reason`.
    void authenticateThenRead(Field field, const std::string& reason,
                              std::function<void(std::optional<std::string>)> then);
    void copyText(Field field, const std::string& text);

    AppContext& m_context;
    Uuid m_serviceId;
    Secret m_password;
    Secret m_apiKey;
    Secret m_oneTimeCode; // revealed: the stored secret the codes are made from
    Timers::TimerId m_codeTimer = 0;
    std::optional<Field> m_copied;
    Timers::TimerId m_copiedTimer = 0;
    std::string m_message;
    // Shared with pending authentication replies, which do nothing once it has gone.
    std::shared_ptr<ServiceDetailScreen*> m_self;
};

} // namespace vorlane
