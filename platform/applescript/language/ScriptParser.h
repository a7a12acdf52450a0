#pragma once

#include "platform/applescript/language/ExpressionParser.h"
#include "platform/applescript/language/ScopeResolution.h"

namespace mac::applescript {

// The terms of the application, or null where it is not known: its scripts then have the language's terms alone.
using TerminologySource = Terminology const* (*)(std::u16string_view application);

// Makes a tree of a source. One object parses one source; the first mistake is thrown as a SyntaxError with its place.
class ScriptParser : private ExpressionParser {
public:
    ScriptParser(std::u16string_view source, TerminologySource applications);

    std::shared_ptr<SyntaxTree> parse();

private:
    template <class Kind>
    Statement* makeStatement(std::size_t firstToken, Kind content);

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

    TerminologySource m_applications;
    std::deque<ScriptScope> m_scopes;
    std::deque<BodyScope> m_bodies;
    bool m_inHandler{false};
    std::size_t m_repeatDepth{0};
};

template <class Kind>
Statement* ScriptParser::makeStatement(std::size_t firstToken, Kind content) {
    return &m_tree->statements.emplace_back(Statement{.range = rangeFrom(firstToken), .content = std::move(content)});
}

} // namespace mac::applescript
