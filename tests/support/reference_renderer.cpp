#include "support/reference_renderer.hpp"

#include "markup/markers.hpp"
#include "markup/mod_schema_parse.hpp"

namespace lorekeep::testing {

namespace {

using markup::Alignment;
using markup::PreviewPane;

// "The n characters from p", 1-based, cut short at the end of T.
Text From(const Text& t, long p, long n) {
    if (p < 1 || p > static_cast<long>(t.size()) || n <= 0) {
        return {};
    }
    return t.substr(static_cast<std::size_t>(p - 1), static_cast<std::size_t>(n));
}

// A test on characters beyond the end of T fails.
bool CharactersAre(const Text& t, long p, std::u16string_view what) {
    return p >= 1 && p - 1 + static_cast<long>(what.size()) <= static_cast<long>(t.size()) &&
           From(t, p, static_cast<long>(what.size())) == what;
}

bool CharacterIs(const Text& t, long p, char16_t c) {
    return p >= 1 && p <= static_cast<long>(t.size()) && t[static_cast<std::size_t>(p - 1)] == c;
}

// "Replace the n characters from i by X".
void Replace(PreviewPane& pane, long i, long n, std::u16string_view x) {
    pane.ReplaceText(static_cast<std::size_t>(i - 1), static_cast<std::size_t>(n), x);
}

void Justify(PreviewPane& pane, long i, Alignment alignment) {
    Replace(pane, i, 8, u"");                       // J1
    pane.SelectToEnd(static_cast<std::size_t>(i));  // J2: offset i, not i - 1
    pane.AlignSelection(alignment);                 // J3
}

long ComponentLength(const Text& t, long from, char16_t terminator) {
    for (long x = 0; x <= 3; ++x) {
        if (CharacterIs(t, from + x, terminator)) {
            return x;
        }
    }
    return 4;
}

void Colour(PreviewPane& pane, long i) {
    const Text t = pane.ReadText();
    const long j = ComponentLength(t, i + 6, u',');  // C1
    const Text r = From(t, i + 6, j);
    const long k = ComponentLength(t, i + 7 + j, u',');  // C2
    const Text g = From(t, i + 7 + j, k);
    const long m = ComponentLength(t, i + 8 + j + k, markup::kTagEnd);  // C3
    const Text b = From(t, i + 8 + j + k, m);

    pane.SelectToEnd(static_cast<std::size_t>(i));  // C4
    const auto red = modSchemaParse::ColourComponentValue(r);
    const auto green = modSchemaParse::ColourComponentValue(g);
    const auto blue = modSchemaParse::ColourComponentValue(b);
    if (red && green && blue) {
        pane.ColourSelection({*red, *green, *blue});
    }

    long e = i + 33;  // C5
    for (long p = i + 3; p <= i + 32; ++p) {
        if (CharactersAre(t, p, markup::kSeparator)) {
            e = p + 2;
            break;
        }
    }
    // C6: the first i - 1 characters, the shown components, T from e.
    Replace(pane, i, e - i, markup::ShownColour(r, g, b));
    pane.PlaceCaret(static_cast<std::size_t>(i));
}

}  // namespace

void ReferenceParseSchemaText(PreviewPane& pane) {
    const Text pageBreak = Text(1, markup::kLineBreakCharacter) + Text(markup::kPageBreakLine) +
                           Text(1, markup::kLineBreakCharacter);
    long i = 1;  // step 1
    Text t;
    bool changed = true;
    for (;;) {
        if (changed) {  // every later test reads the text that the replacement left
            t = pane.ReadText();
            changed = false;
        }
        if (i >= static_cast<long>(t.size())) {  // step 2
            return;
        }
        if (!CharactersAre(t, i, markup::kSeparator)) {  // step 3
            ++i;
            continue;
        }
        changed = true;
        if (CharactersAre(t, i + 3, markup::kTagFont)) {  // step 4, rows 1-8
            changed = false;
        } else if (CharactersAre(t, i + 3, markup::kTagColour)) {
            Colour(pane, i);
        } else if (CharactersAre(t, i + 3, markup::kTagLeft)) {
            Justify(pane, i, Alignment::Left);
            continue;
        } else if (CharactersAre(t, i + 3, markup::kTagRight)) {
            Justify(pane, i, Alignment::Right);
            continue;
        } else if (CharactersAre(t, i + 3, markup::kTagCentre)) {
            Justify(pane, i, Alignment::Centre);
            continue;
        } else if (CharactersAre(t, i + 3, markup::kTagLineBreak)) {
            Replace(pane, i, 8, Text(1, markup::kLineBreakCharacter));
            pane.PlaceCaret(static_cast<std::size_t>(i));
        } else if (CharactersAre(t, i + 3, markup::kTagParagraph)) {
            Replace(pane, i, 7, Text(2, markup::kLineBreakCharacter));
            pane.PlaceCaret(static_cast<std::size_t>(i));
        } else if (CharactersAre(t, i + 3, markup::kTagPageBreak)) {
            Replace(pane, i, 8, pageBreak);
            pane.PlaceCaret(static_cast<std::size_t>(i));
        } else {  // no known tag: the separator and what follows stay
            changed = false;
        }
        ++i;  // step 5
    }
}

}  // namespace lorekeep::testing
