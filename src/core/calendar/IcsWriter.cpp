// SPDX-License-Identifier: GPL-3.0-or-later
#include "calendar/IcsWriter.h"

#include <cstddef>

namespace vorlane {

namespace {

constexpr std::size_t maxLineOctets = 75;

bool isContinuationByte(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

} // namespace

std::string IcsWriter::escaped(std::string_view value) {
    std::string out;
    out.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char c = value[i];
        switch (c) {
        case '\\':
            out += "\\\\";
            break;
        case ';':
            out += "\\;";
            break;
        case ',':
            out += "\\,";
            break;
        case '\r':
            // CRLF is one line break, not two.
            if (i + 1 < value.size() && value[i + 1] == '\n') {
                ++i;
            }
            out += "\\n";
            break;
        case '\n':
            out += "\\n";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20 && c != '\t') {
                break;
            }
            if (c == 0x7F) {
                break;
            }
            out += c;
        }
    }
    return out;
}

void IcsWriter::raw(std::string_view name, std::string_view value) {
    line(name, value);
}

void IcsWriter::text(std::string_view name, std::string_view value) {
    line(name, escaped(value));
}

void IcsWriter::line(std::string_view name, std::string_view value) {
    std::string whole;
    whole.reserve(name.size() + 1 + value.size());
    whole.append(name).append(1, ':').append(value);
    std::string_view rest = whole;
    // The first line takes 75 octets; each continuation starts with a space, so 74 more.
    std::size_t room = maxLineOctets;
    while (rest.size() > room) {
        std::size_t cut = room;
        while (cut > 0 && isContinuationByte(rest[cut])) {
            --cut;
        }
        m_content.append(rest.substr(0, cut)).append("\r\n ");
        rest.remove_prefix(cut);
        room = maxLineOctets - 1;
    }
    m_content.append(rest).append("\r\n");
}

} // namespace vorlane
