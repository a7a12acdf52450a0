#include "platform/applescript/language/ErrorNumbers.h"
#include "platform/applescript/language/ScriptParser.h"
#include <algorithm>

namespace mac::applescript {

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
    definition.outsideHandlers = &run;
    run.name = identifierSymbol(u"run");
    BodyScope* const outerBody = m_body;
    bool const wasInHandler = std::exchange(m_inHandler, false);
    std::size_t const repeatDepth = std::exchange(m_repeatDepth, 0);
    BodyScope& body = openBody(run, scope);
    body.isTopLevel = isOutermost;
    body.outer = outerBody;
    m_body = &body;
    run.block = parseBlock();
    m_body = outerBody;
    m_inHandler = wasInHandler;
    m_repeatDepth = repeatDepth;
    auto const explicitRun = std::ranges::find_if(definition.handlers, [](HandlerDefinition const* handler) {
        return handler->command && handler->command->code == eventOf("aevtoapp");
    });
    if (explicitRun == definition.handlers.end()) return;
    std::vector<Statement*> const& statements = run.block->as<Block>()->statements;
    bool const hasStatements =
        std::ranges::any_of(statements, [](Statement const* statement) { return !statement->as<EmptyStatement>(); });
    if (hasStatements)
        throw SyntaxError{.number = errors::RunHandlerTwice,
                          .message = messageOfNumber(errors::RunHandlerTwice),
                          .range = statements.front()->range};
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
    std::size_t const first = place();
    advance();
    ScriptDefinition& definition = *m_body->script->definition;
    Symbol const name = isRecordKey() ? parseRecordKey() : takeIdentifier(u"variable name or property");
    if (definition.propertyPlaces.contains(name))
        throw SyntaxError{.number = errors::PropertyTwice,
                          .message = u"The " + name->spelling + u" property is specified more than once.",
                          .range = tokenAt(first + 1).range};
    expectSymbol(":");
    // Evaluated where the script object is made: in the body around it.
    definition.propertyPlaces.add(name);
    std::size_t const index = definition.properties.size();
    definition.properties.push_back({.name = name});
    ScriptScope* const script = m_body->script;
    BodyScope* const body = m_body;
    if (body->outer) m_body = body->outer;
    std::size_t const firstName = m_body->names.size();
    definition.properties[index].initial = &parseExpression();
    m_body->initials.push_back({.first = firstName, .end = m_body->names.size(), .script = script});
    m_body = body;
    expectEndOfStatement(true);
}

void ScriptParser::declare(bool isGlobal) {
    advance();
    do {
        std::size_t const first = place();
        Symbol const name = takeIdentifier(u"variable name or property");
        if ((isGlobal ? m_body->locals : m_body->globals).contains(name))
            throw SyntaxError{.number = errors::LocalAndGlobal,
                              .message = u"Can’t declare " + name->spelling + u" as both a local and global variable.",
                              .range = tokenAt(first).range};
        (isGlobal ? m_body->globals : m_body->locals).add(name);
        if (isGlobal && !m_inHandler) m_body->script->globals.add(name);
    } while (takeSymbol(","));
    expectEndOfStatement(false);
}

ScriptDefinition* ScriptParser::parseScriptDefinition() {
    requireRoom();
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
Statement* ScriptParser::parseScriptObject() {
    std::size_t const first = place();
    ScriptDefinition* const definition = parseScriptDefinition();
    Expression& made = make(first, ScriptExpression{.definition = definition});
    ScriptDefinition& outer = *m_body->script->definition;
    bool const isProperty = !m_inHandler && definition->name && !outer.propertyPlaces.contains(definition->name);
    if (isProperty) {
        outer.propertyPlaces.add(definition->name);
        outer.properties.push_back({.name = definition->name, .initial = &made});
        return m_body->isTopLevel ? makeStatement(first, EmptyStatement{}) : nullptr;
    }
    Expression* const variable = definition->name ? &makeVariable(definition->name, first) : nullptr;
    return makeStatement(first, ScriptStatement{.script = &made, .variable = variable});
}

} // namespace mac::applescript
