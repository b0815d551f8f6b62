// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/PreferenceStore.h"

#include <QSettings>

namespace vorlane {

// The user's preferences in QSettings: ~/.config/Vorlane/vorlane.conf for the running program
// (organization and application names set at start), or the INI file a caller names. Main thread.
class QtPreferenceStore final : public PreferenceStore {
public:
    QtPreferenceStore();
    explicit QtPreferenceStore(const QString& iniFile);

    double doubleValue(std::string_view key, double defaultValue) const override;
    void setDoubleValue(std::string_view key, double value) override;
    int intValue(std::string_view key, int defaultValue) const override;
    void setIntValue(std::string_view key, int value) override;
    bool boolValue(std::string_view key, bool defaultValue) const override;
    void setBoolValue(std::string_view key, bool value) override;
    std::string stringValue(std::string_view key, std::string_view defaultValue) const override;
    void setStringValue(std::string_view key, std::string_view value) override;

private:
    mutable QSettings m_settings;
};

} // namespace vorlane
