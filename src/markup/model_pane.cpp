#include "markup/model_pane.hpp"

#include <algorithm>

namespace lorekeep::markup {

namespace {

std::size_t CountSeparators(TextView text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), IsParagraphSeparator));
}

}  // namespace

void ModelPane::SetText(TextView text) {
    text_ = Text(text);
    colours_.assign(text_.size(), CharColour{});
    paragraphs_.assign(CountSeparators(text_) + 1, Alignment::Left);
    selectionStart_ = 0;
    selectionLength_ = 0;
}

void ModelPane::ReplaceText(std::size_t offset, std::size_t count, TextView with) {
    offset = std::min(offset, text_.size());
    count = std::min(count, text_.size() - offset);

    CharColour inserted;
    if (count > 0) {
        inserted = colours_[offset + count - 1];
    } else if (offset > 0) {
        inserted = colours_[offset - 1];
    }

    const std::size_t paragraph = ParagraphAt(text_, offset);
    const std::size_t joined = CountSeparators(TextView(text_).substr(offset, count));
    const std::size_t split = CountSeparators(with);
    const Alignment alignment = paragraphs_[paragraph];
    const auto first = paragraphs_.begin() + static_cast<std::ptrdiff_t>(paragraph);
    paragraphs_.erase(first, first + static_cast<std::ptrdiff_t>(joined + 1));
    paragraphs_.insert(paragraphs_.begin() + static_cast<std::ptrdiff_t>(paragraph), split + 1,
                       alignment);

    text_.replace(offset, count, with);
    const auto at = colours_.begin() + static_cast<std::ptrdiff_t>(offset);
    colours_.erase(at, at + static_cast<std::ptrdiff_t>(count));
    colours_.insert(colours_.begin() + static_cast<std::ptrdiff_t>(offset), with.size(), inserted);

    selectionStart_ = std::min(selectionStart_, text_.size());
    selectionLength_ = std::min(selectionLength_, text_.size() - selectionStart_);
}

void ModelPane::PlaceCaret(std::size_t offset) {
    selectionStart_ = std::min(offset, text_.size());
    selectionLength_ = 0;
}

void ModelPane::SelectToEnd(std::size_t offset) {
    selectionStart_ = std::min(offset, text_.size());
    selectionLength_ = text_.size() - selectionStart_;
}

void ModelPane::ColourSelection(Rgb colour) {
    std::fill_n(colours_.begin() + static_cast<std::ptrdiff_t>(selectionStart_), selectionLength_,
                CharColour(colour));
}

void ModelPane::AlignSelection(Alignment alignment) {
    const std::size_t first = ParagraphAt(text_, selectionStart_);
    const std::size_t last = ParagraphAt(text_, selectionStart_ + selectionLength_);
    std::fill(paragraphs_.begin() + static_cast<std::ptrdiff_t>(first),
              paragraphs_.begin() + static_cast<std::ptrdiff_t>(last + 1), alignment);
}

void ModelPane::ShowRendered(const RenderedPreview& preview) {
    text_ = preview.text;
    colours_ = ColourOfEachCharacter(preview);
    paragraphs_ = preview.paragraphs;
    selectionStart_ = std::min(preview.caret, text_.size());
    selectionLength_ = std::min(preview.selectionLength, text_.size() - selectionStart_);
}

RenderedPreview ModelPane::Snapshot() const {
    RenderedPreview preview;
    preview.text = text_;
    for (std::size_t k = 0; k < colours_.size(); ++k) {
        if (k == 0 || colours_[k] != colours_[k - 1]) {
            preview.colours.push_back({k, colours_[k]});
        }
    }
    preview.paragraphs = paragraphs_;
    preview.caret = selectionStart_;
    preview.selectionLength = selectionLength_;
    return preview;
}

}  // namespace lorekeep::markup
