// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/BackupBody.h"

#include "crypto/Base64.h"
#include "util/JsonText.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <limits>
#include <set>
#include <unordered_set>

namespace vorlane {

namespace {

using Out = nlohmann::ordered_json;
using In = nlohmann::json;

std::int64_t milliseconds(Instant instant) {
    return instant.time_since_epoch().count();
}

Out optionalInstant(const std::optional<Instant>& instant) {
    return instant ? Out(milliseconds(*instant)) : Out(nullptr);
}

Out stringList(const std::vector<std::string>& list) {
    Out array = Out::array();
    for (const std::string& item : list) {
        array.push_back(item);
    }
    return array;
}

Out organizationJson(const Organization& organization) {
    return Out{
        {"id", organization.id.toString()},
        {"name", organization.name},
        {"projectName", organization.projectName},
        {"logoData",
         organization.logoData ? Out(Base64::encode(*organization.logoData)) : Out(nullptr)},
        {"contactName", organization.contactName},
        {"contactEmail", organization.contactEmail},
        {"contactPhone", organization.contactPhone},
        {"website", organization.website},
        {"notes", organization.notes},
        {"tags", stringList(organization.tags)},
        {"isActive", organization.isActive},
        {"isArchived", organization.isArchived},
        {"isFavorite", organization.isFavorite},
        {"createdAt", milliseconds(organization.createdAt)},
        {"updatedAt", milliseconds(organization.updatedAt)},
    };
}

Out serviceJson(const BackedUpService& backedUp) {
    const ServiceRecord& service = backedUp.record;
    return Out{
        {"id", service.id.toString()},
        {"organizationId",
         backedUp.organizationId ? Out(backedUp.organizationId->toString()) : Out(nullptr)},
        {"serviceTypeRaw", service.serviceTypeRaw},
        {"title", service.title},
        {"provider", service.provider},
        {"hostname", service.hostname},
        {"domain", service.domain},
        {"ipAddress", service.ipAddress},
        {"loginURL", service.loginURL},
        {"username", service.username},
        {"emailAddress", service.emailAddress},
        {"port", service.port ? Out(*service.port) : Out(nullptr)},
        {"sshKeyReference", service.sshKeyReference},
        {"purchaseDate", optionalInstant(service.purchaseDate)},
        {"renewalDate", optionalInstant(service.renewalDate)},
        {"expirationDate", optionalInstant(service.expirationDate)},
        {"billingCycleRaw", service.billingCycleRaw},
        {"monthlyCost", service.monthlyCost.toString()},
        {"yearlyCost", service.yearlyCost.toString()},
        {"autoRenew", service.autoRenew},
        {"tags", stringList(service.tags)},
        {"notes", service.notes},
        {"riskLevelRaw", service.riskLevelRaw},
        {"statusRaw", service.statusRaw},
        {"isArchived", service.isArchived},
        {"createdAt", milliseconds(service.createdAt)},
        {"updatedAt", milliseconds(service.updatedAt)},
        {"secretKeychainID", service.secretKeychainID},
        {"apiKeyKeychainID", service.apiKeyKeychainID},
        {"totpKeychainID", service.totpKeychainID},
        {"passwordChangedAt", optionalInstant(service.passwordChangedAt)},
    };
}

Out shareJson(const BackedUpShare& backedUp) {
    const ShareRecord& share = backedUp.record;
    Out serviceIDs = Out::array();
    for (const Uuid& id : share.serviceIDs) {
        serviceIDs.push_back(id.toString());
    }
    return Out{
        {"id", share.id.toString()},
        {"organizationId", backedUp.organizationId.toString()},
        {"serviceIDs", std::move(serviceIDs)},
        {"recipientLabel", share.recipientLabel},
        {"notes", share.notes},
        {"includesSecrets", share.includesSecrets},
        {"redactedFields", stringList(share.redactedFields)},
        {"expirationDate", optionalInstant(share.expirationDate)},
        {"isRevoked", share.isRevoked},
        {"sharedAt", milliseconds(share.sharedAt)},
        {"shareMethodRaw", share.shareMethodRaw},
    };
}

Out paymentJson(const BackedUpPayment& backedUp) {
    const PaymentRecord& payment = backedUp.record;
    return Out{
        {"id", payment.id.toString()},
        {"serviceId", backedUp.serviceId.toString()},
        {"datePaid", milliseconds(payment.datePaid)},
        {"periodFrom", optionalInstant(payment.periodFrom)},
        {"periodTo", optionalInstant(payment.periodTo)},
        {"amount", payment.amount.toString()},
        {"note", payment.note},
    };
}

// Reads the members of one object of the body. The first member that is missing or does not
// read marks the whole reader failed and every later read gives a default, so a record is read
// straight through and checked once at the end.
class MemberReader {
public:
    explicit MemberReader(const In& object)
        : m_object(object.is_object() ? &object : nullptr)
        , m_ok(m_object != nullptr) {}

    bool ok() const { return m_ok; }

    std::string text(const char* name) {
        const In* value = member(name);
        if (value && !value->is_string()) {
            fail();
        }
        return m_ok ? value->get_ref<const std::string&>() : std::string();
    }

    bool flag(const char* name) {
        const In* value = member(name);
        if (value && !value->is_boolean()) {
            fail();
        }
        return m_ok && value->get<bool>();
    }

    std::int64_t integer(const char* name) { return integerOf(member(name)); }

    std::optional<std::int64_t> optionalInteger(const char* name) {
        const In* value = member(name);
        if (!value || value->is_null()) {
            return std::nullopt;
        }
        return integerOf(value);
    }

    Instant instant(const char* name) { return Instant(std::chrono::milliseconds(integer(name))); }

    std::optional<Instant> optionalInstant(const char* name) {
        const auto value = optionalInteger(name);
        return value ? std::optional<Instant>(Instant(std::chrono::milliseconds(*value)))
                     : std::nullopt;
    }

    Uuid uuid(const char* name) { return uuidOf(text(name)); }

    std::optional<Uuid> optionalUuid(const char* name) {
        const In* value = member(name);
        if (!value || value->is_null()) {
            return std::nullopt;
        }
        return uuid(name);
    }

    Decimal decimal(const char* name) {
        const std::string value = text(name);
        if (!m_ok) {
            return Decimal();
        }
        auto parsed = Decimal::fromString(value);
        if (!parsed) {
            fail();
            return Decimal();
        }
        return *parsed;
    }

    std::optional<std::vector<std::uint8_t>> optionalBase64(const char* name) {
        const In* value = member(name);
        if (!value || value->is_null()) {
            return std::nullopt;
        }
        return base64(name);
    }

    std::vector<std::uint8_t> base64(const char* name) {
        const std::string value = text(name);
        auto decoded = m_ok ? Base64::decode(value) : std::nullopt;
        if (!decoded) {
            fail();
            return {};
        }
        return std::move(*decoded);
    }

    std::vector<std::string> textList(const char* name) {
        std::vector<std::string> list;
        for (const In& item : array(name)) {
            if (!item.is_string()) {
                fail();
                return {};
            }
            list.push_back(item.get<std::string>());
        }
        return list;
    }

    std::vector<Uuid> uuidList(const char* name) {
        std::vector<Uuid> list;
        for (const In& item : array(name)) {
            if (!item.is_string()) {
                fail();
                return {};
            }
            list.push_back(uuidOf(item.get_ref<const std::string&>()));
        }
        return list;
    }

    // The elements of an array member; none once failed.
    const In::array_t& array(const char* name) {
        static const In::array_t none;
        const In* value = member(name);
        if (value && !value->is_array()) {
            fail();
        }
        return m_ok ? value->get_ref<const In::array_t&>() : none;
    }

private:
    // The member, or null (and failed) when it is missing or the reader has already failed.
    const In* member(const char* name) {
        if (!m_ok) {
            return nullptr;
        }
        const auto found = m_object->find(name);
        if (found == m_object->end()) {
            fail();
            return nullptr;
        }
        return &*found;
    }

    std::int64_t integerOf(const In* value) {
        if (!value) {
            return 0;
        }
        if (value->is_number_unsigned() &&
            value->get<std::uint64_t>() >
                static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            fail();
            return 0;
        }
        if (!value->is_number_integer()) {
            fail();
            return 0;
        }
        return value->get<std::int64_t>();
    }

    Uuid uuidOf(const std::string& text) {
        const auto parsed = m_ok ? Uuid::fromString(text) : std::nullopt;
        if (!parsed) {
            fail();
            return Uuid();
        }
        return *parsed;
    }

    void fail() { m_ok = false; }

    const In* m_object;
    bool m_ok;
};

std::optional<Organization> readOrganization(const In& object) {
    MemberReader in(object);
    Organization organization;
    organization.id = in.uuid("id");
    organization.name = in.text("name");
    organization.projectName = in.text("projectName");
    organization.logoData = in.optionalBase64("logoData");
    organization.contactName = in.text("contactName");
    organization.contactEmail = in.text("contactEmail");
    organization.contactPhone = in.text("contactPhone");
    organization.website = in.text("website");
    organization.notes = in.text("notes");
    organization.tags = in.textList("tags");
    organization.isActive = in.flag("isActive");
    organization.isArchived = in.flag("isArchived");
    organization.isFavorite = in.flag("isFavorite");
    organization.createdAt = in.instant("createdAt");
    organization.updatedAt = in.instant("updatedAt");
    return in.ok() ? std::optional(std::move(organization)) : std::nullopt;
}

std::optional<BackedUpService> readService(const In& object) {
    MemberReader in(object);
    BackedUpService backedUp;
    ServiceRecord& service = backedUp.record;
    service.id = in.uuid("id");
    backedUp.organizationId = in.optionalUuid("organizationId");
    service.serviceTypeRaw = in.text("serviceTypeRaw");
    service.title = in.text("title");
    service.provider = in.text("provider");
    service.hostname = in.text("hostname");
    service.domain = in.text("domain");
    service.ipAddress = in.text("ipAddress");
    service.loginURL = in.text("loginURL");
    service.username = in.text("username");
    service.emailAddress = in.text("emailAddress");
    service.port = in.optionalInteger("port");
    service.sshKeyReference = in.text("sshKeyReference");
    service.purchaseDate = in.optionalInstant("purchaseDate");
    service.renewalDate = in.optionalInstant("renewalDate");
    service.expirationDate = in.optionalInstant("expirationDate");
    service.billingCycleRaw = in.text("billingCycleRaw");
    service.monthlyCost = in.decimal("monthlyCost");
    service.yearlyCost = in.decimal("yearlyCost");
    service.autoRenew = in.flag("autoRenew");
    service.tags = in.textList("tags");
    service.notes = in.text("notes");
    service.riskLevelRaw = in.text("riskLevelRaw");
    service.statusRaw = in.text("statusRaw");
    service.isArchived = in.flag("isArchived");
    service.createdAt = in.instant("createdAt");
    service.updatedAt = in.instant("updatedAt");
    service.secretKeychainID = in.text("secretKeychainID");
    service.apiKeyKeychainID = in.text("apiKeyKeychainID");
    service.totpKeychainID = in.text("totpKeychainID");
    service.passwordChangedAt = in.optionalInstant("passwordChangedAt");
    return in.ok() ? std::optional(std::move(backedUp)) : std::nullopt;
}

std::optional<BackedUpShare> readShare(const In& object) {
    MemberReader in(object);
    BackedUpShare backedUp;
    ShareRecord& share = backedUp.record;
    share.id = in.uuid("id");
    backedUp.organizationId = in.uuid("organizationId");
    share.serviceIDs = in.uuidList("serviceIDs");
    share.recipientLabel = in.text("recipientLabel");
    share.notes = in.text("notes");
    share.includesSecrets = in.flag("includesSecrets");
    share.redactedFields = in.textList("redactedFields");
    share.expirationDate = in.optionalInstant("expirationDate");
    share.isRevoked = in.flag("isRevoked");
    share.sharedAt = in.instant("sharedAt");
    share.shareMethodRaw = in.text("shareMethodRaw");
    return in.ok() ? std::optional(std::move(backedUp)) : std::nullopt;
}

std::optional<BackedUpPayment> readPayment(const In& object) {
    MemberReader in(object);
    BackedUpPayment backedUp;
    PaymentRecord& payment = backedUp.record;
    payment.id = in.uuid("id");
    backedUp.serviceId = in.uuid("serviceId");
    payment.datePaid = in.instant("datePaid");
    payment.periodFrom = in.optionalInstant("periodFrom");
    payment.periodTo = in.optionalInstant("periodTo");
    payment.amount = in.decimal("amount");
    payment.note = in.text("note");
    return in.ok() ? std::optional(std::move(backedUp)) : std::nullopt;
}

// Reads every element of `array` with `read` into `records`; false at the first that does not.
template <typename Record, typename Read>
bool readAll(const In::array_t& array, Read read, std::vector<Record>& records) {
    records.reserve(array.size());
    for (const In& element : array) {
        auto record = read(element);
        if (!record) {
            return false;
        }
        records.push_back(std::move(*record));
    }
    return true;
}

// Every identifier once, and every record's owner in the body: a restore can then rebuild the
// relationships without meeting a record that points nowhere.
bool consistent(const BackupContents& contents) {
    std::unordered_set<Uuid> organizations;
    for (const Organization& organization : contents.organizations) {
        if (!organizations.insert(organization.id).second) {
            return false;
        }
    }
    std::unordered_set<Uuid> services;
    for (const BackedUpService& service : contents.services) {
        if (!services.insert(service.record.id).second ||
            (service.organizationId && !organizations.contains(*service.organizationId))) {
            return false;
        }
    }
    std::unordered_set<Uuid> shares;
    for (const BackedUpShare& share : contents.shares) {
        if (!shares.insert(share.record.id).second ||
            !organizations.contains(share.organizationId)) {
            return false;
        }
    }
    std::unordered_set<Uuid> payments;
    for (const BackedUpPayment& payment : contents.payments) {
        if (!payments.insert(payment.record.id).second || !services.contains(payment.serviceId)) {
            return false;
        }
    }
    return true;
}

} // namespace

std::string BackupBody::toJson(const BackupContents& contents) {
    // The body is written record by record rather than as one JSON document: a vault of many
    // services would otherwise be held twice, as a tree of JSON values and as its text, and the
    // tree's many small allocations cost more than the text.
    std::string out;
    out.reserve(1024 * (contents.organizations.size() + contents.services.size()) +
                256 *
                    (contents.shares.size() + contents.payments.size() + contents.secrets.size()));
    const auto member = [&out](std::string_view name, const Out& value) {
        out += out.empty() ? "{\"" : ",\"";
        out += name;
        out += "\":";
        out += JsonText::compact(value);
    };
    const auto list = [&out](std::string_view name, const auto& records, const auto& json) {
        out += ",\"";
        out += name;
        out += "\":[";
        bool first = true;
        for (const auto& record : records) {
            if (!first) {
                out += ',';
            }
            first = false;
            out += JsonText::compact(json(record));
        }
        out += ']';
    };
    member("schemaVersion", contents.schemaVersion);
    member("createdAt", milliseconds(contents.createdAt));
    list("organizations", contents.organizations, organizationJson);
    list("services", contents.services, serviceJson);
    list("shares", contents.shares, shareJson);
    list("payments", contents.payments, paymentJson);
    // Secrets are a list, not an object keyed by account: a reader's ordered JSON object would
    // find each key by walking the members before it, quadratic in the number of secrets.
    list("secrets", contents.secrets, [](const auto& entry) {
        return Out{{"account", entry.first}, {"secret", Base64::encode(asBytes(entry.second))}};
    });
    member("missingSecrets", stringList(contents.missingSecrets));
    out += '}';
    return out;
}

std::optional<BackupContents> BackupBody::fromJson(std::string_view json) {
    const In body = In::parse(json, nullptr, /*allow_exceptions=*/false);
    if (body.is_discarded()) {
        return std::nullopt;
    }
    MemberReader in(body);
    BackupContents contents;
    contents.schemaVersion = in.text("schemaVersion");
    contents.createdAt = in.instant("createdAt");
    if (!readAll(in.array("organizations"), readOrganization, contents.organizations) ||
        !readAll(in.array("services"), readService, contents.services) ||
        !readAll(in.array("shares"), readShare, contents.shares) ||
        !readAll(in.array("payments"), readPayment, contents.payments)) {
        return std::nullopt;
    }
    for (const In& entry : in.array("secrets")) {
        MemberReader secret(entry);
        std::string account = secret.text("account");
        const std::vector<std::uint8_t> value = secret.base64("secret");
        if (!secret.ok() ||
            !contents.secrets.emplace(std::move(account), std::string(value.begin(), value.end()))
                 .second) {
            return std::nullopt;
        }
    }
    contents.missingSecrets = in.textList("missingSecrets");
    if (!in.ok() || !consistent(contents)) {
        return std::nullopt;
    }
    return contents;
}

} // namespace vorlane
