// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/ServiceType.h"

namespace vorlane {

namespace {

constexpr std::array<std::string_view, ServiceType::caseCount> labels{
    "VPS",           "Dedicated Server", "Shared Hosting", "Reseller Hosting", "cPanel",
    "Plesk",         "WordPress",        "Website Admin",  "Domain Registrar", "Mailbox",
    "Database",      "Cloud Account",    "SSH Access",     "FTP / SFTP",       "API Key",
    "Custom Secret",
};

constexpr std::array<std::string_view, ServiceType::caseCount> icons{
    "server.rack", "cpu",
    "globe",       "building.2",
    "gearshape.2", "slider.horizontal.3",
    "w.circle",    "globe.badge.chevron.backward",
    "network",     "envelope",
    "cylinder",    "cloud",
    "terminal",    "arrow.up.arrow.down.circle",
    "key",         "lock.shield",
};

constexpr std::array<Palette::Color, ServiceType::caseCount> tintColors{
    Palette::Color::indigo, Palette::Color::indigo, Palette::Color::blue, Palette::Color::blue,
    Palette::Color::teal,   Palette::Color::teal,   Palette::Color::cyan, Palette::Color::cyan,
    Palette::Color::purple, Palette::Color::orange, Palette::Color::mint, Palette::Color::blue,
    Palette::Color::gray,   Palette::Color::gray,   Palette::Color::pink, Palette::Color::pink,
};

} // namespace

std::string_view ServiceType::label() const {
    return labels[index()];
}

std::string_view ServiceType::icon() const {
    return icons[index()];
}

Palette::Color ServiceType::tintColor() const {
    return tintColors[index()];
}

} // namespace vorlane
