#pragma once

#include <cstddef>

namespace lorekeep {

// The longest texts the window takes on; the companion program holds every
// file it writes to the same limits, so that the window can open it.
//
// A body: typing costs the same at any length, but loading, the memory for
// the text, its preview and their undo steps grow with it.
inline constexpr std::size_t kMaxBodyLength = 16'000'000;
// A title box is one line, which the toolkit lays out whole on every change.
inline constexpr std::size_t kMaxTitleLength = 4'000'000;
// The font, folder and name boxes: the toolkit's usual single-line limit.
inline constexpr std::size_t kMaxLineLength = 32'767;

}  // namespace lorekeep
