#pragma once

#include <vector>

#include "markup/preview_pane.hpp"

namespace lorekeep::markup {

// A preview pane held in memory, character by character: the reference for
// what a real pane must show, and the pane of tests and fuzzers.
class ModelPane final : public PreviewPane {
  public:
    Text ReadText() const override { return text_; }
    void SetText(TextView text) override;
    void ReplaceText(std::size_t offset, std::size_t count, TextView with) override;
    void PlaceCaret(std::size_t offset) override;
    void SelectToEnd(std::size_t offset) override;
    void ColourSelection(Rgb colour) override;
    void AlignSelection(Alignment alignment) override;
    // Takes the finished preview over as it is.
    void ShowRendered(const RenderedPreview& preview) override;

    // What the pane shows, in the same form as a rendered preview.
    RenderedPreview Snapshot() const;

    const std::vector<CharColour>& colours() const { return colours_; }
    const std::vector<Alignment>& paragraphs() const { return paragraphs_; }
    std::size_t caret() const { return selectionStart_; }
    std::size_t selectionLength() const { return selectionLength_; }

  private:
    Text text_;
    std::vector<CharColour> colours_;
    std::vector<Alignment> paragraphs_{Alignment::Left};
    std::size_t selectionStart_ = 0;
    std::size_t selectionLength_ = 0;
};

}  // namespace lorekeep::markup
