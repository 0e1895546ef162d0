#pragma once

#include <optional>

#include "markup/preview_pane.hpp"

// The preview renderer: turns a body in the game's markup into what the game
// shows, in one left-to-right pass.
namespace lorekeep::modSchemaParse {

// Renders `body` as if it had just been set into a fresh pane (default colour,
// left-aligned): breaks become line-break characters, justification markers
// align what follows, colour markers colour what follows and show their
// components, and anything else stays as typed. Takes time linear in the
// length of the body.
markup::RenderedPreview RenderPreview(TextView body);

// Renders the pane's own text in place and shows the result on the pane.
void ParseSchemaText(markup::PreviewPane& pane);

// Copies an editor's text into its preview pane and renders it there: the
// same as setting the pane's text and calling ParseSchemaText, with the pane's
// document built once instead of twice.
void ShowPreview(TextView editorText, markup::PreviewPane& pane);

// A colour component as a colour marker writes it: an optional "-" and
// digits, clamped to 0..255. Anything else (empty text included) has no value,
// and a marker with such a component colours nothing.
std::optional<std::uint8_t> ColourComponentValue(TextView text);

}  // namespace lorekeep::modSchemaParse
