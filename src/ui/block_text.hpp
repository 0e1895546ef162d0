#pragma once

#include <QTextCursor>
#include <QTextDocument>
#include <QTextFormat>
#include <cstddef>
#include <vector>

#include "markup/preview.hpp"
#include "markup/text.hpp"

namespace lorekeep::ui {

// A box's text held in a QTextDocument, one position per character of the
// core's text. A line-break character (CR) or a line feed becomes a block
// end; so does a space now and then in a long stretch without one (or, in a
// stretch without spaces, some other character, which the box then draws
// itself), because the toolkit lays out a block as a whole and would take
// time in proportion to the whole body on every keystroke. Each block end
// records which character it stands for, and reads back as that character.

// A stretch without a line break this long is cut into blocks at the next
// space; a run this long without a space is cut wherever it may be (the
// toolkit breaks the lines of such a run in time that grows with the square
// of its length).
inline constexpr std::size_t kBlockLength = 1024;
inline constexpr std::size_t kLongestRun = 256;

// What the block end in front of `block` stands for.
char16_t endedBy(const QTextBlock& block);

// Characters that the toolkit itself turns into block ends when inserted.
bool endsBlock(char16_t c);

bool isBlank(char16_t c);

// The characters of a document, its closing block end left out.
std::size_t documentLength(const QTextDocument& document);

// The text between two positions, each block end read as what it stands for.
Text textBetween(const QTextDocument& document, std::size_t start, std::size_t end);

// The text between two positions as HTML: a paragraph for each line break,
// with its alignment, and each character in its colour. (The toolkit's own
// HTML would make every block a paragraph and drop what its end stands for.)
QString htmlBetween(const QTextDocument& document, std::size_t start, std::size_t end);

Qt::Alignment toQt(markup::Alignment alignment);

// Writes text at a cursor, block by block: every line break ends a block,
// and so does a space (or another character) in a long stretch without one.
// A new paragraph's block takes the next of `alignments`, if given.
class BlockWriter {
  public:
    explicit BlockWriter(QTextCursor& cursor,
                         const std::vector<markup::Alignment>* alignments = nullptr,
                         std::size_t paragraph = 0);

    void write(TextView text, const QTextCharFormat& format);
    // Each stretch of one colour in its own format.
    void writeRuns(TextView text, const std::vector<markup::ColourRun>& colours);

    // A block end stands for a character that is neither blank nor a break.
    bool drawsBlockEnds() const { return m_drawsBlockEnds; }
    std::size_t paragraph() const { return m_paragraph; }

  private:
    void endBlock(char16_t c, const QTextCharFormat& format);

    QTextCursor& m_cursor;
    const std::vector<markup::Alignment>* m_alignments;
    std::size_t m_paragraph;
    QTextBlockFormat m_blockFormat;  // the cursor's block's
    std::size_t m_sinceBlockEnd;
    std::size_t m_sinceBlank = 0;  // characters since a blank or a block end
    bool m_drawsBlockEnds = false;
};

}  // namespace lorekeep::ui
