#pragma once

#include "app/Clipboard.h"

namespace vorlane {

// The desktop clipboard through QClipboard. Every text we put there carries the password-manager
// hint, so that clipboard managers (Klipper, GPaste, CopyQ) keep no history of it. Main thread.
class QtClipboard final : public Clipboard {
public:
    void clear() override;
    void setText(const std::string& text) override;
    std::optional<std::string> text() const override;
};

} // namespace vorlane
