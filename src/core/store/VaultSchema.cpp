// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/VaultSchema.h"

#include "store/SqliteConnection.h"

#include <array>
#include <cstdio>
#include <span>
#include <vector>

namespace vorlane {

namespace {

// Lists (tags, the shared service ids, the redacted field names) are JSON arrays in one column:
// they are always read and written whole with their record and never queried on their own, so a
// child table would only add a join to every load and extra rows to every save.
// Dates are UTC milliseconds; money is the exact decimal text; ids are canonical UUID text.
// Rows are loaded in rowid order, which keeps each organization's services in insertion order.
// These are the tables of the first schema, 1.0.0; every later version is a step below, and a new
// vault is made by the same steps, so that a new file and an upgraded one cannot differ.
constexpr std::string_view firstVersion = "1.0.0";
constexpr std::string_view firstTables = R"sql(
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

// A column a step adds. Its default fills the rows already there, and stands in for the column
// when a file of the older schema is read before it is upgraded.
struct AddedColumn {
    std::string_view table;
    std::string_view name;
    std::string_view type;
    std::string_view defaultValue; // an SQL literal
};

// One version to the next: the columns added to existing tables, then the new tables (their
// names, and the statements that make them).
struct Step {
    std::string_view from;
    std::string_view to;
    std::span<const AddedColumn> columns;
    std::span<const std::string_view> newTableNames;
    std::string_view newTables;
};

// 1.1.0: a one-time code secret's identifier and when the password last changed, on services;
// what was paid for a service, in a table of its own.
constexpr std::array<AddedColumn, 2> columnsOf1_1{{
    {"services", "totpKeychainID", "TEXT NOT NULL", "''"},
    {"services", "passwordChangedAt", "INTEGER", "NULL"},
}};
constexpr std::array<std::string_view, 1> tableNamesOf1_1{"payments"};
constexpr std::string_view tablesOf1_1 = R"sql(
CREATE TABLE payments (
    id TEXT PRIMARY KEY NOT NULL,
    serviceId TEXT NOT NULL REFERENCES services(id) ON DELETE CASCADE,
    datePaid INTEGER NOT NULL,
    periodFrom INTEGER,
    periodTo INTEGER,
    amount TEXT NOT NULL,
    note TEXT NOT NULL
);
CREATE INDEX payments_by_service ON payments(serviceId);
)sql";

constexpr std::array<Step, 1> steps{{
    {firstVersion, "1.1.0", columnsOf1_1, tableNamesOf1_1, tablesOf1_1},
}};

// The steps that bring `stored` to the current version, in order; nothing when it is current,
// or when no chain of steps starts at it.
std::vector<const Step*> stepsFrom(std::string_view stored) {
    std::vector<const Step*> chain;
    std::string_view at = stored;
    for (const Step& step : steps) {
        if (step.from == at) {
            chain.push_back(&step);
            at = step.to;
        }
    }
    return at == VaultSchema::version ? chain : std::vector<const Step*>();
}

bool apply(SqliteConnection& connection, const Step& step) {
    for (const AddedColumn& column : step.columns) {
        if (!connection.execute("ALTER TABLE " + std::string(column.table) + " ADD COLUMN " +
                                std::string(column.name) + " " + std::string(column.type) +
                                " DEFAULT " + std::string(column.defaultValue))) {
            return false;
        }
    }
    return connection.execute(step.newTables);
}

bool setVersion(SqliteConnection& connection, std::string_view sql) {
    auto statement = connection.prepare(sql);
    if (!statement) {
        return false;
    }
    statement->bind(1, VaultSchema::version);
    return statement->step() == SqliteStatement::Step::done;
}

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
    if (!connection.execute(firstTables) ||
        !connection.execute("PRAGMA application_id = " + std::to_string(applicationId))) {
        return false;
    }
    for (const Step* step : stepsFrom(firstVersion)) {
        if (!apply(connection, *step)) {
            return false;
        }
    }
    return setVersion(connection,
                      "INSERT INTO vault_meta (key, value) VALUES ('schemaVersion', ?)");
}

bool VaultSchema::upgrade(SqliteConnection& connection, std::string_view stored) {
    const std::vector<const Step*> chain = stepsFrom(stored);
    if (chain.empty()) {
        return stored == version;
    }
    for (const Step* step : chain) {
        if (!apply(connection, *step)) {
            return false;
        }
    }
    return setVersion(connection, "UPDATE vault_meta SET value = ? WHERE key = 'schemaVersion'");
}

std::string VaultSchema::selectable(std::string_view stored, std::string_view table,
                                    std::string_view column) {
    for (const Step* step : stepsFrom(stored)) {
        for (const AddedColumn& added : step->columns) {
            if (added.table == table && added.name == column) {
                return std::string(added.defaultValue) + " AS " + std::string(column);
            }
        }
    }
    return std::string(column);
}

bool VaultSchema::hasTable(std::string_view stored, std::string_view table) {
    for (const Step* step : stepsFrom(stored)) {
        for (const std::string_view created : step->newTableNames) {
            if (created == table) {
                return false;
            }
        }
    }
    return true;
}

std::optional<std::string> VaultSchema::check(SqliteConnection& connection, std::string& stored) {
    const std::optional<std::int64_t> id = connection.queryInteger("PRAGMA application_id");
    if (!id) {
        return "is damaged: " + connection.lastError();
    }
    if (*id != applicationId) {
        return std::string("is not a Vorlane vault");
    }
    const std::optional<std::string> text =
        connection.queryText("SELECT value FROM vault_meta WHERE key = 'schemaVersion'");
    if (!text) {
        return "is damaged: it has no schema version (" + connection.lastError() + ")";
    }
    const auto found = parseVersion(*text);
    const auto ours = parseVersion(std::string(version));
    if (!found) {
        return "is damaged: its schema version \"" + *text + "\" is not a version";
    }
    if (*found > *ours) {
        return "was written by a newer version of Vorlane (schema " + *text +
               "); this version reads schema " + std::string(version);
    }
    if (*found < *ours && stepsFrom(*text).empty()) {
        return "has schema " + *text + ", which this version cannot read";
    }
    stored = *text;
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
