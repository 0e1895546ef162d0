#pragma once

#include <string>
#include <string_view>

namespace lorekeep {

// Text as the window's controls hold it: UTF-16 code units, so that a caret
// position or a text length in the core counts exactly what the toolkit counts.
using Text = std::u16string;
using TextView = std::u16string_view;

// Conversions for file paths and diagnostics, lossless for file names that
// are not valid UTF-8: each byte outside a valid sequence becomes the
// unpaired surrogate U+DC80 + (byte - 0x80), which converts back to the same
// byte. Other unpaired surrogates become U+FFFD.
std::string toUtf8(TextView text);
Text fromUtf8(std::string_view utf8);

}  // namespace lorekeep
