// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace vorlane {

struct AppContext;

namespace bench {

// For the widget benchmarks, which share one main (WidgetBenchMain.cpp: Qt's offscreen platform
// and the symbol theme): the context of the store benchmarks' vault of `services` services,
// generated when missing, open from the first call until the benchmarks have run and closed
// before the QApplication goes.
AppContext& sharedContext(std::int64_t services);

} // namespace bench
} // namespace vorlane
