#pragma once

#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/collections/NSDictionary.h"

namespace mac {

// Keys of the dictionary that says what went wrong in a script: the whole message, the error's number, the place in the
// source, the message without the name of the application that it came from, and that name where there is one.
inline constexpr char NSAppleScriptErrorMessage[] = "NSAppleScriptErrorMessage";
inline constexpr char NSAppleScriptErrorNumber[] = "NSAppleScriptErrorNumber";
// Linux: the text "{location, length}", for there are no objects that hold a range.
inline constexpr char NSAppleScriptErrorRange[] = "NSAppleScriptErrorRange";
inline constexpr char NSAppleScriptErrorBriefMessage[] = "NSAppleScriptErrorBriefMessage";
inline constexpr char NSAppleScriptErrorAppName[] = "NSAppleScriptErrorAppName";

// Events that call a handler of a script by its name.
inline constexpr AEEventClass kASAppleScriptSuite{"ascr"};
inline constexpr AEEventID kASSubroutineEvent{"psbr"};
inline constexpr AEKeyword keyASSubroutineName{"snam"};
inline constexpr AEKeyword keyASUserRecordFields{"usrf"};

// A script, as source text and, once compiled, as what runs. Its properties and the variables outside of its handlers
// keep their values from run to run. Main thread. A message to nil answers nil and NO.
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

    // Compiles the script unless it is compiled, runs it and answers the result: a null descriptor for no result. Nil
    // for an error, which `errorInfo`, where it is not null, then tells, and is nil otherwise. Scripts run on the
    // calling thread and block it.
    NSAppleEventDescriptor executeAndReturnError_(NSDictionary* errorInfo) const;
    // Has the script handle an event and answers its result. kASAppleScriptSuite and kASSubroutineEvent call the
    // handler that keyASSubroutineName names, in letters of any case, with the list under keyDirectObject; a handler
    // with labels gets its parameters from the fields that prepositions name ('from', 'at  ') and from
    // keyASUserRecordFields. kCoreEventClass and kAEOpenApplication run the script, with a list under keyDirectObject
    // as its arguments. Any other event goes to the script's handler of that command. -1708 without a handler, and for
    // what is no event.
    NSAppleEventDescriptor executeAppleEvent_error_(NSAppleEventDescriptor const& event, NSDictionary* errorInfo) const;

    // Linux: every run of this script that takes longer ends with -1712; 0, as at first, is no limit. No `try` of the
    // script keeps it from ending.
    void limitRunsTo(double seconds) const;
    // Linux: the scripts that run now end with -128. Any thread, and a signal's handler.
    static void cancelRunningScripts();
};

} // namespace mac
