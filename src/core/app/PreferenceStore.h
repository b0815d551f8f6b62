// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace vorlane {

// Port: the user's per-user preferences, typed, each read with the default to use when the key
// is absent (or holds something of another type). Main thread only.
class PreferenceStore {
public:
    virtual ~PreferenceStore() = default;
    virtual double doubleValue(std::string_view key, double defaultValue) const = 0;
    virtual void setDoubleValue(std::string_view key, double value) = 0;
    virtual int intValue(std::string_view key, int defaultValue) const = 0;
    virtual void setIntValue(std::string_view key, int value) = 0;
    virtual bool boolValue(std::string_view key, bool defaultValue) const = 0;
    virtual void setBoolValue(std::string_view key, bool value) = 0;
    virtual std::string stringValue(std::string_view key, std::string_view defaultValue) const = 0;
    virtual void setStringValue(std::string_view key, std::string_view value) = 0;
};

} // namespace vorlane
