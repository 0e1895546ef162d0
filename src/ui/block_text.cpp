#include "ui/block_text.hpp"

#include <QTextBlock>
#include <algorithm>

#include "ui/qt_text.hpp"

namespace lorekeep::ui {

namespace {

// The character format property of a block end that holds the character it
// stands for. It travels with the block end itself: removing text around it,
// undo and redo keep it right, where a block's own state or format may be
// taken over by a neighbour when blocks merge.
constexpr int kEndedBy = QTextFormat::UserProperty;

// A character that may stand at a block end when there is no space to use:
// not half of a surrogate pair, not a mark that belongs to the one before.
bool mayEndBlock(char16_t c) {
    return !QChar::isSurrogate(c) && !QChar(c).isMark();
}

}  // namespace

char16_t endedBy(const QTextBlock& block) {
    const QVariant value = block.charFormat().property(kEndedBy);
    return value.isValid() ? static_cast<char16_t>(value.toInt()) : u'\n';
}

bool endsBlock(char16_t c) {
    return markup::isParagraphSeparator(c) || c == QChar::ParagraphSeparator || c == u'\xfdd0' ||
           c == u'\xfdd1';  // the frame marks
}

bool isBlank(char16_t c) {
    return c == u' ' || c == u'\t';
}

std::size_t documentLength(const QTextDocument& document) {
    return static_cast<std::size_t>(document.characterCount() - 1);
}

Text textBetween(const QTextDocument& document, std::size_t start, std::size_t end) {
    Text text;
    text.reserve(end - start);
    for (QTextBlock block = document.findBlock(static_cast<int>(start));
         block.isValid() && static_cast<std::size_t>(block.position()) < end;
         block = block.next()) {
        const auto position = static_cast<std::size_t>(block.position());
        const QString piece = block.text();
        const auto pieceEnd = position + static_cast<std::size_t>(piece.size());
        const std::size_t from = std::max(start, position) - position;
        const std::size_t to = std::min(end, pieceEnd) - position;
        if (to > from) {
            text.append(reinterpret_cast<const char16_t*>(piece.utf16()) + from, to - from);
        }
        if (pieceEnd >= start && pieceEnd < end && block.next().isValid()) {
            text.push_back(endedBy(block.next()));
        }
    }
    return text;
}

namespace {

QString paragraphStart(const QTextBlock& block) {
    const Qt::Alignment alignment = block.blockFormat().alignment();
    const char* align = (alignment & Qt::AlignRight)     ? "right"
                        : (alignment & Qt::AlignHCenter) ? "center"
                                                         : "left";
    return QStringLiteral("<p align=\"%1\" style=\"margin:0; white-space:pre-wrap\">")
        .arg(QLatin1StringView(align));
}

QString inColour(const QString& text, const QTextCharFormat& format) {
    if (!format.hasProperty(QTextFormat::ForegroundBrush)) {
        return text.toHtmlEscaped();
    }
    return QStringLiteral("<span style=\"color:%1\">%2</span>")
        .arg(format.foreground().color().name(), text.toHtmlEscaped());
}

}  // namespace

QString htmlBetween(const QTextDocument& document, std::size_t start, std::size_t end) {
    QTextBlock block = document.findBlock(static_cast<int>(start));
    QString html = QStringLiteral("<html><body>") + paragraphStart(block);
    for (; block.isValid() && static_cast<std::size_t>(block.position()) < end;
         block = block.next()) {
        for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
            const QTextFragment fragment = piece.fragment();
            const auto position = static_cast<std::size_t>(fragment.position());
            const std::size_t from = std::max(start, position);
            const std::size_t to =
                std::min(end, position + static_cast<std::size_t>(fragment.length()));
            if (to > from) {
                html += inColour(fragment.text().mid(static_cast<qsizetype>(from - position),
                                                     static_cast<qsizetype>(to - from)),
                                 fragment.charFormat());
            }
        }
        const auto blockEnd = static_cast<std::size_t>(block.position() + block.length() - 1);
        const QTextBlock next = block.next();
        if (blockEnd < start || blockEnd >= end || !next.isValid()) {
            continue;
        }
        const char16_t c = endedBy(next);
        // A character the toolkit only holds as a block end (a line break,
        // a paragraph or frame mark) ends the paragraph here, as in the pane.
        html += endsBlock(c) ? QStringLiteral("</p>") + paragraphStart(next)
                             : inColour(QString(QChar(c)), next.charFormat());
    }
    return html + QStringLiteral("</p></body></html>");
}

Qt::Alignment toQt(markup::Alignment alignment) {
    switch (alignment) {
        case markup::Alignment::Right:
            return Qt::AlignRight;
        case markup::Alignment::Centre:
            return Qt::AlignHCenter;
        case markup::Alignment::Left:
            break;
    }
    return Qt::AlignLeft;
}

namespace {

QTextCharFormat colourFormat(const markup::CharColour& colour) {
    QTextCharFormat format;
    if (colour) {
        format.setForeground(QColor(colour->red, colour->green, colour->blue));
    }
    return format;
}

}  // namespace

BlockWriter::BlockWriter(QTextCursor& cursor, const std::vector<markup::Alignment>* alignments,
                         std::size_t paragraph)
    : m_cursor(cursor),
      m_alignments(alignments),
      m_paragraph(paragraph),
      m_blockFormat(cursor.blockFormat()),
      m_sinceBlockEnd(static_cast<std::size_t>(cursor.positionInBlock())) {}

void BlockWriter::write(TextView text, const QTextCharFormat& format) {
    std::size_t start = 0;
    for (std::size_t k = 0; k < text.size(); ++k) {
        const char16_t c = text[k];
        if (!endsBlock(c) && !(m_sinceBlockEnd >= kBlockLength && isBlank(c)) &&
            !(m_sinceBlank >= kLongestRun && mayEndBlock(c))) {
            ++m_sinceBlockEnd;
            m_sinceBlank = isBlank(c) ? 0 : m_sinceBlank + 1;
            continue;
        }
        if (k > start) {
            m_cursor.insertText(toQString(text.substr(start, k - start)), format);
        }
        endBlock(c, format);
        start = k + 1;
    }
    if (text.size() > start) {
        m_cursor.insertText(toQString(text.substr(start)), format);
    }
}

void BlockWriter::writeRuns(TextView text, const std::vector<markup::ColourRun>& colours) {
    for (std::size_t run = 0; run < colours.size(); ++run) {
        const std::size_t end = run + 1 < colours.size() ? colours[run + 1].start : text.size();
        write(text.substr(colours[run].start, end - colours[run].start),
              colourFormat(colours[run].colour));
    }
}

void BlockWriter::endBlock(char16_t c, const QTextCharFormat& format) {
    if (markup::isParagraphSeparator(c)) {
        ++m_paragraph;
    } else if (!endsBlock(c) && !isBlank(c)) {
        m_drawsBlockEnds = true;
    }
    if (m_alignments != nullptr && m_paragraph < m_alignments->size() &&
        m_blockFormat.alignment() != toQt((*m_alignments)[m_paragraph])) {
        m_blockFormat.setAlignment(toQt((*m_alignments)[m_paragraph]));
    }
    QTextCharFormat end = format;
    end.setProperty(kEndedBy, static_cast<int>(c));
    m_cursor.insertBlock(m_blockFormat, end);
    m_sinceBlockEnd = 0;
    m_sinceBlank = 0;
}

}  // namespace lorekeep::ui
