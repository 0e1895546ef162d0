#include "tool/markers.hpp"

#include "markup/markers.hpp"

namespace lorekeep::tool {

std::vector<Text> markersIn(TextView text) {
    const Text open = Text(markup::kSeparator) + markup::kTagStart;
    std::vector<Text> markers;
    for (std::size_t at = text.find(open); at != TextView::npos; at = text.find(open, at)) {
        const std::size_t close = text.find(markup::kTagEnd, at + open.size());
        if (close == TextView::npos) {
            break;
        }
        std::size_t end = close + 1;
        if (text.substr(end).starts_with(markup::kSeparator)) {
            end += markup::kSeparator.size();
        }
        markers.emplace_back(text.substr(at, end - at));
        at = end;
    }
    return markers;
}

}  // namespace lorekeep::tool
