#pragma once

#include <string>

#include "markup/text.hpp"

namespace lorekeep {

// The schema file's code page. Every character that Windows-1252 represents
// becomes its one byte; U+0081, U+008D, U+008F, U+0090 and U+009D, which the
// code page leaves undefined, keep their own numbers so that those bytes
// survive a load and a save. A byte of a file name that is not UTF-8, as
// fromUtf8 keeps it (U+DC80 to U+DCFF), is written as that byte. Anything
// else is written as '?', one per character (a surrogate pair is one
// character).
std::string encodeWindows1252(TextView text);

// The exact inverse: every byte becomes one character, the five undefined
// bytes the control characters with their own numbers.
Text decodeWindows1252(std::string_view bytes);

}  // namespace lorekeep
