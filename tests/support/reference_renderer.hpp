#pragma once

#include "markup/preview.hpp"

namespace lorekeep::testing {

// The preview algorithm followed step by step on a pane held in memory:
// positions from 1, every replacement spliced into the pane at once and every
// later test reading the text it left, formatting following the characters.
// Quadratic, and meant to be: the oracle that the program's one-pass renderer
// is checked against.
markup::RenderedPreview referenceRender(TextView body);

}  // namespace lorekeep::testing
