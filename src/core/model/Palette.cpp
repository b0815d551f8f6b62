// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Palette.h"

#include <array>

namespace vorlane {

namespace {

struct Entry {
    std::string_view name;
    Palette::Rgb rgb;
};

// Saturated mid-tones that read on both light and dark window backgrounds.
constexpr std::array<Entry, 13> entries{{
    {"indigo", {88, 86, 214}},
    {"blue", {0, 122, 255}},
    {"teal", {48, 176, 199}},
    {"cyan", {50, 173, 230}},
    {"purple", {175, 82, 222}},
    {"orange", {255, 149, 0}},
    {"mint", {0, 199, 190}},
    {"gray", {142, 142, 147}},
    {"pink", {255, 45, 85}},
    {"green", {52, 199, 89}},
    {"yellow", {255, 204, 0}},
    {"red", {255, 59, 48}},
    {"secondary", {128, 128, 134}},
}};

} // namespace

std::string_view Palette::name(Color color) {
    return entries.at(static_cast<std::size_t>(color)).name;
}

Palette::Rgb Palette::rgb(Color color) {
    return entries.at(static_cast<std::size_t>(color)).rgb;
}

} // namespace vorlane
