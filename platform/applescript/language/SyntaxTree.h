#pragma once

#include "platform/applescript/language/ScriptSymbol.h"
#include "platform/applescript/language/Statements.h"
#include <deque>

namespace mac::applescript {

struct Parameter;

// A variable that takes the argument, as one of the classes where there are any.
struct NamedParameter {
    Expression* variable{nullptr};
    std::vector<Code> classes{};
    // What it is when the call leaves it out; null: it must not be left out.
    Expression* defaultValue{nullptr};
};
// {a, b}: the items of the argument.
struct ListPattern {
    std::vector<Parameter> parts;
};
// {name:a, size:b}: the properties of the argument.
struct RecordPattern {
    std::vector<Symbol> keys{};
    // One value for each key.
    std::vector<Parameter> parts;
};
struct Parameter {
    std::variant<NamedParameter, ListPattern, RecordPattern> pattern{};

    bool isOptional() const {
        NamedParameter const* const named = std::get_if<NamedParameter>(&pattern);
        return named && named->defaultValue;
    }
};

struct LabeledParameter {
    Symbol label{nullptr};
    Parameter parameter{};
};

struct HandlerDefinition {
    Symbol name{nullptr};
    std::vector<Parameter> positional{};
    std::optional<Parameter> direct{};
    // The labels of a command's parameters have their codes.
    std::vector<LabeledParameter> labeled{};
    // Null for a handler that is called by its name.
    CommandTerm const* command{nullptr};
    bool isPositional{false};
    Statement* block{nullptr};
    std::uint32_t localCount{0};
};

struct PropertyDefinition {
    Symbol name{nullptr};
    Expression* initial{nullptr};
};

struct ScriptDefinition {
    Symbol name{nullptr};
    // Each index tells the place of a name in the list before it.
    std::vector<PropertyDefinition> properties{};
    NameIndex propertyPlaces{};
    std::vector<HandlerDefinition*> handlers{};
    NameIndex handlerPlaces{};
    // The handlers that commands call.
    std::vector<HandlerDefinition*> commandHandlers{};
    HandlerDefinition* run{nullptr};
    // The statements outside of handlers, which are `run` unless the script has a run handler of its own. What the
    // properties of the scripts that stand there start with is evaluated with its locals, those of the outermost too.
    HandlerDefinition const* outsideHandlers{nullptr};
    bool hasRunHandler{false};
    // In the outermost script only: the variables that its statements and the handlers' globals share.
    std::vector<Symbol> variables{};
    NameIndex variablePlaces{};
    // What stands in the source between `script` with its name and `end script`; all of it for the outermost.
    SourceRange body{};
};

// A parsed script. Owns every part of it, whose addresses stay; shared by the scripts made of it.
struct SyntaxTree {
    std::u16string source{};
    std::deque<Expression> expressions{};
    std::deque<Statement> statements{};
    std::deque<HandlerDefinition> handlers{};
    std::deque<ScriptDefinition> scripts{};
    ScriptDefinition* top{nullptr};
    // Each knows its place in this list as its index.
    std::vector<Literal const*> literals{};
};

} // namespace mac::applescript
