// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

class DataStore;
struct Organization;
struct ServiceRecord;

// What a share carries besides the connection details: the three choices of the share sheet.
struct ExportOptions {
    bool includeSecrets = false;
    bool includeNotes = true;
    bool includeFinancials = false;
};

// One shared service as the recipient reads it. Optional members are left out of the JSON
// entirely when absent.
struct ExportItem {
    std::string title;
    std::string type; // the kind's label
    std::string provider;
    std::string hostname;
    std::string domain;
    std::string ipAddress;
    std::string loginURL;
    std::string username;
    std::optional<std::string> password;
    std::optional<std::string> apiKey;
    std::string email;
    std::optional<std::int64_t> port;
    std::optional<std::string> notes;
    std::optional<std::string> monthlyCost;    // the stored decimal's exact text
    std::optional<std::string> expirationDate; // ISO 8601 UTC, whole seconds
};

// The plaintext that an export bundle seals. Never written anywhere unencrypted.
struct ExportPayload {
    std::string organizationName;
    std::string projectName;
    Instant exportDate;
    std::vector<ExportItem> items;

    // Compact JSON, members in declaration order, "exportDate" in seconds since 2001, every "/"
    // written "\/": the form the bundle's integrity hash is taken over.
    std::string toJson() const;

    // The payload for `services` (in that order) of `organization` at `now`. Secrets are read
    // from the store once per service and field, and only when they are included; a secret that
    // cannot be read is left out. Main thread (the store).
    static ExportPayload build(const Organization& organization,
                               const std::vector<ServiceRecord*>& services,
                               const ExportOptions& options, const DataStore& store, Instant now);

    // The names of the fields the options withhold, for the share record: "password", "apiKey"
    // without secrets, "notes" without notes, "monthlyCost", "yearlyCost" without financials.
    static std::vector<std::string> redactedFields(const ExportOptions& options);
};

} // namespace vorlane
