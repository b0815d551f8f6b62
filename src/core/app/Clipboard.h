// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace vorlane {

// Port: the desktop's clipboard, plain text only. Main thread only. Writes are not verified:
// a clipboard that refuses them is not an error the program can act on.
class Clipboard {
public:
    virtual ~Clipboard() = default;
    virtual void clear() = 0;
    // Replaces the clipboard's content with `text`, marked as secret so that clipboard managers
    // do not keep a history of it.
    virtual void setText(const std::string& text) = 0;
    // The plain-text content; nothing when the clipboard holds no text.
    virtual std::optional<std::string> text() const = 0;
};

} // namespace vorlane
