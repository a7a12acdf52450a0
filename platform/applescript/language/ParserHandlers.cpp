#include "platform/applescript/language/ErrorNumbers.h"
#include "platform/applescript/language/ScriptParser.h"
#include <algorithm>

namespace mac::applescript {

void ScriptParser::parseHandler() {
    advance();
    ScriptScope& scope = *m_body->script;
    HandlerDefinition& handler = m_tree->handlers.emplace_back();
    BodyScope* const outerBody = m_body;
    BodyScope& body = openBody(handler, scope);
    m_body = &body;
    std::size_t const namePlace = place();
    parseHandlerHead(handler);
    ScriptDefinition& definition = *scope.definition;
    if (definition.handlerPlaces.contains(handler.name))
        throw SyntaxError{.number = errors::HandlerTwice,
                          .message = u"The " + handler.name->spelling + u" handler is specified more than once.",
                          .range = tokenAt(namePlace).range};
    definition.handlerPlaces.add(handler.name);
    definition.handlers.push_back(&handler);
    if (handler.command) definition.commandHandlers.push_back(&handler);
    expectEndOfStatement(true);
    bool const wasInHandler = std::exchange(m_inHandler, true);
    std::size_t const repeatDepth = std::exchange(m_repeatDepth, 0);
    handler.block = parseBlock();
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
        return parseCommandParameters(handler);
    }
    TermMatch const match = matchTerm();
    if (match.term && match.term->command) {
        skip(match.tokenCount);
        handler.command = match.term->command;
        handler.name = identifierSymbol(match.term->name);
        return parseCommandParameters(handler);
    }
    handler.name = takeIdentifier(u"identifier");
    if (isSymbol("(")) return parsePositionalParameters(handler);
    if (isSymbol(":")) return parseInterleavedParameters(handler);
    parseLabeledParameters(handler);
}

void ScriptParser::parsePositionalParameters(HandlerDefinition& handler) {
    handler.isPositional = true;
    advance();
    if (!isSymbol(")")) {
        do
            handler.positional.push_back(parseParameter());
        while (takeSymbol(","));
    }
    if (!takeSymbol(")")) expected(u"“,” or “)”");
}

// on a:x b:y is the positional handler a_b_.
void ScriptParser::parseInterleavedParameters(HandlerDefinition& handler) {
    handler.isPositional = true;
    std::u16string whole = handler.name->spelling;
    while (takeSymbol(":")) {
        whole += u'_';
        handler.positional.push_back(parseParameter());
        if (current().kind != TokenKind::Word || !ahead(1).isSymbol(":")) break;
        whole += current().text;
        advance();
    }
    handler.name = identifierSymbol(whole);
}

void ScriptParser::parseLabeledParameters(HandlerDefinition& handler) {
    if (takeWord("of") || takeWord("in")) handler.direct = parseParameter();
    std::u16string_view label;
    while (std::size_t const count = labelLength(label)) {
        skip(count);
        handler.labeled.push_back({.label = identifierSymbol(label), .parameter = parseParameter()});
    }
    parseGivenParameters(handler);
    // on findNumbers numberList above minimum: the direct parameter without `of`.
    bool const isBareDirect = handler.labeled.empty() && !handler.direct && isIdentifier(current());
    if (!isBareDirect) return;
    handler.direct = parseParameter();
    parseLabeledParameters(handler);
}

void ScriptParser::parseGivenParameters(HandlerDefinition& handler) {
    if (!takeWord("given")) return;
    do {
        if (!isRecordKey()) expected(u"identifier");
        Symbol const label = parseRecordKey();
        expectSymbol(":");
        handler.labeled.push_back({.label = label, .parameter = parseParameter()});
    } while (takeSymbol(","));
}

void ScriptParser::parseCommandParameters(HandlerDefinition& handler) {
    takeWord("of");
    if (takeSymbol("(")) {
        if (!isSymbol(")")) handler.direct = parseParameter();
        expectSymbol(")");
    } else if (isIdentifier(current()) || isSymbol("{")) {
        handler.direct = parseParameter();
    }
    while (current().kind == TokenKind::Word) {
        auto const found = std::ranges::find_if(handler.command->parameters, [&](CommandParameter const& parameter) {
            return tokensSpelling(rest(), parameter.label) > 0;
        });
        if (found == handler.command->parameters.end()) break;
        skip(tokensSpelling(rest(), found->label));
        handler.labeled.push_back({.label = termSymbol(found->code, found->label), .parameter = parseParameter()});
    }
    parseGivenParameters(handler);
}

// A variable, or a pattern of them.
Parameter ScriptParser::parseParameter() {
    requireRoom();
    if (isSymbol("{")) return parseParameterPattern();
    return {.pattern = parseNamedParameter()};
}

Parameter ScriptParser::parseParameterPattern() {
    advance();
    ListPattern list;
    RecordPattern record;
    while (!isSymbol("}")) {
        bool const isField = isRecordKey() && list.parts.empty();
        if (!isField && !record.keys.empty()) expected(u"expression, property or key form, etc.");
        if (isField) {
            record.keys.push_back(parseRecordKey());
            expectSymbol(":");
        }
        (isField ? record.parts : list.parts).push_back(parseParameter());
        if (!takeSymbol(",")) break;
    }
    expectSymbol("}");
    if (record.keys.empty()) return {.pattern = std::move(list)};
    return {.pattern = std::move(record)};
}

// A name of a term may be a parameter: nothing else is meant there.
NamedParameter ScriptParser::parseNamedParameter() {
    std::size_t const first = place();
    bool const isTerm = current().kind == TokenKind::Word && !isReservedWord(current().word);
    if (!isTerm && !isIdentifier(current())) expected(u"variable name, class name, other parameter name or property");
    Term const* const term = current().kind == TokenKind::Word ? matchTerm().term : nullptr;
    Symbol const name =
        term && term->propertyCode != 0 ? termSymbol(term->propertyCode, term->name) : symbolOfToken(current());
    advance();
    m_body->locals.add(name);
    NamedParameter parameter{.variable = &makeVariable(name, first)};
    if (takeWord("as")) parameter.classes = parseClassNames();
    if (takeSymbol(":")) parameter.defaultValue = &parseUnary();
    return parameter;
}

} // namespace mac::applescript
