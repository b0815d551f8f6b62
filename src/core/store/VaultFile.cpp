// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/VaultFile.h"

#include "store/VaultLocation.h"
#include "store/VaultSchema.h"
#include "util/Handoff.h"
#include "util/HugePages.h"

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <thread>
#include <utility>

namespace vorlane {

namespace {

using Step = SqliteStatement::Step;

constexpr std::array<std::string_view, 14> organizationColumns{
    "id",    "name", "projectName", "contactName", "contactEmail", "contactPhone", "website",
    "notes", "tags", "isActive",    "isArchived",  "isFavorite",   "createdAt",    "updatedAt",
};
constexpr std::array<std::string_view, 31> serviceColumns{
    "id",
    "organizationId",
    "serviceTypeRaw",
    "title",
    "provider",
    "hostname",
    "domain",
    "ipAddress",
    "loginURL",
    "username",
    "emailAddress",
    "port",
    "sshKeyReference",
    "purchaseDate",
    "renewalDate",
    "expirationDate",
    "billingCycleRaw",
    "monthlyCost",
    "yearlyCost",
    "autoRenew",
    "tags",
    "notes",
    "riskLevelRaw",
    "statusRaw",
    "isArchived",
    "createdAt",
    "updatedAt",
    "secretKeychainID",
    "apiKeyKeychainID",
    "totpKeychainID",
    "passwordChangedAt",
};
constexpr std::array<std::string_view, 11> shareColumns{
    "id",        "organizationId",  "serviceIDs",     "recipientLabel",
    "notes",     "includesSecrets", "redactedFields", "expirationDate",
    "isRevoked", "sharedAt",        "shareMethodRaw",
};
constexpr std::array<std::string_view, 7> paymentColumns{
    "id", "serviceId", "datePaid", "periodFrom", "periodTo", "amount", "note",
};

// What the strings of one service read from the file take on the heap, generously: a demo
// vault of 100,000 services takes 28 MB.
constexpr std::size_t heapBytesPerService = 320;

// Reads a file of schema `stored` as it is: a column that came with a later version reads as
// the value its upgrade will give it.
template <std::size_t N>
std::string selectSql(std::string_view table, const std::array<std::string_view, N>& columns,
                      std::string_view stored) {
    std::string sql = "SELECT ";
    for (std::size_t i = 0; i < N; ++i) {
        sql += (i ? ", " : "") + VaultSchema::selectable(stored, table, columns[i]);
    }
    return sql + " FROM " + std::string(table) + " ORDER BY rowid";
}

// An insert that updates the row in place when the id exists. Never INSERT OR REPLACE: replacing
// deletes the old row first, and the cascade would take an organization's services with it.
template <std::size_t N>
std::string upsertSql(std::string_view table, const std::array<std::string_view, N>& columns) {
    std::string names;
    std::string values;
    std::string updates;
    for (std::size_t i = 0; i < N; ++i) {
        const std::string column(columns[i]);
        names += (i ? ", " : "") + column;
        values += i ? ", ?" : "?";
        if (i > 0) {
            updates += (i > 1 ? ", " : "") + column + " = excluded." + column;
        }
    }
    return "INSERT INTO " + std::string(table) + " (" + names + ") VALUES (" + values +
           ") ON CONFLICT(id) DO UPDATE SET " + updates;
}

std::int64_t toMilliseconds(Instant instant) {
    return instant.time_since_epoch().count();
}

std::optional<std::int64_t> toMilliseconds(const std::optional<Instant>& instant) {
    if (!instant) {
        return std::nullopt;
    }
    return toMilliseconds(*instant);
}

Instant toInstant(std::int64_t milliseconds) {
    return Instant(std::chrono::milliseconds(milliseconds));
}

std::optional<Instant> toInstant(const std::optional<std::int64_t>& milliseconds) {
    if (!milliseconds) {
        return std::nullopt;
    }
    return toInstant(*milliseconds);
}

std::string jsonList(const std::vector<std::string>& list) {
    return nlohmann::json(list).dump();
}

std::string jsonList(const std::vector<Uuid>& list) {
    nlohmann::json array = nlohmann::json::array();
    for (const Uuid& id : list) {
        array.push_back(id.toString());
    }
    return array.dump();
}

// The lists this program writes are compact JSON arrays of plain ASCII strings, such as
// ["hosting","legacy"]: those are read here without building a JSON document, which is most of
// the cost of loading a service's tags. Anything else (escapes, spaces, other characters, a
// malformed list) gives nothing and is left to the JSON parser.
std::optional<std::vector<std::string>> plainStringList(std::string_view raw) {
    if (raw.size() < 2 || raw.front() != '[' || raw.back() != ']') {
        return std::nullopt;
    }
    std::vector<std::string> items;
    const std::size_t closing = raw.size() - 1;
    std::size_t at = 1;
    while (at < closing) {
        if (raw[at] != '"') {
            return std::nullopt;
        }
        std::size_t end = ++at;
        for (; end < closing && raw[end] != '"'; ++end) {
            const auto c = static_cast<unsigned char>(raw[end]);
            if (c < 0x20 || c >= 0x7f || c == '\\') {
                return std::nullopt;
            }
        }
        if (end >= closing) {
            return std::nullopt;
        }
        items.emplace_back(raw.substr(at, end - at));
        at = end + 1;
        if (at < closing && (raw[at] != ',' || ++at == closing)) {
            return std::nullopt;
        }
    }
    return items;
}

// Reading a row fails with a description when one of its values is not what the file promises;
// a damaged row must stop the load rather than come back as an empty field.
class RowReader {
public:
    RowReader(const SqliteStatement& row, std::string_view table)
        : m_row(row)
        , m_table(table) {}

    std::string text(int column) const { return m_row.text(column); }
    std::int64_t integer(int column) const { return m_row.integer(column); }
    bool flag(int column) const { return m_row.integer(column) != 0; }
    Instant instant(int column) const { return toInstant(m_row.integer(column)); }
    std::optional<Instant> optionalInstant(int column) const {
        return toInstant(m_row.optionalInteger(column));
    }
    std::optional<std::int64_t> optionalInteger(int column) const {
        return m_row.optionalInteger(column);
    }

    Uuid uuid(int column) {
        const std::string_view raw = m_row.textView(column);
        const auto id = Uuid::fromString(raw);
        if (!id) {
            fail("an id \"" + std::string(raw) + "\" that is not a UUID");
            return Uuid();
        }
        return *id;
    }

    std::optional<Uuid> optionalUuid(int column) {
        if (m_row.isNull(column)) {
            return std::nullopt;
        }
        return uuid(column);
    }

    Decimal decimal(int column) {
        const std::string_view raw = m_row.textView(column);
        const auto value = Decimal::fromString(raw);
        if (!value) {
            fail("an amount \"" + std::string(raw) + "\" that is not a decimal number");
            return Decimal();
        }
        return *value;
    }

    std::vector<std::string> strings(int column) {
        const std::string_view raw = m_row.textView(column);
        if (std::optional<std::vector<std::string>> plain = plainStringList(raw)) {
            return std::move(*plain);
        }
        std::vector<std::string> result;
        const nlohmann::json list = nlohmann::json::parse(raw, nullptr, false);
        if (!list.is_array()) {
            fail("a list that is not a JSON array");
            return result;
        }
        for (const auto& item : list) {
            if (!item.is_string()) {
                fail("a list holding something other than text");
                return {};
            }
            result.push_back(item.get<std::string>());
        }
        return result;
    }

    std::vector<Uuid> uuids(int column) {
        std::vector<Uuid> result;
        for (const std::string& text : strings(column)) {
            const auto id = Uuid::fromString(text);
            if (!id) {
                fail("a list of ids holding \"" + text + "\"");
                return {};
            }
            result.push_back(*id);
        }
        return result;
    }

    const std::optional<std::string>& problem() const { return m_problem; }

    void fail(const std::string& what) {
        if (!m_problem) {
            m_problem = "a row of " + std::string(m_table) + " holds " + what;
        }
    }

    const SqliteStatement& m_row;
    std::string_view m_table;
    std::optional<std::string> m_problem;
};

std::unique_ptr<Organization> readOrganization(RowReader& row) {
    auto organization = std::make_unique<Organization>();
    organization->id = row.uuid(0);
    organization->name = row.text(1);
    organization->projectName = row.text(2);
    organization->contactName = row.text(3);
    organization->contactEmail = row.text(4);
    organization->contactPhone = row.text(5);
    organization->website = row.text(6);
    organization->notes = row.text(7);
    organization->tags = row.strings(8);
    organization->isActive = row.flag(9);
    organization->isArchived = row.flag(10);
    organization->isFavorite = row.flag(11);
    organization->createdAt = row.instant(12);
    organization->updatedAt = row.instant(13);
    return organization;
}

void bindOrganization(SqliteStatement& statement, const Organization& organization) {
    statement.bind(1, organization.id.toString());
    statement.bind(2, organization.name);
    statement.bind(3, organization.projectName);
    statement.bind(4, organization.contactName);
    statement.bind(5, organization.contactEmail);
    statement.bind(6, organization.contactPhone);
    statement.bind(7, organization.website);
    statement.bind(8, organization.notes);
    statement.bind(9, jsonList(organization.tags));
    statement.bind(10, organization.isActive);
    statement.bind(11, organization.isArchived);
    statement.bind(12, organization.isFavorite);
    statement.bind(13, toMilliseconds(organization.createdAt));
    statement.bind(14, toMilliseconds(organization.updatedAt));
}

ServiceRecord readService(RowReader& row) {
    ServiceRecord service;
    service.id = row.uuid(0);
    service.serviceTypeRaw = row.text(2);
    service.title = row.text(3);
    service.provider = row.text(4);
    service.hostname = row.text(5);
    service.domain = row.text(6);
    service.ipAddress = row.text(7);
    service.loginURL = row.text(8);
    service.username = row.text(9);
    service.emailAddress = row.text(10);
    service.port = row.optionalInteger(11);
    service.sshKeyReference = row.text(12);
    service.purchaseDate = row.optionalInstant(13);
    service.renewalDate = row.optionalInstant(14);
    service.expirationDate = row.optionalInstant(15);
    service.billingCycleRaw = row.text(16);
    service.monthlyCost = row.decimal(17);
    service.yearlyCost = row.decimal(18);
    service.autoRenew = row.flag(19);
    service.tags = row.strings(20);
    service.notes = row.text(21);
    service.riskLevelRaw = row.text(22);
    service.statusRaw = row.text(23);
    service.isArchived = row.flag(24);
    service.createdAt = row.instant(25);
    service.updatedAt = row.instant(26);
    service.secretKeychainID = row.text(27);
    service.apiKeyKeychainID = row.text(28);
    service.totpKeychainID = row.text(29);
    service.passwordChangedAt = row.optionalInstant(30);
    return service;
}

void bindOwner(SqliteStatement& statement, int index, const Organization* owner) {
    if (owner) {
        statement.bind(index, owner->id.toString());
    } else {
        statement.bindNull(index);
    }
}

void bindService(SqliteStatement& statement, const ServiceRecord& service) {
    statement.bind(1, service.id.toString());
    bindOwner(statement, 2, service.organization);
    statement.bind(3, service.serviceTypeRaw);
    statement.bind(4, service.title);
    statement.bind(5, service.provider);
    statement.bind(6, service.hostname);
    statement.bind(7, service.domain);
    statement.bind(8, service.ipAddress);
    statement.bind(9, service.loginURL);
    statement.bind(10, service.username);
    statement.bind(11, service.emailAddress);
    statement.bind(12, service.port);
    statement.bind(13, service.sshKeyReference);
    statement.bind(14, toMilliseconds(service.purchaseDate));
    statement.bind(15, toMilliseconds(service.renewalDate));
    statement.bind(16, toMilliseconds(service.expirationDate));
    statement.bind(17, service.billingCycleRaw);
    statement.bind(18, service.monthlyCost.toString());
    statement.bind(19, service.yearlyCost.toString());
    statement.bind(20, service.autoRenew);
    statement.bind(21, jsonList(service.tags));
    statement.bind(22, service.notes);
    statement.bind(23, service.riskLevelRaw);
    statement.bind(24, service.statusRaw);
    statement.bind(25, service.isArchived);
    statement.bind(26, toMilliseconds(service.createdAt));
    statement.bind(27, toMilliseconds(service.updatedAt));
    statement.bind(28, service.secretKeychainID);
    statement.bind(29, service.apiKeyKeychainID);
    statement.bind(30, service.totpKeychainID);
    statement.bind(31, toMilliseconds(service.passwordChangedAt));
}

std::unique_ptr<ShareRecord> readShare(RowReader& row) {
    auto share = std::make_unique<ShareRecord>();
    share->id = row.uuid(0);
    share->serviceIDs = row.uuids(2);
    share->recipientLabel = row.text(3);
    share->notes = row.text(4);
    share->includesSecrets = row.flag(5);
    share->redactedFields = row.strings(6);
    share->expirationDate = row.optionalInstant(7);
    share->isRevoked = row.flag(8);
    share->sharedAt = row.instant(9);
    share->shareMethodRaw = row.text(10);
    return share;
}

void bindShare(SqliteStatement& statement, const ShareRecord& share) {
    statement.bind(1, share.id.toString());
    bindOwner(statement, 2, share.organization);
    statement.bind(3, jsonList(share.serviceIDs));
    statement.bind(4, share.recipientLabel);
    statement.bind(5, share.notes);
    statement.bind(6, share.includesSecrets);
    statement.bind(7, jsonList(share.redactedFields));
    statement.bind(8, toMilliseconds(share.expirationDate));
    statement.bind(9, share.isRevoked);
    statement.bind(10, toMilliseconds(share.sharedAt));
    statement.bind(11, share.shareMethodRaw);
}

std::unique_ptr<PaymentRecord> readPayment(RowReader& row) {
    auto payment = std::make_unique<PaymentRecord>();
    payment->id = row.uuid(0);
    payment->datePaid = row.instant(2);
    payment->periodFrom = row.optionalInstant(3);
    payment->periodTo = row.optionalInstant(4);
    payment->amount = row.decimal(5);
    payment->note = row.text(6);
    return payment;
}

void bindPayment(SqliteStatement& statement, const PaymentRecord& payment) {
    statement.bind(1, payment.id.toString());
    statement.bind(2, payment.service->id.toString());
    statement.bind(3, toMilliseconds(payment.datePaid));
    statement.bind(4, toMilliseconds(payment.periodFrom));
    statement.bind(5, toMilliseconds(payment.periodTo));
    statement.bind(6, payment.amount.toString());
    statement.bind(7, payment.note);
}

std::string systemError(const std::string& what, int error) {
    return what + ": " + std::strerror(error);
}

bool syncPath(const std::string& path, int flags) {
    const int fd = ::open(path.c_str(), flags | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}

// Creates the missing folders of `folder`, each 0700: a vault folder is nobody else's business.
bool makeFolders(const std::filesystem::path& folder, std::string& error) {
    if (folder.empty() || std::filesystem::exists(folder)) {
        return true;
    }
    if (!makeFolders(folder.parent_path(), error)) {
        return false;
    }
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
        error = systemError("cannot create the folder " + folder.string(), errno);
        return false;
    }
    return true;
}

// A new vault is built under a temporary name and linked into place only when complete, so that
// a crash while creating it never leaves a half-made file that the next start would refuse; and
// link(2), unlike rename(2), never replaces a file that appeared meanwhile.
bool createVault(const std::string& path, std::string& error) {
    const std::filesystem::path target(path);
    if (!makeFolders(target.parent_path(), error)) {
        return false;
    }
    const std::string temporary = path + ".new-" + std::to_string(::getpid());
    ::unlink(temporary.c_str());
    const int fd = ::open(temporary.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
    if (fd < 0) {
        error = systemError("cannot create " + path, errno);
        return false;
    }
    ::close(fd);
    bool built = false;
    {
        auto connection =
            SqliteConnection::open(temporary, SqliteConnection::Mode::readWrite, error);
        if (connection) {
            built = connection->execute("BEGIN") && VaultSchema::create(*connection) &&
                    connection->execute("COMMIT");
            if (!built) {
                error = "cannot create " + path + ": " + connection->lastError();
            }
        }
    }
    if (built && !syncPath(temporary, O_RDONLY)) {
        error = systemError("cannot write " + path, errno);
        built = false;
    }
    if (built && ::link(temporary.c_str(), path.c_str()) != 0) {
        error = systemError("cannot create " + path, errno);
        built = false;
    }
    ::unlink(temporary.c_str());
    if (built) {
        const std::string folder =
            target.parent_path().empty() ? std::string(".") : target.parent_path().string();
        syncPath(folder, O_RDONLY | O_DIRECTORY);
    }
    return built;
}

// Refuses anything that is not at least an SQLite file, from its first bytes alone.
std::optional<std::string> checkHeader(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return systemError("cannot read " + path, errno);
    }
    struct stat info {};
    std::array<char, 16> header{};
    const bool isFile = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    const ssize_t got = isFile ? ::read(fd, header.data(), header.size()) : -1;
    const int readError = errno;
    ::close(fd);
    if (!isFile) {
        return path + " is not a file";
    }
    if (got < 0) {
        return systemError("cannot read " + path, readError);
    }
    if (got != static_cast<ssize_t>(header.size()) ||
        std::memcmp(header.data(), "SQLite format 3", header.size()) != 0) {
        return path + " is not a Vorlane vault";
    }
    return std::nullopt;
}

// Sets `mode` on `path` when group or others may do anything with it.
void withoutGroupAndOthers(const std::string& path, mode_t mode) {
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0 && (info.st_mode & 077) != 0) {
        ::chmod(path.c_str(), mode);
    }
}

bool hasCompanions(const std::string& path) {
    return ::access((path + "-wal").c_str(), F_OK) == 0 ||
           ::access((path + "-shm").c_str(), F_OK) == 0;
}

// Reading a WAL-mode file makes SQLite create its -wal and -shm companions. A refused file must
// be left as it was found: when they were not there before and the log is still empty, they go.
void removeNewCompanions(const std::string& path, bool hadCompanions) {
    const std::string wal = path + "-wal";
    struct stat log {};
    if (!hadCompanions && ::stat(wal.c_str(), &log) == 0 && log.st_size == 0) {
        ::unlink(wal.c_str());
        ::unlink((path + "-shm").c_str());
    }
}

} // namespace

VaultFile::VaultFile(std::string path, SqliteConnection reader, bool hadCompanions,
                     std::string storedVersion)
    : m_path(std::move(path))
    , m_storedVersion(std::move(storedVersion))
    , m_reader(std::move(reader))
    , m_hadCompanions(hadCompanions) {
    // Every page is read and checked, which is a good part of opening a large vault: it runs on
    // another core while `load` reads the records.
    m_pageCheck = std::async(std::launch::async, [path = m_path]() -> std::optional<std::string> {
        std::string error;
        auto checker = SqliteConnection::open(path, SqliteConnection::Mode::readOnly, error);
        if (!checker) {
            return error;
        }
        return VaultSchema::checkPages(*checker);
    });
}

std::optional<VaultFile> VaultFile::open(const std::string& path, std::string& error) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        if (errno != ENOENT) {
            error = systemError("cannot read " + path, errno);
            return std::nullopt;
        }
        if (!createVault(path, error)) {
            return std::nullopt;
        }
    }
    if (auto problem = checkHeader(path)) {
        error = *problem;
        return std::nullopt;
    }
    // Judged through read-only connections: a refused file must not be touched, not even by the
    // checkpoint a writable connection runs when it closes.
    const bool hadCompanions = hasCompanions(path);
    auto reader = SqliteConnection::open(path, SqliteConnection::Mode::readOnly, error);
    if (!reader) {
        error = "cannot read " + path + ": " + error;
        return std::nullopt;
    }
    std::string stored;
    if (auto problem = VaultSchema::check(*reader, stored)) {
        error = path + " " + *problem;
        reader.reset();
        removeNewCompanions(path, hadCompanions);
        return std::nullopt;
    }
    return VaultFile(path, std::move(*reader), hadCompanions, std::move(stored));
}

bool VaultFile::load(VaultContext& context, std::string& error) {
    std::string readError;
    const bool read = readRecords(context, readError);
    const std::optional<std::string> damage = m_pageCheck.get();
    m_reader.reset();
    if (damage || !read) {
        // What the page check found says more than the first row that failed to read.
        error = m_path + " is damaged: " + (damage ? *damage : readError);
        removeNewCompanions(m_path, m_hadCompanions);
        return false;
    }
    return openForWriting(error);
}

bool VaultFile::openForWriting(std::string& error) {
    auto connection = SqliteConnection::open(m_path, SqliteConnection::Mode::readWrite, error);
    if (!connection) {
        error = "cannot open " + m_path + ": " + error;
        return false;
    }
    if (connection->isReadOnly()) {
        error = m_path + " is read-only; Vorlane needs to write to its vault";
        return false;
    }
    if (connection->queryText("PRAGMA journal_mode = WAL") != "wal" ||
        !connection->execute("PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON")) {
        error = "cannot prepare " + m_path + ": " + connection->lastError();
        return false;
    }
    // Only now, with every row read and every page checked, is a file of an earlier schema
    // upgraded: all steps in one transaction, so that a failure leaves it as it was.
    if (m_storedVersion != VaultSchema::version) {
        if (!connection->execute("BEGIN IMMEDIATE") ||
            !VaultSchema::upgrade(*connection, m_storedVersion) || !connection->execute("COMMIT")) {
            error = "cannot upgrade " + m_path + " from schema " + m_storedVersion + ": " +
                    connection->lastError();
            connection->execute("ROLLBACK");
            return false;
        }
        m_storedVersion = VaultSchema::version;
    }
    // Tighten what was copied in or made under a looser umask: the vault and its log hold every
    // record, and the data folder's listing shows what is there. A folder the user chose for the
    // vault is theirs, and keeps its permissions.
    for (const std::string& file : {m_path, m_path + "-wal", m_path + "-shm"}) {
        withoutGroupAndOthers(file, 0600);
    }
    std::error_code sameError;
    const std::filesystem::path folder = std::filesystem::absolute(m_path).parent_path();
    if (std::filesystem::equivalent(folder, VaultLocation::dataFolder(), sameError)) {
        withoutGroupAndOthers(folder.string(), 0700);
    }
    m_connection.emplace(std::move(*connection));
    return true;
}

bool VaultFile::readRecords(VaultContext& context, std::string& error) {
    SqliteConnection& reader = *m_reader;
    // One read transaction: the tables come from the same committed state.
    if (!reader.execute("BEGIN")) {
        error = reader.lastError();
        return false;
    }
    const auto readTable = [&](std::string_view table, const std::string& sql, auto&& adopt) {
        auto statement = reader.prepare(sql);
        if (!statement) {
            error = reader.lastError();
            return false;
        }
        Step step;
        while ((step = statement->step()) == Step::row) {
            RowReader row(*statement, table);
            adopt(row, *statement);
            if (row.problem()) {
                error = *row.problem();
                return false;
            }
        }
        if (step == Step::error) {
            error = reader.lastError();
            return false;
        }
        return true;
    };
    // Room for the records up front. Counting the rows would walk a whole index (15 ms at 100,000
    // services); the largest rowid is one lookup and is the count unless rows were deleted. A
    // row takes more than a hundred bytes of the file or its log, which bounds what a strange
    // rowid asks for.
    std::int64_t bytes = 0;
    for (const std::string& part : {m_path, m_path + "-wal"}) {
        struct stat file {};
        bytes += ::stat(part.c_str(), &file) == 0 ? static_cast<std::int64_t>(file.st_size) : 0;
    }
    const std::int64_t mostRows = bytes / 100;
    const auto rowsAtMost = [&](const char* sql) {
        return static_cast<std::size_t>(
            std::clamp<std::int64_t>(reader.queryInteger(sql).value_or(0), 0, mostRows));
    };
    const std::size_t serviceCount = rowsAtMost("SELECT MAX(rowid) FROM services");
    context.reserve(rowsAtMost("SELECT MAX(rowid) FROM organizations"), serviceCount);
    const auto ownerOf = [&](RowReader& row) -> Organization* {
        const auto id = row.optionalUuid(1);
        return id ? context.organization(*id) : nullptr;
    };
    // The services are most of a vault. Turning rows into records and filing the records (title
    // order, search texts, totals) take about as long as each other, so they run on two cores:
    // this thread files, in file order, what another reads. The organizations are all in the
    // context by then; only this thread touches it.
    const auto readServices = [&] {
        struct Row {
            ServiceRecord service;
            std::optional<Uuid> owner;
        };
        constexpr std::size_t batchSize = 128;
        Handoff<Row> rows(32);
        bool read = false;
        std::thread reading([&] {
            // The records' strings are allocated on this thread.
            const HugePages::PreparedHeap heap(serviceCount * heapBytesPerService);
            std::vector<Row> batch;
            batch.reserve(batchSize);
            read = readTable("services", selectSql("services", serviceColumns, m_storedVersion),
                             [&](RowReader& row, const SqliteStatement&) {
                                 ServiceRecord service = readService(row);
                                 const std::optional<Uuid> owner = row.optionalUuid(1);
                                 if (row.problem()) {
                                     return;
                                 }
                                 batch.push_back({std::move(service), owner});
                                 if (batch.size() == batchSize) {
                                     rows.put(std::exchange(batch, {}));
                                     batch.reserve(batchSize);
                                 }
                             });
            rows.put(std::move(batch));
            rows.close();
        });
        while (std::optional<std::vector<Row>> batch = rows.take()) {
            for (Row& row : *batch) {
                Organization* owner = row.owner ? context.organization(*row.owner) : nullptr;
                context.insert(std::move(row.service), owner, false);
            }
        }
        reading.join();
        return read;
    };
    const auto readPayments = [&] {
        if (!VaultSchema::hasTable(m_storedVersion, "payments")) {
            return true;
        }
        return readTable("payments", selectSql("payments", paymentColumns, m_storedVersion),
                         [&](RowReader& row, const SqliteStatement&) {
                             auto payment = readPayment(row);
                             const Uuid serviceId = row.uuid(1);
                             ServiceRecord* service = context.service(serviceId);
                             if (!service) {
                                 row.fail("a payment for a service that is not in the vault");
                             }
                             if (!row.problem()) {
                                 context.insert(std::move(payment), *service, false);
                             }
                         });
    };
    const bool loaded =
        readTable("organizations", selectSql("organizations", organizationColumns, m_storedVersion),
                  [&](RowReader& row, const SqliteStatement&) {
                      auto organization = readOrganization(row);
                      if (!row.problem()) {
                          context.insert(std::move(organization), false);
                      }
                  }) &&
        readServices() &&
        readTable("shares", selectSql("shares", shareColumns, m_storedVersion),
                  [&](RowReader& row, const SqliteStatement&) {
                      auto share = readShare(row);
                      Organization* owner = ownerOf(row);
                      if (!row.problem()) {
                          context.insert(std::move(share), owner, false);
                      }
                  }) &&
        readPayments();
    reader.execute("COMMIT");
    return loaded;
}

bool VaultFile::write(const VaultContext::Changes& changes, std::string& error) {
    if (!m_connection->execute("BEGIN IMMEDIATE")) {
        error = m_connection->lastError();
        return false;
    }
    const auto run = [&](std::string_view sql, const auto& items, auto&& bind) {
        auto statement = m_connection->prepare(sql);
        if (!statement) {
            return false;
        }
        for (const auto& item : items) {
            bind(*statement, item);
            if (statement->step() != Step::done) {
                return false;
            }
            statement->reset();
        }
        return true;
    };
    const auto bindId = [](SqliteStatement& statement, const Uuid& id) {
        statement.bind(1, id.toString());
    };
    std::vector<const Organization*> logosToWrite;
    std::vector<Uuid> logosToDelete;
    for (const Organization* organization : changes.organizations) {
        if (organization->logoData) {
            logosToWrite.push_back(organization);
        } else if (changes.logoLoaded.contains(organization)) {
            logosToDelete.push_back(organization->id);
        }
    }
    // Removals first: a service moved out of a removed organization is written again below.
    // Organizations before services, so that every service row finds its organization.
    const bool written =
        run("DELETE FROM organizations WHERE id = ?", changes.removedOrganizations, bindId) &&
        run("DELETE FROM services WHERE id = ?", changes.removedServices, bindId) &&
        run("DELETE FROM shares WHERE id = ?", changes.removedShares, bindId) &&
        run("DELETE FROM payments WHERE id = ?", changes.removedPayments, bindId) &&
        run(upsertSql("organizations", organizationColumns), changes.organizations,
            [](SqliteStatement& s, const Organization* o) { bindOrganization(s, *o); }) &&
        run("INSERT INTO organization_logos (organizationId, data) VALUES (?, ?) "
            "ON CONFLICT(organizationId) DO UPDATE SET data = excluded.data",
            logosToWrite,
            [](SqliteStatement& s, const Organization* o) {
                s.bind(1, o->id.toString());
                s.bind(2, std::span<const std::uint8_t>(*o->logoData));
            }) &&
        run("DELETE FROM organization_logos WHERE organizationId = ?", logosToDelete, bindId) &&
        run(upsertSql("services", serviceColumns), changes.services,
            [](SqliteStatement& s, const ServiceRecord* r) { bindService(s, *r); }) &&
        run(upsertSql("shares", shareColumns), changes.shares,
            [](SqliteStatement& s, const ShareRecord* r) { bindShare(s, *r); }) &&
        run(upsertSql("payments", paymentColumns), changes.payments,
            [](SqliteStatement& s, const PaymentRecord* r) { bindPayment(s, *r); }) &&
        m_connection->execute("COMMIT");
    if (!written) {
        error = m_connection->lastError();
        m_connection->execute("ROLLBACK");
    }
    return written;
}

std::optional<std::vector<std::uint8_t>> VaultFile::readLogo(const Uuid& organizationId) {
    auto statement =
        m_connection->prepare("SELECT data FROM organization_logos WHERE organizationId = ?");
    if (!statement) {
        return std::nullopt;
    }
    statement->bind(1, organizationId.toString());
    if (statement->step() != Step::row) {
        return std::nullopt;
    }
    const auto bytes = statement->bytes(0);
    return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
}

} // namespace vorlane
