// SPDX-License-Identifier: GPL-3.0-or-later
// The rules that decide between competing readings of a paste.

#include "PinnedLocale.h"
#include "TestTime.h"
#include "paste/PasteParser.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace vorlane {
namespace {

using testing::utc;
using Types = std::vector<std::string>;

class PasteRulesTest : public testing::PinnedLocaleTest {};

TEST_F(PasteRulesTest, FirstLabelInTableOrderTakesTheLine) {
    // "login" (form B) comes before "url".
    const ParsedCredential login = PasteParser::parse("Login URL: https://x.example/admin");
    EXPECT_EQ(login.username, "URL: https://x.example/admin");
    EXPECT_EQ(login.loginURL, "https://x.example/admin");
    // "user" comes before "ssh": the line is the username's, not the host's.
    const ParsedCredential ssh = PasteParser::parse("SSH User: root");
    EXPECT_EQ(ssh.username, "root");
    EXPECT_EQ(ssh.hostname, "");
    // Form A of a label is tried before its form B, whatever their places in the line.
    EXPECT_EQ(PasteParser::parse("user bob then user: alice").username, "alice");
    // Labels match anywhere in the line and in any case.
    EXPECT_EQ(PasteParser::parse("ROOT PASSWORD = s3cret!").password, "s3cret!");
}

TEST_F(PasteRulesTest, ATakenFieldIsNeverOverwritten) {
    const ParsedCredential parsed =
        PasteParser::parse("Password: first-Secret1\nUser: alice\nPassword: second-Secret2\n"
                           "User: bob\nIP: 10.1.1.1\nserver at 192.0.2.9");
    EXPECT_EQ(parsed.password, "first-Secret1");
    EXPECT_EQ(parsed.username, "alice");
    EXPECT_EQ(parsed.ipAddress, "10.1.1.1");
    // A line whose label finds its field taken may still go to a later label with an empty one.
    EXPECT_EQ(parsed.hostname, "at 192.0.2.9");
    // The scans do not replace what a label found.
    EXPECT_TRUE(parsed.detectedTypes.empty());
    // The lines whose value was not taken are kept.
    EXPECT_EQ(parsed.notes, "Password: second-Secret2\nUser: bob");
}

TEST_F(PasteRulesTest, FoundUrlGivesItsHostAsTheDomainWithoutADomainEntry) {
    const ParsedCredential parsed = PasteParser::parse("https://panel.example.test:2083/login");
    EXPECT_EQ(parsed.loginURL, "https://panel.example.test:2083/login");
    EXPECT_EQ(parsed.domain, "panel.example.test");
    // ":2083/" is not followed by a space or the end, so it is no port.
    EXPECT_EQ(parsed.portString, "");
    EXPECT_EQ(parsed.detectedTypes, (Types{"URL"}));

    // The scan stops at a comma, a double quote or whitespace.
    EXPECT_EQ(PasteParser::parse("see \"http://a.example/x\", or").loginURL, "http://a.example/x");
    // User information and the brackets of an IPv6 literal are not part of the host.
    EXPECT_EQ(PasteParser::parse("https://admin:pw@[2001:db8::1]:8443/").domain, "2001:db8::1");
    EXPECT_EQ(PasteParser::parse("https://ops@host.example?x").domain, "host.example");
    // A URL whose authority is not valid gives no host; the domain scan looks for one instead.
    const ParsedCredential broken = PasteParser::parse("https://<host>/ and mirror.example");
    EXPECT_EQ(broken.domain, "mirror.example");
    EXPECT_EQ(broken.detectedTypes, (Types{"URL", "Domain"}));
}

TEST_F(PasteRulesTest, TheEmailsOwnDomainIsDiscarded) {
    const ParsedCredential alone = PasteParser::parse("user@example.test");
    EXPECT_EQ(alone.email, "user@example.test");
    EXPECT_EQ(alone.domain, "");
    EXPECT_EQ(alone.detectedTypes, (Types{"Email"}));
    EXPECT_EQ(alone.serviceType, ServiceType::customSecret);

    // Only the first domain-like text is considered: after a discard no other is looked for.
    const ParsedCredential later = PasteParser::parse("ops@example.test runs shop.example.test");
    EXPECT_EQ(later.domain, "");
    // The comparison is exact: another domain first is kept.
    const ParsedCredential other = PasteParser::parse("shop.example.test; ops@example.test");
    EXPECT_EQ(other.domain, "shop.example.test");
    EXPECT_EQ(other.detectedTypes, (Types{"Email", "Domain"}));
    // A labelled e-mail without "@" is compared whole.
    EXPECT_EQ(PasteParser::parse("Mail: example.test").domain, "");
}

TEST_F(PasteRulesTest, PortAfterAColonMustBeFrom20To65535) {
    const auto portOf = [](const char* text) {
        return PasteParser::parse(text).portString;
    };
    EXPECT_EQ(portOf("x :8 "), "");    // fewer than two digits
    EXPECT_EQ(portOf("x :19 "), "");   // below the range
    EXPECT_EQ(portOf("x :20 "), "20"); // lowest accepted
    EXPECT_EQ(portOf("x :65535"), "65535");
    EXPECT_EQ(portOf("x :65536 "), "");    // above the range
    EXPECT_EQ(portOf("at 10:30\n"), "30"); // a time of day looks the same
    EXPECT_EQ(portOf("x :2083/"), "");     // must be followed by whitespace or the end
    const ParsedCredential accepted = PasteParser::parse("x :20 ");
    EXPECT_EQ(accepted.detectedTypes, (Types{"Port"}));
}

TEST_F(PasteRulesTest, LabelledPortsAreNotRangeChecked) {
    // By the "port" label: anything, and no "Port" entry.
    const ParsedCredential label = PasteParser::parse("port 8");
    EXPECT_EQ(label.portString, "8");
    EXPECT_TRUE(label.detectedTypes.empty());
    // By the labelled scan, when an earlier label took the line.
    const ParsedCredential scan = PasteParser::parse("Server 10.0.0.1 port 70000");
    EXPECT_EQ(scan.hostname, "10.0.0.1 port 70000");
    EXPECT_EQ(scan.portString, "70000");
    EXPECT_EQ(scan.detectedTypes, (Types{"IP", "Port"}));

    const ParsedCredential sshPort = PasteParser::parse("Server: 10.0.0.5:22");
    EXPECT_EQ(sshPort.hostname, "10.0.0.5:22");
    EXPECT_EQ(sshPort.ipAddress, "10.0.0.5");
    EXPECT_EQ(sshPort.portString, "22");
    EXPECT_EQ(sshPort.serviceType, ServiceType::sshAccess);
    EXPECT_EQ(sshPort.detectedTypes, (Types{"IP", "Port"}));
}

TEST_F(PasteRulesTest, SlashedDatesAreReadMonthFirst) {
    EXPECT_EQ(PasteParser::parse("03/04/2025").detectedDate, utc(2025, 3, 4, 5));
    // No thirteenth month: read day first.
    EXPECT_EQ(PasteParser::parse("13/04/2025").detectedDate, utc(2025, 4, 13, 4));
    const ParsedCredential renews = PasteParser::parse("Renews 12/25/2025 for 10.0.0.1");
    EXPECT_EQ(renews.detectedDate, utc(2025, 12, 25, 5));
    EXPECT_EQ(renews.detectedTypes.back(), "Date");
}

TEST_F(PasteRulesTest, DatePatternsAreTriedInOrderWithTheirFirstMatchOnly) {
    // No 30 February: the ISO match fails and the dashed day-first one is read.
    EXPECT_EQ(PasteParser::parse("2025-02-30 or 30-06-2025").detectedDate, utc(2025, 6, 30, 4));
    // ISO first even when it comes later in the text.
    EXPECT_EQ(PasteParser::parse("12/01/2025 then 2026-03-15").detectedDate, utc(2026, 3, 15, 4));
    // The first dashed match cannot be read in any format; the second is never tried.
    const ParsedCredential none = PasteParser::parse("12-25-2025 and 01-02-2025");
    EXPECT_FALSE(none.detectedDate);
    EXPECT_TRUE(none.detectedTypes.empty());
}

TEST_F(PasteRulesTest, ParseDateIsStrictAndReadsTheWholeText) {
    EXPECT_EQ(PasteParser::parseDate("2026-03-15"), utc(2026, 3, 15, 4));
    EXPECT_EQ(PasteParser::parseDate("2026-01-15"), utc(2026, 1, 15, 5));
    EXPECT_EQ(PasteParser::parseDate("02/29/2024"), utc(2024, 2, 29, 5));
    EXPECT_FALSE(PasteParser::parseDate("02/29/2025"));
    EXPECT_FALSE(PasteParser::parseDate("2026-04-31"));
    EXPECT_FALSE(PasteParser::parseDate("2026-03-15 and more"));
    EXPECT_FALSE(PasteParser::parseDate("March 15"));
    EXPECT_FALSE(PasteParser::parseDate(""));
}

TEST_F(PasteRulesTest, ServiceTypeKeywordsApplyInOrder) {
    const ParsedCredential none;
    const auto typeOf = [&none](const char* text) {
        return PasteParser::inferServiceType(text, none);
    };
    EXPECT_EQ(typeOf("Plesk and cPanel"), ServiceType::cpanel);
    EXPECT_EQ(typeOf("plesk via ssh"), ServiceType::plesk);
    EXPECT_EQ(typeOf("/wp-admin over SSH"), ServiceType::wordpress);
    EXPECT_EQ(typeOf("SFTP on the VPS"), ServiceType::ftpAccess);
    EXPECT_EQ(typeOf("ssh to the ftp box"), ServiceType::sshAccess);
    EXPECT_EQ(typeOf("Dedicated hosting"), ServiceType::dedicatedServer);
    EXPECT_EQ(typeOf("Hosting with free domain"), ServiceType::sharedHosting);
    EXPECT_EQ(typeOf("GoDaddy account, smtp relay"), ServiceType::domainRegistrar);
    EXPECT_EQ(typeOf("IMAP for the MySQL alerts"), ServiceType::mailbox);
    EXPECT_EQ(typeOf("MongoDB token"), ServiceType::database);
    EXPECT_EQ(typeOf("Secret Key for AWS"), ServiceType::apiKey);
    // Plain substrings, no word boundaries: "capital" holds "api".
    EXPECT_EQ(typeOf("Capital One login"), ServiceType::apiKey);
    EXPECT_EQ(typeOf("Azure portal"), ServiceType::cloudAccount);
    EXPECT_EQ(typeOf("Office wifi"), ServiceType::customSecret);
}

TEST_F(PasteRulesTest, ServiceTypeFromThePort) {
    ParsedCredential parsed;
    const auto typeWithPort = [&parsed](const char* port, const char* text) {
        parsed.portString = port;
        return PasteParser::inferServiceType(text, parsed);
    };
    EXPECT_EQ(typeWithPort("22", "box"), ServiceType::sshAccess);
    EXPECT_EQ(typeWithPort("+22", "box"), ServiceType::sshAccess);
    EXPECT_EQ(typeWithPort("0022", "box"), ServiceType::sshAccess);
    EXPECT_EQ(typeWithPort("21", "VPS"), ServiceType::ftpAccess);
    // Port 22 outranks "ftp" but not "wordpress".
    EXPECT_EQ(typeWithPort("22", "ftp"), ServiceType::sshAccess);
    EXPECT_EQ(typeWithPort("22", "WordPress"), ServiceType::wordpress);
    // Not numbers: the port rules stay silent.
    EXPECT_EQ(typeWithPort("22 ", "box"), ServiceType::customSecret);
    EXPECT_EQ(typeWithPort("22/tcp", "box"), ServiceType::customSecret);
    EXPECT_EQ(typeWithPort("\u0662\u0662", "box"), ServiceType::customSecret); // Arabic-Indic
}

TEST(ParsedCredentialTest, PortNumbersAreSignedDecimalAsciiWithin64Bits) {
    EXPECT_EQ(ParsedCredential::decimalInteger("2222"), 2222);
    EXPECT_EQ(ParsedCredential::decimalInteger("+22"), 22);
    EXPECT_EQ(ParsedCredential::decimalInteger("-5"), -5);
    EXPECT_EQ(ParsedCredential::decimalInteger("9223372036854775807"), INT64_MAX);
    EXPECT_EQ(ParsedCredential::decimalInteger("-9223372036854775808"), INT64_MIN);
    for (const char* notANumber : {"", "+", "-", "+-5", "--5", "9223372036854775808", " 22", "22 ",
                                   "0x16", "2.5", "\u0662\u0662"}) {
        EXPECT_FALSE(ParsedCredential::decimalInteger(notANumber)) << notANumber;
    }
}

TEST_F(PasteRulesTest, TitleIsTheTypeAndTheFirstIdentifyingValue) {
    ParsedCredential parsed;
    parsed.serviceType = ServiceType::vps;
    EXPECT_EQ(PasteParser::generateTitle(parsed), "VPS");
    parsed.provider = "Hetzner";
    EXPECT_EQ(PasteParser::generateTitle(parsed), "VPS \u2014 Hetzner");
    parsed.ipAddress = "198.51.100.7";
    EXPECT_EQ(PasteParser::generateTitle(parsed), "VPS \u2014 198.51.100.7");
    parsed.hostname = "node1.example";
    EXPECT_EQ(PasteParser::generateTitle(parsed), "VPS \u2014 node1.example");
    parsed.domain = "shop.example";
    EXPECT_EQ(PasteParser::generateTitle(parsed), "VPS \u2014 shop.example");
}

TEST_F(PasteRulesTest, UnicodeLineBreaksAndSpaces) {
    // Every Unicode line break ends a line: LS, NEL, VT, FF.
    const ParsedCredential parsed = PasteParser::parse(
        "User: alice\u2028Password: pw-One1\u0085Host: h.example\vPort: 2200\fProvider: Contoso");
    EXPECT_EQ(parsed.username, "alice");
    EXPECT_EQ(parsed.password, "pw-One1");
    EXPECT_EQ(parsed.hostname, "h.example");
    EXPECT_EQ(parsed.portString, "2200");
    EXPECT_EQ(parsed.provider, "Contoso");
    // No-break and ideographic spaces and tabs are trimmed; a zero-width space is not a space.
    EXPECT_EQ(PasteParser::parse("\u00a0\tUser:\u3000 bob \u2003").username, "bob");
    EXPECT_EQ(PasteParser::parse("User: bob\u200b").username, "bob\u200b");
    // Ill-formed UTF-8 is read as U+FFFD rather than dropped.
    EXPECT_EQ(PasteParser::parse("User: ab\xff"
                                 "cd")
                  .username,
              "ab\ufffd"
              "cd");
}

TEST_F(PasteRulesTest, NotesDropLinesHoldingAValueInAnyCase) {
    const ParsedCredential parsed = PasteParser::parse(
        "Provider: Straße Hosting GmbH\nSTRASSE HOSTING GMBH invoices monthly\nÉcole account\n"
        "User: ÉCOLE-admin\nécole-ADMIN again");
    EXPECT_EQ(parsed.provider, "Straße Hosting GmbH");
    EXPECT_EQ(parsed.username, "ÉCOLE-admin");
    // Full case folding: "ß" is "ss", "É" is "é".
    EXPECT_EQ(parsed.notes, "École account");
}

TEST_F(PasteRulesTest, ParsesConcurrently) {
    const std::string text = "Hostname: db1.example\nUser: ops\nPassword: Hq8!xw\n"
                             "Expires 2026-09-01\nhttps://panel.example/login :8443\n";
    const ParsedCredential expected = PasteParser::parse(text);
    std::vector<std::thread> threads;
    std::vector<int> mismatches(4, 0);
    for (int& count : mismatches) {
        threads.emplace_back([&text, &expected, &count] {
            for (int i = 0; i < 50; ++i) {
                const ParsedCredential parsed = PasteParser::parse(text);
                count +=
                    parsed.hostname != expected.hostname || parsed.loginURL != expected.loginURL ||
                    parsed.portString != expected.portString ||
                    parsed.detectedDate != expected.detectedDate || parsed.notes != expected.notes;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(expected.portString, "8443");
    EXPECT_EQ(expected.detectedDate, utc(2026, 9, 1, 4));
    EXPECT_EQ(mismatches, std::vector<int>(4, 0));
}

TEST_F(PasteRulesTest, MegabytesBuiltToBacktrackStillParse) {
    // Dots and letters make the e-mail and domain patterns backtrack at every position.
    std::string hostile = "User: alice\nPassword: pw-123456\n";
    for (int i = 0; i < 512 * 1024; ++i) {
        hostile += "a.";
    }
    hostile += "\n";
    hostile += std::string(1 << 20, 'a');
    const ParsedCredential parsed = PasteParser::parse(hostile);
    EXPECT_EQ(parsed.username, "alice");
    EXPECT_EQ(parsed.password, "pw-123456");
    EXPECT_EQ(parsed.email, "");
    EXPECT_EQ(parsed.domain, "");
    // Both long lines are kept whole in the notes.
    EXPECT_EQ(parsed.notes.size(), 1024u * 1024u + 1u + 1024u * 1024u);

    // A megabyte-long value searched for in a megabyte-long line.
    const std::string longValue =
        "user: " + std::string(1 << 19, 'a') + "b\n" + std::string(1 << 20, 'a') + "b";
    const ParsedCredential repeated = PasteParser::parse(longValue);
    EXPECT_EQ(repeated.username.size(), (1u << 19) + 1u);
    EXPECT_EQ(repeated.notes, "");
}

} // namespace
} // namespace vorlane
