#pragma once

#include <array>
#include <random>

#include "markup/markers.hpp"
#include "markup/text.hpp"

namespace lorekeep::testing {

// Random bodies built from pieces of the markup: whole markers, markers with a
// piece missing, separators, digits, commas, brackets, line breaks and letters.
// Such text reaches every branch of the renderer and most of its odd corners.
class MarkerSoup {
  public:
    explicit MarkerSoup(std::uint32_t seed) : m_random(seed) {}

    Text next(std::size_t maxLength) {
        Text body;
        for (const std::size_t length = m_random() % (maxLength + 1); body.size() < length;) {
            body.append(piece());
        }
        return body;
    }

    Text piece() {
        static const std::array<std::u16string_view, 49> kPieces{
            markup::kLeftJustify, markup::kCentre, markup::kRightJustify, markup::kLineBreak,
            markup::kParagraphBreak, markup::kPageBreak, markup::kColourBlack, markup::kColourOpen,
            markup::kFontOpen, markup::kTitleOpen, markup::kValueClose, markup::kSeparator,
            u"\\n<font=Papyrus14>\\n", u"\\n<title=The Tower>\\n", u"\\n<dc=255,128,0>\\n",
            u"\\n<dc=1000,0,0>\\n", u"\\n<dc=7,08,100>\\n", u"\\n<dc=-3,x,>\\n", u"\\n<dc=1,2,3>",
            u"\\n<jc", u"\\nxjl>\\n", u"\\n<JC>\\n", u"\\n<BR>\\n", u"\\n<p>", u"\\n<pb",
            u"\\n<br>", u"\\", u"n", u"<", u">", u",", u"=", u"dc=", u"jl", u"p>", u"pb", u"0",
            u"9", u"255", u"-", u"\r", u"\n", u" ", u"Hello", u"é€", u"ab",
            // fillers that put a colour marker's closing separator near the end of its reach
            u"abcdefghijklmnopqrst", u"0123456789", u"abcdefghijklmnopqrstuvwxyz"};
        return Text(kPieces[m_random() % kPieces.size()]);
    }

  private:
    std::mt19937 m_random;
};

}  // namespace lorekeep::testing
