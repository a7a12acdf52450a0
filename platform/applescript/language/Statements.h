#pragma once

#include "platform/applescript/language/Expressions.h"
#include <optional>

namespace mac::applescript {

struct Statement;

// The kinds of statements. A pointer is null where the source says nothing; a block is a statement of kind Block, or
// the one statement that stands on the same line.

struct Block {
    std::vector<Statement*> statements{};
};
struct ExpressionStatement {
    Expression* expression{nullptr};
};
struct SetStatement {
    Expression* target{nullptr};
    Expression* value{nullptr};
};
struct CopyStatement {
    Expression* target{nullptr};
    Expression* value{nullptr};
};
struct IfStatement {
    struct Branch {
        Expression* condition{nullptr};
        Statement* block{nullptr};
    };
    // In turn, until the condition of one is true.
    std::vector<Branch> branches{};
    Statement* elseBlock{nullptr};
};
struct RepeatForever {
    Statement* block{nullptr};
};
struct RepeatTimes {
    Expression* count{nullptr};
    Statement* block{nullptr};
};
// Repeats as long as the condition has that value.
struct RepeatCondition {
    Expression* condition{nullptr};
    bool goesOnWhile{true};
    Statement* block{nullptr};
};
struct RepeatFrom {
    Expression* variable{nullptr};
    Expression* from{nullptr};
    Expression* to{nullptr};
    Expression* step{nullptr};
    Statement* block{nullptr};
};
struct RepeatIn {
    Expression* variable{nullptr};
    Expression* list{nullptr};
    Statement* block{nullptr};
};
struct TellStatement {
    Expression* target{nullptr};
    Statement* block{nullptr};
};
struct TryStatement {
    Statement* block{nullptr};
    // Null without `on error`.
    Statement* errorBlock{nullptr};
    // Only errors of this number are handled.
    std::optional<std::int32_t> handledNumber{};
    // The variables of the error block.
    Expression* message{nullptr};
    Expression* number{nullptr};
    Expression* from{nullptr};
    Expression* to{nullptr};
    Expression* partialResult{nullptr};
};
// Bits of Considerations.
struct ConsideringStatement {
    unsigned considered{0};
    unsigned ignored{0};
    Statement* block{nullptr};
};
struct TimeoutStatement {
    Expression* seconds{nullptr};
    Statement* block{nullptr};
};
struct TransactionStatement {
    Expression* session{nullptr};
    Statement* block{nullptr};
};
struct ReturnStatement {
    Expression* value{nullptr};
};
struct ExitStatement {};
struct ErrorStatement {
    Expression* message{nullptr};
    Expression* number{nullptr};
    Expression* from{nullptr};
    Expression* to{nullptr};
    Expression* partialResult{nullptr};
};
// A script object where it is made, and the variable of its name.
struct ScriptStatement {
    Expression* script{nullptr};
    Expression* variable{nullptr};
};
// Needs something that is not there.
struct UnavailableStatement {
    Expression* needed{nullptr};
};
struct EmptyStatement {};

struct Statement {
    SourceRange range{};
    std::variant<ExpressionStatement, SetStatement, CopyStatement, IfStatement, Block, RepeatForever, RepeatTimes,
                 RepeatCondition, RepeatFrom, RepeatIn, TellStatement, TryStatement, ConsideringStatement,
                 TimeoutStatement, TransactionStatement, ReturnStatement, ExitStatement, ErrorStatement,
                 ScriptStatement, UnavailableStatement, EmptyStatement>
        content{};

    // The content as one of that kind; null where it is of another.
    template <class Kind>
    Kind const* as() const {
        return std::get_if<Kind>(&content);
    }
};

} // namespace mac::applescript
