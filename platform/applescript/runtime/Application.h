#pragma once

#include "platform/applescript/language/Terminology.h"
#include "platform/applescript/runtime/ObjectSpecifier.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/TextContext.h"

namespace mac::applescript {

class Evaluator;

// A command to be sent to an application.
struct ApplicationCommand {
    CommandTerm const& term;
    // Empty if the script gives none.
    Value direct{};
    std::vector<std::pair<Code, Value>> named{};
    // What the script is telling; an application, or an object in one.
    Value subject{};

    // Null where it is not given.
    Value const* find(Code code) const;
};

// An application that scripts can tell, known to them by the terms of its table. What it is asked about are specifiers
// whose outermost container is the application's value. Lives as long as the process; main thread. What goes wrong is
// thrown as a ScriptError; the application's name is put before its message on the way out.
class Application {
public:
    Application() = default;
    virtual ~Application() = default;
    Application(Application const&) = delete;
    Application& operator=(Application const&) = delete;

    virtual std::u16string name() const = 0;
    // Empty where it has none.
    virtual std::u16string identifier() const = 0;
    // Null where it has none of its own.
    virtual Terminology const* terms() const = 0;
    // Asked of the system; starts nothing.
    virtual bool isRunning() const = 0;

    // The value of what is meant, as one of that class; 0: as it is. An object is answered as the specifier that names
    // it by its place.
    virtual Value get(Value const& specifier, Code type, TextContext const& context) = 0;
    virtual void set(Value const& specifier, Value const& value, TextContext const& context) = 0;
    virtual bool exists(Value const& specifier, TextContext const& context) = 0;
    // Elements of the class in what is meant; 0: of any.
    virtual std::size_t count(Value const& specifier, Code elementClass, TextContext const& context) = 0;
    virtual Value perform(Evaluator& evaluator, ApplicationCommand const& command) = 0;
};

// By name in any case, or by identifier. Null for an unknown application.
Application* applicationOf(ApplicationObject const& named);
// Its table, without looking for a program; null where it has none.
Terminology const* termsOf(ApplicationObject const& named);
// The terms of an application by its name or identifier; null for an unknown one and for one without a table.
Terminology const* terminologyOfApplication(std::u16string_view nameOrIdentifier);

// Whether it is an application, or a specifier of something inside one.
bool isToldTo(Value const& value);
bool isInApplication(Value const& value);
// The object as a specifier inside the application: `item (alias "Macintosh HD:a")`.
Value fileInApplication(Value const& file, Value const& told);
// Whether the application that `told` lies in knows the property by a term of its own.
bool hasTermFor(Value const& told, Code property);

// Ask the application that the specifier lies in. They throw -1728 for an unknown application, -1723 where the script
// may only compute.
Value getInApplication(Value const& specifier, Code type, TextContext const& context);
void setInApplication(Value const& specifier, Value const& value, TextContext const& context);
bool existsInApplication(Value const& specifier, TextContext const& context);
std::size_t countInApplication(Value const& specifier, Code elementClass, TextContext const& context);
// `target` is the application or lies in it.
Value performInApplication(Evaluator& evaluator, Value const& target, ApplicationCommand const& command);
// A call of a handler, which no application has.
[[noreturn]] void refuseCall(Value const& target, Symbol name, TextContext const& context);

} // namespace mac::applescript
