#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/ErrorNumbers.h"
#include "platform/applescript/language/ExpressionParser.h"
#include "platform/applescript/language/Operation.h"
#include <cmath>

namespace mac::applescript {

namespace {

// False for a literal that is no number.
bool negate(LiteralContent& content) {
    if (std::int32_t* const integer = std::get_if<std::int32_t>(&content)) {
        *integer = -*integer;
        return true;
    }
    double* const real = std::get_if<double>(&content);
    if (real) *real = -*real;
    return real;
}

bool isNumber(LiteralContent const& content) {
    return std::holds_alternative<std::int32_t>(content) || std::holds_alternative<double>(content);
}

} // namespace

Expression& ExpressionParser::parseExpression(int leastPrecedence) {
    requireRoom();
    std::size_t const first = place();
    Expression* left = nullptr;
    if (leastPrecedence <= precedence::Not && takeWord("not")) {
        Expression& operand = parseExpression(precedence::Not);
        left = &make(first, UnaryOperation{.operation = Operation::Not, .operand = &operand});
    } else {
        left = &parseUnary();
    }
    // Comparisons do not chain.
    int mostPrecedence = precedence::Power;
    while (std::optional<Operator> const found = peekOperator()) {
        if (found->precedence < leastPrecedence || found->precedence > mostPrecedence) break;
        skip(found->tokenCount);
        if (found->operation == Operation::As) {
            std::vector<Code> classes = parseClassNames();
            left = &make(first, CoercionExpression{.operand = left, .classes = std::move(classes)});
            continue;
        }
        bool const isPredicate = found->operation == Operation::Running || found->operation == Operation::NotRunning;
        Expression* right = nullptr;
        if (!isPredicate)
            right = &parseExpression(found->operation == Operation::Power ? precedence::Power : found->precedence + 1);
        left = &makeOperation(found->operation, *left, right, first);
        if (found->precedence == precedence::Equality) mostPrecedence = precedence::Equality - 1;
        if (found->precedence == precedence::Relation) mostPrecedence = precedence::Equality;
        if (found->precedence == precedence::And || found->precedence == precedence::Or)
            mostPrecedence = precedence::Power;
    }
    return *left;
}

// `right` is null where the operator has no operand there.
Expression& ExpressionParser::makeOperation(Operation operation, Expression& left, Expression* right,
                                            std::size_t firstToken) {
    switch (operation) {
    case Operation::And:
    case Operation::Or:
        return make(firstToken, LogicalOperation{.operation = operation, .left = &left, .right = right});
    case Operation::Running:
    case Operation::NotRunning:
        return make(firstToken, RunningTest{.operation = operation, .application = &left});
    case Operation::DoesNotStartWith:
    case Operation::DoesNotEndWith: {
        bool const isStart = operation == Operation::DoesNotStartWith;
        Expression& affirmed =
            makeOperation(isStart ? Operation::StartsWith : Operation::EndsWith, left, right, firstToken);
        return make(firstToken, UnaryOperation{.operation = Operation::Not, .operand = &affirmed});
    }
    default:
        return make(firstToken, BinaryOperation{.operation = operation, .left = &left, .right = right});
    }
}

Expression& ExpressionParser::parseUnary() {
    std::size_t const first = place();
    bool const isNegation = isSymbol("-");
    if (!isNegation && !isSymbol("+")) return parseReference();
    requireRoom();
    advance();
    Expression& operand = parseUnary();
    Literal* const literal = operand.as<Literal>();
    if (literal && isNumber(literal->content)) {
        if (isNegation) negate(literal->content);
        operand.range.start = tokenAt(first).range.start;
        return operand;
    }
    Operation const operation = isNegation ? Operation::Negate : Operation::Plus;
    return make(first, UnaryOperation{.operation = operation, .operand = &operand});
}

// A class, or several in braces.
std::vector<Code> ExpressionParser::parseClassNames() {
    if (!takeSymbol("{")) return {parseClassName()};
    std::vector<Code> codes;
    do
        codes.push_back(parseClassName());
    while (takeSymbol(","));
    expectSymbol("}");
    return codes;
}

Code ExpressionParser::parseClassName() {
    if (current().kind == TokenKind::Raw) {
        Literal const* const raw = parseRaw().as<Literal>();
        TypeLiteral const* const type = raw ? std::get_if<TypeLiteral>(&raw->content) : nullptr;
        if (type) return type->code;
    }
    if (takeWord("reference") || takeWord("ref")) return codes::ReferenceType;
    if (takeWord("script")) return codes::ScriptType;
    TermMatch const match = matchTerm();
    if (!match.term || match.term->classCode == 0) expected(u"class name");
    skip(match.tokenCount);
    return match.term->classCode;
}

Expression& ExpressionParser::parsePrimary() {
    requireRoom();
    std::size_t const first = place();
    Token const& token = current();
    auto const literal = [&](LiteralContent content) -> Expression& {
        advance();
        return makeLiteral(first, std::move(content));
    };
    switch (token.kind) {
    case TokenKind::Integer:
        return literal(static_cast<std::int32_t>(token.number));
    case TokenKind::Real:
        if (std::isinf(token.number))
            throw SyntaxError{.number = errors::NumberTooLarge,
                              .message = messageOfNumber(errors::NumberTooLarge),
                              .range = token.range};
        return literal(token.number);
    case TokenKind::Text:
        return literal(token.text);
    case TokenKind::Barred:
        return parseIdentifier();
    case TokenKind::Raw:
        return parseRaw();
    case TokenKind::Ordinal:
        if (Expression* const ordinal = parseOrdinal()) return *ordinal;
        break;
    case TokenKind::Mark:
        if (token.word == "(") return parseParentheses();
        if (token.word == "{") return parseBraces();
        break;
    case TokenKind::Word:
        if (Expression* const word = parsePrimaryWord()) return *word;
        break;
    default:
        break;
    }
    expected(u"expression");
}

Expression* ExpressionParser::parseConstantWord() {
    std::size_t const first = place();
    if (takeWord("true")) return &makeLiteral(first, true);
    if (takeWord("false")) return &makeLiteral(first, false);
    if (takeWord("it")) return &make(first, ItReference{});
    if (takeWord("me")) return &make(first, MeReference{});
    if (takeWord("result")) return &make(first, ResultReference{});
    if (takeWord("return")) return &makeLiteral(first, std::u16string(u"\r"));
    if (takeWord("applescript")) return &makeLiteral(first, AppleScriptLiteral{});
    if (takeWords({"current", "application"})) return &makeLiteral(first, CurrentApplicationLiteral{});
    return nullptr;
}

Expression* ExpressionParser::parsePrimaryWord() {
    std::size_t const first = place();
    if (Expression* const constant = parseConstantWord()) return constant;
    if (Expression* const insertion = parseInsertion()) return insertion;
    if (Expression* const ordinal = parseOrdinal()) return ordinal;
    if (takeWord("my")) return &parseAfterPossessive(make(first, MeReference{}));
    if (takeWord("its")) return &parseAfterPossessive(make(first, ItReference{}));
    if (takeWords({"a", "reference", "to"}) || takeWords({"reference", "to"}) || takeWords({"a", "ref", "to"}) ||
        takeWords({"ref", "to"})) {
        Expression& target = parseReference();
        return &make(first, ReferenceToExpression{.target = &target});
    }
    if (takeWord("not")) {
        Expression& operand = parseExpression(precedence::Equality);
        return &make(first, UnaryOperation{.operation = Operation::Not, .operand = &operand});
    }
    if (isWord("get") && !matchTerm().term) {
        advance();
        return &parseExpression();
    }
    if (takeWord("continue")) {
        Expression& call = parsePrimary();
        return &make(first, ContinueExpression{.call = &call});
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

Expression& ExpressionParser::parseParentheses() {
    std::size_t const first = place();
    std::vector<std::u16string_view> outerStops = std::exchange(stops(), {});
    bool const labelsAllowed = std::exchange(m_labelsAllowed, true);
    bool const inContainer = std::exchange(m_inContainer, false);
    advance();
    Expression& inner = parseExpression();
    if (!isSymbol(")")) expected(u"“)”");
    advance();
    m_inContainer = inContainer;
    stops() = std::move(outerStops);
    m_labelsAllowed = labelsAllowed;
    return make(first, Parentheses{.inner = &inner});
}

} // namespace mac::applescript
