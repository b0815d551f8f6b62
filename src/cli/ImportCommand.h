// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `import FILE [--format F] [--organization NAME] [--dry-run]`, and `import --template FILE`:
// another password manager's export (or a filled-in template) into the vault, with the same
// reading, mapping and writing as the import sheet. Exit status 0 when the file was read (even
// with rejected rows), 1 when it could not be read or the import stopped, 2 for a usage error.
class ImportCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
