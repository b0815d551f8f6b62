// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace vorlane {

// The JSON text of the files Vorlane writes for others to read (export bundles and their
// payloads): compact, members in insertion order, UTF-8 kept as it is, and every "/" written as
// "\/", as the encoder on the other platforms Vorlane exchanges files with does it. Only core
// sources include this (nlohmann-json is private to the core).
class JsonText {
public:
    static std::string compact(const nlohmann::ordered_json& value);
    // A number as those encoders write it: a whole value without a fraction ("762879600", not
    // "762879600.0"), any other as the shortest text that reads back to the same double.
    static nlohmann::ordered_json number(double value);
};

} // namespace vorlane
