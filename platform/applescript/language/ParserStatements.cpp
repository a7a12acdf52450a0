#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/ErrorNumbers.h"
#include "platform/applescript/language/ScriptParser.h"

namespace mac::applescript {

namespace {

// What an expression is a part of, or is made from; null for one that stands for itself.
Expression const* ownerOf(Expression const& expression) {
    if (auto const* const property = expression.as<PropertyReference>()) return property->container;
    if (auto const* const element = expression.as<ElementReference>()) return element->container;
    if (auto const* const filter = expression.as<FilterReference>()) return filter->filtered;
    if (auto const* const parentheses = expression.as<Parentheses>()) return parentheses->inner;
    if (auto const* const coercion = expression.as<CoercionExpression>()) return coercion->operand;
    if (auto const* const reference = expression.as<ReferenceToExpression>()) return reference->target;
    if (auto const* const call = expression.as<PositionalCall>()) return call->receiver;
    if (auto const* const call = expression.as<LabeledCall>()) return call->receiver;
    if (auto const* const command = expression.as<CommandCall>()) return command->direct;
    return nullptr;
}

} // namespace

// Up to `end`, `else` or `on error`, or the end of the script.
Statement* ScriptParser::parseBlock() {
    requireRoom();
    std::size_t const first = place();
    Block block;
    while (true) {
        skipLineEnds();
        if (current().kind == TokenKind::EndOfScript || isWord("else")) break;
        bool const isEnd = isWord("end") && !ahead(1).isWord("of") && !ahead(1).isWord("in");
        if (isEnd || areWords({"on", "error"})) break;
        if (parseDeclaration()) continue;
        if (Statement* const statement = parseStatement()) block.statements.push_back(statement);
        if (isWord("else")) break;
        expectEndOfStatement(true);
    }
    return makeStatement(first, std::move(block));
}

void ScriptParser::expectEndOf(std::string_view keyword, std::u16string_view expectation) {
    if (!isWord("end")) expected(expectation);
    advance();
    if (current().endsStatement()) return;
    std::u16string const name(keyword.begin(), keyword.end());
    if (!takeWord(keyword)) expected(u"“" + name + u"”, etc.");
    expectEndOfStatement(false);
}

// Null where nothing is left to do when the script runs.
Statement* ScriptParser::parseStatement() {
    requireRoom();
    if (isWord("if")) return parseIf();
    if (isWord("tell")) return parseTell();
    if (isWord("repeat")) return parseRepeat();
    if (isWord("try")) return parseTry();
    if (isWord("considering") || isWord("ignoring")) return parseConsidering();
    if (areWords({"with", "timeout"})) return parseTimeout();
    if (areWords({"with", "transaction"})) return parseTransaction();
    if (areWords({"using", "terms", "from"})) return parseUsingTerms();
    if (isWord("use") && (ahead(1).kind == TokenKind::Word || ahead(1).kind == TokenKind::Text)) return parseUse();
    bool const opensScript = isWord("script") && (ahead(1).endsStatement() || isIdentifier(ahead(1)));
    if (opensScript) return parseScriptObject();
    return parseSimple();
}

Statement* ScriptParser::parseSimple() {
    std::size_t const first = place();
    bool const isCommand = matchTerm().term && matchTerm().term->command && matchTerm().tokenCount > 1;
    if (!isCommand) {
        if (isWord("set")) return parseSet();
        if (isWord("copy") || isWord("put")) return parseCopy();
        if (isWord("return") && !returnIsProperty()) return parseReturn();
        if (isWord("error")) return parseError();
        if (takeWord("exit")) {
            takeWord("repeat");
            if (m_repeatDepth == 0)
                throw SyntaxError{.number = errors::ExitOutsideRepeat,
                                  .message = messageOfNumber(errors::ExitOutsideRepeat),
                                  .range = tokenAt(first).range};
            return makeStatement(first, ExitStatement{});
        }
        // A statement of its own, so that its value is one.
        takeWord("get");
    }
    Expression& expression = parseExpression();
    if (!takeWord("exists")) return makeStatement(first, ExpressionStatement{.expression = &expression});
    CommandTerm const* const exists = Terminology::base().commandOf(eventOf("coredoex"));
    Expression& asked = make(first, CommandCall{.command = exists, .direct = &expression});
    return makeStatement(first, ExpressionStatement{.expression = &asked});
}

// `return & "a"` at the start of a line is text.
bool ScriptParser::returnIsProperty() const {
    Token const& next = ahead(1);
    return next.kind == TokenKind::Mark && next.word != "(" && next.word != "{" && next.word != "-";
}

// What is assigned to: a reference, or a list or record of such patterns.
Expression& ScriptParser::parseTargetPattern() {
    requireRoom();
    std::size_t const first = place();
    if (!takeSymbol("{")) {
        bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
        Expression& target = parseReference();
        m_labelsAllowed = labelsAllowed;
        return target;
    }
    ListExpression list;
    RecordExpression record;
    while (!isSymbol("}")) {
        bool const isField = isRecordKey() && list.items.empty();
        if (!isField && !record.fields.empty()) expected(u"expression, property or key form, etc.");
        Symbol const key = isField ? parseRecordKey() : nullptr;
        if (isField) expectSymbol(":");
        Expression& part = parseTargetPattern();
        if (isField)
            record.fields.push_back({.key = key, .value = &part});
        else
            list.items.push_back(&part);
        if (!takeSymbol(",")) break;
    }
    expectSymbol("}");
    return record.fields.empty() ? make(first, std::move(list)) : make(first, std::move(record));
}

Expression& ScriptParser::parseTarget() {
    Expression& target = parseTargetPattern();
    PropertyReference const* const property = target.as<PropertyReference>();
    bool const isTermVariable = property && !property->container && !property->isOfApplication;
    // Only the additions' names and such: the language's own properties stay what they are.
    if (isTermVariable && property->name->code != codes::TextItemDelimiters) m_body->assignedTerms.add(property->name);
    return target;
}

Statement* ScriptParser::parseSet() {
    std::size_t const first = place();
    advance();
    Expression& target = parseTarget();
    expectWord("to");
    Expression& value = parseExpression();
    return makeStatement(first, SetStatement{.target = &target, .value = &value});
}

Statement* ScriptParser::parseCopy() {
    std::size_t const first = place();
    advance();
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    Expression& value = parseExpression();
    m_labelsAllowed = labelsAllowed;
    if (!takeWord("to") && !takeWord("into")) expected(u"“to”");
    // The end of a list, without saying whose: of what `it` is.
    bool const isEnd = isWord("end");
    bool const isBareEnd = (isEnd || isWord("beginning")) && ahead(1).endsStatement();
    Expression* target = nullptr;
    if (isBareEnd) {
        target = &make(place(), ElementReference{.elementClass = codes::InsertionLocation,
                                                 .form = isEnd ? Form::End : Form::Beginning});
        advance();
    } else {
        target = &parseTarget();
    }
    return makeStatement(first, CopyStatement{.target = target, .value = &value});
}

// The terms of the application that the object lies in, where the source names it.
Terminology const* ScriptParser::termsOfTarget(Expression const& target) const {
    Expression const* object = &target;
    while (object && !object->is<ApplicationReference>())
        object = ownerOf(*object);
    Literal const* const name = object ? object->as<ApplicationReference>()->name->as<Literal>() : nullptr;
    std::u16string const* const text = name ? std::get_if<std::u16string>(&name->content) : nullptr;
    return text && m_applications ? m_applications(*text) : nullptr;
}

Statement* ScriptParser::parseTell() {
    std::size_t const first = place();
    advance();
    Expression& target = parseExpression();
    Terminology const* const terms = termsOfTarget(target);
    pushTerms(terms);
    Statement* block = nullptr;
    if (takeWord("to")) {
        block = parseStatement();
    } else {
        expectEndOfStatement(true);
        block = parseBlock();
        expectEndOf("tell");
    }
    popTerms(terms);
    return makeStatement(first, TellStatement{.target = &target, .block = block});
}

// The statements after `then` or `else`, or the one on the same line.
Statement* ScriptParser::parseBranch() { return current().endsStatement() ? parseBlock() : parseStatement(); }

Statement* ScriptParser::parseIf() {
    std::size_t const first = place();
    advance();
    IfStatement statement;
    Expression& condition = parseExpression();
    bool const saysThen = takeWord("then");
    bool const isOneLine = saysThen && !current().endsStatement();
    if (!saysThen && !current().endsStatement()) expected(u"“then”, etc.");
    statement.branches.push_back({.condition = &condition, .block = parseBranch()});
    if (isOneLine) {
        if (takeWord("else")) statement.elseBlock = parseStatement();
        return makeStatement(first, std::move(statement));
    }
    while (takeWord("else")) {
        bool const isLast = !takeWord("if");
        Expression* const next = isLast ? nullptr : &parseExpression();
        if (!isLast) takeWord("then");
        Statement* const block = parseBranch();
        skipLineEnds();
        if (!isLast) {
            statement.branches.push_back({.condition = next, .block = block});
            continue;
        }
        statement.elseBlock = block;
        break;
    }
    expectEndOf("if", u"“else”, etc.");
    return makeStatement(first, std::move(statement));
}

Statement* ScriptParser::parseReturn() {
    std::size_t const first = place();
    advance();
    Expression* value = nullptr;
    if (!current().endsStatement() && !isWord("else")) value = &parseExpression();
    return makeStatement(first, ReturnStatement{.value = value});
}

Statement* ScriptParser::parseError() {
    std::size_t const first = place();
    advance();
    ErrorStatement statement;
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    std::size_t const outerStops = stops().size();
    stops().insert(stops().end(), {u"number", u"from", u"to", u"partial result"});
    if (startsExpression()) statement.message = &parseExpression();
    while (true) {
        Expression** part = nullptr;
        if (takeWord("number"))
            part = &statement.number;
        else if (takeWord("from"))
            part = &statement.from;
        else if (takeWord("to"))
            part = &statement.to;
        else if (takeWords({"partial", "result"}))
            part = &statement.partialResult;
        if (!part) break;
        *part = &parseExpression();
    }
    stops().resize(outerStops);
    m_labelsAllowed = labelsAllowed;
    return makeStatement(first, statement);
}

} // namespace mac::applescript
