// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchEnvironment.h"
#include "SymbolIcon.h"
#include "WidgetBench.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace vorlane::bench {

namespace {

// Made in main once the QApplication exists, and gone before it is.
std::unique_ptr<BenchEnvironment> theEnvironment;

} // namespace

AppContext& sharedContext(std::int64_t services) {
    return theEnvironment->context("vorlane-bench-" + std::to_string(services),
                                   BenchVault::withServices(services));
}

} // namespace vorlane::bench

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    vorlane::SymbolIcon::installTheme();
    vorlane::bench::theEnvironment = std::make_unique<vorlane::bench::BenchEnvironment>();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    vorlane::bench::theEnvironment.reset();
    return 0;
}
