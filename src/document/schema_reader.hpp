#pragma once

#include <array>
#include <optional>

#include "document/controls.hpp"
#include "document/language.hpp"

namespace lorekeep {

// Reads a schema file's text field by field. A field is the rest of a line up
// to a comma or the line end (CR LF, CR or LF), after any leading spaces;
// spaces at its end stay. A field that opens with a double quote runs to the
// next double quote on its line (to the line end when there is none), and
// whatever stands between that closing quote and the next comma or line end is
// added to it: only the two quote characters are lost.
class FieldReader {
  public:
    explicit FieldReader(TextView text) : text_(text) {}

    // True when no character is left after the last field read.
    bool AtEnd() const { return next_ >= text_.size(); }

    // The next field; nothing when no character is left to read.
    std::optional<Text> ReadField();

  private:
    // Consumes a line end at the read position, if one stands there.
    bool ConsumeLineEnd();
    bool AtLineEnd() const;

    TextView text_;
    std::size_t next_ = 0;
};

// The first pass of a load: the three header fields read and discarded, then
// the fields gathered into up to four records, by position. A field beginning
// with "lang_" (with case) starts the next record; any other field is
// appended to the current one with nothing between. Nothing when the file
// cannot be taken apart that way (too few fields, a field before the first
// record, a fifth record).
std::optional<std::array<Text, kLanguageCount>> CollectRecords(TextView fileText);

struct ReaderOptions {
    // Also recognise the layout that the writer produces, where separators
    // stand around the font and title tags and before the closing quote.
    bool acceptWriterLayout = true;
    // A record longer than this fails the load before anything is shown
    // (0: no limit). The window sets what its text boxes can lay out.
    std::size_t maxRecordLength = 0;
};

// Takes one record apart: may select a font entry and set the title box of its
// language, and returns the body, or nothing when the record cannot be read.
std::optional<Text> ReadLanguageBlock(TextView record, int i, FontBox& font, TextBox& title,
                                      const ReaderOptions& options = {});

// Everything Load touches in the window.
struct LoadTargets {
    std::array<EditorBox*, kLanguageCount> editors{};
    std::array<TextBox*, kLanguageCount> titles{};
    FontBox* font = nullptr;
    MessageBox* messages = nullptr;
};

// Reads folder/name.sch into the window: the whole file first, then language
// by language. Any failure shows one message and ends the load; languages
// already loaded stay loaded.
void Load(TextView SchemaName, TextView filename, const LoadTargets& targets,
          const ReaderOptions& options = {});

// The same for a file's bytes already in memory. Returns false when the load
// failed (its one message has then been shown).
bool LoadFromBytes(std::string_view bytes, const LoadTargets& targets,
                   const ReaderOptions& options = {});

}  // namespace lorekeep
