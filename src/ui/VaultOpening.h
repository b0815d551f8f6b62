// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "store/DataStore.h"
#include "util/Result.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

class QEventLoop;
class QWidget;

namespace vorlane {

class KeychainManager;
class Timers;
class UserCalendar;

// Opens the vault on a worker thread from the moment it is made, so that reading a large vault
// (100,000 services take most of a second) overlaps with starting the GUI instead of following
// it. Nothing else may touch the keychain, calendar or timers until the open has ended; the store
// then belongs to the thread that takes it (the store arms its timers only on a change, never
// while opening). The destructor waits for the worker.
class VaultOpening {
public:
    using Opened = Result<std::unique_ptr<DataStore>, std::string>;

    VaultOpening(std::string vaultPath, KeychainManager& keychain, const UserCalendar& calendar,
                 Timers& timers);
    ~VaultOpening();
    VaultOpening(const VaultOpening&) = delete;
    VaultOpening& operator=(const VaultOpening&) = delete;

    // Blocks until the vault is open (or has failed to open). Once only.
    Opened wait();
    // Runs the main loop until the vault is open, showing `progress` if that takes longer than a
    // blink. Nothing when the person closed that window first (the open is still waited for: it
    // leaves the file whole). Once only, on the GUI thread.
    std::optional<Opened> waitBehind(QWidget& progress);

private:
    std::mutex m_mutex;
    std::optional<Opened> m_opened;  // under m_mutex
    QEventLoop* m_waiting = nullptr; // under m_mutex: the loop to end when the open ends
    std::thread m_worker;
};

} // namespace vorlane
