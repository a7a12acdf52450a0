#include "platform/applescript/language/ScriptParser.h"
#include "platform/applescript/language/StackRoom.h"
#include <algorithm>

namespace mac::applescript {

namespace {

constexpr std::u16string_view Twice = u" is specified more than once.";

} // namespace

BodyScope& ScriptParser::openBody(HandlerDefinition& handler, ScriptScope& scope) {
    BodyScope& body = m_bodies.emplace_back();
    body.handler = &handler;
    body.script = &scope;
    return body;
}

// Declarations and statements up to `end` or the end of the source. The statements are the script's run handler.
void ScriptParser::parseScriptBody(ScriptScope& scope, bool isOutermost) {
    ScriptDefinition& definition = *scope.definition;
    HandlerDefinition& run = m_tree->handlers.emplace_back();
    definition.run = &run;
    run.name = identifierSymbol(u"run");
    BodyScope* const outerBody = m_body;
    bool const wasInHandler = std::exchange(m_inHandler, false);
    std::size_t const repeatDepth = std::exchange(m_repeatDepth, 0);
    BodyScope& body = openBody(run, scope);
    body.isTopLevel = isOutermost;
    body.outer = outerBody;
    m_body = &body;
    run.block = &parseBlock();
    m_body = outerBody;
    m_inHandler = wasInHandler;
    m_repeatDepth = repeatDepth;
    auto const explicitRun = std::ranges::find_if(definition.handlers, [](HandlerDefinition const* handler) {
        return handler->command && handler->command->code == eventOf("aevtoapp");
    });
    if (explicitRun == definition.handlers.end()) return;
    bool const hasStatements = std::ranges::any_of(
        run.block->list, [](Node const* statement) { return statement->kind != NodeKind::Nothing; });
    if (hasStatements)
        throw syntaxError(errors::RunHandlerTwice, messageOfNumber(errors::RunHandlerTwice),
                          run.block->list.front()->range);
    definition.run = *explicitRun;
    definition.hasRunHandler = true;
}

// Handles what is no statement; answers whether there was something.
bool ScriptParser::parseDeclaration() {
    bool const isScriptLevel = !m_inHandler;
    bool const isProperty = isWord("property") || isWord("prop");
    if (isProperty && isScriptLevel) {
        parseProperty();
        return true;
    }
    if (isWord("global") || isWord("local")) {
        declare(isWord("global"));
        return true;
    }
    bool const isHandler = isWord("on") || isWord("to");
    if (!isHandler || !isScriptLevel) return false;
    parseHandler();
    return true;
}

void ScriptParser::parseProperty() {
    std::size_t const first = m_place;
    advance();
    ScriptDefinition& definition = *m_body->script->definition;
    Symbol name = nullptr;
    if (isRecordKey())
        name = parseRecordKey();
    else
        name = takeIdentifier(u"variable name or property");
    if (definition.propertyPlaces.contains(name))
        throw syntaxError(errors::PropertyTwice, u"The " + name->spelling + u" property" + std::u16string(Twice),
                          m_tokens[first + 1].range);
    expectSymbol(":");
    // Evaluated where the script object is made: in the body around it.
    definition.propertyPlaces.add(name);
    definition.properties.emplace_back(name, nullptr);
    std::size_t const index = definition.properties.size() - 1;
    ScriptScope* const script = m_body->script;
    BodyScope* const body = m_body;
    if (body->outer) m_body = body->outer;
    std::size_t const firstName = m_body->names.size();
    definition.properties[index].second = &parseExpression();
    m_body->initials.push_back({.first = firstName, .end = m_body->names.size(), .script = script});
    m_body = body;
    expectEndOfStatement(true);
}

void ScriptParser::declare(bool isGlobal) {
    advance();
    do {
        std::size_t const place = m_place;
        Symbol const name = takeIdentifier(u"variable name or property");
        if ((isGlobal ? m_body->locals : m_body->globals).contains(name))
            throw syntaxError(errors::LocalAndGlobal,
                              u"Can’t declare " + name->spelling + u" as both a local and global variable.",
                              m_tokens[place].range);
        (isGlobal ? m_body->globals : m_body->locals).add(name);
        if (isGlobal && !m_inHandler) m_body->script->globals.add(name);
    } while (takeSymbol(","));
    expectEndOfStatement(false);
}

ScriptDefinition* ScriptParser::parseScriptDefinition() {
    requireStackRoom();
    advance();
    ScriptDefinition& definition = m_tree->scripts.emplace_back();
    if (isIdentifier(current())) definition.name = takeIdentifier(u"identifier");
    expectEndOfStatement(false);
    ScriptScope& scope = m_scopes.emplace_back();
    scope.definition = &definition;
    scope.outer = m_body->script;
    definition.body.start = current().range.start;
    parseScriptBody(scope, false);
    definition.body.end = current().range.start;
    expectEndOf("script");
    return &definition;
}

// Outside of handlers a script object is a property of the script around it.
Node* ScriptParser::parseScriptObject() {
    std::size_t const first = m_place;
    ScriptDefinition* const definition = parseScriptDefinition();
    Node& made = make(NodeKind::Script, first);
    made.definition = definition;
    if (!m_inHandler && definition->name) {
        ScriptDefinition& outer = *m_body->script->definition;
        if (!outer.propertyPlaces.contains(definition->name)) {
            outer.propertyPlaces.add(definition->name);
            outer.properties.emplace_back(definition->name, &made);
            Node& nothing = make(NodeKind::Literal, first);
            return m_body->isTopLevel ? &(nothing.kind = NodeKind::Nothing, nothing) : nullptr;
        }
    }
    Node& statement = make(NodeKind::ScriptStatement, first);
    statement.a = &made;
    if (definition->name) statement.c = &makeVariable(definition->name, first);
    return &statement;
}

void ScriptParser::parseHandler() {
    advance();
    ScriptScope& scope = *m_body->script;
    HandlerDefinition& handler = m_tree->handlers.emplace_back();
    BodyScope* const outerBody = m_body;
    BodyScope& body = openBody(handler, scope);
    m_body = &body;
    std::size_t const namePlace = m_place;
    parseHandlerHead(handler);
    ScriptDefinition& definition = *scope.definition;
    if (definition.handlerPlaces.contains(handler.name))
        throw syntaxError(errors::HandlerTwice, u"The " + handler.name->spelling + u" handler" + std::u16string(Twice),
                          m_tokens[namePlace].range);
    definition.handlerPlaces.add(handler.name);
    definition.handlers.push_back(&handler);
    if (handler.command) definition.commandHandlers.push_back(&handler);
    expectEndOfStatement(true);
    bool const wasInHandler = std::exchange(m_inHandler, true);
    std::size_t const repeatDepth = std::exchange(m_repeatDepth, 0);
    handler.block = &parseBlock();
    m_inHandler = wasInHandler;
    m_repeatDepth = repeatDepth;
    m_body = outerBody;
    if (!isWord("end")) expected(u"“end”");
    advance();
    // The name after `end` need not match.
    while (!current().endsStatement() && (current().kind == TokenKind::Word || current().kind == TokenKind::Barred ||
                                          current().kind == TokenKind::Raw || isSymbol(":")))
        advance();
    expectEndOfStatement(false);
}

void ScriptParser::parseHandlerHead(HandlerDefinition& handler) {
    if (CommandTerm const* const command = rawCommandHere()) {
        advance();
        handler.command = command;
        handler.name = identifierSymbol(command->name);
        parseCommandParameters(handler);
        return;
    }
    TermMatch const match = matchTerm();
    if (match.term && match.term->command) {
        for (std::size_t count = 0; count < match.tokenCount; ++count)
            advance();
        handler.command = match.term->command;
        handler.name = identifierSymbol(match.term->name);
        parseCommandParameters(handler);
        return;
    }
    Symbol const name = takeIdentifier(u"identifier");
    handler.name = name;
    if (isSymbol("(")) {
        handler.isPositional = true;
        advance();
        if (!isSymbol(")")) {
            do
                handler.positional.push_back(&parsePattern(true));
            while (takeSymbol(","));
        }
        if (!takeSymbol(")")) expected(u"“,” or “)”");
        return;
    }
    if (isSymbol(":")) {
        std::u16string whole = name->spelling;
        handler.isPositional = true;
        while (takeSymbol(":")) {
            whole += u'_';
            handler.positional.push_back(&parsePattern(true));
            if (current().kind != TokenKind::Word || !ahead(1).isSymbol(":")) break;
            whole += current().text;
            advance();
        }
        handler.name = identifierSymbol(whole);
        return;
    }
    parseLabeledParameters(handler);
}

void ScriptParser::parseLabeledParameters(HandlerDefinition& handler) {
    if (takeWord("of") || takeWord("in")) handler.direct = &parsePattern(true);
    std::u16string_view label;
    while (std::size_t count = labelLength(label)) {
        for (; count > 0; --count)
            advance();
        handler.labeled.emplace_back(identifierSymbol(label), &parsePattern(true));
    }
    parseGivenParameters(handler);
    // on findNumbers numberList above minimum: the direct parameter without `of`.
    bool const isBareDirect = handler.labeled.empty() && !handler.direct && isIdentifier(current());
    if (!isBareDirect) return;
    handler.direct = &parsePattern(true);
    parseLabeledParameters(handler);
}

void ScriptParser::parseGivenParameters(HandlerDefinition& handler) {
    if (!takeWord("given")) return;
    do {
        if (!isRecordKey()) expected(u"identifier");
        Symbol const name = parseRecordKey();
        expectSymbol(":");
        handler.labeled.emplace_back(name, &parsePattern(true));
    } while (takeSymbol(","));
}

void ScriptParser::parseCommandParameters(HandlerDefinition& handler) {
    takeWord("of");
    if (takeSymbol("(")) {
        if (!isSymbol(")")) handler.direct = &parsePattern(true);
        expectSymbol(")");
    } else if (isIdentifier(current()) || isSymbol("{")) {
        handler.direct = &parsePattern(true);
    }
    while (current().kind == TokenKind::Word) {
        std::span<Token const> const rest = std::span(m_tokens).subspan(m_place);
        auto const found = std::ranges::find_if(handler.command->parameters, [&](CommandParameter const& parameter) {
            return tokensSpelling(rest, parameter.label) > 0;
        });
        if (found == handler.command->parameters.end()) break;
        for (std::size_t count = tokensSpelling(rest, found->label); count > 0; --count)
            advance();
        handler.labeled.emplace_back(termSymbol(found->code, found->label), &parsePattern(true));
    }
    parseGivenParameters(handler);
}

} // namespace mac::applescript
