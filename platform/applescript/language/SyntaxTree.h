#pragma once

#include "platform/applescript/language/NameIndex.h"
#include "platform/applescript/language/Terminology.h"
#include <deque>

namespace mac::applescript {

struct HandlerDefinition;
struct ScriptDefinition;

// What a node is, and what its fields mean: a, b, c are nodes, null where the source says nothing.
enum class NodeKind : std::uint8_t {
    // value
    Literal,
    It,
    Me,
    Result,
    // name, place; of a parameter also the classes it takes in codes, and in b what it is when the call leaves it out
    Variable,
    // name; a container. Without a container the property of what `it` is, or a variable of a term's name.
    Property,
    // code is the class of the element, form how it is chosen: b by index, name or id, or from b to c; a container.
    Element,
    // list
    List,
    // names, list
    Record,
    // operation, a, b
    Unary,
    Binary,
    // a as one of codes
    Coercion,
    // a
    ReferenceTo,
    // a whose b
    Filter,
    // name (list), sent to a
    Call,
    // name of b, names and list the labeled parameters, sent to a
    LabeledCall,
    // command, direct parameter a, codes and list the others
    Command,
    // a, each code
    Count,
    // a; code 'ID  ' by identifier
    Application,
    // a; b what the missing parts come from
    Date,
    // code the kind of file, a
    File,
    // a is the call to hand on
    Continue,
    // definition
    Script,

    // Statements. a
    Expression,
    // a target, b value
    Set,
    Copy,
    // list of conditions and blocks in turn; a last block without condition
    If,
    // b the block; a count or condition
    Repeat,
    RepeatTimes,
    RepeatWhile,
    RepeatUntil,
    // name of variable in c; list from, to, by; b the block
    RepeatFrom,
    // c the variable, a the list, b the block
    RepeatIn,
    // a, block b
    Tell,
    // a the block, b the block on error; list the variables of message, number, from, to, partial result, each or null
    Try,
    // operation: 1 consider, 0 ignore; considered and ignored attributes; block b
    Considering,
    // b, time or transaction a
    Timeout,
    // a
    Return,
    Exit,
    // list of message, number, from, to, partial result, each or null
    Error,
    // list
    Block,
    // c the variable, definition
    ScriptStatement,
    // What needs something that is not there: a
    Unavailable,
    Nothing,
};

enum class Operation : std::uint8_t {
    Add,
    Subtract,
    Multiply,
    Divide,
    IntegerDivide,
    Modulo,
    Power,
    Concatenate,
    Equal,
    NotEqual,
    Less,
    Greater,
    AtMost,
    AtLeast,
    Contains,
    DoesNotContain,
    IsIn,
    IsNotIn,
    StartsWith,
    EndsWith,
    // The parser makes them `not` of the two before.
    DoesNotStartWith,
    DoesNotEndWith,
    And,
    Or,
    Not,
    Negate,
    Plus,
    As,
    Running,
    NotRunning,
};

// How an element is chosen.
enum class Form : std::uint8_t {
    Property,
    Index,
    Name,
    Identifier,
    Range,
    Every,
    Some,
    Middle,
    Last,
    Filter,
    Beginning,
    End,
    Before,
    After,
};

// Where the evaluator finds a variable; found out once, when the whole script is parsed.
struct Place {
    enum class Kind : std::uint8_t { None, Local, TopLevel, Property };
    Kind kind{Kind::None};
    // Of a property: how many scripts further out its script lies.
    std::uint16_t depth{0};
    std::uint32_t index{0};
};

// Bits of what a comparison may leave out.
struct Considerations {
    static constexpr unsigned Case = 1;
    static constexpr unsigned Diacriticals = 2;
    static constexpr unsigned Hyphens = 4;
    static constexpr unsigned Punctuation = 8;
    static constexpr unsigned WhiteSpace = 16;
    static constexpr unsigned Expansion = 32;
    static constexpr unsigned NumericStrings = 64;
    // Case and numeric strings are ignored until a script says otherwise.
    static constexpr unsigned Standard = Diacriticals | Hyphens | Punctuation | WhiteSpace | Expansion;
};

struct Node {
    NodeKind kind{NodeKind::Nothing};
    Operation operation{Operation::Add};
    Form form{Form::Property};
    Place place{};
    SourceRange range{};
    Code code{0};
    unsigned considered{0};
    unsigned ignored{0};
    Symbol name{nullptr};
    Value value{};
    Node* a{nullptr};
    Node* b{nullptr};
    Node* c{nullptr};
    std::vector<Node*> list{};
    std::vector<Symbol> names{};
    std::vector<Code> codes{};
    CommandTerm const* command{nullptr};
    ScriptDefinition* definition{nullptr};
    // A property by a term of the application that is told: never a variable.
    bool isOfApplication{false};
};

struct HandlerDefinition {
    Symbol name{nullptr};
    // The parameters in order; a pattern is a Variable, a List or a Record of patterns.
    std::vector<Node*> positional{};
    Node* direct{nullptr};
    std::vector<std::pair<Symbol, Node*>> labeled{};
    // For a handler of a command: the codes of its parameters beside those of `labeled`.
    CommandTerm const* command{nullptr};
    bool isPositional{false};
    Node* block{nullptr};
    std::uint32_t localCount{0};
};

struct ScriptDefinition {
    Symbol name{nullptr};
    // Each index tells the place of a name in the list before it.
    std::vector<std::pair<Symbol, Node*>> properties{};
    NameIndex propertyPlaces{};
    std::vector<HandlerDefinition*> handlers{};
    NameIndex handlerPlaces{};
    // The handlers that commands call.
    std::vector<HandlerDefinition*> commandHandlers{};
    HandlerDefinition* run{nullptr};
    bool hasRunHandler{false};
    // Of the outermost script only: the variables that its statements and handlers' globals share.
    std::vector<Symbol> variables{};
    NameIndex variablePlaces{};
    // What stands in the source between `script` with its name and `end script`; all of it for the outermost.
    SourceRange body{};
};

// A parsed script. Owns every node; shared by the scripts made of it. Node addresses stay.
struct SyntaxTree {
    std::u16string source{};
    std::deque<Node> nodes{};
    std::deque<HandlerDefinition> handlers{};
    std::deque<ScriptDefinition> scripts{};
    ScriptDefinition* top{nullptr};
};

} // namespace mac::applescript
