#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSString.h"

namespace mac {

// Keys of the dictionary that says what went wrong in a script.
inline constexpr char NSAppleScriptErrorMessage[] = "NSAppleScriptErrorMessage";
inline constexpr char NSAppleScriptErrorNumber[] = "NSAppleScriptErrorNumber";
// Linux: the text "{location, length}", for there are no objects that hold a range.
inline constexpr char NSAppleScriptErrorRange[] = "NSAppleScriptErrorRange";
inline constexpr char NSAppleScriptErrorBriefMessage[] = "NSAppleScriptErrorBriefMessage";
inline constexpr char NSAppleScriptErrorAppName[] = "NSAppleScriptErrorAppName";

// A script, as source text and, once compiled, as what runs. Main thread. A message to nil answers nil and NO.
class NSAppleScript : public Handle<NSAppleScript, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Nil source answers nil; nothing is compiled yet.
    NSAppleScript initWithSource_(NSString const& source) const;

    NSString source() const;
    bool isCompiled() const;
    // NO for a source that is not in order; `errorInfo`, which may be null, then receives a dictionary, and nil
    // otherwise. A script that is compiled already answers YES.
    bool compileAndReturnError_(NSDictionary* errorInfo) const;
};

} // namespace mac
