#include "markup/mod_schema_parse.hpp"

#include "markup/markers.hpp"

namespace lorekeep::modSchemaParse {

using namespace markup;

std::optional<std::uint8_t> ColourComponentValue(TextView text) {
    std::size_t k = 0;
    const bool negative = !text.empty() && text[0] == u'-';
    if (negative) {
        k = 1;
    }
    if (k == text.size()) {
        return std::nullopt;
    }
    unsigned value = 0;
    for (; k < text.size(); ++k) {
        if (text[k] < u'0' || text[k] > u'9') {
            return std::nullopt;
        }
        value = std::min(value * 10 + static_cast<unsigned>(text[k] - u'0'), 1000u);
    }
    if (negative) {
        return std::uint8_t{0};
    }
    return static_cast<std::uint8_t>(std::min(value, 255u));
}

namespace {

// How far a colour marker reaches: its closing separator must begin within
// the 30 positions from the tag, or the marker takes 33 characters.
constexpr std::size_t kColourSearchFirst = 3;
constexpr std::size_t kColourSearchLast = 32;
constexpr std::size_t kColourSwallow = 33;
constexpr std::size_t kMaxComponentLength = 4;

// The text not yet scanned: replacement text waiting in front of the rest of
// the body. Every replacement starts at the scan position, so nothing behind
// it ever changes and the finished prefix can be written out once.
class Unscanned {
  public:
    explicit Unscanned(TextView body) : body_(body) {}

    std::size_t size() const { return pending_.size() - pendingStart_ + body_.size() - next_; }

    // The character `k` places ahead, or 0 past the end (no marker test can
    // match a 0, since markers hold none).
    char16_t At(std::size_t k) const {
        const std::size_t waiting = pending_.size() - pendingStart_;
        if (k < waiting) {
            return pending_[pendingStart_ + k];
        }
        k -= waiting;
        return next_ + k < body_.size() ? body_[next_ + k] : u'\0';
    }

    bool Matches(std::size_t k, TextView what) const {
        for (std::size_t n = 0; n < what.size(); ++n) {
            if (k + n >= size() || At(k + n) != what[n]) {
                return false;
            }
        }
        return true;
    }

    Text Take(std::size_t from, std::size_t count) const {
        Text piece;
        for (std::size_t k = from; k < from + count && k < size(); ++k) {
            piece.push_back(At(k));
        }
        return piece;
    }

    void Drop(std::size_t count) {
        const std::size_t waiting = pending_.size() - pendingStart_;
        const std::size_t fromPending = std::min(count, waiting);
        pendingStart_ += fromPending;
        next_ = std::min(body_.size(), next_ + (count - fromPending));
    }

    void PushFront(TextView text) {
        Text joined(text);
        joined.append(pending_, pendingStart_);
        pending_ = std::move(joined);
        pendingStart_ = 0;
    }

    // Hands over the next piece that holds no backslash, or the backslash
    // itself; at least one character.
    TextView NextPlainRun() {
        if (pendingStart_ < pending_.size()) {
            return TextView(pending_).substr(pendingStart_++, 1);
        }
        std::size_t end = body_.find(u'\\', next_);
        if (end == next_) {
            end = next_ + 1;
        } else if (end == TextView::npos) {
            end = body_.size();
        }
        const TextView run = body_.substr(next_, end - next_);
        next_ = end;
        return run;
    }

  private:
    TextView body_;
    std::size_t next_ = 0;
    Text pending_;
    std::size_t pendingStart_ = 0;
};

class Renderer {
  public:
    explicit Renderer(TextView body) : rest_(body) { out_.text.reserve(body.size()); }

    RenderedPreview Run() {
        while (rest_.size() >= 2) {
            if (rest_.At(0) != u'\\' || rest_.At(1) != u'n') {
                Emit(rest_.NextPlainRun());
                continue;
            }
            if (!Classify()) {
                Emit(rest_.NextPlainRun());
            }
        }
        while (rest_.size() > 0) {
            Emit(rest_.NextPlainRun());
        }
        return Finish();
    }

  private:
    // Acts on the marker at the scan position. Returns false when the scan
    // simply moves on by one character.
    bool Classify() {
        if (rest_.Matches(kTagOffset, kTagFont)) {
            return false;
        }
        if (rest_.Matches(kTagOffset, kTagColour)) {
            Colour();
            return true;
        }
        if (rest_.Matches(kTagOffset, kTagLeft)) {
            Justify(Alignment::Left);
        } else if (rest_.Matches(kTagOffset, kTagRight)) {
            Justify(Alignment::Right);
        } else if (rest_.Matches(kTagOffset, kTagCentre)) {
            Justify(Alignment::Centre);
        } else if (rest_.Matches(kTagOffset, kTagLineBreak)) {
            Break(kLineBreak.size(), Text(1, kLineBreakCharacter));
        } else if (rest_.Matches(kTagOffset, kTagParagraph)) {
            Break(kParagraphBreak.size(), Text(2, kLineBreakCharacter));
        } else if (rest_.Matches(kTagOffset, kTagPageBreak)) {
            Text page(1, kLineBreakCharacter);
            page.append(kPageBreakLine);
            page.push_back(kLineBreakCharacter);
            Break(kPageBreak.size(), page);
        } else {
            return false;
        }
        return true;
    }

    // The marker goes; everything from the character that followed it is
    // aligned. A separator standing right there keeps the paragraph before it
    // as it was, since the selection starts just after that character.
    void Justify(Alignment alignment) {
        rest_.Drop(kLeftJustify.size());
        if (rest_.size() > 0 && IsParagraphSeparator(rest_.At(0))) {
            laterParagraphs_ = alignment;
        } else {
            currentParagraph_ = laterParagraphs_ = alignment;
        }
        SetLastSelection(out_.text.size() + 1, true);
    }

    void Break(std::size_t span, const Text& replacement) {
        rest_.Drop(span);
        rest_.PushFront(replacement);
        SetLastSelection(out_.text.size() + 1, false);
        Emit(rest_.NextPlainRun());
    }

    void Colour() {
        std::size_t j = ComponentLength(6, u',');
        const Text red = rest_.Take(6, j);
        std::size_t k = ComponentLength(7 + j, u',');
        const Text green = rest_.Take(7 + j, k);
        std::size_t m = ComponentLength(8 + j + k, kTagEnd);
        const Text blue = rest_.Take(8 + j + k, m);

        const auto r = ColourComponentValue(red);
        const auto g = ColourComponentValue(green);
        const auto b = ColourComponentValue(blue);
        if (r && g && b) {
            // Everything from the marker on takes the colour: the marker's own
            // replacement inherits it from the last character it replaces.
            SetColour(Rgb{*r, *g, *b});
        }

        std::size_t end = kColourSwallow;
        for (std::size_t p = kColourSearchFirst; p <= kColourSearchLast; ++p) {
            if (rest_.Matches(p, kSeparator)) {
                end = p + kSeparator.size();
                break;
            }
        }
        rest_.Drop(end);
        rest_.PushFront(ShownColour(red, green, blue));
        SetLastSelection(out_.text.size() + 1, false);
        Emit(rest_.NextPlainRun());
    }

    std::size_t ComponentLength(std::size_t from, char16_t terminator) const {
        for (std::size_t x = 0; x < kMaxComponentLength; ++x) {
            if (from + x < rest_.size() && rest_.At(from + x) == terminator) {
                return x;
            }
        }
        return kMaxComponentLength;
    }

    void Emit(TextView run) {
        for (char16_t c : run) {
            if (IsParagraphSeparator(c)) {
                out_.paragraphs.push_back(currentParagraph_);
                currentParagraph_ = laterParagraphs_;
            }
        }
        out_.text.append(run);
    }

    void SetColour(Rgb colour) {
        const std::size_t at = out_.text.size();
        if (!out_.colours.empty() && out_.colours.back().start == at) {
            out_.colours.pop_back();
        }
        if (out_.colours.empty() || out_.colours.back().colour != CharColour(colour)) {
            out_.colours.push_back({at, colour});
        }
    }

    void SetLastSelection(std::size_t offset, bool toEnd) {
        lastOffset_ = offset;
        selectsToEnd_ = toEnd;
    }

    RenderedPreview Finish() {
        out_.paragraphs.push_back(currentParagraph_);
        const std::size_t length = out_.text.size();
        if (out_.colours.empty() || out_.colours.front().start != 0) {
            out_.colours.insert(out_.colours.begin(), ColourRun{0, CharColour{}});
        }
        // A colour set at the very end covers no character.
        while (!out_.colours.empty() && out_.colours.back().start >= length) {
            out_.colours.pop_back();
        }
        out_.caret = std::min(lastOffset_, length);
        out_.selectionLength = selectsToEnd_ ? length - out_.caret : 0;
        return std::move(out_);
    }

    Unscanned rest_;
    RenderedPreview out_;
    Alignment currentParagraph_ = Alignment::Left;
    Alignment laterParagraphs_ = Alignment::Left;
    std::size_t lastOffset_ = 0;
    bool selectsToEnd_ = false;
};

}  // namespace

RenderedPreview RenderPreview(TextView body) {
    return Renderer(body).Run();
}

void ParseSchemaText(PreviewPane& pane) {
    pane.ShowRendered(RenderPreview(pane.ReadText()));
}

void ShowPreview(TextView editorText, PreviewPane& pane) {
    pane.ShowRendered(RenderPreview(editorText));
}

}  // namespace lorekeep::modSchemaParse
