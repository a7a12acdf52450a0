#include "platform/applescript/language/ErrorNumbers.h"
#include "platform/applescript/language/ScriptParser.h"
#include <array>

namespace mac::applescript {

namespace {

struct Attribute {
    std::u16string_view name;
    unsigned bit;
};

// Application responses are no matter of comparing.
constexpr auto Attributes = std::to_array<Attribute>({
    {u"case", Considerations::Case},
    {u"diacriticals", Considerations::Diacriticals},
    {u"hyphens", Considerations::Hyphens},
    {u"punctuation", Considerations::Punctuation},
    {u"white space", Considerations::WhiteSpace},
    {u"expansion", Considerations::Expansion},
    {u"numeric strings", Considerations::NumericStrings},
    {u"application responses", 0},
});

} // namespace

// The block after the head of a loop, up to `end repeat`.
Statement* ScriptParser::parseLoopBlock() {
    expectEndOfStatement(true);
    ++m_repeatDepth;
    Statement* const block = parseBlock();
    --m_repeatDepth;
    expectEndOf("repeat");
    return block;
}

// Labels belong to no call in the head of a loop.
Expression& ScriptParser::parseInHead() {
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    Expression& expression = parseExpression();
    m_labelsAllowed = labelsAllowed;
    return expression;
}

Statement* ScriptParser::parseRepeat() {
    std::size_t const first = place();
    advance();
    if (takeWord("with")) return parseRepeatWith(first);
    if (isWord("while") || isWord("until")) {
        RepeatCondition loop{.goesOnWhile = isWord("while")};
        advance();
        loop.condition = &parseInHead();
        loop.block = parseLoopBlock();
        return makeStatement(first, loop);
    }
    if (current().endsStatement()) {
        Statement* const block = parseLoopBlock();
        return makeStatement(first, RepeatForever{.block = block});
    }
    RepeatTimes loop{.count = &parseInHead()};
    takeWord("times");
    loop.block = parseLoopBlock();
    return makeStatement(first, loop);
}

Statement* ScriptParser::parseRepeatWith(std::size_t firstToken) {
    Expression& variable = parseLoopVariable();
    if (takeWord("in")) {
        RepeatIn loop{.variable = &variable, .list = &parseInHead()};
        loop.block = parseLoopBlock();
        return makeStatement(firstToken, loop);
    }
    if (!takeWord("from")) expected(u"“from”, etc.");
    RepeatFrom loop{.variable = &variable, .from = &parseInHead()};
    expectWord("to");
    loop.to = &parseInHead();
    if (takeWord("by")) loop.step = &parseInHead();
    loop.block = parseLoopBlock();
    return makeStatement(firstToken, loop);
}

// A name, or a term that is a variable in this script.
Expression& ScriptParser::parseLoopVariable() {
    std::size_t const first = place();
    TermMatch const match = current().kind == TokenKind::Word ? matchTerm() : TermMatch();
    bool const isTerm = match.term && match.term->propertyCode != 0 && match.tokenCount == 1;
    if (!isTerm) return makeVariable(takeIdentifier(u"variable name or property"), first);
    Symbol const name = termSymbol(match.term->propertyCode, match.term->name);
    m_body->assignedTerms.add(name);
    advance();
    return makeVariable(name, first);
}

Statement* ScriptParser::parseTry() {
    std::size_t const first = place();
    advance();
    expectEndOfStatement(false);
    TryStatement statement;
    statement.block = parseBlock();
    if (takeWords({"on", "error"})) {
        parseErrorVariables(statement);
        statement.errorBlock = parseBlock();
    }
    if (areWords({"end", "error"}))
        expectEndOf("error");
    else
        expectEndOf("try", statement.errorBlock ? u"“end”" : u"“on”, etc.");
    return makeStatement(first, statement);
}

// on error message number n from x to c partial result r; on error number -128
void ScriptParser::parseErrorVariables(TryStatement& statement) {
    auto const variableHere = [&]() -> Expression& {
        std::size_t const first = place();
        return makeVariable(takeIdentifier(u"variable name or property"), first);
    };
    bool const hasMessage = isIdentifier(current()) && !areWords({"partial", "result"});
    if (hasMessage) statement.message = &variableHere();
    while (!current().endsStatement()) {
        bool const isNumber = takeWord("number");
        if (isNumber && (current().kind == TokenKind::Integer || isSymbol("-")))
            statement.handledNumber = parseErrorNumber();
        else if (isNumber)
            statement.number = &variableHere();
        else if (takeWord("from"))
            statement.from = &variableHere();
        else if (takeWord("to"))
            statement.to = &variableHere();
        else if (takeWords({"partial", "result"}))
            statement.partialResult = &variableHere();
        else
            expected(u"end of line, etc.");
    }
}

std::int32_t ScriptParser::parseErrorNumber() {
    bool const isNegative = takeSymbol("-");
    if (current().kind != TokenKind::Integer) expected(u"number");
    auto const number = static_cast<std::int32_t>(current().number);
    advance();
    return isNegative ? -number : number;
}

unsigned ScriptParser::parseAttributes() {
    unsigned attributes = 0;
    do {
        Attribute const* found = nullptr;
        for (Attribute const& attribute : Attributes)
            if (tokensSpelling(rest(), attribute.name) > 0) found = &attribute;
        if (!found) expected(u"application constant or consideration");
        skip(tokensSpelling(rest(), found->name));
        attributes |= found->bit;
    } while (takeSymbol(",") ? (takeWord("and"), true) : takeWord("and"));
    return attributes;
}

Statement* ScriptParser::parseConsidering() {
    std::size_t const first = place();
    ConsideringStatement statement;
    bool const considers = isWord("considering");
    advance();
    (considers ? statement.considered : statement.ignored) = parseAttributes();
    if (takeWord("but")) {
        expectWord(considers ? "ignoring" : "considering");
        (considers ? statement.ignored : statement.considered) = parseAttributes();
    }
    unsigned const both = statement.considered & statement.ignored;
    for (Attribute const& attribute : Attributes)
        if ((both & attribute.bit) != 0)
            throw SyntaxError{.number = errors::BothConsiderAndIgnore,
                              .message = u"Can’t both consider and ignore " + std::u16string(attribute.name) + u".",
                              .range = tokenAt(first).range};
    expectEndOfStatement(true);
    statement.block = parseBlock();
    expectEndOf(considers ? "considering" : "ignoring");
    return makeStatement(first, statement);
}

// with timeout of 5 seconds
Statement* ScriptParser::parseTimeout() {
    std::size_t const first = place();
    skip(2);
    takeWord("of");
    // `second` and `seconds` end the number.
    stops().insert(stops().end(), {u"second", u"seconds"});
    TimeoutStatement statement{.seconds = &parseExpression()};
    stops().resize(stops().size() - 2);
    if (!takeWord("seconds")) takeWord("second");
    expectEndOfStatement(false);
    statement.block = parseBlock();
    expectEndOf("timeout");
    return makeStatement(first, statement);
}

// with transaction session
Statement* ScriptParser::parseTransaction() {
    std::size_t const first = place();
    skip(2);
    TransactionStatement statement;
    if (!current().endsStatement()) statement.session = &parseExpression();
    expectEndOfStatement(false);
    statement.block = parseBlock();
    expectEndOf("transaction");
    return makeStatement(first, statement);
}

Statement* ScriptParser::parseUsingTerms() {
    takeWords({"using", "terms", "from"});
    Terminology const* terms = nullptr;
    if (!takeWords({"scripting", "additions"})) {
        Expression const& owner = parsePrimary();
        if (owner.is<ApplicationReference>()) terms = termsOfTarget(owner);
    }
    expectEndOfStatement(false);
    pushTerms(terms);
    Statement* const block = parseBlock();
    popTerms(terms);
    if (!isWord("end")) expected(u"“end”");
    advance();
    takeWords({"using", "terms", "from"});
    expectEndOfStatement(false);
    return block;
}

Statement* ScriptParser::parseUse() {
    std::size_t const first = place();
    advance();
    if (isIdentifier(current()) && ahead(1).isSymbol(":")) skip(2);
    Expression* needed = nullptr;
    // These two are always there.
    bool const isPresent = takeWords({"scripting", "additions"}) || takeWord("applescript");
    if (!isPresent) {
        bool const isNamed = takeWord("framework") || takeWord("script");
        if (isNamed && current().kind != TokenKind::Text) expected(u"string");
        needed = &parsePrimary();
    }
    if (takeWord("version")) {
        if (current().kind != TokenKind::Text) expected(u"string");
        advance();
    }
    if (takeWord("with") || takeWord("without")) {
        if (!takeWord("importing")) expected(u"“importing”");
    }
    // Linux: there are no frameworks and no script libraries; the script says so when it runs.
    bool const isMissing = needed && !needed->is<ApplicationReference>();
    if (isMissing) return makeStatement(first, UnavailableStatement{.needed = needed});
    return makeStatement(first, EmptyStatement{});
}

} // namespace mac::applescript
