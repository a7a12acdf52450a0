#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/predicates/PredicateLexer.h"
#include "platform/foundation/predicates/PredicatePattern.h"
#include "platform/foundation/predicates/PredicateTree.h"
#include <algorithm>
#include <array>
#include <limits>

namespace mac {

namespace {

// Brackets and NOTs within each other; text that nests deeper is refused.
constexpr unsigned DeepestNesting = 100;

struct OperatorName {
    std::string_view name;
    PredicateOperator operation;
};

constexpr std::array SymbolOperators{
    OperatorName{"==", PredicateOperator::Equal},  OperatorName{"!=", PredicateOperator::NotEqual},
    OperatorName{"<", PredicateOperator::Less},    OperatorName{"<=", PredicateOperator::LessOrEqual},
    OperatorName{">", PredicateOperator::Greater}, OperatorName{">=", PredicateOperator::GreaterOrEqual},
};

constexpr std::array WordOperators{
    OperatorName{"beginswith", PredicateOperator::BeginsWith}, OperatorName{"endswith", PredicateOperator::EndsWith},
    OperatorName{"contains", PredicateOperator::Contains},     OperatorName{"like", PredicateOperator::Like},
    OperatorName{"matches", PredicateOperator::Matches},       OperatorName{"in", PredicateOperator::In},
    OperatorName{"between", PredicateOperator::Between},
};

class Parser {
public:
    Parser(std::u16string_view text, std::span<FormatArgument const> arguments)
        : m_lexer(text), m_arguments(arguments), m_token(m_lexer.next()) {}

    PredicateNode parse() {
        PredicateNode node = alternatives();
        if (m_token.kind != PredicateToken::Kind::End) fail("AND, OR or the end is expected here");
        return node;
    }

private:
    // Counts one level of nesting as long as it lives.
    class Level {
    public:
        explicit Level(Parser& parser) : m_parser(parser) {
            if (++m_parser.m_depth > DeepestNesting) m_parser.fail("the predicate is nested too deeply");
        }
        ~Level() { --m_parser.m_depth; }
        Level(Level const&) = delete;
        Level& operator=(Level const&) = delete;

    private:
        Parser& m_parser;
    };

    [[noreturn]] void fail(std::string const& what) const { m_lexer.fail(m_token.position, what); }

    bool isWord(std::string_view word) const {
        return m_token.kind == PredicateToken::Kind::Word && equalsIgnoringCase(m_token.text, word);
    }
    bool isSymbol(std::u16string_view symbol) const {
        return m_token.kind == PredicateToken::Kind::Symbol && m_token.text == symbol;
    }
    void advance() { m_token = m_lexer.next(); }
    bool takeWord(std::string_view word) {
        bool const is = isWord(word);
        if (is) advance();
        return is;
    }
    bool takeSymbol(std::u16string_view symbol) {
        bool const is = isSymbol(symbol);
        if (is) advance();
        return is;
    }
    void needSymbol(std::u16string_view symbol) {
        if (!takeSymbol(symbol)) fail("this is expected here: " + NSString::stringWithCodeUnits(symbol).UTF8String());
    }

    PredicateNode alternatives() {
        PredicateNode first = conditions();
        if (!isWord("or") && !isSymbol(u"||")) return first;
        PredicateNode node{.kind = PredicateNode::Kind::Or};
        node.operands.push_back(std::move(first));
        while (takeWord("or") || takeSymbol(u"||"))
            node.operands.push_back(conditions());
        return node;
    }

    PredicateNode conditions() {
        PredicateNode first = condition();
        if (!isWord("and") && !isSymbol(u"&&")) return first;
        PredicateNode node{.kind = PredicateNode::Kind::And};
        node.operands.push_back(std::move(first));
        while (takeWord("and") || takeSymbol(u"&&"))
            node.operands.push_back(condition());
        return node;
    }

    PredicateNode condition() {
        Level const level(*this);
        if (takeWord("not") || takeSymbol(u"!")) {
            PredicateNode node{.kind = PredicateNode::Kind::Not};
            node.operands.push_back(condition());
            return node;
        }
        if (takeSymbol(u"(")) {
            PredicateNode node = alternatives();
            needSymbol(u")");
            return node;
        }
        if (takeWord("truepredicate")) return {.kind = PredicateNode::Kind::Always};
        if (takeWord("falsepredicate")) return {.kind = PredicateNode::Kind::Never};
        return comparison();
    }

    PredicateModifier modifier() {
        if (takeWord("any") || takeWord("some")) return PredicateModifier::Any;
        if (takeWord("all")) return PredicateModifier::All;
        if (takeWord("none")) return PredicateModifier::None;
        return PredicateModifier::Direct;
    }

    PredicateNode comparison() {
        PredicateNode node{.kind = PredicateNode::Kind::Comparison};
        node.modifier = modifier();
        node.left = expression();
        node.operation = comparisonOperator();
        node.options = options();
        std::size_t const position = m_token.position;
        node.right = expression();
        requireTwoBounds(node, position);
        NSString const pattern = as<NSString>(node.right.constant);
        if (node.operation == PredicateOperator::Matches && pattern != nil)
            node.pattern = std::make_shared<PredicatePattern const>(pattern, node.options);
        return node;
    }

    void requireTwoBounds(PredicateNode const& node, std::size_t position) const {
        using Kind = PredicateExpression::Kind;
        if (node.operation != PredicateOperator::Between) return;
        if (node.right.kind == Kind::KeyPath || node.right.kind == Kind::Self) return;
        bool const isList = node.right.kind == Kind::Aggregate;
        std::size_t const count = isList ? node.right.members.size() : as<NSArray>(node.right.constant).count();
        if (count != 2) m_lexer.fail(position, "BETWEEN needs a list of two values");
    }

    PredicateOperator comparisonOperator() {
        bool const isName = m_token.kind == PredicateToken::Kind::Word;
        if (!isName && m_token.kind != PredicateToken::Kind::Symbol) fail("a comparison is expected here");
        auto const find = [&](auto const& operators) -> OperatorName const* {
            auto const found = std::ranges::find_if(
                operators, [&](OperatorName const& known) { return equalsIgnoringCase(m_token.text, known.name); });
            return found == operators.end() ? nullptr : &*found;
        };
        OperatorName const* const found = isName ? find(WordOperators) : find(SymbolOperators);
        if (!found) fail("a comparison is expected here");
        advance();
        return found->operation;
    }

    NSUInteger options() {
        if (m_token.kind != PredicateToken::Kind::Options) return 0;
        NSUInteger options = 0;
        for (char16_t const letter : m_token.text) {
            if ((letter | 0x20) == u'c')
                options |= NSCaseInsensitiveSearch;
            else if ((letter | 0x20) == u'd')
                options |= NSDiacriticInsensitiveSearch;
            else
                fail("the options of a comparison are c and d");
        }
        advance();
        return options;
    }

    PredicateExpression expression() {
        Level const level(*this);
        PredicateToken const token = m_token;
        switch (token.kind) {
        case PredicateToken::Kind::Word:
            return word();
        case PredicateToken::Kind::KeyPath:
            advance();
            return keyPath(token.text);
        case PredicateToken::Kind::String:
            advance();
            return constant(NSString::stringWithCodeUnits(token.text));
        case PredicateToken::Kind::Number:
            advance();
            return constant(token.number);
        case PredicateToken::Kind::Argument:
            return argument();
        default:
            break;
        }
        if (takeSymbol(u"{")) return list();
        fail("a value is expected here: a key, a text in quotes, a number, a list in braces");
    }

    PredicateExpression word() {
        if (takeWord("self")) return {.kind = PredicateExpression::Kind::Self};
        if (takeWord("null") || takeWord("nil")) return constant(nil);
        if (takeWord("true") || takeWord("yes")) return constant(NSNumber::numberWithBool_(YES));
        if (takeWord("false") || takeWord("no")) return constant(NSNumber::numberWithBool_(NO));
        if (takeWord("cast")) return cast();
        std::u16string const key = m_token.text;
        if (isReservedInPredicates(key)) {
            std::string const name = NSString::stringWithCodeUnits(key).UTF8String();
            fail("a value is expected here; a key of this name is written #" + name);
        }
        advance();
        if (isSymbol(u"(")) fail("functions are not known");
        return keyPath(key);
    }

    // CAST(seconds, "NSDate"), and CAST("nan", "NSNumber") for the three numbers without digits.
    PredicateExpression cast() {
        needSymbol(u"(");
        std::size_t const position = m_token.position;
        id const value = expression().constant;
        needSymbol(u",");
        NSString const type = as<NSString>(expression().constant);
        needSymbol(u")");
        NSNumber const seconds = as<NSNumber>(value);
        if (type.isEqualToString_("NSDate") && seconds != nil)
            return constant(NSDate::dateWithTimeIntervalSinceReferenceDate_(seconds.doubleValue()));
        NSString const text = as<NSString>(value);
        double const infinity = std::numeric_limits<double>::infinity();
        bool const isNumber = type.isEqualToString_("NSNumber");
        if (isNumber && text.isEqualToString_("inf")) return constant(NSNumber::numberWithDouble_(infinity));
        if (isNumber && text.isEqualToString_("-inf")) return constant(NSNumber::numberWithDouble_(-infinity));
        if (isNumber && text.isEqualToString_("nan"))
            return constant(NSNumber::numberWithDouble_(std::numeric_limits<double>::quiet_NaN()));
        m_lexer.fail(position, "this cast is not known");
    }

    PredicateExpression list() {
        PredicateExpression list{.kind = PredicateExpression::Kind::Aggregate};
        if (!isSymbol(u"}")) {
            do
                list.members.push_back(expression());
            while (takeSymbol(u","));
        }
        needSymbol(u"}");
        if (!std::ranges::all_of(list.members, [](PredicateExpression const& member) {
                return member.kind == PredicateExpression::Kind::Constant;
            }))
            return list;
        std::vector<id> values;
        for (PredicateExpression const& member : list.members)
            values.push_back(member.constant == nil ? id(NSNull::null()) : member.constant);
        return constant(NSArray::arrayWithVector(std::move(values)));
    }

    PredicateExpression argument() {
        PredicateToken const token = m_token;
        std::size_t const index = token.index ? *token.index : m_nextArgument++;
        if (index >= m_arguments.size()) fail("there is no argument for this");
        try {
            PredicateExpression const result =
                token.conversion == u'K'
                    ? keyPath(std::u16string(keyPathArgument(m_arguments[index]).codeUnits()) + token.text)
                    : constant(valueArgument(m_arguments[index], token.conversion));
            advance();
            return result;
        } catch (PredicateArgumentMismatch const& mismatch) {
            fail(mismatch.what);
        }
    }

    static PredicateExpression constant(id value) {
        return {.kind = PredicateExpression::Kind::Constant, .constant = std::move(value)};
    }

    static PredicateExpression keyPath(std::u16string_view path) {
        return {
            .kind = PredicateExpression::Kind::KeyPath,
            .keyPath = NSString::stringWithCodeUnits(path),
            .isPlainKey = path.find_first_of(u".@") == std::u16string_view::npos,
        };
    }

    PredicateLexer m_lexer;
    std::span<FormatArgument const> m_arguments;
    PredicateToken m_token;
    std::size_t m_nextArgument{0};
    unsigned m_depth{0};
};

} // namespace

PredicateNode parsePredicate(NSString const& format, std::span<FormatArgument const> arguments) {
    if (format == nil) throw NSInvalidArgumentException("A predicate's format is nil");
    return Parser(format.codeUnits(), arguments).parse();
}

} // namespace mac
