// SPDX-License-Identifier: GPL-3.0-or-later
#include "HealthCommand.h"

#include "CliVault.h"
#include "TerminalAuthentication.h"
#include "passwords/PasswordHealth.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace vorlane {

namespace {

using Item = PasswordHealth::Item;

std::string_view kindText(PasswordHealth::Kind kind) {
    return kind == PasswordHealth::Kind::apiKey ? "API key" : "password";
}

nlohmann::ordered_json toJson(const Item& item) {
    nlohmann::ordered_json json;
    json["id"] = item.serviceId.toString();
    json["title"] = item.title;
    json["client"] = item.client;
    json["kind"] = item.kind == PasswordHealth::Kind::apiKey ? "apiKey" : "password";
    return json;
}

nlohmann::ordered_json toJson(const std::vector<Item>& items) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Item& item : items) {
        list.push_back(toJson(item));
    }
    return list;
}

// "Acme: Mail server (password)"; a service of no organization by its title alone.
void writeItem(std::ostream& out, const Item& item, bool withKind) {
    out << "  " << (item.client.empty() ? "" : item.client + ": ") << item.title;
    if (withKind) {
        out << " (" << kindText(item.kind) << ")";
    }
    out << "\n";
}

} // namespace

std::string_view HealthCommand::name() const {
    return "health";
}

std::string_view HealthCommand::usage() const {
    return "health                     reused, weak and old passwords, services without one";
}

int HealthCommand::run(CliInvocation& invocation) {
    if (!invocation.arguments.empty()) {
        invocation.err << "vorlane-cli health: takes no arguments\n";
        return 2;
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    if (!TerminalAuthentication::authenticate("Authenticate to check your passwords",
                                              invocation.err)) {
        return 1;
    }
    const std::optional<PasswordHealth::Findings> findings =
        PasswordHealth::check(vault->store(), vault->keychain(), vault->calendar().now());
    if (!findings) {
        invocation.err << "vorlane-cli health: the secrets could not be read from the system "
                          "keyring\n";
        return 1;
    }
    std::ostream& out = invocation.out;
    if (invocation.json) {
        nlohmann::ordered_json json;
        json["findings"] = findings->count();
        json["reused"] = nlohmann::ordered_json::array();
        for (const auto& group : findings->reused) {
            json["reused"].push_back(toJson(group));
        }
        json["weak"] = toJson(findings->weak);
        json["old"] = toJson(findings->old);
        json["withoutPassword"] = toJson(findings->withoutPassword);
        out << json.dump() << "\n";
        return 0;
    }
    std::size_t reusedRows = 0;
    for (const auto& group : findings->reused) {
        reusedRows += group.size();
    }
    out << "Reused: " << reusedRows << "  Weak: " << findings->weak.size()
        << "  Old: " << findings->old.size()
        << "  Without a password: " << findings->withoutPassword.size() << "\n";
    for (std::size_t i = 0; i < findings->reused.size(); ++i) {
        out << "\nReused secret " << i + 1 << ":\n";
        for (const Item& item : findings->reused[i]) {
            writeItem(out, item, true);
        }
    }
    const auto section = [&out](const char* title, const std::vector<Item>& items, bool kinds) {
        if (items.empty()) {
            return;
        }
        out << "\n" << title << ":\n";
        for (const Item& item : items) {
            writeItem(out, item, kinds);
        }
    };
    section("Weak", findings->weak, true);
    section("Unchanged for more than a year", findings->old, false);
    section("Without a password", findings->withoutPassword, false);
    return 0;
}

} // namespace vorlane
