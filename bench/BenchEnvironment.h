// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "BenchVault.h"
#include "QtPreferenceStore.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/Clipboard.h"
#include "app/ServiceActions.h"
#include "auth/AuthManager.h"

#include <QTemporaryDir>

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace vorlane::bench {

// What a screen is handed (AppContext) over the benchmarks' vault files: one navigation state,
// preferences in a temporary folder and a clipboard that keeps nothing (no benchmark copies), and
// one context per vault file, opened on first use and kept open until this environment goes.
// Main thread only.
class BenchEnvironment {
public:
    // The context of the vault file `name` (see BenchVault::generatedPath); `options` are used
    // only when the file is generated.
    AppContext& context(const std::string& name, const DemoVault::Options& options) {
        OpenVault& vault = m_open[name];
        if (!vault.store) {
            vault.store = m_vault.open(m_vault.generatedPath(name, options));
            vault.actions =
                std::make_unique<ServiceActions>(*vault.store, m_state, m_vault.calendar);
            vault.context = std::make_unique<AppContext>(
                AppContext{*vault.store, m_state, m_auth, m_vault.calendar, m_vault.timers,
                           m_clipboard, m_preferences, *vault.actions});
        }
        return *vault.context;
    }

private:
    class UnusedClipboard final : public Clipboard {
    public:
        void clear() override {}
        void setText(const std::string&) override {}
        std::optional<std::string> text() const override { return std::nullopt; }
    };

    struct OpenVault {
        std::unique_ptr<DataStore> store;
        std::unique_ptr<ServiceActions> actions;
        std::unique_ptr<AppContext> context;
    };

    BenchVault m_vault;
    UnusedClipboard m_clipboard;
    QTemporaryDir m_folder;
    QtPreferenceStore m_preferences{m_folder.filePath(QStringLiteral("preferences.ini"))};
    AppState m_state{m_clipboard, m_vault.timers};
    AuthManager m_auth;
    // Last, so that the stores close while the vault's calendar and timers are still there.
    std::map<std::string, OpenVault> m_open;
};

} // namespace vorlane::bench
