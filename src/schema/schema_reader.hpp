#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "markup/text.hpp"
#include "schema/language.hpp"

namespace lorekeep {

// A font as a record names it: an entry of the font list, or any other text.
struct FontChoice {
    int entry = -1;  // position in kFontNames; -1 for a name that is not listed
    Text text;       // what the font box shows: a listed entry in the list's own letter case

    bool operator==(const FontChoice&) const = default;
};

// One record taken apart: what it sets in its language's controls.
struct RecordRead {
    std::optional<FontChoice> font;  // nothing: the font box keeps its choice
    std::optional<Text> title;       // nothing: the title box keeps its text
    std::optional<Text> body;        // nothing: the record cannot be read; the load ends with it

    bool operator==(const RecordRead&) const = default;
};

// Why a file does not load, by the rule that stops it.
enum class ReadProblem {
    None,
    TooFewFields,            // not even the three header fields
    FieldBeforeFirstRecord,  // a field that is not a record comes first (a comma in the name)
    FifthRecord,             // more than four records
    MissingRecord,           // fewer than four records
    EmptyRemainder,          // a record with nothing left after its stamp, font and title
    FontTagTooEarly,         // a record whose first ">" stands among its first six characters
};

// A schema file taken apart, record by record, in language order.
struct SchemaRead {
    // Up to and including the first record that cannot be read. Empty when
    // the file cannot be split into records at all (too few fields, a field
    // before the first record, a fifth record).
    std::vector<RecordRead> records;

    // Every language read: four records, each with its body.
    bool complete() const { return records.size() == kLanguageCount && records.back().body; }

    // What stopped the load, when it is not complete; the record it concerns
    // is the last of `records`.
    ReadProblem problem = ReadProblem::None;
    // Where each record's key starts in the file, for every record the file
    // holds (fewer than four when records are missing).
    std::vector<std::size_t> recordStarts;
    // Which of the records read are in the writer's layout (the others in the
    // older one, without separators around the font and title tags).
    std::array<bool, kLanguageCount> writerLayout{};
};

struct ReaderOptions {
    // Also recognise the layout that the writer produces, where separators
    // stand around the font and title tags and before the closing quote.
    bool acceptWriterLayout = true;
};

// Reads a schema file's bytes (Windows-1252). Fields are read up to a comma
// or a line end (CR LF, CR or LF) after any leading spaces; a field that opens
// with a double quote runs to the next double quote on its line. The three
// header fields are skipped; a field beginning with "lang_" (with case)
// starts the next record, any other field is appended to the current one
// with nothing between. Each record then gives its font and title where they
// stand recognisably at its head, and its body.
SchemaRead readSchema(std::string_view bytes, const ReaderOptions& options = {});

}  // namespace lorekeep
