// SPDX-License-Identifier: GPL-3.0-or-later
#include "DemoCommand.h"

#include "CliVault.h"
#include "VaultLock.h"
#include "store/DemoVault.h"

#include <sys/stat.h>

#include <charconv>
#include <ostream>

namespace vorlane {

std::string_view DemoCommand::name() const {
    return "demo";
}

std::string_view DemoCommand::usage() const {
    return "demo PATH [--services N]   create a demo vault at PATH (200 services unless told)";
}

int DemoCommand::run(CliInvocation& invocation) {
    std::optional<std::string> path;
    DemoVault::Options options;
    const auto& arguments = invocation.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--services") {
            const std::string value = i + 1 < arguments.size() ? arguments[++i] : "";
            const auto [end, error] =
                std::from_chars(value.data(), value.data() + value.size(), options.services);
            if (error != std::errc() || end != value.data() + value.size() ||
                options.services < 1 || options.services > 10'000'000) {
                invocation.err << "vorlane-cli demo: --services needs a number from 1 to "
                                  "10000000, not \""
                               << value << "\"\n";
                return 2;
            }
        } else if (arguments[i].starts_with("-")) {
            // An option this command does not know is a typo, not the name of a new vault file.
            invocation.err << "vorlane-cli demo: unknown option \"" << arguments[i] << "\"\n";
            return 2;
        } else if (!path) {
            path = arguments[i];
        } else {
            invocation.err << "vorlane-cli demo: unexpected argument \"" << arguments[i] << "\"\n";
            return 2;
        }
    }
    if (!path) {
        invocation.err << "vorlane-cli demo: which file? usage: " << usage() << "\n";
        return 2;
    }
    // Held while the demo is written, so that Vorlane started on the same path meanwhile does not
    // read a half-written vault. Asked first: a vault that is open is refused as such.
    VaultLock lock(*path);
    if (lock.tryAcquire() == VaultLock::Outcome::heldByAnother) {
        const auto holder = lock.holder();
        invocation.err << "vorlane-cli demo: " << *path << " is open in "
                       << (holder ? holder->program.toStdString() : std::string("another program"))
                       << (holder ? " (process " + std::to_string(holder->pid) + ")"
                                  : std::string())
                       << "; a demo vault is only ever written to a new file\n";
        return 1;
    }
    struct stat existing {};
    if (::stat(path->c_str(), &existing) == 0) {
        invocation.err << "vorlane-cli demo: " << *path
                       << " already exists; a demo vault is only ever written to a new file\n";
        return 1;
    }
    auto vault = CliVault::open(*path, invocation.err);
    if (!vault) {
        return 1;
    }
    options.withSecrets = vault->keychain().isAvailable();
    DemoVault::populate(vault->store(), vault->calendar().now(), options);
    if (vault->store().hasUnsavedChanges()) {
        invocation.err << "vorlane-cli demo: the demo vault could not be saved\n";
        return 1;
    }
    invocation.out << "Created " << *path << " with "
                   << vault->store().fetchOrganizations(true).size() << " organizations and "
                   << vault->store().fetchAllServices(true).size() << " services"
                   << (options.withSecrets ? ", their passwords in the Secret Service"
                                           : "; no Secret Service was reachable, so no passwords")
                   << ".\n";
    return 0;
}

} // namespace vorlane
