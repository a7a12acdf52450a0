#pragma once

#include "platform/applescript/language/ScopeResolution.h"
#include "platform/applescript/language/ScriptToken.h"
#include "platform/applescript/language/TokenReader.h"
#include <memory>
#include <utility>

namespace mac::applescript {

// Makes the expressions of a source. A mistake is thrown as a SyntaxError with its place.
class ExpressionParser : protected TokenReader {
protected:
    explicit ExpressionParser(std::u16string_view source);

    // ExpressionParser.cpp. What is made reaches from the token at that place up to the last one taken.
    template <class Kind>
    Expression& make(std::size_t firstToken, Kind content);
    SourceRange rangeFrom(std::size_t firstToken) const;
    Expression& close(Expression& expression) const;
    Expression& makeLiteral(std::size_t firstToken, LiteralContent content);
    Expression& makeVariable(Symbol name, std::size_t firstToken);
    Symbol symbolOfToken(Token const& token);
    Symbol takeIdentifier(std::u16string_view expectation);

    Expression& parseExpression(int leastPrecedence = 0);
    // A reference with the signs before it.
    Expression& parseUnary();
    // A part of something, with its containers and a condition.
    Expression& parseReference();
    Expression& parsePrimary();
    std::vector<Code> parseClassNames();
    // Whether a key and a colon stand here.
    bool isRecordKey() const;
    Symbol parseRecordKey();
    // Whether an expression may begin here.
    bool startsExpression() const;
    // The command of «event sysoexec». Null where another token stands.
    CommandTerm const* rawCommandHere() const;
    // How many tokens a label has that names a parameter; 0 if no label follows, or labels end an outer expression.
    std::size_t labelLength(std::u16string_view& label) const;

    std::shared_ptr<SyntaxTree> m_tree;
    // The body whose names are collected: a handler, or the statements outside of handlers.
    BodyScope* m_body{nullptr};
    bool m_labelsAllowed{true};

private:
    // ParserExpressions.cpp
    Expression& makeOperation(Operation operation, Expression& left, Expression* right, std::size_t firstToken);
    struct Operator {
        Operation operation;
        int precedence;
        std::size_t tokenCount;
    };
    std::optional<Operator> peekOperator() const;
    Code parseClassName();
    Expression* parsePrimaryWord();
    Expression* parseConstantWord();
    Expression& parseParentheses();

    // ParserBraces.cpp
    Expression& parseBraces();
    RecordExpression parseRecordFields();
    ListExpression parseListItems();

    // ParserReferences.cpp
    Expression& parsePostfix();
    Expression& parseAfterPossessive(Expression& owner);
    Expression* parseOwnedEnd();
    Expression& attach(Expression& head, Expression& container);
    Expression* attached(Expression& head, Expression& container);
    bool isContainerWord() const;
    bool startsIndex() const;
    Expression& parseIndexOperand();
    Expression* parseOrdinal();
    Expression* parseInsertion();
    Expression& parseTerm(TermMatch const& match);
    Expression& parseClassTerm(Term const& term, std::size_t firstToken);
    Expression& parseElementOfClass(Term const& term, std::size_t firstToken);
    Expression& parseDate(std::size_t firstToken);
    Expression& parseApplication();

    // ParserRawCodes.cpp
    Expression& parseRaw();
    Expression& parseRawClass(Code code, std::size_t firstToken);
    bool parseRawParameters(CommandCall& call);

    // ParserCommands.cpp
    Expression& parseCommand(CommandTerm const& command, std::size_t firstToken);
    bool parseCommandParameter(CommandCall& call);
    Expression& parseParameterValue(CommandParameter const& parameter);
    void parseBooleanParameters(CommandCall& call);
    Expression* parseEnumerator(std::span<Enumerator const> enumerators);
    void addParameter(CommandCall& call, CommandParameter const& parameter, Expression& value) const;
    Expression& parseCount();

    // ParserCalls.cpp
    bool startsGivenParameters() const;
    Expression& parseIdentifier();
    Expression& parseCall(Symbol name, std::size_t firstToken);
    Expression& parseLabeledCall(Symbol name, Expression* direct, std::size_t firstToken);
    Expression& parseInterleavedCall(Symbol first, std::size_t firstToken);
    bool parseLabeledArguments(LabeledCall& call);

    // The spelling of each name that was seen first.
    std::unordered_map<Symbol, Symbol> m_spellings;
    bool m_inContainer{false};
};

template <class Kind>
Expression& ExpressionParser::make(std::size_t firstToken, Kind content) {
    return m_tree->expressions.emplace_back(Expression{.range = rangeFrom(firstToken), .content = std::move(content)});
}

} // namespace mac::applescript
