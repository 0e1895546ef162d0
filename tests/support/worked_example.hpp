#pragma once

#include "document/date_stamp.hpp"
#include "document/schema_document.hpp"

namespace lorekeep::testing {

// The schema saved on 14 March 2005 at 14:05:09 with the font Papyrus14, the
// English title The Tower over Hello, a line break and World, and the Italian
// title La Torre over Ciao; tests/data/worked_example.sch holds its bytes.
inline constexpr LocalDateTime kWorkedStamp{2005, 3, 14, 14, 5, 9};

inline SchemaDocument WorkedExample() {
    SchemaDocument doc;
    doc.name = u"The Tower";
    doc.font = u"Papyrus14";
    doc.entry(Language::English) = {u"The Tower", u"Hello\\n<br>\\nWorld"};
    doc.entry(Language::Italian) = {u"La Torre", u"Ciao"};
    return doc;
}

}  // namespace lorekeep::testing
