#include "schema/windows1252.hpp"

#include <array>

namespace lorekeep {

namespace {

// What bytes 0x80..0x9F stand for; 0 marks the five undefined bytes, which map
// to the C1 control characters of the same number.
constexpr std::array<char16_t, 32> kHighControls{
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80-87
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,       // 88-8F
    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90-97
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,  // 98-9F
};

int byteFor(char16_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
        return c;
    }
    for (std::size_t i = 0; i < kHighControls.size(); ++i) {
        const char16_t mapped =
            kHighControls[i] == 0 ? static_cast<char16_t>(0x80 + i) : kHighControls[i];
        if (mapped == c) {
            return static_cast<int>(0x80 + i);
        }
    }
    return -1;
}

}  // namespace

Text decodeWindows1252(std::string_view bytes) {
    Text text;
    text.reserve(bytes.size());
    for (const char b : bytes) {
        const auto byte = static_cast<unsigned char>(b);
        if (byte >= 0x80 && byte <= 0x9F && kHighControls[byte - 0x80] != 0) {
            text.push_back(kHighControls[byte - 0x80]);
        } else {
            text.push_back(static_cast<char16_t>(byte));
        }
    }
    return text;
}

std::string encodeWindows1252(TextView text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        const bool pair = c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() &&
                          text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
        if (pair) {
            ++i;
            bytes.push_back('?');
            continue;
        }
        // A byte of a file name that is not UTF-8 travels as U+DC80 + (byte -
        // 0x80) (see fromUtf8); such names are mostly Latin-1 or Windows-1252
        // already, so the byte itself is the character meant.
        if (c >= 0xDC80 && c <= 0xDCFF) {
            bytes.push_back(static_cast<char>(c - 0xDC00));
            continue;
        }
        const int byte = byteFor(c);
        bytes.push_back(byte < 0 ? '?' : static_cast<char>(byte));
    }
    return bytes;
}

}  // namespace lorekeep
