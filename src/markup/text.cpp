#include "markup/text.hpp"

namespace lorekeep {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
// A byte that is no part of valid UTF-8 travels as an unpaired surrogate,
// U+DC80 to U+DCFF, and goes back out as the same byte.
constexpr char16_t kEscapeBase = 0xDC00;
constexpr char16_t kEscapedByteFirst = 0xDC80;
constexpr char16_t kEscapedByteLast = 0xDCFF;

void appendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

void appendUtf16(Text& out, char32_t cp) {
    if (cp < 0x10000) {
        out.push_back(static_cast<char16_t>(cp));
    } else {
        cp -= 0x10000;
        out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
        out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    }
}

bool isHighSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
bool isLowSurrogate(char16_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

}  // namespace

std::string toUtf8(TextView text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            const char32_t cp = 0x10000 + ((char32_t(c) - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            appendUtf8(out, cp);
            ++i;
        } else if (c >= kEscapedByteFirst && c <= kEscapedByteLast) {
            out.push_back(static_cast<char>(c - kEscapeBase));
        } else if (isHighSurrogate(c) || isLowSurrogate(c)) {
            appendUtf8(out, kReplacement);
        } else {
            appendUtf8(out, c);
        }
    }
    return out;
}

Text fromUtf8(std::string_view utf8) {
    Text out;
    out.reserve(utf8.size());
    std::size_t i = 0;
    while (i < utf8.size()) {
        const auto b0 = static_cast<unsigned char>(utf8[i]);
        int extra = 0;
        char32_t cp = 0;
        char32_t minimum = 0;
        if (b0 < 0x80) {
            cp = b0;
        } else if ((b0 & 0xE0) == 0xC0) {
            extra = 1, cp = b0 & 0x1F, minimum = 0x80;
        } else if ((b0 & 0xF0) == 0xE0) {
            extra = 2, cp = b0 & 0x0F, minimum = 0x800;
        } else if ((b0 & 0xF8) == 0xF0) {
            extra = 3, cp = b0 & 0x07, minimum = 0x10000;
        } else {
            out.push_back(static_cast<char16_t>(kEscapeBase + b0));
            ++i;
            continue;
        }
        bool valid = i + static_cast<std::size_t>(extra) < utf8.size();
        for (int k = 1; valid && k <= extra; ++k) {
            const auto b = static_cast<unsigned char>(utf8[i + k]);
            if ((b & 0xC0) != 0x80) {
                valid = false;
            } else {
                cp = (cp << 6) | (b & 0x3F);
            }
        }
        if (!valid || cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            out.push_back(static_cast<char16_t>(kEscapeBase + b0));
            ++i;
            continue;
        }
        appendUtf16(out, cp);
        i += static_cast<std::size_t>(extra) + 1;
    }
    return out;
}

}  // namespace lorekeep
