// SPDX-License-Identifier: GPL-3.0-or-later
// Export bundles of a 10 MB payload: sealing (SHA-256, HKDF, AES-256-GCM), opening, and the
// bundle file's JSON text both ways. Throughput is reported as bytes of payload per second.

#include "crypto/BundleReader.h"
#include "crypto/CryptoManager.h"
#include "util/SystemClock.h"

#include <benchmark/benchmark.h>

#include <cstdint>

namespace {

using namespace vorlane;

constexpr std::size_t payloadSize = 10 * 1024 * 1024;

const Bytes& payload() {
    static const Bytes bytes = [] {
        Bytes data(payloadSize);
        std::uint32_t state = 2463534242u; // xorshift: incompressible, reproducible
        for (auto& byte : data) {
            state ^= state << 13;
            state ^= state >> 17;
            state ^= state << 5;
            byte = static_cast<std::uint8_t>(state);
        }
        return data;
    }();
    return bytes;
}

const CryptoManager& crypto() {
    static const SystemClock clock;
    static const CryptoManager manager(clock);
    return manager;
}

void sealWithPassword(benchmark::State& state) {
    for (auto _ : state) {
        auto sealed = crypto().createExportBundle(payload(), "correct horse battery staple");
        if (!sealed) {
            state.SkipWithError("sealing failed");
            break;
        }
        benchmark::DoNotOptimize(sealed.value().bundle.encryptedPayload.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * payloadSize));
}
BENCHMARK(sealWithPassword)->Unit(benchmark::kMillisecond);

void sealWithGeneratedKey(benchmark::State& state) {
    for (auto _ : state) {
        auto sealed = crypto().createExportBundle(payload(), std::nullopt);
        if (!sealed) {
            state.SkipWithError("sealing failed");
            break;
        }
        benchmark::DoNotOptimize(sealed.value().bundle.encryptedPayload.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * payloadSize));
}
BENCHMARK(sealWithGeneratedKey)->Unit(benchmark::kMillisecond);

void openWithPassword(benchmark::State& state) {
    const auto sealed = crypto().createExportBundle(payload(), "correct horse battery staple");
    for (auto _ : state) {
        auto opened = BundleReader::open(sealed.value().bundle, "correct horse battery staple");
        if (!opened) {
            state.SkipWithError("opening failed");
            break;
        }
        benchmark::DoNotOptimize(opened.value().data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * payloadSize));
}
BENCHMARK(openWithPassword)->Unit(benchmark::kMillisecond);

void writeBundleFileText(benchmark::State& state) {
    const auto sealed = crypto().createExportBundle(payload(), "pw");
    for (auto _ : state) {
        const std::string text = sealed.value().bundle.toJson();
        benchmark::DoNotOptimize(text.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * payloadSize));
}
BENCHMARK(writeBundleFileText)->Unit(benchmark::kMillisecond);

void readBundleFileText(benchmark::State& state) {
    const auto sealed = crypto().createExportBundle(payload(), "pw");
    const std::string text = sealed.value().bundle.toJson();
    for (auto _ : state) {
        auto read = ExportBundle::fromJson(text);
        if (!read) {
            state.SkipWithError("reading failed");
            break;
        }
        benchmark::DoNotOptimize(read.value().encryptedPayload.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * payloadSize));
}
BENCHMARK(readBundleFileText)->Unit(benchmark::kMillisecond);

} // namespace
