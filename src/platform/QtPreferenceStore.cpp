// SPDX-License-Identifier: GPL-3.0-or-later
#include "QtPreferenceStore.h"

namespace vorlane {

namespace {

QString keyName(std::string_view key) {
    return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

// A value of another type (edited by hand, or written by an older version) reads as absent.
template <typename T> T read(const QSettings& settings, std::string_view key, T defaultValue) {
    const QVariant value = settings.value(keyName(key));
    if (!value.isValid()) {
        return defaultValue;
    }
    bool ok = false;
    T converted = defaultValue;
    if constexpr (std::is_same_v<T, double>) {
        converted = value.toDouble(&ok);
    } else if constexpr (std::is_same_v<T, int>) {
        converted = value.toInt(&ok);
    } else {
        const QString text = value.toString();
        ok = text == QLatin1String("true") || text == QLatin1String("false");
        converted = text == QLatin1String("true");
    }
    return ok ? converted : defaultValue;
}

} // namespace

QtPreferenceStore::QtPreferenceStore() = default;

QtPreferenceStore::QtPreferenceStore(const QString& iniFile)
    : m_settings(iniFile, QSettings::IniFormat) {}

double QtPreferenceStore::doubleValue(std::string_view key, double defaultValue) const {
    return read(m_settings, key, defaultValue);
}
void QtPreferenceStore::setDoubleValue(std::string_view key, double value) {
    m_settings.setValue(keyName(key), value);
}
int QtPreferenceStore::intValue(std::string_view key, int defaultValue) const {
    return read(m_settings, key, defaultValue);
}
void QtPreferenceStore::setIntValue(std::string_view key, int value) {
    m_settings.setValue(keyName(key), value);
}
bool QtPreferenceStore::boolValue(std::string_view key, bool defaultValue) const {
    return read(m_settings, key, defaultValue);
}
void QtPreferenceStore::setBoolValue(std::string_view key, bool value) {
    m_settings.setValue(keyName(key), value);
}
std::string QtPreferenceStore::stringValue(std::string_view key,
                                           std::string_view defaultValue) const {
    const QVariant value = m_settings.value(keyName(key));
    if (!value.isValid() || !value.canConvert<QString>()) {
        return std::string(defaultValue);
    }
    return value.toString().toStdString();
}
void QtPreferenceStore::setStringValue(std::string_view key, std::string_view value) {
    m_settings.setValue(keyName(key), keyName(value));
}

} // namespace vorlane
