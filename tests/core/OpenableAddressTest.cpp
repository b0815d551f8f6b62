// SPDX-License-Identifier: GPL-3.0-or-later
// Which login URLs the desktop is asked to open, and exactly what it is handed.

#include "app/OpenableAddress.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vorlane {
namespace {

TEST(OpenableAddressTest, WebTransferShellAndMailAddressesOpenAsWritten) {
    const std::vector<std::string> allowed{"https://cp.example.com:2083/login",
                                           "http://example.com",
                                           "HTTPS://Example.com/A",
                                           "ftp://files.example.com/pub",
                                           "sftp://deploy@203.0.113.7:2222",
                                           "ssh://root@203.0.113.7",
                                           "mailto:billing@example.com"};
    for (const std::string& address : allowed) {
        const auto resolved = OpenableAddress::resolve(address);
        ASSERT_TRUE(resolved.ok()) << address << ": " << resolved.error().message;
        EXPECT_EQ(resolved.value(), address);
    }
    const auto padded = OpenableAddress::resolve("  https://example.com/admin\n");
    ASSERT_TRUE(padded.ok());
    EXPECT_EQ(padded.value(), "https://example.com/admin");
}

TEST(OpenableAddressTest, AnAddressWithoutSchemeOpensAsHttpAndNeverAsALocalFile) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"cp.example.com:2083", "http://cp.example.com:2083"},
        {"localhost:8080/admin?x=1", "http://localhost:8080/admin?x=1"},
        {"example.com/wp-admin", "http://example.com/wp-admin"},
        {"ftp.example.com", "http://ftp.example.com"},
        {"/etc/passwd", "http:///etc/passwd"},
        {"~/secrets.txt", "http://~/secrets.txt"},
    };
    for (const auto& [text, expected] : cases) {
        const auto resolved = OpenableAddress::resolve(text);
        ASSERT_TRUE(resolved.ok()) << text << ": " << resolved.error().message;
        EXPECT_EQ(resolved.value(), expected);
    }
}

TEST(OpenableAddressTest, EveryOtherSchemeIsRefusedNamingItInLowerCase) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"file:///etc/passwd", "file"},
        {"FILE:///home/me/.ssh/id_ed25519", "file"},
        {"javascript:alert(1)", "javascript"},
        {"vscode://file/etc/passwd", "vscode"},
        {"smb://fileserver/share", "smb"},
        {" data:text/html,<b>x</b>", "data"},
        {"x-scheme-handler+run:now", "x-scheme-handler+run"},
        {"host:22x", "host"}, // not a port: a scheme
        {"", ""},
    };
    for (const auto& [text, scheme] : cases) {
        const auto resolved = OpenableAddress::resolve(text);
        ASSERT_FALSE(resolved.ok()) << text << " would open as " << resolved.value();
        EXPECT_EQ(resolved.error().message, "This address cannot be opened: " + scheme);
    }
}

} // namespace
} // namespace vorlane
