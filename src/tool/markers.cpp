#include "tool/markers.hpp"

#include "markup/markers.hpp"

namespace lorekeep::tool {

std::vector<Text> markersIn(TextView text, bool lineBreaks) {
    const Text open = Text(markup::kSeparator) + markup::kTagStart;
    std::vector<Text> markers;
    // The next marker's and line break's starts, each looked for again only
    // once passed, so that the scan stays linear.
    std::size_t marker = text.find(open);
    std::size_t lineBreak = lineBreaks ? text.find_first_of(u"\r\n") : TextView::npos;
    for (std::size_t at = 0; at < text.size();) {
        if (marker != TextView::npos && marker < at) {
            marker = text.find(open, at);
        }
        if (lineBreak != TextView::npos && lineBreak < at) {
            lineBreak = text.find_first_of(u"\r\n", at);
        }
        if (lineBreak < marker) {
            markers.emplace_back(u"\n");
            at = lineBreak + (text.substr(lineBreak).starts_with(u"\r\n") ? 2 : 1);
            continue;
        }
        if (marker == TextView::npos) {
            break;
        }
        const std::size_t close = text.find(markup::kTagEnd, marker + open.size());
        if (close == TextView::npos) {
            marker = TextView::npos;  // nor does any later one close
            continue;
        }
        std::size_t end = close + 1;
        if (text.substr(end).starts_with(markup::kSeparator)) {
            end += markup::kSeparator.size();
        }
        markers.emplace_back(text.substr(marker, end - marker));
        at = end;
    }
    return markers;
}

}  // namespace lorekeep::tool
