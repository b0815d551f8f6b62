// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vorlane {

// Reads the QR codes of a picture (a screenshot of a setup page, a saved image) with libzbar.
// Takes 8-bit grey pixels, row after row without padding, so that callers convert whatever image
// they hold. Any thread.
class QrCodeReader {
public:
    // The text of every QR code found, in the order zbar reports them; empty when there is none
    // or the size does not match the pixels.
    static std::vector<std::string> decode(std::span<const std::uint8_t> grey, int width,
                                           int height);
};

} // namespace vorlane
