// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace vorlane {

// Core text is UTF-8 std::string; widgets want QString. The one place that converts.
inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// For a button, group box or tab title, where Qt reads "&" as the mark of a shortcut letter: a
// literal "&" ("Export & Share") is doubled so that it shows as written.
inline QString toMnemonicSafe(std::string_view text) {
    return toQString(text).replace(u'&', QStringLiteral("&&"));
}

inline std::string toStdString(const QString& text) {
    return text.toStdString();
}

} // namespace vorlane
