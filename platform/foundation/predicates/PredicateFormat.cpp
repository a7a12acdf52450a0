#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/predicates/PredicateLexer.h"
#include "platform/foundation/predicates/PredicateTree.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace mac {

namespace {

std::u16string concatenated(std::initializer_list<std::u16string_view> parts) {
    std::u16string whole;
    for (std::u16string_view const part : parts)
        whole += part;
    return whole;
}

std::u16string fromAscii(std::string_view text) { return {text.begin(), text.end()}; }

std::u16string escapedUnit(char16_t unit) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::u16string escaped = u"\\u";
    for (unsigned shift = 16; shift > 0; shift -= 4)
        escaped += static_cast<char16_t>(digits[(unit >> (shift - 4)) & 0xFU]);
    return escaped;
}

std::u16string quoted(std::u16string_view text) {
    std::u16string result = u"\"";
    for (char16_t const unit : text) {
        if (unit == u'"' || unit == u'\\')
            result += {u'\\', unit};
        else if (unit < 0x20 || unit == 0x7F)
            result += escapedUnit(unit);
        else
            result += unit;
    }
    return result + u'"';
}

std::u16string formatOfReal(double value) {
    std::array<char, 32> buffer{};
    auto const written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    std::u16string const text = fromAscii({buffer.data(), written.ptr});
    // A real stays one when it is read back; an integer has no negative zero.
    bool const looksLikeInteger = text.find_first_of(u".e") == std::u16string::npos;
    return looksLikeInteger ? concatenated({text, u".0"}) : text;
}

std::u16string formatOfNumber(NSNumber const& number) {
    switch (number.kind()) {
    case NSNumber::Kind::Boolean:
        return number.boolValue() ? u"TRUE" : u"FALSE";
    case NSNumber::Kind::Signed:
        return fromAscii(std::to_string(number.longLongValue()));
    case NSNumber::Kind::Unsigned:
        return fromAscii(std::to_string(number.unsignedLongLongValue()));
    case NSNumber::Kind::Real:
        break;
    }
    double const value = number.doubleValue();
    if (std::isfinite(value)) return formatOfReal(value);
    if (std::isnan(value)) return u"CAST(\"nan\", \"NSNumber\")";
    return value > 0 ? u"CAST(\"inf\", \"NSNumber\")" : u"CAST(\"-inf\", \"NSNumber\")";
}

std::u16string formatOfConstant(id const& value);

template <class Members, class Function>
std::u16string formatOfList(Members const& members, Function const& formatOfMember) {
    std::u16string list = u"{";
    for (bool isFirst = true; auto const& member : members) {
        if (!isFirst) list += u", ";
        isFirst = false;
        list += formatOfMember(member);
    }
    return list + u"}";
}

std::u16string formatOfConstant(id const& value) {
    if (value == nil || isSame(value, NSNull::null())) return u"NULL";
    if (NSString const text = as<NSString>(value); text != nil) return quoted(text.codeUnits());
    if (NSNumber const number = as<NSNumber>(value); number != nil) return formatOfNumber(number);
    if (NSDate const date = as<NSDate>(value); date != nil)
        return concatenated({u"CAST(", formatOfReal(date.timeIntervalSinceReferenceDate()), u", \"NSDate\")"});
    if (NSArray const array = as<NSArray>(value); array != nil) return formatOfList(array, formatOfConstant);
    if (NSSet const set = as<NSSet>(value); set != nil) return formatOfList(set.allObjects(), formatOfConstant);
    return std::u16string(value.description().codeUnits());
}

// Whether the language reads the text as this key path.
bool isPlainPath(std::u16string_view path) {
    for (std::size_t start = 0;;) {
        std::size_t const dot = path.find(u'.', start);
        std::u16string_view component = path.substr(start, dot - start);
        if (component.starts_with(u'@')) component.remove_prefix(1);
        if (!isIdentifierInPredicates(component)) return false;
        if (dot == std::u16string_view::npos) return true;
        start = dot + 1;
    }
}

std::u16string formatOfKeyPath(std::u16string_view path) {
    std::u16string format;
    bool const isPlain = isPlainPath(path);
    if (!isPlain || isWrittenWithMark(path.substr(0, path.find(u'.')))) format += u'#';
    return format.append(isPlain ? std::u16string(path) : quoted(path));
}

std::u16string formatOfExpression(PredicateExpression const& expression) {
    using Kind = PredicateExpression::Kind;
    switch (expression.kind) {
    case Kind::Self:
        return u"SELF";
    case Kind::KeyPath:
        return formatOfKeyPath(expression.keyPath.codeUnits());
    case Kind::Aggregate:
        return formatOfList(expression.members, formatOfExpression);
    case Kind::Constant:
        break;
    }
    return formatOfConstant(expression.constant);
}

std::u16string formatOfOperator(PredicateOperator operation) {
    switch (operation) {
    case PredicateOperator::Less:
        return u"<";
    case PredicateOperator::LessOrEqual:
        return u"<=";
    case PredicateOperator::Greater:
        return u">";
    case PredicateOperator::GreaterOrEqual:
        return u">=";
    case PredicateOperator::Equal:
        return u"==";
    case PredicateOperator::NotEqual:
        return u"!=";
    case PredicateOperator::Matches:
        return u"MATCHES";
    case PredicateOperator::Like:
        return u"LIKE";
    case PredicateOperator::BeginsWith:
        return u"BEGINSWITH";
    case PredicateOperator::EndsWith:
        return u"ENDSWITH";
    case PredicateOperator::Contains:
        return u"CONTAINS";
    case PredicateOperator::In:
        return u"IN";
    case PredicateOperator::Between:
        break;
    }
    return u"BETWEEN";
}

std::u16string formatOfModifier(PredicateModifier modifier) {
    switch (modifier) {
    case PredicateModifier::Direct:
        return u"";
    case PredicateModifier::Any:
        return u"ANY ";
    case PredicateModifier::All:
        return u"ALL ";
    case PredicateModifier::None:
        break;
    }
    return u"NONE ";
}

std::u16string formatOfOptions(NSUInteger options) {
    if (options == 0) return u"";
    std::u16string letters = u"[";
    if (options & NSCaseInsensitiveSearch) letters += u'c';
    if (options & NSDiacriticInsensitiveSearch) letters += u'd';
    return letters + u"]";
}

std::u16string formatOfComparison(PredicateNode const& node) {
    return concatenated({formatOfModifier(node.modifier), formatOfExpression(node.left), u" ",
                         formatOfOperator(node.operation), formatOfOptions(node.options), u" ",
                         formatOfExpression(node.right)});
}

// In brackets where it would not be read as one thing.
std::u16string formatOfOperand(PredicateNode const& node) {
    bool const isJoined = node.kind == PredicateNode::Kind::And || node.kind == PredicateNode::Kind::Or;
    return isJoined ? concatenated({u"(", formatOfPredicate(node), u")"}) : formatOfPredicate(node);
}

std::u16string joined(std::vector<PredicateNode> const& operands, std::u16string_view word) {
    std::u16string text;
    for (PredicateNode const& operand : operands) {
        if (!text.empty()) text += word;
        text += formatOfOperand(operand);
    }
    return text;
}

bool areSameOrEqual(id const& first, id const& second) { return isSame(first, second) || first.isEqual_(second); }

bool areEqualExpressions(PredicateExpression const& first, PredicateExpression const& second) {
    return first.kind == second.kind && areSameOrEqual(first.constant, second.constant) &&
           areSameOrEqual(first.keyPath, second.keyPath) &&
           std::ranges::equal(first.members, second.members, areEqualExpressions);
}

} // namespace

std::u16string formatOfPredicate(PredicateNode const& node) {
    switch (node.kind) {
    case PredicateNode::Kind::Always:
        return u"TRUEPREDICATE";
    case PredicateNode::Kind::Never:
        return u"FALSEPREDICATE";
    case PredicateNode::Kind::Not:
        return concatenated({u"NOT ", formatOfOperand(node.operands.front())});
    case PredicateNode::Kind::And:
        return joined(node.operands, u" AND ");
    case PredicateNode::Kind::Or:
        return joined(node.operands, u" OR ");
    case PredicateNode::Kind::Comparison:
        break;
    }
    return formatOfComparison(node);
}

bool areEqualPredicates(PredicateNode const& first, PredicateNode const& second) {
    return first.kind == second.kind && first.operation == second.operation && first.modifier == second.modifier &&
           first.options == second.options && areEqualExpressions(first.left, second.left) &&
           areEqualExpressions(first.right, second.right) &&
           std::ranges::equal(first.operands, second.operands, areEqualPredicates);
}

} // namespace mac
