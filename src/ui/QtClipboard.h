// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Clipboard.h"

namespace vorlane {

// The desktop clipboard through QClipboard. Every text we put there carries the password-manager
// hint, so that clipboard managers (Klipper, GPaste, CopyQ) keep no history of it. Main thread.
//
// Under Wayland a client without keyboard focus cannot change the clipboard, and the delayed clear
// usually runs while the person works in another window. When the clear cannot have reached the
// clipboard (our text is still there, or we are a Wayland client out of focus), `wl-copy --clear`
// does it instead, if wl-clipboard is installed.
class QtClipboard final : public Clipboard {
public:
    void clear() override;
    void setText(const std::string& text) override;
    std::optional<std::string> text() const override;
};

} // namespace vorlane
