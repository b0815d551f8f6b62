// SPDX-License-Identifier: GPL-3.0-or-later
// The expiration reminders over vaults of 10,000 and 100,000 services (the generator behind
// `vorlane-cli demo`): what a rebuild costs the main thread when the window is shown, what the
// schedule centre's worker then pays to write the file, and the minute tick when nothing is due,
// which the running program and the timer's command both pay every minute.

#include "BenchEnvironment.h"
#include "DesktopNotificationCenter.h"
#include "ManualClock.h"
#include "ReminderSchedule.h"
#include "reminders/NotificationManager.h"
#include "store/DataStore.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

using namespace vorlane;
using bench::BenchEnvironment;
using bench::BenchVault;

std::unique_ptr<BenchEnvironment> theEnvironment;

AppContext& sharedContext(std::int64_t services) {
    return theEnvironment->context("vorlane-bench-" + std::to_string(services),
                                   BenchVault::withServices(services));
}

// A schedule file of its own in a temporary folder, and the centre and manager over it.
struct Schedule {
    explicit Schedule(AppContext& context)
        : services(context.store.fetchAllServices(false))
        , center(folder.filePath(QStringLiteral("vault.sqlite.reminders")),
                 QDBusConnection::sessionBus(), clock)
        , manager(center, context.calendar) {}

    QString path() const { return folder.filePath(QStringLiteral("vault.sqlite.reminders")); }

    testing::ManualClock clock{bench::benchNow};
    QTemporaryDir folder;
    std::vector<ServiceRecord*> services;
    DesktopNotificationCenter center;
    NotificationManager manager;
};

// The main thread's part: the services listed, what the reminders need copied from each and
// handed to the centre, whose worker builds the requests and writes the file afterwards (waited for
// outside the timing).
void rebuildOnMainThread(benchmark::State& state) {
    AppContext& context = sharedContext(state.range(0));
    Schedule schedule(context);
    for (auto _ : state) {
        // As the window's rebuild lists them: those not archived that expire after now.
        schedule.manager.scheduleExpirationNotifications(
            context.store.fetchExpiringBetween(context.calendar.now(), Instant::max()));
        state.PauseTiming();
        schedule.center.flush();
        QFile::remove(schedule.path());
        state.ResumeTiming();
    }
    schedule.manager.scheduleExpirationNotifications(schedule.services);
    state.counters["requests"] = static_cast<double>(schedule.center.pendingRequests().size());
}
BENCHMARK(rebuildOnMainThread)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// The worker's part after a rebuild that changed the schedule: build the requests, merge them with
// what was already shown, order, serialise and write the file.
void writeAfterRebuild(benchmark::State& state) {
    Schedule schedule(sharedContext(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(schedule.path());
        schedule.manager.scheduleExpirationNotifications(schedule.services);
        state.ResumeTiming();
        schedule.center.flush();
    }
    state.counters["bytes"] = static_cast<double>(QFileInfo(schedule.path()).size());
}
BENCHMARK(writeAfterRebuild)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The worker's part when the program starts again on an unchanged vault: the file already holds
// exactly the rebuilt list.
void writeAfterUnchangedRebuild(benchmark::State& state) {
    Schedule schedule(sharedContext(state.range(0)));
    schedule.manager.scheduleExpirationNotifications(schedule.services);
    schedule.center.flush();
    for (auto _ : state) {
        state.PauseTiming();
        schedule.manager.scheduleExpirationNotifications(schedule.services);
        state.ResumeTiming();
        schedule.center.flush();
    }
}
BENCHMARK(writeAfterUnchangedRebuild)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The minute tick with nothing due, as the timer's command runs it (the program's tick does the
// same on the worker).
void deliveryTickWithNothingDue(benchmark::State& state) {
    AppContext& context = sharedContext(state.range(0));
    Schedule schedule(context);
    schedule.manager.scheduleExpirationNotifications(schedule.services);
    schedule.center.flush();
    for (auto _ : state) {
        DesktopNotificationCenter command(schedule.path(), QDBusConnection::sessionBus(),
                                          schedule.clock);
        benchmark::DoNotOptimize(command.deliverDue(schedule.clock.now()));
    }
}
BENCHMARK(deliveryTickWithNothingDue)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    theEnvironment = std::make_unique<BenchEnvironment>();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    theEnvironment.reset();
    return 0;
}
