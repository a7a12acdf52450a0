#include "platform/applescript/ScriptParser.h"
#include "platform/applescript/StackRoom.h"
#include <array>
#include <cmath>

namespace mac::applescript {

namespace {

constexpr int OrPrecedence = 1;
constexpr int AndPrecedence = 2;
constexpr int NotPrecedence = 3;
constexpr int EqualityPrecedence = 4;
constexpr int RelationPrecedence = 5;
constexpr int CoercionPrecedence = 6;
constexpr int ConcatenationPrecedence = 7;
constexpr int SumPrecedence = 8;
constexpr int ProductPrecedence = 9;
constexpr int PowerPrecedence = 10;

struct SymbolOperator {
    std::string_view spelling;
    Operation operation;
    int precedence;
};

constexpr auto SymbolOperators = std::to_array<SymbolOperator>({
    {"&", Operation::Concatenate, ConcatenationPrecedence},
    {"+", Operation::Add, SumPrecedence},
    {"-", Operation::Subtract, SumPrecedence},
    {"*", Operation::Multiply, ProductPrecedence},
    {"/", Operation::Divide, ProductPrecedence},
    {"^", Operation::Power, PowerPrecedence},
    {"=", Operation::Equal, EqualityPrecedence},
    {"≠", Operation::NotEqual, EqualityPrecedence},
    {"<", Operation::Less, RelationPrecedence},
    {">", Operation::Greater, RelationPrecedence},
    {"≤", Operation::AtMost, RelationPrecedence},
    {"≥", Operation::AtLeast, RelationPrecedence},
});

struct WordOperator {
    std::u16string_view words;
    Operation operation;
    int precedence;
};

// Whichever has the most words counts.
constexpr auto WordOperators = std::to_array<WordOperator>({
    {u"or", Operation::Or, OrPrecedence},
    {u"and", Operation::And, AndPrecedence},
    {u"div", Operation::IntegerDivide, ProductPrecedence},
    {u"mod", Operation::Modulo, ProductPrecedence},
    {u"as", Operation::As, CoercionPrecedence},
    {u"equal", Operation::Equal, EqualityPrecedence},
    {u"equals", Operation::Equal, EqualityPrecedence},
    {u"equal to", Operation::Equal, EqualityPrecedence},
    {u"is", Operation::Equal, EqualityPrecedence},
    {u"is equal", Operation::Equal, EqualityPrecedence},
    {u"is equal to", Operation::Equal, EqualityPrecedence},
    {u"is not", Operation::NotEqual, EqualityPrecedence},
    {u"is not equal", Operation::NotEqual, EqualityPrecedence},
    {u"is not equal to", Operation::NotEqual, EqualityPrecedence},
    {u"does not equal", Operation::NotEqual, EqualityPrecedence},
    {u"less than", Operation::Less, RelationPrecedence},
    {u"is less than", Operation::Less, RelationPrecedence},
    {u"is not less than", Operation::AtLeast, RelationPrecedence},
    {u"less than or equal", Operation::AtMost, RelationPrecedence},
    {u"less than or equal to", Operation::AtMost, RelationPrecedence},
    {u"is less than or equal", Operation::AtMost, RelationPrecedence},
    {u"is less than or equal to", Operation::AtMost, RelationPrecedence},
    {u"is not less than or equal", Operation::Greater, RelationPrecedence},
    {u"is not less than or equal to", Operation::Greater, RelationPrecedence},
    {u"greater than", Operation::Greater, RelationPrecedence},
    {u"is greater than", Operation::Greater, RelationPrecedence},
    {u"is not greater than", Operation::AtMost, RelationPrecedence},
    {u"greater than or equal", Operation::AtLeast, RelationPrecedence},
    {u"greater than or equal to", Operation::AtLeast, RelationPrecedence},
    {u"is greater than or equal", Operation::AtLeast, RelationPrecedence},
    {u"is greater than or equal to", Operation::AtLeast, RelationPrecedence},
    {u"is not greater than or equal", Operation::Less, RelationPrecedence},
    {u"is not greater than or equal to", Operation::Less, RelationPrecedence},
    {u"comes before", Operation::Less, RelationPrecedence},
    {u"comes after", Operation::Greater, RelationPrecedence},
    {u"does not come before", Operation::AtLeast, RelationPrecedence},
    {u"does not come after", Operation::AtMost, RelationPrecedence},
    {u"contain", Operation::Contains, RelationPrecedence},
    {u"contains", Operation::Contains, RelationPrecedence},
    {u"does not contain", Operation::DoesNotContain, RelationPrecedence},
    {u"is in", Operation::IsIn, RelationPrecedence},
    {u"is contained by", Operation::IsIn, RelationPrecedence},
    {u"is not in", Operation::IsNotIn, RelationPrecedence},
    {u"is not contained by", Operation::IsNotIn, RelationPrecedence},
    {u"start with", Operation::StartsWith, RelationPrecedence},
    {u"starts with", Operation::StartsWith, RelationPrecedence},
    {u"begin with", Operation::StartsWith, RelationPrecedence},
    {u"begins with", Operation::StartsWith, RelationPrecedence},
    {u"end with", Operation::EndsWith, RelationPrecedence},
    {u"ends with", Operation::EndsWith, RelationPrecedence},
    {u"is running", Operation::Running, EqualityPrecedence},
    {u"is not running", Operation::NotRunning, EqualityPrecedence},
});

// "isn't" counts as "is not" and "doesn't" as "does not".
std::size_t tokensOfOperator(std::span<Token const> tokens, std::u16string_view words) {
    std::size_t const count = tokensSpelling(tokens, words);
    if (count != 0 || tokens.empty()) return count;
    constexpr std::u16string_view isNot = u"is not";
    constexpr std::u16string_view doesNot = u"does not";
    bool const isNegatedIs = tokens.front().isWord("isn't") && words.starts_with(isNot);
    bool const isNegatedDoes = tokens.front().isWord("doesn't") && words.starts_with(doesNot);
    if (!isNegatedIs && !isNegatedDoes) return 0;
    std::u16string_view const rest = words.substr(isNegatedIs ? isNot.size() : doesNot.size());
    if (rest.empty()) return 1;
    std::size_t const following = tokensSpelling(tokens.subspan(1), rest.substr(1));
    return following == 0 ? 0 : following + 1;
}

} // namespace

std::optional<ScriptParser::Operator> ScriptParser::peekOperator() const {
    Token const& token = current();
    if (token.kind == TokenKind::Mark) {
        for (SymbolOperator const& candidate : SymbolOperators)
            if (token.word == candidate.spelling)
                return Operator{.operation = candidate.operation, .precedence = candidate.precedence, .tokenCount = 1};
        return {};
    }
    if (token.kind != TokenKind::Word || isStop()) return {};
    bool const mayBegin = isReservedWord(token.word) || token.word == "less" || token.word == "greater" ||
                          token.word.starts_with("come") || token.word.starts_with("start") ||
                          token.word.starts_with("begin") || token.word == "ends";
    if (!mayBegin) return {};
    std::optional<Operator> best;
    std::span<Token const> const rest = std::span(m_tokens).subspan(m_place);
    for (WordOperator const& candidate : WordOperators) {
        std::size_t const count = tokensOfOperator(rest, candidate.words);
        if (count > (best ? best->tokenCount : 0))
            best = Operator{.operation = candidate.operation, .precedence = candidate.precedence, .tokenCount = count};
    }
    return best;
}

Node& ScriptParser::parseExpression(int leastPrecedence) {
    requireStackRoom();
    std::size_t const first = m_place;
    Node* left = nullptr;
    if (leastPrecedence <= NotPrecedence && isWord("not")) {
        advance();
        Node& operand = parseExpression(NotPrecedence);
        left = &make(NodeKind::Unary, first);
        left->operation = Operation::Not;
        left->a = &operand;
    } else {
        left = &parseUnary();
    }
    // Comparisons do not chain.
    int mostPrecedence = PowerPrecedence;
    while (std::optional<Operator> const found = peekOperator()) {
        if (found->precedence < leastPrecedence || found->precedence > mostPrecedence) break;
        for (std::size_t count = 0; count < found->tokenCount; ++count)
            advance();
        if (found->operation == Operation::As) {
            left = &parseCoercion(*left, first);
            continue;
        }
        bool const isPredicate = found->operation == Operation::Running || found->operation == Operation::NotRunning;
        Node* right = nullptr;
        if (!isPredicate)
            right = &parseExpression(found->operation == Operation::Power ? PowerPrecedence : found->precedence + 1);
        Node& node = make(NodeKind::Binary, first);
        node.operation = found->operation;
        node.a = left;
        node.b = right;
        left = &node;
        bool const isComparison = found->precedence == EqualityPrecedence || found->precedence == RelationPrecedence;
        if (isComparison) mostPrecedence = found->precedence - 1;
        if (isComparison && found->precedence == RelationPrecedence) mostPrecedence = EqualityPrecedence;
        if (found->precedence == AndPrecedence || found->precedence == OrPrecedence) mostPrecedence = PowerPrecedence;
    }
    return *left;
}

Node& ScriptParser::parseUnary() {
    std::size_t const first = m_place;
    bool const isNegation = isSymbol("-");
    if (!isNegation && !isSymbol("+")) return parseReference();
    requireStackRoom();
    advance();
    Node& operand = parseUnary();
    bool const isLiteral = operand.kind == NodeKind::Literal && operand.value.isNumber();
    if (isLiteral) {
        if (isNegation)
            operand.value = operand.value.is(ValueKind::Integer) ? Value::integer(-operand.value.asInteger())
                                                                 : Value::real(-operand.value.asReal());
        operand.range.start = m_tokens[first].range.start;
        return operand;
    }
    Node& node = make(NodeKind::Unary, first);
    node.operation = isNegation ? Operation::Negate : Operation::Plus;
    node.a = &operand;
    return node;
}

Node& ScriptParser::parseCoercion(Node& operand, std::size_t firstToken) {
    std::vector<Code> codes;
    if (takeSymbol("{")) {
        do
            codes.push_back(parseClassName());
        while (takeSymbol(","));
        expectSymbol("}");
    } else {
        codes.push_back(parseClassName());
    }
    Node& node = make(NodeKind::Coercion, firstToken);
    node.a = &operand;
    node.codes = std::move(codes);
    return node;
}

Code ScriptParser::parseClassName() {
    if (current().kind == TokenKind::Raw) {
        Node const& raw = parseRaw();
        bool const isClass = raw.kind == NodeKind::Literal && raw.value.is(ValueKind::Type);
        if (isClass) return raw.value.asCode();
    }
    if (isWord("reference") || isWord("ref")) {
        advance();
        return codeOf("obj ");
    }
    if (isWord("script")) {
        advance();
        return codeOf("scpt");
    }
    TermMatch const match = matchTerm();
    if (!match.term || match.term->classCode == 0) expected(u"class name");
    for (std::size_t count = 0; count < match.tokenCount; ++count)
        advance();
    return match.term->classCode;
}

Node& ScriptParser::parsePrimary() {
    std::size_t const first = m_place;
    Token const& token = current();
    auto const literal = [&](Value value) -> Node& {
        advance();
        Node& node = make(NodeKind::Literal, first);
        node.value = std::move(value);
        return node;
    };
    switch (token.kind) {
    case TokenKind::Integer:
        return literal(Value::integer(static_cast<std::int32_t>(token.number)));
    case TokenKind::Real:
        if (std::isinf(token.number))
            throw syntaxError(errors::NumberTooLarge, messageOfNumber(errors::NumberTooLarge), token.range);
        return literal(Value::real(token.number));
    case TokenKind::Text:
        return literal(Value::text(token.text));
    case TokenKind::Barred:
        return parseIdentifier();
    case TokenKind::Raw:
        return parseRaw();
    case TokenKind::Ordinal:
        if (Node* const node = parseOrdinal()) return *node;
        break;
    case TokenKind::Mark:
        if (token.word == "(") return parseParentheses();
        if (token.word == "{") return parseBraces();
        break;
    case TokenKind::Word:
        if (Node* const node = parsePrimaryWord()) return *node;
        break;
    default:
        break;
    }
    expected(u"expression");
}

Node* ScriptParser::parseConstantWord() {
    std::size_t const first = m_place;
    auto const made = [&](NodeKind kind, Value value = {}) {
        Node& node = make(kind, first);
        node.value = std::move(value);
        return &node;
    };
    if (takeWord("true")) return made(NodeKind::Literal, Value::boolean(true));
    if (takeWord("false")) return made(NodeKind::Literal, Value::boolean(false));
    if (takeWord("it")) return made(NodeKind::It);
    if (takeWord("me")) return made(NodeKind::Me);
    if (takeWord("result")) return made(NodeKind::Result);
    if (takeWord("return")) return made(NodeKind::Literal, Value::text(u"\r"));
    if (takeWord("applescript")) return made(NodeKind::Literal, Value::appleScript());
    if (takeWords({"current", "application"})) return made(NodeKind::Literal, Value::currentApplication());
    return nullptr;
}

Node* ScriptParser::parsePrimaryWord() {
    std::size_t const first = m_place;
    if (Node* const constant = parseConstantWord()) return constant;
    if (Node* const insertion = parseInsertion()) return insertion;
    if (Node* const ordinal = parseOrdinal()) return ordinal;
    if (isWord("my") || isWord("its")) {
        NodeKind const owner = isWord("my") ? NodeKind::Me : NodeKind::It;
        advance();
        return &parseAfterPossessive(make(owner, first));
    }
    if (takeWords({"a", "reference", "to"}) || takeWords({"reference", "to"}) || takeWords({"a", "ref", "to"}) ||
        takeWords({"ref", "to"})) {
        Node& target = parseReference();
        Node& node = make(NodeKind::ReferenceTo, first);
        node.a = &target;
        return &node;
    }
    if (takeWord("not")) {
        Node& operand = parseExpression(EqualityPrecedence);
        Node& node = make(NodeKind::Unary, first);
        node.operation = Operation::Not;
        node.a = &operand;
        return &node;
    }
    if (isWord("get") && !matchTerm().term) {
        advance();
        return &parseExpression();
    }
    if (takeWord("continue")) {
        Node& call = parsePrimary();
        Node& node = make(NodeKind::Continue, first);
        node.a = &call;
        return &node;
    }
    if (isWord("application") || isWord("app")) return &parseApplication();
    if (isWord("count") || areWords({"number", "of"})) return &parseCount();
    TermMatch const match = matchTerm();
    if (match.term) return &parseTerm(match);
    if (isReservedWord(current().word)) return nullptr;
    return &parseIdentifier();
}

Node& ScriptParser::parseParentheses() {
    std::size_t const first = m_place;
    std::vector<std::u16string_view> const stops = std::exchange(m_stops, {});
    bool const labelsAllowed = std::exchange(m_labelsAllowed, true);
    bool const inContainer = std::exchange(m_inContainer, false);
    advance();
    Node& inner = parseExpression();
    if (!isSymbol(")")) expected(u"“)”");
    advance();
    m_inContainer = inContainer;
    m_stops = stops;
    m_labelsAllowed = labelsAllowed;
    // A node of its own, so that what follows does not reach inside.
    Node& node = make(NodeKind::Expression, first);
    node.a = &inner;
    return node;
}

bool ScriptParser::isRecordKey() const {
    if (current().kind == TokenKind::Barred || current().kind == TokenKind::Raw) return ahead(1).isSymbol(":");
    if (current().kind != TokenKind::Word) return false;
    std::size_t const count = std::max<std::size_t>(matchTerm().tokenCount, 1);
    return ahead(count).isSymbol(":") || ahead(1).isSymbol(":");
}

Symbol ScriptParser::parseRecordKey() {
    if (current().kind == TokenKind::Raw) {
        Node const& raw = parseRaw();
        if (!raw.value.is(ValueKind::Type)) expected(u"expression, property or key form, etc.");
        return termSymbol(raw.value.asCode(), nameOfCode(raw.value.asCode()));
    }
    TermMatch const match = current().kind == TokenKind::Word ? matchTerm() : TermMatch();
    bool const isTerm = match.term && ahead(match.tokenCount).isSymbol(":") &&
                        (match.term->propertyCode != 0 || match.term->classCode != 0);
    if (!isTerm) {
        Symbol const name = symbolOfToken(current());
        advance();
        return name;
    }
    for (std::size_t count = 0; count < match.tokenCount; ++count)
        advance();
    Code const code = match.term->propertyCode != 0 ? match.term->propertyCode : match.term->classCode;
    return termSymbol(code, match.term->name);
}

Node& ScriptParser::parseBraces() {
    std::size_t const first = m_place;
    std::vector<std::u16string_view> const stops = std::exchange(m_stops, {});
    bool const labelsAllowed = std::exchange(m_labelsAllowed, true);
    advance();
    Node& node = make(NodeKind::List, first);
    while (!isSymbol("}")) {
        if (node.list.empty() && isRecordKey()) node.kind = NodeKind::Record;
        if (node.kind == NodeKind::Record) {
            if (!isRecordKey()) expected(u"expression, property or key form, etc.");
            node.names.push_back(parseRecordKey());
            expectSymbol(":");
        }
        node.list.push_back(&parseExpression());
        if (!takeSymbol(",")) break;
        if (isSymbol("}")) expected(u"expression");
    }
    if (!isSymbol("}")) expected(u"“,” or “}”");
    advance();
    m_stops = stops;
    m_labelsAllowed = labelsAllowed;
    return close(node);
}

} // namespace mac::applescript
