#include "platform/applescript/language/ExpressionParser.h"
#include <algorithm>

namespace mac::applescript {

ExpressionParser::ExpressionParser(std::u16string_view source)
    : TokenReader(source), m_tree(std::make_shared<SyntaxTree>()) {
    m_tree->source = source;
}

SourceRange ExpressionParser::rangeFrom(std::size_t firstToken) const {
    std::uint32_t const start = tokenAt(firstToken).range.start;
    std::uint32_t const end = place() > 0 ? tokenAt(place() - 1).range.end : 0;
    return {.start = start, .end = std::max(start, end)};
}

Expression& ExpressionParser::close(Expression& expression) const {
    if (place() > 0) expression.range.end = std::max(expression.range.start, tokenAt(place() - 1).range.end);
    return expression;
}

Expression& ExpressionParser::makeLiteral(std::size_t firstToken, LiteralContent content) {
    return make(firstToken, Literal{.content = std::move(content)});
}

Expression& ExpressionParser::makeVariable(Symbol name, std::size_t firstToken) {
    Expression& variable = make(firstToken, VariableReference{.name = name});
    m_body->names.push_back(&variable);
    return variable;
}

// The spelling seen first is shown everywhere in the script.
Symbol ExpressionParser::symbolOfToken(Token const& token) {
    Symbol const symbol = identifierSymbol(token.text);
    return m_spellings.emplace(symbol->canonical, symbol).first->second;
}

Symbol ExpressionParser::takeIdentifier(std::u16string_view expectation) {
    if (!isIdentifier(current())) expected(expectation);
    Symbol const symbol = symbolOfToken(current());
    advance();
    return symbol;
}

} // namespace mac::applescript
