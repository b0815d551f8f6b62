// SPDX-License-Identifier: GPL-3.0-or-later
// Whole pastes of the kinds users bring, each checked field by field.

#include "PinnedLocale.h"
#include "TestTime.h"
#include "paste/PasteParser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vorlane {
namespace {

using testing::utc;
using Types = std::vector<std::string>;

class RealisticPasteTest : public testing::PinnedLocaleTest {};

TEST_F(RealisticPasteTest, VpsWelcomeMail) {
    const ParsedCredential parsed = PasteParser::parse(R"(Hello Maria,

Thank you for choosing Northwind Cloud. Your new VPS is ready.

Server IP: 203.0.113.42
Root password: Vx7#qLm2pT
Port: 2222
Control panel: https://my.northwind.example/clientarea
Provider: Northwind Cloud

Your next invoice is due on 2026-04-15.

Kind regards,
The Northwind team
)");
    EXPECT_EQ(parsed.serviceType, ServiceType::vps);
    // "server" comes before "ip" in the label table and takes the line in its spaced form.
    EXPECT_EQ(parsed.hostname, "IP: 203.0.113.42");
    EXPECT_EQ(parsed.ipAddress, "203.0.113.42");
    EXPECT_EQ(parsed.password, "Vx7#qLm2pT");
    EXPECT_EQ(parsed.portString, "2222");
    EXPECT_EQ(parsed.loginURL, "https://my.northwind.example/clientarea");
    EXPECT_EQ(parsed.provider, "Northwind Cloud");
    // The labelled URL gives no host, so the domain comes from the domain scan.
    EXPECT_EQ(parsed.domain, "my.northwind.example");
    EXPECT_EQ(parsed.username, "");
    EXPECT_EQ(parsed.email, "");
    EXPECT_EQ(parsed.title, "VPS \u2014 my.northwind.example");
    EXPECT_EQ(parsed.detectedDate, utc(2026, 4, 15, 4)); // midnight, daylight time
    EXPECT_EQ(parsed.detectedTypes, (Types{"IP", "Domain", "Date"}));
    // The greeting line names the provider in another case, so it goes too.
    EXPECT_EQ(parsed.notes, "Hello Maria,\nYour next invoice is due on 2026-04-15.\nKind "
                            "regards,\nThe Northwind team");
}

TEST_F(RealisticPasteTest, ControlPanelAccount) {
    const ParsedCredential parsed =
        PasteParser::parse(R"(Your hosting account for acme-shop.example is active.

cPanel URL: https://server12.hostfast.example:2083
Username: acmeshop
Password: 9!fLq2#Rw
Nameservers: ns1.hostfast.example, ns2.hostfast.example
)");
    EXPECT_EQ(parsed.serviceType, ServiceType::cpanel);
    EXPECT_EQ(parsed.loginURL, "https://server12.hostfast.example:2083");
    EXPECT_EQ(parsed.username, "acmeshop");
    EXPECT_EQ(parsed.password, "9!fLq2#Rw");
    EXPECT_EQ(parsed.domain, "acme-shop.example");
    // ":2083" ends its line, so the after-colon scan takes it.
    EXPECT_EQ(parsed.portString, "2083");
    EXPECT_EQ(parsed.hostname, "");
    EXPECT_EQ(parsed.ipAddress, "");
    EXPECT_EQ(parsed.title, "cPanel \u2014 acme-shop.example");
    EXPECT_FALSE(parsed.detectedDate);
    EXPECT_EQ(parsed.detectedTypes, (Types{"Domain", "Port"}));
    EXPECT_EQ(parsed.notes, "Nameservers: ns1.hostfast.example, ns2.hostfast.example");
}

TEST_F(RealisticPasteTest, DomainRegistration) {
    const ParsedCredential parsed = PasteParser::parse(R"(Namecheap order confirmation

Domain: clientsite.example
Registrar: Namecheap, Inc.
Account login: clientsite-admin
Registered on 03/15/2025, renews automatically.
Expires 03/15/2026
)");
    EXPECT_EQ(parsed.serviceType, ServiceType::domainRegistrar);
    EXPECT_EQ(parsed.domain, "clientsite.example");
    EXPECT_EQ(parsed.username, "clientsite-admin");
    EXPECT_EQ(parsed.provider, "");
    EXPECT_EQ(parsed.title, "Domain Registrar \u2014 clientsite.example");
    // Only the first slashed date is read; before daylight saving ends it is 04:00 UTC.
    EXPECT_EQ(parsed.detectedDate, utc(2025, 3, 15, 4));
    EXPECT_EQ(parsed.detectedTypes, (Types{"Date"}));
    EXPECT_EQ(parsed.notes, "Namecheap order confirmation\nRegistrar: Namecheap, Inc.\nRegistered "
                            "on 03/15/2025, renews automatically.\nExpires 03/15/2026");
}

TEST_F(RealisticPasteTest, Mailbox) {
    const ParsedCredential parsed = PasteParser::parse(R"(New mailbox created

E-mail: anna@brightlabs.example
Password: Sn0w-Owl-84
IMAP server: imap.brightlabs.example
SMTP server: smtp.brightlabs.example
)");
    EXPECT_EQ(parsed.serviceType, ServiceType::mailbox);
    EXPECT_EQ(parsed.email, "anna@brightlabs.example");
    EXPECT_EQ(parsed.password, "Sn0w-Owl-84");
    // The first "server" line fills the host name; the second finds no empty field.
    EXPECT_EQ(parsed.hostname, "imap.brightlabs.example");
    // The first domain-like text is the address's own domain: discarded, and no other is tried.
    EXPECT_EQ(parsed.domain, "");
    EXPECT_EQ(parsed.title, "Mailbox \u2014 imap.brightlabs.example");
    EXPECT_TRUE(parsed.detectedTypes.empty());
    EXPECT_EQ(parsed.notes, "New mailbox created\nSMTP server: smtp.brightlabs.example");
}

TEST_F(RealisticPasteTest, Database) {
    const ParsedCredential parsed = PasteParser::parse(R"(PostgreSQL database for the staging site
host = db-staging.internal.example
port = 5432
user = app_staging
password = "tR4!nkL9"
database name: shop_staging
)");
    EXPECT_EQ(parsed.serviceType, ServiceType::database);
    EXPECT_EQ(parsed.hostname, "db-staging.internal.example");
    EXPECT_EQ(parsed.portString, "5432");
    EXPECT_EQ(parsed.username, "app_staging");
    EXPECT_EQ(parsed.password, "\"tR4!nkL9\""); // quotes are part of what was pasted
    EXPECT_EQ(parsed.title, "shop_staging");    // a "name" label gives the title
    EXPECT_EQ(parsed.domain, "db-staging.internal.example");
    EXPECT_EQ(parsed.detectedTypes, (Types{"Domain"}));
    EXPECT_EQ(parsed.notes, "PostgreSQL database for the staging site");
}

TEST_F(RealisticPasteTest, ApiToken) {
    const ParsedCredential parsed = PasteParser::parse(R"(Payments dashboard
API token: sk_live_51Hx9aZ2eXaMpLe
Webhook endpoint: https://hooks.acme-shop.example/payments
Created 2025-11-02
)");
    EXPECT_EQ(parsed.serviceType, ServiceType::apiKey);
    EXPECT_EQ(parsed.loginURL, "https://hooks.acme-shop.example/payments");
    // The found URL's host stands in for the domain without a "Domain" entry.
    EXPECT_EQ(parsed.domain, "hooks.acme-shop.example");
    EXPECT_EQ(parsed.password, "");
    EXPECT_EQ(parsed.title, "API Key \u2014 hooks.acme-shop.example");
    // 2 November 2025 is the day daylight saving ends, at 02:00: its midnight is still EDT.
    EXPECT_EQ(parsed.detectedDate, utc(2025, 11, 2, 4));
    EXPECT_EQ(parsed.detectedTypes, (Types{"URL", "Date"}));
    // No label takes the token; it is kept in the notes rather than lost.
    EXPECT_EQ(parsed.notes,
              "Payments dashboard\nAPI token: sk_live_51Hx9aZ2eXaMpLe\nCreated 2025-11-02");
}

TEST_F(RealisticPasteTest, NoteOfKeyValueLines) {
    const ParsedCredential parsed = PasteParser::parse(R"(Title: Acme staging box
Company: Acme Ltd
Hostname: staging.acme.example
IP: 198.51.100.7
User: deploy
Pass: 7hK!x2Qa
Port: 22
Notes: rotate key every 90 days)");
    EXPECT_EQ(parsed.title, "Acme staging box");
    EXPECT_EQ(parsed.provider, "Acme Ltd");
    EXPECT_EQ(parsed.hostname, "staging.acme.example");
    EXPECT_EQ(parsed.ipAddress, "198.51.100.7");
    EXPECT_EQ(parsed.username, "deploy");
    EXPECT_EQ(parsed.password, "7hK!x2Qa");
    EXPECT_EQ(parsed.portString, "22");
    EXPECT_EQ(parsed.domain, "staging.acme.example");
    // No keyword, but port 22 means SSH.
    EXPECT_EQ(parsed.serviceType, ServiceType::sshAccess);
    EXPECT_EQ(parsed.detectedTypes, (Types{"Domain"}));
    EXPECT_EQ(parsed.notes, "Notes: rotate key every 90 days");
}

TEST_F(RealisticPasteTest, WindowsLineEndsLeaveNoCarriageReturnsInValues) {
    const ParsedCredential parsed =
        PasteParser::parse("Access details (FTP)\r\nHost: ftp.oldsite.example\r\nUser: "
                           "oldsite\r\nPassword: Qm3$vB7z\r\n\r\nPlease change the password "
                           "after first login.\r\n");
    EXPECT_EQ(parsed.serviceType, ServiceType::ftpAccess);
    EXPECT_EQ(parsed.hostname, "ftp.oldsite.example");
    EXPECT_EQ(parsed.username, "oldsite");
    EXPECT_EQ(parsed.password, "Qm3$vB7z");
    EXPECT_EQ(parsed.domain, "ftp.oldsite.example");
    EXPECT_EQ(parsed.title, "FTP / SFTP \u2014 ftp.oldsite.example");
    EXPECT_EQ(parsed.detectedTypes, (Types{"Domain"}));
    EXPECT_EQ(parsed.notes, "Access details (FTP)\nPlease change the password after first login.");
}

TEST_F(RealisticPasteTest, TextWithNothingRecognisedBecomesNotes) {
    const ParsedCredential parsed =
        PasteParser::parse("  Call Jo about the renewal  \n\n\tBudget approved\t\n");
    EXPECT_EQ(parsed.serviceType, ServiceType::customSecret);
    EXPECT_EQ(parsed.title, "Custom Secret");
    EXPECT_TRUE(parsed.detectedTypes.empty());
    EXPECT_FALSE(parsed.detectedDate);
    EXPECT_EQ(parsed.notes, "Call Jo about the renewal\nBudget approved");
}

TEST_F(RealisticPasteTest, EmptyTextGivesTheInitialRecord) {
    for (const char* text : {"", " \t", "\r\n\r\n", "\u2028\u00a0"}) {
        const ParsedCredential parsed = PasteParser::parse(text);
        EXPECT_EQ(parsed.serviceType, ServiceType::customSecret) << text;
        EXPECT_EQ(parsed.title, "Custom Secret");
        EXPECT_EQ(parsed.notes, "");
        EXPECT_TRUE(parsed.detectedTypes.empty());
        for (const std::string* field : {&parsed.provider, &parsed.hostname, &parsed.domain,
                                         &parsed.ipAddress, &parsed.loginURL, &parsed.username,
                                         &parsed.password, &parsed.email, &parsed.portString}) {
            EXPECT_EQ(*field, "");
        }
    }
}

} // namespace
} // namespace vorlane
