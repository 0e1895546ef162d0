#pragma once

#include <string>
#include <string_view>

namespace lorekeep {

// Text as the window's controls hold it: UTF-16 code units, so that a caret
// position or a text length in the core counts exactly what the toolkit counts.
using Text = std::u16string;
using TextView = std::u16string_view;

// Conversions for file paths and diagnostics. Unpaired surrogates and invalid
// UTF-8 sequences become U+FFFD rather than being dropped.
std::string toUtf8(TextView text);
Text fromUtf8(std::string_view utf8);

}  // namespace lorekeep
