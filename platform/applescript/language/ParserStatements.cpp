#include "platform/applescript/language/ScriptParser.h"
#include "platform/applescript/language/StackRoom.h"
#include "platform/applescript/runtime/HeapObjects.h"

namespace mac::applescript {

// Up to `end`, `else` or `on error`, or the end of the script.
Node& ScriptParser::parseBlock() {
    requireStackRoom();
    Node& block = make(NodeKind::Block, m_place);
    while (true) {
        skipLineEnds();
        if (current().kind == TokenKind::EndOfScript || isWord("else")) break;
        bool const isEnd = isWord("end") && !ahead(1).isWord("of") && !ahead(1).isWord("in");
        if (isEnd || areWords({"on", "error"})) break;
        if (parseDeclaration()) continue;
        if (Node* const statement = parseStatement()) block.list.push_back(statement);
        if (isWord("else")) break;
        expectEndOfStatement(true);
    }
    return close(block);
}

void ScriptParser::expectEndOf(std::string_view keyword, std::u16string_view expectation) {
    if (!isWord("end")) expected(expectation);
    advance();
    if (current().endsStatement()) return;
    std::u16string const name(keyword.begin(), keyword.end());
    if (!takeWord(keyword)) expected(u"“" + name + u"”, etc.");
    expectEndOfStatement(false);
}

Node* ScriptParser::parseStatement() {
    requireStackRoom();
    if (isWord("if")) return parseIf();
    if (isWord("tell")) return parseTell();
    if (isWord("repeat")) return parseRepeat();
    if (isWord("try")) return parseTry();
    if (isWord("considering") || isWord("ignoring")) return parseConsidering();
    if (areWords({"with", "timeout"}) || areWords({"with", "transaction"})) return parseWith();
    if (areWords({"using", "terms", "from"})) return parseUsingTerms();
    if (isWord("use") && (ahead(1).kind == TokenKind::Word || ahead(1).kind == TokenKind::Text)) return parseUse();
    bool const opensScript = isWord("script") && (ahead(1).endsStatement() || isIdentifier(ahead(1)));
    if (opensScript) return parseScriptObject();
    return parseSimple();
}

Node* ScriptParser::parseSimple() {
    std::size_t const first = m_place;
    bool const isCommand = matchTerm().term && matchTerm().term->command && matchTerm().tokenCount > 1;
    if (!isCommand) {
        if (isWord("if")) return parseIf();
        if (isWord("tell")) return parseTell();
        if (isWord("set")) return parseSet();
        if (isWord("copy") || isWord("put")) return parseCopy();
        if (isWord("return") && !returnIsProperty()) return parseReturn();
        if (isWord("error")) return parseError();
        if (takeWord("exit")) {
            takeWord("repeat");
            if (m_repeatDepth == 0)
                throw syntaxError(errors::ExitOutsideRepeat, messageOfNumber(errors::ExitOutsideRepeat),
                                  m_tokens[first].range);
            return &make(NodeKind::Exit, first);
        }
        if (takeWord("get")) {
            // A statement of its own, so that its value is one.
        }
    }
    Node& expression = parseExpression();
    if (takeWord("exists")) {
        Node& node = make(NodeKind::Command, first);
        node.command = Terminology::base().commandOf(eventOf("coredoex"));
        node.a = &expression;
        return &node;
    }
    Node& node = make(NodeKind::Expression, first);
    node.a = &expression;
    return &node;
}

// `return & "a"` at the start of a line is text.
bool ScriptParser::returnIsProperty() const {
    Token const& next = ahead(1);
    return next.kind == TokenKind::Mark && next.word != "(" && next.word != "{" && next.word != "-";
}

Node& ScriptParser::parsePattern(bool isParameter) {
    requireStackRoom();
    std::size_t const first = m_place;
    if (!takeSymbol("{")) {
        if (!isParameter) {
            bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
            Node& target = parseReference();
            m_labelsAllowed = labelsAllowed;
            return target;
        }
        // A name of a term may be a parameter: nothing else is meant there.
        bool const isTerm = current().kind == TokenKind::Word && !isReservedWord(current().word);
        if (!isTerm && !isIdentifier(current()))
            expected(u"variable name, class name, other parameter name or property");
        Term const* const term = current().kind == TokenKind::Word ? matchTerm().term : nullptr;
        Symbol const name =
            term && term->propertyCode != 0 ? termSymbol(term->propertyCode, term->name) : symbolOfToken(current());
        advance();
        m_body->locals.push_back(name);
        Node& variable = makeVariable(name, first);
        if (takeWord("as")) variable.codes = parseClassNames();
        if (takeSymbol(":")) variable.b = &parseUnary();
        return variable;
    }
    Node& node = make(NodeKind::List, first);
    while (!isSymbol("}")) {
        if (isRecordKey()) {
            node.kind = NodeKind::Record;
            node.names.push_back(parseRecordKey());
            expectSymbol(":");
        }
        node.list.push_back(&parsePattern(isParameter));
        if (!takeSymbol(",")) break;
    }
    expectSymbol("}");
    return close(node);
}

Node& ScriptParser::parseTarget() {
    Node& target = parsePattern(false);
    bool const isTermVariable = target.kind == NodeKind::Property && !target.a && !target.isOfApplication;
    // Only the additions' names and such: the language's own properties stay what they are.
    if (isTermVariable && target.name->code != codeOf("txdl")) m_body->assignedTerms.push_back(target.name);
    return target;
}

Node* ScriptParser::parseSet() {
    std::size_t const first = m_place;
    advance();
    Node& target = parseTarget();
    expectWord("to");
    Node& value = parseExpression();
    Node& node = make(NodeKind::Set, first);
    node.a = &target;
    node.b = &value;
    return &node;
}

Node* ScriptParser::parseCopy() {
    std::size_t const first = m_place;
    advance();
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    Node& value = parseExpression();
    m_labelsAllowed = labelsAllowed;
    if (!takeWord("to") && !takeWord("into")) expected(u"“to”");
    // The end of a list, without saying whose: of what `it` is.
    bool const isBareEnd = (isWord("end") || isWord("beginning")) && ahead(1).endsStatement();
    Node* target = nullptr;
    if (isBareEnd) {
        target = &parseElement(codeOf("insl"), m_place);
        target->form = isWord("end") ? Form::End : Form::Beginning;
        advance();
    } else {
        target = &parseTarget();
    }
    Node& node = make(NodeKind::Copy, first);
    node.a = target;
    node.b = &value;
    return &node;
}

// The terms of the application that the object lies in, where the source names it.
Terminology const* ScriptParser::termsOfTarget(Node const& target) const {
    Node const* application = &target;
    while (application && application->kind != NodeKind::Application)
        application = application->a;
    bool const isNamed = application && application->a->value.is(ValueKind::Text);
    return isNamed && m_applications ? m_applications(application->a->value.units()) : nullptr;
}

Node* ScriptParser::parseTell() {
    std::size_t const first = m_place;
    advance();
    Node& target = parseExpression();
    Terminology const* const terms = termsOfTarget(target);
    if (terms) m_terms.push_back(terms);
    Node* block = nullptr;
    if (takeWord("to")) {
        block = parseStatement();
    } else {
        expectEndOfStatement(true);
        block = &parseBlock();
        expectEndOf("tell");
    }
    if (terms) m_terms.pop_back();
    Node& node = make(NodeKind::Tell, first);
    node.a = &target;
    node.b = block;
    return &node;
}

Node* ScriptParser::parseIf() {
    std::size_t const first = m_place;
    Node& node = make(NodeKind::If, first);
    advance();
    node.list.push_back(&parseExpression());
    bool const saysThen = takeWord("then");
    if (saysThen && !current().endsStatement()) {
        node.list.push_back(parseStatement());
        if (!takeWord("else")) return &close(node);
        node.list.push_back(parseStatement());
        return &close(node);
    }
    if (!saysThen && !current().endsStatement()) expected(u"“then”, etc.");
    node.list.push_back(&parseBlock());
    while (takeWord("else")) {
        if (!takeWord("if")) {
            node.list.push_back(current().endsStatement() ? &parseBlock() : parseStatement());
            skipLineEnds();
            break;
        }
        node.list.push_back(&parseExpression());
        takeWord("then");
        node.list.push_back(current().endsStatement() ? &parseBlock() : parseStatement());
        skipLineEnds();
    }
    expectEndOf("if", u"“else”, etc.");
    return &close(node);
}

Node* ScriptParser::parseReturn() {
    std::size_t const first = m_place;
    advance();
    Node* value = nullptr;
    if (!current().endsStatement() && !isWord("else")) value = &parseExpression();
    Node& node = make(NodeKind::Return, first);
    node.a = value;
    return &node;
}

Node* ScriptParser::parseError() {
    std::size_t const first = m_place;
    advance();
    Node& node = make(NodeKind::Error, first);
    node.list.assign(5, nullptr);
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    std::size_t const outerStops = m_stops.size();
    for (std::u16string_view const stop : {u"number", u"from", u"to", u"partial result"})
        m_stops.push_back(stop);
    if (startsExpression()) node.list[0] = &parseExpression();
    while (true) {
        std::size_t index = 0;
        if (takeWord("number"))
            index = 1;
        else if (takeWord("from"))
            index = 2;
        else if (takeWord("to"))
            index = 3;
        else if (takeWords({"partial", "result"}))
            index = 4;
        else
            break;
        node.list[index] = &parseExpression();
    }
    m_stops.resize(outerStops);
    m_labelsAllowed = labelsAllowed;
    return &close(node);
}

} // namespace mac::applescript
