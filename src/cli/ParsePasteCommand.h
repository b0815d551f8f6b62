// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `parse-paste`: runs the smart-paste parser over standard input, taken byte for byte as UTF-8
// (line ends and surrounding spaces included), and prints the result as one JSON object whose
// members are the parsed credential's fields: `serviceType` as its raw value, the texts as they
// are, `detectedDate` as ISO 8601 in UTC or null, `detectedTypes` as a list. Dates are read in
// the locale and time zone of the environment (LANG, TZ). Returns 1 if the input cannot be read,
// 2 when given arguments.
class ParsePasteCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
