// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>

#include <string_view>

namespace vorlane {

// Icons for the symbol names that enumerations and screens carry ("server.rack", "key", ...),
// drawn from the Breeze theme that the set-up script installs. Main thread only (QIcon).
class SymbolIcon {
public:
    // Makes Breeze (Breeze Dark under a dark palette: call after the palette is set) the icon theme
    // and adds the XDG icon folders to the search path: some Qt platform plugins (offscreen,
    // minimal, plain X11 without a desktop) search none of them.
    static void installTheme();
    // The theme icon for `symbol`; a generic icon for a symbol the table lacks, never a blank one.
    static QIcon icon(std::string_view symbol);
    // The Breeze icon name `symbol` maps to; empty when the table has no entry.
    static QString themeName(std::string_view symbol);
};

} // namespace vorlane
