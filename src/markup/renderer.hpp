#pragma once

#include <cstdint>
#include <optional>

#include "markup/preview.hpp"

// The preview renderer: turns a body in the game's markup into what the game
// shows, in one left-to-right pass.
namespace lorekeep::markup {

// Renders `body` as if it had just been set into a fresh pane (default colour,
// left-aligned): breaks become line-break characters, justification markers
// align what follows, colour markers colour what follows and show their
// components, and anything else stays as typed. Takes time linear in the
// length of the body.
RenderedPreview renderPreview(TextView body);

}  // namespace lorekeep::markup
