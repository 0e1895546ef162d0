// Arbitrary texts and carets, then a sequence of button presses, colour box
// entries, copies and typed keys on a window held in memory, checking after
// every step what must always hold.
#include <cstdlib>

#include "editor/texts.hpp"
#include "markup/renderer.hpp"
#include "support/fakes.hpp"

using namespace lorekeep;

namespace {

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}
    bool empty() const { return m_next >= m_size; }
    std::uint8_t byte() { return m_next < m_size ? m_data[m_next++] : 0; }
    Text chars(std::size_t count) {
        Text text;
        for (std::size_t k = 0; k < count && !empty(); ++k) {
            text.push_back(static_cast<char16_t>(byte()));
        }
        return text;
    }

  private:
    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_next = 0;
};

constexpr int kBoxes = editor::kColourBoxesPerLanguage;

void check(const testing::FakeWindow& w) {
    for (int i = 0; i < kLanguageCount; ++i) {
        const editor::MarkerState& state = w.editor.markerState(Language(i));
        if (state.leftJustifyOn + state.centreOn + state.rightJustifyOn > 1) {
            std::abort();
        }
        // The colour boxes and OK open and close together.
        for (int b = 0; b < kBoxes; ++b) {
            if (w.colourBoxes[kBoxes * i + b].enabled != w.okButtons[i].enabled) {
                std::abort();
            }
        }
        const testing::FakeRichTextBox& editor = w.boxes[i];
        if (editor.caret > editor.text.size()) {
            std::abort();
        }
        // The editing commands never put a real line break into a body.
        if (editor.text.find_first_of(u"\r\n") != Text::npos) {
            std::abort();
        }
        // Every change of an editor's text refreshed its pane from it.
        const auto& pane = w.boxes[kLanguageCount + i];
        if (editor.replacements > 0 &&
            (!pane.preview || !(*pane.preview == markup::renderPreview(editor.text)))) {
            std::abort();
        }
    }
    for (const auto& shown : w.messages.shown) {
        if (shown.text != texts::kColourOutOfRange ||
            shown.title != texts::kColourOutOfRangeTitle) {
            std::abort();
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    testing::FakeWindow w;
    // Bodies as typing leaves them, without real line breaks; their panes have
    // not been refreshed yet, as no command has touched them.
    for (int i = 0; i < kLanguageCount; ++i) {
        Text body = in.chars(in.byte() % 48);
        std::erase_if(body, [](char16_t c) { return c == u'\r' || c == u'\n'; });
        w.boxes[i].text = body;
        w.boxes[i].setCaretPosition(in.byte());
    }
    while (!in.empty()) {
        const std::uint8_t op = in.byte();
        const int i = (op >> 4) % kLanguageCount;
        const Language language = Language(i);
        // An editor or a pane.
        const int box = (op >> 4) % (2 * kLanguageCount);
        const editor::Box typedInto =
            box < kLanguageCount ? editor::Box::Body : editor::Box::Preview;
        switch (op % 10) {
            case 0:
                w.editor.leftJustifyClicked(language);
                break;
            case 1:
                w.editor.centreClicked(language);
                break;
            case 2:
                w.editor.rightJustifyClicked(language);
                break;
            case 3:
                w.editor.colourClicked(language);
                break;
            case 4:
                if (w.okButtons[i].enabled) {
                    w.editor.okClicked(language);
                }
                break;
            case 5:
                w.colourBoxes[kBoxes * i + in.byte() % kBoxes].value = in.chars(in.byte() % 5);
                break;
            case 6: {
                int code = 13;
                w.editor.characterTyped(Language(box % kLanguageCount), typedInto, code);
                if (code != 0) {
                    std::abort();
                }
                break;
            }
            case 7:
                w.boxes[i].setCaretPosition(in.byte());
                break;
            case 8:
                w.editor.copyClicked(language);
                break;
            case 9: {
                int code = in.byte();
                const int typed = code;
                w.editor.characterTyped(Language(box % kLanguageCount), typedInto, code);
                if (typed != 13 && code != typed) {
                    std::abort();
                }
                break;
            }
        }
        check(w);
    }
    return 0;
}
