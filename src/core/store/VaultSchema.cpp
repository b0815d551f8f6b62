#include "store/VaultSchema.h"

#include "store/SqliteConnection.h"

#include <array>
#include <cstdio>

namespace vorlane {

namespace {

// Lists (tags, the shared service ids, the redacted field names) are JSON arrays in one column:
// they are always read and written whole with their record and never queried on their own, so a
// child table would only add a join to every load and extra rows to every save.
// Dates are UTC milliseconds; money is the exact decimal text; ids are canonical UUID text.
// Rows are loaded in rowid order, which keeps each organization's services in insertion order.
constexpr std::string_view tables = R"sql(
CREATE TABLE vault_meta (
    key TEXT PRIMARY KEY NOT NULL,
    value TEXT NOT NULL
);
CREATE TABLE organizations (
    id TEXT PRIMARY KEY NOT NULL,
    name TEXT NOT NULL,
    projectName TEXT NOT NULL,
    contactName TEXT NOT NULL,
    contactEmail TEXT NOT NULL,
    contactPhone TEXT NOT NULL,
    website TEXT NOT NULL,
    notes TEXT NOT NULL,
    tags TEXT NOT NULL,
    isActive INTEGER NOT NULL,
    isArchived INTEGER NOT NULL,
    isFavorite INTEGER NOT NULL,
    createdAt INTEGER NOT NULL,
    updatedAt INTEGER NOT NULL
);
CREATE TABLE organization_logos (
    organizationId TEXT PRIMARY KEY NOT NULL
        REFERENCES organizations(id) ON DELETE CASCADE,
    data BLOB NOT NULL
);
CREATE TABLE services (
    id TEXT PRIMARY KEY NOT NULL,
    organizationId TEXT REFERENCES organizations(id) ON DELETE CASCADE,
    serviceTypeRaw TEXT NOT NULL,
    title TEXT NOT NULL,
    provider TEXT NOT NULL,
    hostname TEXT NOT NULL,
    domain TEXT NOT NULL,
    ipAddress TEXT NOT NULL,
    loginURL TEXT NOT NULL,
    username TEXT NOT NULL,
    emailAddress TEXT NOT NULL,
    port INTEGER,
    sshKeyReference TEXT NOT NULL,
    purchaseDate INTEGER,
    renewalDate INTEGER,
    expirationDate INTEGER,
    billingCycleRaw TEXT NOT NULL,
    monthlyCost TEXT NOT NULL,
    yearlyCost TEXT NOT NULL,
    autoRenew INTEGER NOT NULL,
    tags TEXT NOT NULL,
    notes TEXT NOT NULL,
    riskLevelRaw TEXT NOT NULL,
    statusRaw TEXT NOT NULL,
    isArchived INTEGER NOT NULL,
    createdAt INTEGER NOT NULL,
    updatedAt INTEGER NOT NULL,
    secretKeychainID TEXT NOT NULL,
    apiKeyKeychainID TEXT NOT NULL
);
CREATE INDEX services_by_organization ON services(organizationId);
CREATE TABLE shares (
    id TEXT PRIMARY KEY NOT NULL,
    organizationId TEXT REFERENCES organizations(id) ON DELETE CASCADE,
    serviceIDs TEXT NOT NULL,
    recipientLabel TEXT NOT NULL,
    notes TEXT NOT NULL,
    includesSecrets INTEGER NOT NULL,
    redactedFields TEXT NOT NULL,
    expirationDate INTEGER,
    isRevoked INTEGER NOT NULL,
    sharedAt INTEGER NOT NULL,
    shareMethodRaw TEXT NOT NULL
);
CREATE INDEX shares_by_organization ON shares(organizationId);
)sql";

// "1.2.3" as three numbers; nothing for anything else.
std::optional<std::array<int, 3>> parseVersion(const std::string& text) {
    std::array<int, 3> parts{};
    int consumed = 0;
    if (std::sscanf(text.c_str(), "%d.%d.%d%n", &parts[0], &parts[1], &parts[2], &consumed) != 3 ||
        static_cast<std::size_t>(consumed) != text.size()) {
        return std::nullopt;
    }
    return parts;
}

} // namespace

bool VaultSchema::create(SqliteConnection& connection) {
    if (!connection.execute(tables) ||
        !connection.execute("PRAGMA application_id = " + std::to_string(applicationId))) {
        return false;
    }
    auto insert =
        connection.prepare("INSERT INTO vault_meta (key, value) VALUES ('schemaVersion', ?)");
    if (!insert) {
        return false;
    }
    insert->bind(1, version);
    return insert->step() == SqliteStatement::Step::done;
}

std::optional<std::string> VaultSchema::check(SqliteConnection& connection) {
    const std::optional<std::int64_t> id = connection.queryInteger("PRAGMA application_id");
    if (!id) {
        return "is damaged: " + connection.lastError();
    }
    if (*id != applicationId) {
        return std::string("is not a Vorlane vault");
    }
    const std::optional<std::string> stored =
        connection.queryText("SELECT value FROM vault_meta WHERE key = 'schemaVersion'");
    if (!stored) {
        return "is damaged: it has no schema version (" + connection.lastError() + ")";
    }
    const auto found = parseVersion(*stored);
    const auto ours = parseVersion(std::string(version));
    if (!found) {
        return "is damaged: its schema version \"" + *stored + "\" is not a version";
    }
    if (*found > *ours) {
        return "was written by a newer version of Vorlane (schema " + *stored +
               "); this version reads schema " + std::string(version);
    }
    if (*found < *ours) {
        return "has schema " + *stored + ", which this version cannot read";
    }
    return std::nullopt;
}

std::optional<std::string> VaultSchema::checkPages(SqliteConnection& connection) {
    const std::optional<std::string> integrity = connection.queryText("PRAGMA quick_check");
    if (!integrity) {
        return connection.lastError();
    }
    if (*integrity != "ok") {
        return integrity;
    }
    return std::nullopt;
}

} // namespace vorlane
