#include "platform/applescript/language/OperatorPrecedence.h"
#include "platform/applescript/language/ScriptParser.h"
#include "platform/applescript/language/StackRoom.h"
#include <cmath>

namespace mac::applescript {

Node& ScriptParser::parseExpression(int leastPrecedence) {
    requireStackRoom();
    std::size_t const first = m_place;
    Node* left = nullptr;
    if (leastPrecedence <= precedence::Not && isWord("not")) {
        advance();
        Node& operand = parseExpression(precedence::Not);
        left = &make(NodeKind::Unary, first);
        left->operation = Operation::Not;
        left->a = &operand;
    } else {
        left = &parseUnary();
    }
    // Comparisons do not chain.
    int mostPrecedence = precedence::Power;
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
            right = &parseExpression(found->operation == Operation::Power ? precedence::Power : found->precedence + 1);
        left = &makeBinary(found->operation, *left, right, first);
        bool const isComparison =
            found->precedence == precedence::Equality || found->precedence == precedence::Relation;
        if (isComparison) mostPrecedence = found->precedence - 1;
        if (isComparison && found->precedence == precedence::Relation) mostPrecedence = precedence::Equality;
        if (found->precedence == precedence::And || found->precedence == precedence::Or)
            mostPrecedence = precedence::Power;
    }
    return *left;
}

// `right` is null where the operator has no operand there.
Node& ScriptParser::makeBinary(Operation operation, Node& left, Node* right, std::size_t firstToken) {
    bool const isNegatedStart = operation == Operation::DoesNotStartWith;
    bool const isNegatedEnd = operation == Operation::DoesNotEndWith;
    Node& node = make(NodeKind::Binary, firstToken);
    node.operation = isNegatedStart ? Operation::StartsWith : isNegatedEnd ? Operation::EndsWith : operation;
    node.a = &left;
    node.b = right;
    if (!isNegatedStart && !isNegatedEnd) return node;
    Node& negation = make(NodeKind::Unary, firstToken);
    negation.operation = Operation::Not;
    negation.a = &node;
    return negation;
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
    std::vector<Code> codes = parseClassNames();
    Node& node = make(NodeKind::Coercion, firstToken);
    node.a = &operand;
    node.codes = std::move(codes);
    return node;
}

// One class, or several in braces.
std::vector<Code> ScriptParser::parseClassNames() {
    if (!takeSymbol("{")) return {parseClassName()};
    std::vector<Code> codes;
    do
        codes.push_back(parseClassName());
    while (takeSymbol(","));
    expectSymbol("}");
    return codes;
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
    requireStackRoom();
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
        Node& operand = parseExpression(precedence::Equality);
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
    // A longer term comes first: `application file` of the Finder.
    bool const isApplication = (isWord("application") || isWord("app")) && matchTerm().tokenCount <= 1;
    if (isApplication) return &parseApplication();
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
