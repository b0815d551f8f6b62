// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/LastBackup.h"

#include "app/PreferenceStore.h"

#include <charconv>
#include <cstdint>

namespace vorlane {

namespace {

// As text: the preference store's numbers are int and double, too small or too coarse for
// milliseconds since 1970.
std::optional<Instant> instantAt(const PreferenceStore& preferences, std::string_view key) {
    const std::string text = preferences.stringValue(key, {});
    std::int64_t milliseconds = 0;
    const auto [end, status] =
        std::from_chars(text.data(), text.data() + text.size(), milliseconds);
    if (text.empty() || status != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return Instant(std::chrono::milliseconds(milliseconds));
}

std::string textOf(std::optional<Instant> instant) {
    return instant ? std::to_string(instant->time_since_epoch().count()) : std::string();
}

} // namespace

std::optional<LastBackup> LastBackup::read(const PreferenceStore& preferences) {
    const std::optional<Instant> at = instantAt(preferences, Key::at);
    if (!at) {
        return std::nullopt;
    }
    LastBackup last;
    last.at = *at;
    if (std::string error = preferences.stringValue(Key::error, {}); !error.empty()) {
        last.error = std::move(error);
    }
    last.succeededAt = instantAt(preferences, Key::succeededAt);
    return last;
}

void LastBackup::write(PreferenceStore& preferences) const {
    preferences.setStringValue(Key::at, textOf(at));
    preferences.setStringValue(Key::error, error.value_or(std::string()));
    preferences.setStringValue(Key::succeededAt, textOf(succeededAt));
}

} // namespace vorlane
