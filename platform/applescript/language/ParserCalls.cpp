#include "platform/applescript/language/ExpressionParser.h"
#include <array>

namespace mac::applescript {

namespace {

// What may name a parameter of a handler, the longer first.
constexpr auto Labels = std::to_array<std::u16string_view>({
    u"apart from", u"aside from", u"instead of", u"out of", u"about",   u"above", u"against", u"around",
    u"at",         u"below",      u"beneath",    u"beside", u"between", u"by",    u"for",     u"from",
    u"into",       u"on",         u"onto",       u"over",   u"since",   u"thru",  u"through", u"under",
});

} // namespace

// The number of tokens of a label here; none where labels end an outer expression.
std::size_t ExpressionParser::labelLength(std::u16string_view& label) const {
    if (current().kind != TokenKind::Word || !m_labelsAllowed || isStop()) return 0;
    for (std::u16string_view const candidate : Labels) {
        std::size_t const count = tokensSpelling(rest(), candidate);
        if (count == 0) continue;
        label = candidate;
        return count;
    }
    return 0;
}

// given rounding:true, with rounding, without rounding
bool ExpressionParser::startsGivenParameters() const {
    if (isStop()) return false;
    return isWord("given") || ((isWord("with") || isWord("without")) && isIdentifier(ahead(1)));
}

// A variable or a call.
Expression& ExpressionParser::parseIdentifier() {
    std::size_t const first = place();
    Symbol const name = takeIdentifier(u"variable name or property");
    if (isSymbol("(")) return parseCall(name, first);
    bool const mayBeInterleaved = isSymbol(":") && first > 0;
    Token const& before = tokenAt(first > 0 ? first - 1 : first);
    bool const isInterleaved = mayBeInterleaved && (before.isWord("my") || before.isWord("its") ||
                                                    before.isSymbol("'s") || before.isWord("to"));
    if (isInterleaved) return parseInterleavedCall(name, first);
    std::u16string_view label;
    bool const isLabeled = labelLength(label) > 0 || (m_labelsAllowed && startsGivenParameters());
    if (isLabeled) return parseLabeledCall(name, nullptr, first);
    return makeVariable(name, first);
}

Expression& ExpressionParser::parseCall(Symbol name, std::size_t firstToken) {
    std::vector<std::u16string_view> outerStops = std::exchange(stops(), {});
    bool const labelsAllowed = std::exchange(m_labelsAllowed, true);
    advance();
    PositionalCall call{.name = name};
    if (!isSymbol(")")) {
        do
            call.arguments.push_back(&parseExpression());
        while (takeSymbol(","));
    }
    if (!isSymbol(")")) expected(u"“,” or “)”");
    advance();
    stops() = std::move(outerStops);
    m_labelsAllowed = labelsAllowed;
    return make(firstToken, std::move(call));
}

// a:1 b:2 is the positional handler a_b_.
Expression& ExpressionParser::parseInterleavedCall(Symbol first, std::size_t firstToken) {
    PositionalCall call;
    std::u16string name = first->spelling;
    while (true) {
        expectSymbol(":");
        name += u'_';
        call.arguments.push_back(&parseExpression());
        if (current().kind != TokenKind::Word || !ahead(1).isSymbol(":")) break;
        name += current().text;
        advance();
    }
    call.name = identifierSymbol(name);
    return make(firstToken, std::move(call));
}

// False where no argument follows.
bool ExpressionParser::parseLabeledArguments(LabeledCall& call) {
    std::u16string_view label;
    if (std::size_t const count = labelLength(label); count > 0) {
        skip(count);
        call.arguments.push_back({.label = identifierSymbol(label), .value = &parseExpression()});
        return true;
    }
    if (takeWord("given")) {
        do {
            if (!isRecordKey()) expected(u"identifier");
            Symbol const key = parseRecordKey();
            expectSymbol(":");
            call.arguments.push_back({.label = key, .value = &parseExpression()});
        } while (takeSymbol(","));
        return true;
    }
    if (!startsGivenParameters()) return false;
    bool const isTrue = isWord("with");
    std::size_t const first = place();
    advance();
    do {
        Symbol const name = takeIdentifier(u"identifier");
        call.arguments.push_back({.label = name, .value = &makeLiteral(first, isTrue)});
    } while (takeSymbol(",") || (isWord("and") && isIdentifier(ahead(1)) && takeWord("and")));
    return true;
}

Expression& ExpressionParser::parseLabeledCall(Symbol name, Expression* direct, std::size_t firstToken) {
    LabeledCall call{.name = name, .direct = direct};
    while (parseLabeledArguments(call)) {}
    return make(firstToken, std::move(call));
}

} // namespace mac::applescript
