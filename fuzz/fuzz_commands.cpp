// An arbitrary text and caret, then a sequence of button presses, colour box
// entries, copies and Enter keys on a window held in memory, checking after
// every step what must always hold.
#include <cstdlib>

#include "markup/mod_schema_parse.hpp"
#include "support/fake_window.hpp"

using namespace lorekeep;

namespace {

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    bool Empty() const { return next_ >= size_; }
    std::uint8_t Byte() { return next_ < size_ ? data_[next_++] : 0; }
    Text Chars(std::size_t count) {
        Text text;
        for (std::size_t k = 0; k < count && !Empty(); ++k) {
            text.push_back(static_cast<char16_t>(Byte()));
        }
        return text;
    }

  private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t next_ = 0;
};

void Check(const testing::FakeWindow& w) {
    for (int i = 0; i < kLanguageCount; ++i) {
        const auto& c = w.commands;
        if (c.LeftJusOn[i] + c.CentOn[i] + c.RightJusOn[i] > 1) {
            std::abort();
        }
        for (int b = 0; b < kColourBoxesPerLanguage; ++b) {
            if (w.txtColor[kColourBoxesPerLanguage * i + b].enabled != w.cmdOK[i].enabled) {
                std::abort();
            }
        }
        const Text body = w.rtbText[i].PlainText();
        if (w.rtbText[i].Caret() > body.size()) {
            std::abort();
        }
        if (!(w.rtbText[kPreviewIndexOffset + i].model.Snapshot() ==
              modSchemaParse::RenderPreview(body)) &&
            w.rtbText[i].replacements > 0) {
            std::abort();
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    testing::FakeWindow w;
    // The bodies start without real line breaks, as typing leaves them.
    for (int i = 0; i < kLanguageCount; ++i) {
        Text body = in.Chars(in.Byte() % 48);
        std::erase_if(body, [](char16_t c) { return c == u'\r' || c == u'\n'; });
        w.rtbText[i].SetPlainText(body);
        w.rtbText[i].SetCaret(in.Byte());
    }
    while (!in.Empty()) {
        const std::uint8_t op = in.Byte();
        const int i = (op >> 4) % kLanguageCount;
        switch (op % 10) {
            case 0:
                w.commands.cmdLeftJus_Click(i);
                break;
            case 1:
                w.commands.cmdCent_Click(i);
                break;
            case 2:
                w.commands.cmdRightJus_Click(i);
                break;
            case 3:
                w.commands.cmdColor_Click(i);
                break;
            case 4:
                if (w.cmdOK[i].enabled) {
                    w.commands.cmdOK_Click(i);
                }
                break;
            case 5:
                w.txtColor[kColourBoxesPerLanguage * i + in.Byte() % 3].text =
                    in.Chars(in.Byte() % 5);
                break;
            case 6: {
                int code = 13;
                w.commands.rtbText_KeyPress(i, code);
                if (code != 0) {
                    std::abort();
                }
                break;
            }
            case 7:
                w.rtbText[i].SetCaret(in.Byte());
                break;
            case 8:
                w.commands.cmdCopy_Click(i);
                break;
            case 9: {
                int code = in.Byte();
                const int typed = code;
                w.commands.rtbText_KeyPress(i, code);
                if (typed != 13 && code != typed) {
                    std::abort();
                }
                break;
            }
        }
        Check(w);
        for (int k = 0; k < kLanguageCount; ++k) {
            // The editing commands never put a real line break into a body.
            if (w.rtbText[k].PlainText().find_first_of(u"\r\n") != Text::npos) {
                std::abort();
            }
        }
    }
    return 0;
}
