#pragma once

#include "platform/applescript/language/Operation.h"
#include "platform/applescript/runtime/ScriptValue.h"

namespace mac::applescript {

// What work on text depends on besides the text: the delimiters of text items, and what comparisons consider.
struct TextContext {
    // Splitting goes by all of them, joining by the first.
    std::vector<std::u16string> delimiters{u""};
    // As the script set them: text or a list.
    Value delimitersValue{Value::list({Value::text(u"")})};
    unsigned considered{Considerations::Standard};
    // What one value may hold at most.
    std::size_t mostUnits{std::size_t{1} << 27U};
    std::size_t mostItems{std::size_t{1} << 25U};
    // False for a script that may only compute.
    bool asksApplications{true};
};

} // namespace mac::applescript
