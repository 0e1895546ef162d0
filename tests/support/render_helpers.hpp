#pragma once

#include <string>

#include "markup/mod_schema_parse.hpp"
#include "markup/model_pane.hpp"
#include "support/reference_renderer.hpp"

namespace lorekeep::testing {

// What a fresh pane holding `body` shows after the program's renderer.
inline markup::RenderedPreview RenderWithProgram(TextView body) {
    markup::ModelPane pane;
    pane.SetText(body);
    modSchemaParse::ParseSchemaText(pane);
    return pane.Snapshot();
}

// The same through the literal reference algorithm.
inline markup::RenderedPreview RenderWithReference(TextView body) {
    markup::ModelPane pane;
    pane.SetText(body);
    ReferenceParseSchemaText(pane);
    return pane.Snapshot();
}

// A body written so that a failure message can be pasted back into a test:
// control characters and non-ASCII as \uXXXX escapes.
inline std::string Escaped(TextView text) {
    std::string out;
    for (char16_t c : text) {
        if (c >= 0x20 && c < 0x7F && c != u'\\' && c != u'"') {
            out.push_back(static_cast<char>(c));
        } else if (c == u'\\') {
            out += "\\\\";
        } else if (c == u'"') {
            out += "\\\"";
        } else {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\u%04X", static_cast<unsigned>(c));
            out += buffer;
        }
    }
    return out;
}

}  // namespace lorekeep::testing
