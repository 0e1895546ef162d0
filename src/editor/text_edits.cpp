#include "editor/text_edits.hpp"

#include <algorithm>

#include "markup/markers.hpp"

namespace lorekeep::editor {

Splice smallestChange(TextView from, TextView to) {
    const std::size_t shorter = std::min(from.size(), to.size());
    const std::size_t head = static_cast<std::size_t>(
        std::mismatch(from.begin(), from.begin() + shorter, to.begin()).first - from.begin());
    const std::size_t tail = static_cast<std::size_t>(
        std::mismatch(from.rbegin(), from.rend() - head, to.rbegin(), to.rend() - head).first -
        from.rbegin());
    return {head, from.size() - head - tail, to.substr(head, to.size() - head - tail)};
}

TextEdit insertAtCaret(TextView text, std::size_t caret, TextView marker) {
    const std::size_t p = std::min(caret, text.size());
    TextEdit edit;
    edit.text.reserve(text.size() + marker.size());
    edit.text.append(text.substr(0, p)).append(marker).append(text.substr(p));
    edit.caret = p + marker.size();
    return edit;
}

TextEdit breakKeyEdit(TextView text, std::size_t caret) {
    const std::size_t p = std::min(caret, text.size());
    auto before = [&](TextView marker) {
        return p >= marker.size() && text.substr(p - marker.size(), marker.size()) == marker;
    };
    // Replaces the `span` characters before the caret with `marker`.
    auto replaceBefore = [&](std::size_t span, TextView marker) {
        TextEdit edit;
        edit.text.append(text.substr(0, p - span)).append(marker).append(text.substr(p));
        edit.caret = p + marker.size();
        return edit;
    };
    if (before(markup::kLineBreak)) {
        return replaceBefore(markup::kLineBreak.size(), markup::kParagraphBreak);
    }
    if (before(markup::kPageBreak)) {
        return replaceBefore(0, markup::kLineBreak);
    }
    if (before(markup::kParagraphBreak)) {
        return replaceBefore(markup::kParagraphBreak.size(), markup::kPageBreak);
    }
    TextEdit edit;
    edit.text.append(text).append(markup::kLineBreak);
    edit.caret = p + markup::kLineBreak.size();
    return edit;
}

}  // namespace lorekeep::editor
