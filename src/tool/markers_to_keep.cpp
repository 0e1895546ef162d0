#include "tool/markers_to_keep.hpp"

#include "markup/scanner.hpp"

namespace lorekeep::tool {

std::vector<Text> markersToKeep(TextView text, bool lineBreaks) {
    std::vector<Text> kept;
    // The next separator and line break, each looked for again only once
    // passed, so that the scan stays linear.
    std::size_t separator = text.find(markup::kSeparator);
    std::size_t lineBreak = lineBreaks ? text.find_first_of(u"\r\n") : TextView::npos;
    for (std::size_t at = 0; at < text.size();) {
        if (separator != TextView::npos && separator < at) {
            separator = text.find(markup::kSeparator, at);
        }
        if (lineBreak != TextView::npos && lineBreak < at) {
            lineBreak = text.find_first_of(u"\r\n", at);
        }
        if (lineBreak < separator) {
            kept.emplace_back(u"\n");
            at = lineBreak + (text.substr(lineBreak).starts_with(u"\r\n") ? 2 : 1);
        } else if (separator == TextView::npos) {
            break;
        } else if (const std::size_t length = markup::writtenTagLength(text, separator)) {
            kept.emplace_back(text.substr(separator, length));
            at = separator + length;
        } else {
            at = separator + markup::kSeparator.size();
        }
    }
    return kept;
}

}  // namespace lorekeep::tool
