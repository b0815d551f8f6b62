// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `list [--organization NAME] [--archived]`: the services by title, one line each; with --json
// one object a line holding every field but the secrets (see StoreJson::serviceWithAllFields).
// Archived services only with --archived; NAME matches as the importer does, case ignored.
// `list --csv`: the inventory (see InventoryCsv), for a spreadsheet or another vault's import.
class ListCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
