// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Result.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// Comma-separated values as RFC 4180 writes them: a quoted field may hold commas, line breaks
// and doubled quotes; records end at CRLF, LF or CR. Blank lines are skipped. Lenient where the
// spreadsheets are (a stray quote inside an unquoted field is kept as text, text after a closing
// quote is appended), strict where the rest of the file would be misread: a quote that is never
// closed is an error naming the line it opened on.
class CsvReader {
public:
    struct Row {
        std::size_t line = 0; // the line the record starts on, from 1
        std::vector<std::string> fields;
    };

    static Result<std::vector<Row>, std::string> read(std::string_view text);
};

} // namespace vorlane
