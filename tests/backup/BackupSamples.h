// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Backup contents for the file and body tests: one with every field of every record set to a
// value unlike its default (Unicode, "/" and quotes in text, a logo of every byte value, binary
// and Unicode secrets), one with every optional value absent and every text and list empty, and
// a field-by-field comparison of two contents.

#include "backup/BackupContents.h"

#include <gtest/gtest.h>

#include <chrono>

namespace vorlane::testing {

inline Instant at(std::int64_t milliseconds) {
    return Instant(std::chrono::milliseconds(milliseconds));
}

inline Uuid uuid(const char* text) {
    return *Uuid::fromString(text);
}

inline BackupContents fullContents() {
    BackupContents contents;
    contents.createdAt = at(1764000000123);
    contents.schemaVersion = "1.1.0";

    Organization organization;
    organization.id = uuid("0E0E0E0E-1111-4222-8333-444455556666");
    organization.name = "Café Ünïcödé 東京 \"Ltd\"";
    organization.projectName = "Relaunch 🚀";
    std::vector<std::uint8_t> logo(256);
    for (std::size_t i = 0; i < logo.size(); ++i) {
        logo[i] = static_cast<std::uint8_t>(255 - i);
    }
    organization.logoData = logo;
    organization.contactName = "Zoë Ångström";
    organization.contactEmail = "zoe@example.com";
    organization.contactPhone = "+49 30 1234567";
    organization.website = "https://example.com/a/b?c=d";
    organization.notes = "Line one\nLine two\ttabbed \\ backslash";
    organization.tags = {"client", "wichtig", "日本"};
    organization.isActive = false;
    organization.isArchived = true;
    organization.isFavorite = true;
    organization.createdAt = at(-86400000); // before 1970 as well
    organization.updatedAt = at(1764000000999);
    contents.organizations.push_back(organization);

    BackedUpService service;
    ServiceRecord& record = service.record;
    record.id = uuid("A1A1A1A1-2222-4333-8444-555566667777");
    record.serviceTypeRaw = "server";
    record.title = "Production ✓";
    record.provider = "Hetzner";
    record.hostname = "prod.example.com";
    record.domain = "example.com";
    record.ipAddress = "2001:db8::1";
    record.loginURL = "https://console.example.com/login";
    record.username = "root";
    record.emailAddress = "ops@example.com";
    record.port = 2222;
    record.sshKeyReference = "~/.ssh/id_ed25519";
    record.purchaseDate = at(1600000000001);
    record.renewalDate = at(1700000000002);
    record.expirationDate = at(1800000000003);
    record.billingCycleRaw = "yearly";
    record.monthlyCost = *Decimal::fromString("1234567890.123456789");
    record.yearlyCost = *Decimal::fromString("-0.01");
    record.autoRenew = true;
    record.tags = {"prod", "ssh"};
    record.notes = "Ask Zoë first";
    record.riskLevelRaw = "critical";
    record.statusRaw = "suspended";
    record.isArchived = true;
    record.createdAt = at(1500000000004);
    record.updatedAt = at(1764000000005);
    record.secretKeychainID = "vorlane.secret.A1A1A1A1-2222-4333-8444-555566667777";
    record.apiKeyKeychainID = "vorlane.apikey.A1A1A1A1-2222-4333-8444-555566667777";
    record.totpKeychainID = "vorlane.totp.A1A1A1A1-2222-4333-8444-555566667777";
    record.passwordChangedAt = at(1764000000006);
    service.organizationId = organization.id;
    contents.services.push_back(service);

    BackedUpShare share;
    share.record.id = uuid("B2B2B2B2-3333-4444-8555-666677778888");
    share.record.serviceIDs = {record.id, uuid("C3C3C3C3-4444-4555-8666-777788889999")};
    share.record.recipientLabel = "Agentur Müller";
    share.record.notes = "Handed over on site";
    share.record.includesSecrets = true;
    share.record.redactedFields = {"notes", "ipAddress"};
    share.record.expirationDate = at(1770000000007);
    share.record.isRevoked = true;
    share.record.sharedAt = at(1764000000008);
    share.record.shareMethodRaw = "encryptedFile";
    share.organizationId = organization.id;
    contents.shares.push_back(share);

    BackedUpPayment payment;
    payment.record.id = uuid("D4D4D4D4-5555-4666-8777-888899990000");
    payment.record.datePaid = at(1764000000009);
    payment.record.periodFrom = at(1764000000010);
    payment.record.periodTo = at(1795536000011);
    payment.record.amount = *Decimal::fromString("0.000000000000000000000000000000000001");
    payment.record.note = "Überweisung / bank transfer";
    payment.serviceId = record.id;
    contents.payments.push_back(payment);

    contents.secrets[record.secretKeychainID] = "pä$$wörd \"quoted\" / 🔑";
    contents.secrets[record.apiKeyKeychainID] = std::string("\x00\xff\xfe binary\x80", 12);
    contents.missingSecrets = {record.totpKeychainID};
    return contents;
}

inline BackupContents sparseContents() {
    BackupContents contents;
    contents.createdAt = at(0);
    contents.schemaVersion = "1.1.0";
    Organization organization;
    organization.id = uuid("0E0E0E0E-1111-4222-8333-444455550000");
    contents.organizations.push_back(organization);
    BackedUpService service; // of no organization, with no optional value and no secret
    service.record.id = uuid("A1A1A1A1-2222-4333-8444-555566660000");
    contents.services.push_back(service);
    BackedUpShare share;
    share.record.id = uuid("B2B2B2B2-3333-4444-8555-666677770000");
    share.organizationId = organization.id;
    contents.shares.push_back(share);
    BackedUpPayment payment;
    payment.record.id = uuid("D4D4D4D4-5555-4666-8777-888899990001");
    payment.serviceId = service.record.id;
    contents.payments.push_back(payment);
    return contents;
}

inline void expectSameOrganization(const Organization& a, const Organization& b) {
    EXPECT_EQ(a.id, b.id);
    EXPECT_EQ(a.name, b.name);
    EXPECT_EQ(a.projectName, b.projectName);
    EXPECT_EQ(a.logoData, b.logoData);
    EXPECT_EQ(a.contactName, b.contactName);
    EXPECT_EQ(a.contactEmail, b.contactEmail);
    EXPECT_EQ(a.contactPhone, b.contactPhone);
    EXPECT_EQ(a.website, b.website);
    EXPECT_EQ(a.notes, b.notes);
    EXPECT_EQ(a.tags, b.tags);
    EXPECT_EQ(a.isActive, b.isActive);
    EXPECT_EQ(a.isArchived, b.isArchived);
    EXPECT_EQ(a.isFavorite, b.isFavorite);
    EXPECT_EQ(a.createdAt, b.createdAt);
    EXPECT_EQ(a.updatedAt, b.updatedAt);
}

inline void expectSameService(const BackedUpService& a, const BackedUpService& b) {
    EXPECT_EQ(a.organizationId, b.organizationId);
    const ServiceRecord& x = a.record;
    const ServiceRecord& y = b.record;
    EXPECT_EQ(x.id, y.id);
    EXPECT_EQ(x.serviceTypeRaw, y.serviceTypeRaw);
    EXPECT_EQ(x.title, y.title);
    EXPECT_EQ(x.provider, y.provider);
    EXPECT_EQ(x.hostname, y.hostname);
    EXPECT_EQ(x.domain, y.domain);
    EXPECT_EQ(x.ipAddress, y.ipAddress);
    EXPECT_EQ(x.loginURL, y.loginURL);
    EXPECT_EQ(x.username, y.username);
    EXPECT_EQ(x.emailAddress, y.emailAddress);
    EXPECT_EQ(x.port, y.port);
    EXPECT_EQ(x.sshKeyReference, y.sshKeyReference);
    EXPECT_EQ(x.purchaseDate, y.purchaseDate);
    EXPECT_EQ(x.renewalDate, y.renewalDate);
    EXPECT_EQ(x.expirationDate, y.expirationDate);
    EXPECT_EQ(x.billingCycleRaw, y.billingCycleRaw);
    EXPECT_EQ(x.monthlyCost, y.monthlyCost);
    EXPECT_EQ(x.yearlyCost, y.yearlyCost);
    EXPECT_EQ(x.autoRenew, y.autoRenew);
    EXPECT_EQ(x.tags, y.tags);
    EXPECT_EQ(x.notes, y.notes);
    EXPECT_EQ(x.riskLevelRaw, y.riskLevelRaw);
    EXPECT_EQ(x.statusRaw, y.statusRaw);
    EXPECT_EQ(x.isArchived, y.isArchived);
    EXPECT_EQ(x.createdAt, y.createdAt);
    EXPECT_EQ(x.updatedAt, y.updatedAt);
    EXPECT_EQ(x.secretKeychainID, y.secretKeychainID);
    EXPECT_EQ(x.apiKeyKeychainID, y.apiKeyKeychainID);
    EXPECT_EQ(x.totpKeychainID, y.totpKeychainID);
    EXPECT_EQ(x.passwordChangedAt, y.passwordChangedAt);
    EXPECT_EQ(y.organization, nullptr);
}

inline void expectSameShare(const BackedUpShare& a, const BackedUpShare& b) {
    EXPECT_EQ(a.organizationId, b.organizationId);
    const ShareRecord& x = a.record;
    const ShareRecord& y = b.record;
    EXPECT_EQ(x.id, y.id);
    EXPECT_EQ(x.serviceIDs, y.serviceIDs);
    EXPECT_EQ(x.recipientLabel, y.recipientLabel);
    EXPECT_EQ(x.notes, y.notes);
    EXPECT_EQ(x.includesSecrets, y.includesSecrets);
    EXPECT_EQ(x.redactedFields, y.redactedFields);
    EXPECT_EQ(x.expirationDate, y.expirationDate);
    EXPECT_EQ(x.isRevoked, y.isRevoked);
    EXPECT_EQ(x.sharedAt, y.sharedAt);
    EXPECT_EQ(x.shareMethodRaw, y.shareMethodRaw);
}

inline void expectSamePayment(const BackedUpPayment& a, const BackedUpPayment& b) {
    EXPECT_EQ(a.serviceId, b.serviceId);
    const PaymentRecord& x = a.record;
    const PaymentRecord& y = b.record;
    EXPECT_EQ(x.id, y.id);
    EXPECT_EQ(x.datePaid, y.datePaid);
    EXPECT_EQ(x.periodFrom, y.periodFrom);
    EXPECT_EQ(x.periodTo, y.periodTo);
    EXPECT_EQ(x.amount, y.amount);
    EXPECT_EQ(x.note, y.note);
}

inline void expectSameContents(const BackupContents& a, const BackupContents& b) {
    EXPECT_EQ(a.createdAt, b.createdAt);
    EXPECT_EQ(a.schemaVersion, b.schemaVersion);
    ASSERT_EQ(a.organizations.size(), b.organizations.size());
    for (std::size_t i = 0; i < a.organizations.size(); ++i) {
        expectSameOrganization(a.organizations[i], b.organizations[i]);
    }
    ASSERT_EQ(a.services.size(), b.services.size());
    for (std::size_t i = 0; i < a.services.size(); ++i) {
        expectSameService(a.services[i], b.services[i]);
    }
    ASSERT_EQ(a.shares.size(), b.shares.size());
    for (std::size_t i = 0; i < a.shares.size(); ++i) {
        expectSameShare(a.shares[i], b.shares[i]);
    }
    ASSERT_EQ(a.payments.size(), b.payments.size());
    for (std::size_t i = 0; i < a.payments.size(); ++i) {
        expectSamePayment(a.payments[i], b.payments[i]);
    }
    EXPECT_EQ(a.secrets, b.secrets);
    EXPECT_EQ(a.missingSecrets, b.missingSecrets);
}

} // namespace vorlane::testing
