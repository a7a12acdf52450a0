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

Node* ScriptParser::parseRepeat() {
    std::size_t const first = m_place;
    Node& node = make(NodeKind::Repeat, first);
    advance();
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    if (takeWord("while")) {
        node.kind = NodeKind::RepeatWhile;
        node.a = &parseExpression();
    } else if (takeWord("until")) {
        node.kind = NodeKind::RepeatUntil;
        node.a = &parseExpression();
    } else if (takeWord("with")) {
        std::size_t const place = m_place;
        Term const* const term = current().kind == TokenKind::Word ? matchTerm().term : nullptr;
        bool const isTerm = term && term->propertyCode != 0 && matchTerm().tokenCount == 1;
        Symbol const name =
            isTerm ? termSymbol(term->propertyCode, term->name) : takeIdentifier(u"variable name or property");
        if (isTerm) {
            m_body->assignedTerms.push_back(name);
            advance();
        }
        node.c = &makeVariable(name, place);
        if (takeWord("from")) {
            node.kind = NodeKind::RepeatFrom;
            node.list.push_back(&parseExpression());
            expectWord("to");
            node.list.push_back(&parseExpression());
            node.list.push_back(takeWord("by") ? &parseExpression() : nullptr);
        } else {
            if (!takeWord("in")) expected(u"“from”, etc.");
            node.kind = NodeKind::RepeatIn;
            node.a = &parseExpression();
        }
    } else if (!current().endsStatement()) {
        node.kind = NodeKind::RepeatTimes;
        node.a = &parseExpression();
        takeWord("times");
    }
    m_labelsAllowed = labelsAllowed;
    expectEndOfStatement(true);
    ++m_repeatDepth;
    node.b = &parseBlock();
    --m_repeatDepth;
    expectEndOf("repeat");
    return &close(node);
}

Node* ScriptParser::parseTry() {
    std::size_t const first = m_place;
    Node& node = make(NodeKind::Try, first);
    advance();
    expectEndOfStatement(false);
    node.a = &parseBlock();
    node.list.assign(5, nullptr);
    if (takeWords({"on", "error"})) {
        if (isIdentifier(current())) {
            std::size_t const place = m_place;
            node.list[0] = &makeVariable(takeIdentifier(u"variable name or property"), place);
        }
        while (!current().endsStatement()) {
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
                expected(u"end of line, etc.");
            std::size_t const place = m_place;
            if (index == 1 && (current().kind == TokenKind::Integer || isSymbol("-")))
                node.list[index] = &parseUnary();
            else
                node.list[index] = &makeVariable(takeIdentifier(u"variable name or property"), place);
        }
        node.b = &parseBlock();
    }
    if (areWords({"end", "error"}))
        expectEndOf("error");
    else
        expectEndOf("try", node.b ? u"“end”" : u"“on”, etc.");
    return &close(node);
}

unsigned ScriptParser::parseAttributes() {
    unsigned attributes = 0;
    do {
        std::span<Token const> const rest = std::span(m_tokens).subspan(m_place);
        Attribute const* found = nullptr;
        for (Attribute const& attribute : Attributes)
            if (tokensSpelling(rest, attribute.name) > 0) found = &attribute;
        if (!found) expected(u"application constant or consideration");
        for (std::size_t count = tokensSpelling(rest, found->name); count > 0; --count)
            advance();
        attributes |= found->bit;
    } while (takeSymbol(",") ? (takeWord("and"), true) : takeWord("and"));
    return attributes;
}

Node* ScriptParser::parseConsidering() {
    std::size_t const first = m_place;
    Node& node = make(NodeKind::Considering, first);
    bool const considers = isWord("considering");
    advance();
    (considers ? node.considered : node.ignored) = parseAttributes();
    if (takeWord("but")) {
        expectWord(considers ? "ignoring" : "considering");
        (considers ? node.ignored : node.considered) = parseAttributes();
    }
    unsigned const both = node.considered & node.ignored;
    for (Attribute const& attribute : Attributes)
        if ((both & attribute.bit) != 0)
            throw syntaxError(errors::BothConsiderAndIgnore,
                              u"Can’t both consider and ignore " + std::u16string(attribute.name) + u".", node.range);
    expectEndOfStatement(true);
    node.b = &parseBlock();
    expectEndOf(considers ? "considering" : "ignoring");
    return &close(node);
}

// with timeout of 5 seconds; with transaction
Node* ScriptParser::parseWith() {
    std::size_t const first = m_place;
    Node& node = make(NodeKind::Timeout, first);
    advance();
    bool const isTimeout = isWord("timeout");
    advance();
    if (isTimeout) {
        node.code = codeOf("timo");
        takeWord("of");
        // `second` and `seconds` end the number.
        m_stops.insert(m_stops.end(), {u"second", u"seconds"});
        node.a = &parseExpression();
        m_stops.resize(m_stops.size() - 2);
        if (!takeWord("seconds")) takeWord("second");
    } else if (!current().endsStatement()) {
        node.a = &parseExpression();
    }
    expectEndOfStatement(false);
    node.b = &parseBlock();
    expectEndOf(isTimeout ? "timeout" : "transaction");
    return &close(node);
}

Node* ScriptParser::parseUsingTerms() {
    takeWords({"using", "terms", "from"});
    Terminology const* terms = nullptr;
    if (!takeWords({"scripting", "additions"})) {
        Node const& owner = parsePrimary();
        if (owner.kind == NodeKind::Application) terms = termsOfTarget(owner);
    }
    expectEndOfStatement(false);
    if (terms) m_terms.push_back(terms);
    Node& block = parseBlock();
    if (terms) m_terms.pop_back();
    if (!isWord("end")) expected(u"“end”");
    advance();
    takeWords({"using", "terms", "from"});
    expectEndOfStatement(false);
    return &block;
}

Node* ScriptParser::parseUse() {
    std::size_t const first = m_place;
    advance();
    if (isIdentifier(current()) && ahead(1).isSymbol(":")) {
        advance();
        advance();
    }
    Node& node = make(NodeKind::Nothing, first);
    if (takeWords({"scripting", "additions"}) || takeWord("applescript")) {
        // Both are always there.
    } else {
        // Linux: there are no frameworks and no script libraries; the script says so when it runs.
        node.kind = NodeKind::Unavailable;
        if (takeWord("framework") || takeWord("script")) {
            if (current().kind != TokenKind::Text) expected(u"string");
        }
        node.a = &parsePrimary();
        if (node.a->kind == NodeKind::Application) node.kind = NodeKind::Nothing;
    }
    if (takeWord("version")) {
        if (current().kind != TokenKind::Text) expected(u"string");
        advance();
    }
    if (isWord("with") || isWord("without")) {
        advance();
        if (!takeWord("importing")) expected(u"“importing”");
    }
    return &close(node);
}

} // namespace mac::applescript
