// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `open-bundle FILE [--password-file F | --key-file F]`: what the recipient of an export runs.
// Prints the decrypted payload, exactly as it was sealed, to stdout, and only once all of it has
// opened and matched its integrity hash; otherwise prints why to stderr and returns 1 (2 for a
// wrong command line). A password-protected bundle takes its password from the file or, on a
// terminal, from a prompt without echo; a bundle sealed under a generated key takes the key's
// base64 text the same ways.
class OpenBundleCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
