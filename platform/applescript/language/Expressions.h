#pragma once

#include "platform/applescript/language/Literal.h"
#include "platform/applescript/language/ScriptToken.h"
#include "platform/applescript/language/Terminology.h"
#include <vector>

namespace mac::applescript {

struct Expression;
struct ScriptDefinition;

// Where a variable lies while its script runs; found out once, when the whole script is parsed.
struct Place {
    enum class Kind : std::uint8_t { None, Local, TopLevel, Property };
    Kind kind{Kind::None};
    // How many scripts further out the script of a property lies.
    std::uint16_t depth{0};
    std::uint32_t index{0};
};

// The kinds of expressions. A pointer is null where the source says nothing.

struct Literal {
    LiteralContent content{};
    // Its place among the literals of the tree.
    std::uint32_t index{0};
};
struct ItReference {};
struct MeReference {};
struct ResultReference {};
struct VariableReference {
    Symbol name{nullptr};
    Place place{};
};
// Without a container: a property of what `it` is.
struct PropertyReference {
    Symbol name{nullptr};
    Expression* container{nullptr};
    // The command that asks for what the name says; null if no command asks for it.
    CommandTerm const* getter{nullptr};
    // By a term of the application that is told: never a variable.
    bool isOfApplication{false};
};
// Elements of the class in a container; without one, in what `it` is. The place before or after something has that as
// its container.
struct ElementReference {
    Code elementClass{0};
    Form form{Form::Property};
    // The index, name or identifier; a range begins with it.
    Expression* selector{nullptr};
    Expression* rangeEnd{nullptr};
    Expression* container{nullptr};
};
struct FilterReference {
    Expression* filtered{nullptr};
    Expression* condition{nullptr};
};
struct ListExpression {
    std::vector<Expression*> items{};
};
struct RecordField {
    Symbol key{nullptr};
    Expression* value{nullptr};
};
struct RecordExpression {
    std::vector<RecordField> fields{};
};
// Not, Negate, Plus.
struct UnaryOperation {
    Operation operation{Operation::Not};
    Expression* operand{nullptr};
};
// Every operation of two operands that always evaluates both.
struct BinaryOperation {
    Operation operation{Operation::Add};
    Expression* left{nullptr};
    Expression* right{nullptr};
};
// And, Or: the right operand only where the left one does not decide.
struct LogicalOperation {
    Operation operation{Operation::And};
    Expression* left{nullptr};
    Expression* right{nullptr};
};
// Running, NotRunning.
struct RunningTest {
    Operation operation{Operation::Running};
    Expression* application{nullptr};
};
// The operand as the first of the classes that it can be made one of.
struct CoercionExpression {
    Expression* operand{nullptr};
    std::vector<Code> classes{};
};
// a reference to x
struct ReferenceToExpression {
    Expression* target{nullptr};
};
// name(arguments), sent to the receiver, else to `it`.
struct PositionalCall {
    Symbol name{nullptr};
    Expression* receiver{nullptr};
    std::vector<Expression*> arguments{};
};
struct LabeledArgument {
    Symbol label{nullptr};
    Expression* value{nullptr};
};
struct LabeledCall {
    Symbol name{nullptr};
    Expression* receiver{nullptr};
    Expression* direct{nullptr};
    std::vector<LabeledArgument> arguments{};
};
struct CommandArgument {
    Code code{0};
    Expression* value{nullptr};
};
struct CommandCall {
    CommandTerm const* command{nullptr};
    Expression* direct{nullptr};
    std::vector<CommandArgument> arguments{};
};
// Without a class: the items.
struct CountExpression {
    Expression* counted{nullptr};
    Code elementClass{0};
};
struct ApplicationReference {
    enum class Naming : std::uint8_t { Name, Identifier };
    Expression* name{nullptr};
    Naming naming{Naming::Name};
};
// What the text leaves out comes from the day, else from today.
struct DateExpression {
    Expression* text{nullptr};
    Expression* day{nullptr};
};
struct FileReference {
    Code fileClass{0};
    Expression* path{nullptr};
};
// Hands the call on to the parent.
struct ContinueExpression {
    Expression* call{nullptr};
};
struct ScriptExpression {
    ScriptDefinition* definition{nullptr};
};
// A kind of its own, so that what follows does not reach inside.
struct Parentheses {
    Expression* inner{nullptr};
};

struct Expression {
    SourceRange range{};
    std::variant<Literal, VariableReference, BinaryOperation, ElementReference, Parentheses, PropertyReference,
                 ItReference, MeReference, ResultReference, FilterReference, ListExpression, RecordExpression,
                 UnaryOperation, LogicalOperation, RunningTest, CoercionExpression, ReferenceToExpression,
                 PositionalCall, LabeledCall, CommandCall, CountExpression, ApplicationReference, DateExpression,
                 FileReference, ContinueExpression, ScriptExpression>
        content{};

    // The content as one of that kind; null where it is of another.
    template <class Kind>
    Kind* as() {
        return std::get_if<Kind>(&content);
    }
    template <class Kind>
    Kind const* as() const {
        return std::get_if<Kind>(&content);
    }
    template <class Kind>
    bool is() const {
        return std::holds_alternative<Kind>(content);
    }
};

// What stands inside parentheses, however many; any other expression itself.
inline Expression const& unparenthesized(Expression const& expression) {
    Expression const* inner = &expression;
    while (Parentheses const* const parentheses = inner->as<Parentheses>())
        inner = parentheses->inner;
    return *inner;
}

} // namespace mac::applescript
