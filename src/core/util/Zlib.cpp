// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/Zlib.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

namespace vorlane {

namespace {

// zlib counts in `uInt`; larger buffers go through in slices of this size.
constexpr std::size_t sliceSize = std::numeric_limits<uInt>::max();

uInt sliceOf(std::size_t remaining) {
    return static_cast<uInt>(std::min(remaining, sliceSize));
}

} // namespace

std::optional<Bytes> Zlib::compress(std::string_view text) {
    z_stream stream{};
    if (deflateInit(&stream, Z_DEFAULT_COMPRESSION) != Z_OK) {
        return std::nullopt;
    }
    // deflateBound is the most a single deflate call can produce, so the output never grows.
    Bytes output(deflateBound(&stream, static_cast<uLong>(text.size())));
    // zlib's input pointer is not const, although it only reads through it.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.next_out = output.data();
    std::size_t inputLeft = text.size();
    std::size_t outputLeft = output.size();
    int status = Z_OK;
    while (status == Z_OK) {
        stream.avail_in = sliceOf(inputLeft);
        stream.avail_out = sliceOf(outputLeft);
        const uInt inputGiven = stream.avail_in;
        const uInt outputGiven = stream.avail_out;
        status = deflate(&stream, inputLeft == inputGiven ? Z_FINISH : Z_NO_FLUSH);
        inputLeft -= inputGiven - stream.avail_in;
        outputLeft -= outputGiven - stream.avail_out;
    }
    deflateEnd(&stream);
    if (status != Z_STREAM_END) {
        return std::nullopt;
    }
    output.resize(output.size() - outputLeft);
    return output;
}

std::optional<std::string> Zlib::decompress(std::span<const std::uint8_t> compressed) {
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) {
        return std::nullopt;
    }
    std::string output;
    // JSON shrinks about fivefold; starting there saves most of the regrowth.
    output.resize(std::max<std::size_t>(compressed.size() * 5, 4096));
    stream.next_in = const_cast<Bytef*>(compressed.data());
    std::size_t inputLeft = compressed.size();
    std::size_t produced = 0;
    int status = Z_OK;
    while (status == Z_OK) {
        if (produced == output.size()) {
            output.resize(output.size() * 2);
        }
        stream.avail_in = sliceOf(inputLeft);
        stream.avail_out = sliceOf(output.size() - produced);
        stream.next_out = reinterpret_cast<Bytef*>(output.data() + produced);
        const uInt inputGiven = stream.avail_in;
        const uInt outputGiven = stream.avail_out;
        status = inflate(&stream, Z_NO_FLUSH);
        inputLeft -= inputGiven - stream.avail_in;
        produced += outputGiven - stream.avail_out;
        // With room for output given every time, Z_BUF_ERROR (no progress possible) means the
        // input ran out before the stream's end: it was cut short.
    }
    inflateEnd(&stream);
    if (status != Z_STREAM_END || inputLeft != 0) {
        return std::nullopt;
    }
    output.resize(produced);
    return output;
}

} // namespace vorlane
