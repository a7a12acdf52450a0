#pragma once

#include "platform/applescript/language/ScopeResolution.h"
#include <memory>
#include <optional>

namespace mac::applescript {

// The terms of the application, or null where it is not known: its scripts then have the language's terms alone.
using TerminologySource = Terminology const* (*)(std::u16string_view application);

// Makes a tree of a source. One object parses one source; the first mistake is thrown as a ScriptError with its place.
class ScriptParser {
public:
    ScriptParser(std::u16string_view source, TerminologySource applications);

    std::shared_ptr<SyntaxTree> parse();

private:
    // ScriptParser.cpp: tokens and complaints
    Token const& current() const { return m_tokens[m_place]; }
    Token const& ahead(std::size_t count) const;
    void advance() { m_place += m_place + 1 < m_tokens.size() ? 1 : 0; }
    bool isWord(std::string_view word) const { return current().isWord(word); }
    bool isSymbol(std::string_view symbol) const { return current().isSymbol(symbol); }
    bool isIdentifier(Token const& token) const;
    bool takeWord(std::string_view word);
    bool takeSymbol(std::string_view symbol);
    bool takeWords(std::initializer_list<std::string_view> words);
    bool areWords(std::initializer_list<std::string_view> words) const;
    void expectWord(std::string_view word);
    void expectSymbol(std::string_view symbol);
    [[noreturn]] void expected(std::u16string_view what) const;
    std::u16string describe(std::size_t place) const;
    void expectEndOfStatement(bool mayGoOn);
    void skipLineEnds();
    TermMatch matchTerm() const;
    TermMatch matchTermAt(std::size_t place) const;
    Node& make(NodeKind kind, std::size_t firstToken);
    Node& close(Node& node) const;
    Symbol symbolOfToken(Token const& token);
    Symbol takeIdentifier(std::u16string_view expectation);
    Node& makeVariable(Symbol name, std::size_t firstToken);

    // ParserStatements.cpp
    Node& parseBlock();
    Node* parseStatement();
    Node* parseSimple();
    Node* parseSet();
    Node* parseCopy();
    Node* parseTell();
    Terminology const* termsOfTarget(Node const& target) const;
    Node* parseIf();
    Node* parseReturn();
    Node* parseError();
    Node& parseTarget();
    Node& parsePattern(bool isParameter);
    bool returnIsProperty() const;
    void expectEndOf(std::string_view keyword, std::u16string_view expectation = u"“end”");

    // ParserControl.cpp
    Node* parseRepeat();
    Node* parseTry();
    Node* parseConsidering();
    unsigned parseAttributes();
    Node* parseWith();
    Node* parseUsingTerms();
    Node* parseUse();

    // ParserHandlers.cpp
    void parseScriptBody(ScriptScope& scope, bool isOutermost);
    bool parseDeclaration();
    void parseProperty();
    void declare(bool isGlobal);
    Node* parseScriptObject();
    ScriptDefinition* parseScriptDefinition();
    void parseHandler();
    void parseHandlerHead(HandlerDefinition& handler);
    void parseLabeledParameters(HandlerDefinition& handler);
    void parseCommandParameters(HandlerDefinition& handler);
    void parseGivenParameters(HandlerDefinition& handler);
    BodyScope& openBody(HandlerDefinition& handler, ScriptScope& scope);

    // ParserExpressions.cpp
    Node& parseExpression(int leastPrecedence = 0);
    Node& parseUnary();
    struct Operator {
        Operation operation;
        int precedence;
        std::size_t tokenCount;
    };
    std::optional<Operator> peekOperator() const;
    Node& parseCoercion(Node& operand, std::size_t firstToken);
    Code parseClassName();
    std::vector<Code> parseClassNames();
    Node& parsePrimary();
    Node* parsePrimaryWord();
    Node* parseConstantWord();
    Node& parseParentheses();
    Node& parseBraces();
    bool isRecordKey() const;
    Symbol parseRecordKey();
    Node& parseRaw();

    // ParserReferences.cpp
    Node& parseReference();
    Node& parsePostfix();
    Node& parseAfterPossessive(Node& owner);
    Node& attach(Node& head, Node& container);
    bool isContainerWord() const;
    bool startsIndex() const;
    bool startsExpression() const;
    Node& parseIndexOperand();
    Node* parseOrdinal();
    Node* parseInsertion();
    Node& parseElement(Code classCode, std::size_t firstToken);
    Node& parseTerm(TermMatch const& match);
    Node& parseClassTerm(Term const& term, std::size_t firstToken);
    Node& parseDate(std::size_t firstToken);
    Node& parseApplication();

    // ParserCommands.cpp
    Node& parseCommand(CommandTerm const& command, std::size_t firstToken);
    bool parseCommandParameter(Node& node, CommandTerm const& command);
    void parseBooleanParameters(Node& node, CommandTerm const& command);
    Node* parseEnumerator(std::span<Enumerator const> enumerators);
    void addParameter(Node& node, CommandParameter const& parameter, Node& value) const;
    Node& parseCount();
    std::size_t labelLength(std::u16string_view& label) const;
    bool startsGivenParameters() const;
    bool isStop() const;
    Node& parseIdentifier();
    Node& parseCall(Symbol name, std::size_t firstToken);
    Node& parseLabeledCall(Symbol name, Node* direct, std::size_t firstToken);
    Node& parseInterleavedCall(Symbol first, std::size_t firstToken);
    bool parseLabeledArguments(Node& call);

    std::vector<Token> m_tokens;
    std::size_t m_place{0};
    TerminologySource m_applications;
    std::vector<Terminology const*> m_terms;
    std::shared_ptr<SyntaxTree> m_tree;
    std::deque<ScriptScope> m_scopes;
    std::deque<BodyScope> m_bodies;
    BodyScope* m_body{nullptr};
    std::unordered_map<Symbol, Symbol> m_spellings;
    // Labels that end an expression: those of the commands it is a parameter of.
    std::vector<std::u16string_view> m_stops;
    bool m_labelsAllowed{true};
    bool m_inContainer{false};
    bool m_inHandler{false};
    std::size_t m_repeatDepth{0};
};

} // namespace mac::applescript
