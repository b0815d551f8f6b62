// SPDX-License-Identifier: GPL-3.0-or-later
#include "TotpCommand.h"

#include "CliServiceLookup.h"
#include "CliVault.h"
#include "TerminalAuthentication.h"
#include "model/ServiceRecord.h"
#include "totp/Totp.h"
#include "totp/TotpSecret.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

namespace vorlane {

std::string_view TotpCommand::name() const {
    return "totp";
}

std::string_view TotpCommand::usage() const {
    return "totp SERVICE               the one-time code of SERVICE (id or title) and its seconds "
           "left";
}

int TotpCommand::run(CliInvocation& invocation) {
    if (invocation.arguments.size() != 1 || invocation.arguments[0].empty()) {
        invocation.err << "vorlane-cli totp: needs one SERVICE, its id or its title\n";
        return 2;
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    const ServiceRecord* service =
        CliServiceLookup::find(vault->store(), invocation.arguments[0], invocation.err);
    if (service == nullptr) {
        return 1;
    }
    if (service->totpKeychainID.empty()) {
        invocation.err << "vorlane-cli totp: \"" << service->title
                       << "\" has no one-time code secret\n";
        return 1;
    }
    if (!TerminalAuthentication::authenticate("Reveal one-time code for " + service->title,
                                              invocation.err)) {
        return 1;
    }
    std::optional<std::string> stored = vault->store().getTOTPSecret(*service);
    if (!stored) {
        invocation.err << "vorlane-cli totp: the one-time code secret of \"" << service->title
                       << "\" could not be read from the system keyring\n";
        return 1;
    }
    const auto secret = TotpSecret::parse(*stored);
    std::fill(stored->begin(), stored->end(), '\0');
    if (!secret.ok()) {
        invocation.err << "vorlane-cli totp: the stored secret of \"" << service->title
                       << "\": " << secret.error() << "\n";
        return 1;
    }
    const Totp::Code code = Totp::at(secret.value(), vault->calendar().now());
    if (invocation.json) {
        nlohmann::ordered_json line;
        line["code"] = code.digits;
        line["validFor"] = code.validFor;
        invocation.out << line.dump() << "\n";
    } else {
        invocation.out << code.digits << "\n" << code.validFor << "\n";
    }
    return 0;
}

} // namespace vorlane
