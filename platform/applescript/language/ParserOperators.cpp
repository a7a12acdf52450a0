#include "platform/applescript/language/ExpressionParser.h"
#include "platform/applescript/language/Operation.h"
#include <array>

namespace mac::applescript {

namespace {

struct SymbolOperator {
    std::string_view spelling;
    Operation operation;
    int precedence;
};

constexpr auto SymbolOperators = std::to_array<SymbolOperator>({
    {"&", Operation::Concatenate, precedence::Concatenation},
    {"+", Operation::Add, precedence::Sum},
    {"-", Operation::Subtract, precedence::Sum},
    {"*", Operation::Multiply, precedence::Product},
    {"/", Operation::Divide, precedence::Product},
    {"^", Operation::Power, precedence::Power},
    {"=", Operation::Equal, precedence::Equality},
    {"≠", Operation::NotEqual, precedence::Equality},
    {"<", Operation::Less, precedence::Relation},
    {">", Operation::Greater, precedence::Relation},
    {"≤", Operation::AtMost, precedence::Relation},
    {"≥", Operation::AtLeast, precedence::Relation},
});

struct WordOperator {
    std::u16string_view words;
    Operation operation;
    int precedence;
};

// Whichever has the most words counts.
constexpr auto WordOperators = std::to_array<WordOperator>({
    {u"or", Operation::Or, precedence::Or},
    {u"and", Operation::And, precedence::And},
    {u"div", Operation::IntegerDivide, precedence::Product},
    {u"mod", Operation::Modulo, precedence::Product},
    {u"as", Operation::As, precedence::Coercion},
    {u"equal", Operation::Equal, precedence::Equality},
    {u"equals", Operation::Equal, precedence::Equality},
    {u"equal to", Operation::Equal, precedence::Equality},
    {u"is", Operation::Equal, precedence::Equality},
    {u"is equal", Operation::Equal, precedence::Equality},
    {u"is equal to", Operation::Equal, precedence::Equality},
    {u"is not", Operation::NotEqual, precedence::Equality},
    {u"is not equal", Operation::NotEqual, precedence::Equality},
    {u"is not equal to", Operation::NotEqual, precedence::Equality},
    {u"does not equal", Operation::NotEqual, precedence::Equality},
    {u"less than", Operation::Less, precedence::Relation},
    {u"is less than", Operation::Less, precedence::Relation},
    {u"is not less than", Operation::AtLeast, precedence::Relation},
    {u"less than or equal", Operation::AtMost, precedence::Relation},
    {u"less than or equal to", Operation::AtMost, precedence::Relation},
    {u"is less than or equal", Operation::AtMost, precedence::Relation},
    {u"is less than or equal to", Operation::AtMost, precedence::Relation},
    {u"is not less than or equal", Operation::Greater, precedence::Relation},
    {u"is not less than or equal to", Operation::Greater, precedence::Relation},
    {u"greater than", Operation::Greater, precedence::Relation},
    {u"is greater than", Operation::Greater, precedence::Relation},
    {u"is not greater than", Operation::AtMost, precedence::Relation},
    {u"greater than or equal", Operation::AtLeast, precedence::Relation},
    {u"greater than or equal to", Operation::AtLeast, precedence::Relation},
    {u"is greater than or equal", Operation::AtLeast, precedence::Relation},
    {u"is greater than or equal to", Operation::AtLeast, precedence::Relation},
    {u"is not greater than or equal", Operation::Less, precedence::Relation},
    {u"is not greater than or equal to", Operation::Less, precedence::Relation},
    {u"comes before", Operation::Less, precedence::Relation},
    {u"comes after", Operation::Greater, precedence::Relation},
    {u"does not come before", Operation::AtLeast, precedence::Relation},
    {u"does not come after", Operation::AtMost, precedence::Relation},
    {u"contain", Operation::Contains, precedence::Relation},
    {u"contains", Operation::Contains, precedence::Relation},
    {u"does not contain", Operation::DoesNotContain, precedence::Relation},
    {u"is in", Operation::IsIn, precedence::Relation},
    {u"is contained by", Operation::IsIn, precedence::Relation},
    {u"is not in", Operation::IsNotIn, precedence::Relation},
    {u"is not contained by", Operation::IsNotIn, precedence::Relation},
    {u"start with", Operation::StartsWith, precedence::Relation},
    {u"starts with", Operation::StartsWith, precedence::Relation},
    {u"begin with", Operation::StartsWith, precedence::Relation},
    {u"begins with", Operation::StartsWith, precedence::Relation},
    {u"does not start with", Operation::DoesNotStartWith, precedence::Relation},
    {u"does not begin with", Operation::DoesNotStartWith, precedence::Relation},
    {u"end with", Operation::EndsWith, precedence::Relation},
    {u"ends with", Operation::EndsWith, precedence::Relation},
    {u"does not end with", Operation::DoesNotEndWith, precedence::Relation},
    {u"is running", Operation::Running, precedence::Equality},
    {u"is not running", Operation::NotRunning, precedence::Equality},
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

std::optional<ExpressionParser::Operator> ExpressionParser::peekOperator() const {
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
    for (WordOperator const& candidate : WordOperators) {
        std::size_t const count = tokensOfOperator(rest(), candidate.words);
        if (count > (best ? best->tokenCount : 0))
            best = Operator{.operation = candidate.operation, .precedence = candidate.precedence, .tokenCount = count};
    }
    return best;
}

} // namespace mac::applescript
