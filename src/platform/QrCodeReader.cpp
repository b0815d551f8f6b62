// SPDX-License-Identifier: GPL-3.0-or-later
#include "QrCodeReader.h"

#include <zbar.h>

#include <memory>

namespace vorlane {

std::vector<std::string> QrCodeReader::decode(std::span<const std::uint8_t> grey, int width,
                                              int height) {
    std::vector<std::string> texts;
    if (width <= 0 || height <= 0 ||
        grey.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
        return texts;
    }
    const std::unique_ptr<zbar::zbar_image_scanner_t, void (*)(zbar::zbar_image_scanner_t*)>
        scanner(zbar::zbar_image_scanner_create(), zbar::zbar_image_scanner_destroy);
    // Only QR codes: a barcode reader guessing at every symbology finds "codes" in noise.
    zbar::zbar_image_scanner_set_config(scanner.get(), zbar::ZBAR_NONE, zbar::ZBAR_CFG_ENABLE, 0);
    zbar::zbar_image_scanner_set_config(scanner.get(), zbar::ZBAR_QRCODE, zbar::ZBAR_CFG_ENABLE, 1);
    const std::unique_ptr<zbar::zbar_image_t, void (*)(zbar::zbar_image_t*)> image(
        zbar::zbar_image_create(), zbar::zbar_image_destroy);
    // "Y800": one byte of grey per pixel.
    constexpr unsigned long grey8 =
        'Y' | ('8' << 8) | ('0' << 16) | (static_cast<unsigned long>('0') << 24);
    zbar::zbar_image_set_format(image.get(), grey8);
    zbar::zbar_image_set_size(image.get(), static_cast<unsigned>(width),
                              static_cast<unsigned>(height));
    // zbar only reads the pixels; no cleanup handler, the caller keeps them.
    zbar::zbar_image_set_data(image.get(), grey.data(), grey.size(), nullptr);
    if (zbar::zbar_scan_image(scanner.get(), image.get()) <= 0) {
        return texts;
    }
    for (const zbar::zbar_symbol_t* symbol = zbar::zbar_image_first_symbol(image.get());
         symbol != nullptr; symbol = zbar::zbar_symbol_next(symbol)) {
        texts.emplace_back(zbar::zbar_symbol_get_data(symbol),
                           zbar::zbar_symbol_get_data_length(symbol));
    }
    return texts;
}

} // namespace vorlane
