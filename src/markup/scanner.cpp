#include "markup/scanner.hpp"

namespace lorekeep::markup {

std::optional<std::uint8_t> colourComponentValue(TextView text) {
    if (text.empty() || text.size() > kMaxComponentLength) {
        return std::nullopt;
    }
    unsigned value = 0;
    for (const char16_t c : text) {
        if (c < u'0' || c > u'9') {
            return std::nullopt;
        }
        value = value * 10 + static_cast<unsigned>(c - u'0');
    }
    if (value > 255) {
        return std::nullopt;
    }
    return static_cast<std::uint8_t>(value);
}

std::size_t writtenTagLength(TextView text, std::size_t at) {
    const TextView rest = text.substr(std::min(at, text.size()));
    if (!rest.starts_with(kSeparator) || rest.size() <= kSeparator.size() ||
        rest[kSeparator.size()] != kTagStart) {
        return 0;
    }
    // Looked for only up to the next separator, so that a scan stays linear.
    const std::size_t next = rest.find(kSeparator, kSeparator.size());
    const std::size_t close = rest.substr(0, next).find(kTagEnd, kSeparator.size() + 1);
    if (close == TextView::npos) {
        return 0;
    }
    const bool separatorAfter = rest.substr(close + 1).starts_with(kSeparator);
    return close + 1 + (separatorAfter ? kSeparator.size() : 0);
}

std::size_t writtenMarkerLength(TextView text, std::size_t at) {
    if (!text.substr(std::min(at, text.size())).starts_with(kSeparator)) {
        return 0;
    }
    // Looked for only this far, so that what lies further off decides nothing.
    const std::size_t tag =
        writtenTagLength(text.substr(0, std::min(text.size(), at + kLongestWrittenMarker)), at);
    return std::max(tag, kSeparator.size());
}

}  // namespace lorekeep::markup
