// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace vorlane {

class CostReport;

// A client's cost report as a PDF to hand over: the client's name and logo, the period, a table
// of every service with its charges, the payments and renewals of the period, and the totals at
// the end; page numbers at the foot of every page; landscape A4, or Letter where the locale
// measures in inches. Needs a QGuiApplication (fonts). The file is written under a temporary name
// and moved into place when complete, so a failure never leaves half a file; false with `error`
// then.
class CostReportPdf {
public:
    static bool write(const CostReport& report,
                      const std::optional<std::vector<std::uint8_t>>& logo, const QString& path,
                      QString& error);
};

} // namespace vorlane
