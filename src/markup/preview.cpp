#include "markup/preview.hpp"

#include <algorithm>

namespace lorekeep::markup {

std::vector<CharColour> ColourOfEachCharacter(const RenderedPreview& preview) {
    std::vector<CharColour> colours(preview.text.size());
    for (std::size_t k = 0; k < preview.colours.size(); ++k) {
        const std::size_t end =
            k + 1 < preview.colours.size() ? preview.colours[k + 1].start : colours.size();
        const std::size_t start = std::min(preview.colours[k].start, colours.size());
        std::fill(colours.begin() + static_cast<std::ptrdiff_t>(start),
                  colours.begin() + static_cast<std::ptrdiff_t>(std::min(end, colours.size())),
                  preview.colours[k].colour);
    }
    return colours;
}

std::vector<std::size_t> ParagraphStarts(TextView text) {
    std::vector<std::size_t> starts{0};
    for (std::size_t k = 0; k < text.size(); ++k) {
        if (IsParagraphSeparator(text[k])) {
            starts.push_back(k + 1);
        }
    }
    return starts;
}

std::size_t ParagraphAt(TextView text, std::size_t offset) {
    offset = std::min(offset, text.size());
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), IsParagraphSeparator));
}

}  // namespace lorekeep::markup
