#pragma once

#include "markup/preview_pane.hpp"

namespace lorekeep::testing {

// The preview algorithm followed step by step: positions from 1, every
// replacement spliced into the pane at once and every later test reading the
// text it left. Quadratic, and meant to be: it is the oracle that the
// program's one-pass renderer is checked against, never used by the program.
void ReferenceParseSchemaText(markup::PreviewPane& pane);

}  // namespace lorekeep::testing
