#pragma once

#include "platform/applescript/language/ScopeResolution.h"
#include "platform/applescript/language/SyntaxError.h"
#include "platform/applescript/language/TokenReader.h"
#include <memory>
#include <utility>

namespace mac::applescript {

// The terms of the application, or null where it is not known: its scripts then have the language's terms alone.
using TerminologySource = Terminology const* (*)(std::u16string_view application);

// Makes a tree of a source. One object parses one source; the first mistake is thrown as a SyntaxError with its place.
class ScriptParser : private TokenReader {
public:
    ScriptParser(std::u16string_view source, TerminologySource applications);

    std::shared_ptr<SyntaxTree> parse();

private:
    // ScriptParser.cpp. What is made reaches from the token at that place up to the last one taken.
    template <class Kind>
    Expression& make(std::size_t firstToken, Kind content);
    template <class Kind>
    Statement* makeStatement(std::size_t firstToken, Kind content);
    SourceRange rangeFrom(std::size_t firstToken) const;
    Expression& close(Expression& expression) const;
    Expression& makeLiteral(std::size_t firstToken, LiteralContent content);
    Expression& makeVariable(Symbol name, std::size_t firstToken);
    Symbol symbolOfToken(Token const& token);
    Symbol takeIdentifier(std::u16string_view expectation);

    // ParserStatements.cpp
    Statement* parseBlock();
    Statement* parseStatement();
    Statement* parseSimple();
    Statement* parseSet();
    Statement* parseCopy();
    Statement* parseTell();
    Terminology const* termsOfTarget(Expression const& target) const;
    Statement* parseIf();
    Statement* parseBranch();
    Statement* parseReturn();
    Statement* parseError();
    Expression& parseTarget();
    Expression& parseTargetPattern();
    bool returnIsProperty() const;
    void expectEndOf(std::string_view keyword, std::u16string_view expectation = u"“end”");

    // ParserControl.cpp
    Statement* parseRepeat();
    Statement* parseLoopBlock();
    Expression& parseInHead();
    Statement* parseRepeatWith(std::size_t firstToken);
    Expression& parseLoopVariable();
    Statement* parseTry();
    void parseErrorVariables(TryStatement& statement);
    std::int32_t parseErrorNumber();
    Statement* parseConsidering();
    unsigned parseAttributes();
    Statement* parseTimeout();
    Statement* parseTransaction();
    Statement* parseUsingTerms();
    Statement* parseUse();

    // ParserScripts.cpp
    void parseScriptBody(ScriptScope& scope, bool isOutermost);
    bool parseDeclaration();
    void parseProperty();
    void declare(bool isGlobal);
    Statement* parseScriptObject();
    ScriptDefinition* parseScriptDefinition();
    BodyScope& openBody(HandlerDefinition& handler, ScriptScope& scope);

    // ParserHandlers.cpp
    void parseHandler();
    void parseHandlerHead(HandlerDefinition& handler);
    void parsePositionalParameters(HandlerDefinition& handler);
    void parseInterleavedParameters(HandlerDefinition& handler);
    void parseLabeledParameters(HandlerDefinition& handler);
    void parseCommandParameters(HandlerDefinition& handler);
    void parseGivenParameters(HandlerDefinition& handler);
    Parameter parseParameter();
    Parameter parseParameterPattern();
    NamedParameter parseNamedParameter();

    // ParserExpressions.cpp
    Expression& parseExpression(int leastPrecedence = 0);
    Expression& makeOperation(Operation operation, Expression& left, Expression* right, std::size_t firstToken);
    Expression& parseUnary();
    struct Operator {
        Operation operation;
        int precedence;
        std::size_t tokenCount;
    };
    std::optional<Operator> peekOperator() const;
    Code parseClassName();
    std::vector<Code> parseClassNames();
    Expression& parsePrimary();
    Expression* parsePrimaryWord();
    Expression* parseConstantWord();
    Expression& parseParentheses();
    Expression& parseBraces();
    RecordExpression parseRecordFields();
    ListExpression parseListItems();
    bool isRecordKey() const;
    Symbol parseRecordKey();

    // ParserReferences.cpp
    Expression& parseReference();
    Expression& parsePostfix();
    Expression& parseAfterPossessive(Expression& owner);
    Expression* parseOwnedEnd();
    Expression& attach(Expression& head, Expression& container);
    Expression* attached(Expression& head, Expression& container);
    bool isContainerWord() const;
    bool startsIndex() const;
    bool startsExpression() const;
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
    CommandTerm const* rawCommandHere() const;
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
    std::size_t labelLength(std::u16string_view& label) const;
    bool startsGivenParameters() const;
    Expression& parseIdentifier();
    Expression& parseCall(Symbol name, std::size_t firstToken);
    Expression& parseLabeledCall(Symbol name, Expression* direct, std::size_t firstToken);
    Expression& parseInterleavedCall(Symbol first, std::size_t firstToken);
    bool parseLabeledArguments(LabeledCall& call);

    TerminologySource m_applications;
    std::shared_ptr<SyntaxTree> m_tree;
    std::deque<ScriptScope> m_scopes;
    std::deque<BodyScope> m_bodies;
    BodyScope* m_body{nullptr};
    std::unordered_map<Symbol, Symbol> m_spellings;
    bool m_labelsAllowed{true};
    bool m_inContainer{false};
    bool m_inHandler{false};
    std::size_t m_repeatDepth{0};
};

template <class Kind>
Expression& ScriptParser::make(std::size_t firstToken, Kind content) {
    return m_tree->expressions.emplace_back(Expression{.range = rangeFrom(firstToken), .content = std::move(content)});
}

template <class Kind>
Statement* ScriptParser::makeStatement(std::size_t firstToken, Kind content) {
    return &m_tree->statements.emplace_back(Statement{.range = rangeFrom(firstToken), .content = std::move(content)});
}

} // namespace mac::applescript
