#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/ErrorNumbers.h"
#include "platform/applescript/language/ExpressionParser.h"
#include <algorithm>
#include <array>

namespace mac::applescript {

// Whether an expression may begin here. Operators and what ends an expression do not begin one.
bool ExpressionParser::startsExpression() const {
    Token const& token = current();
    if (token.endsStatement() || token.kind == TokenKind::Unknown || token.kind == TokenKind::Unfinished) return false;
    if (token.kind == TokenKind::Mark) return token.word == "(" || token.word == "{" || token.word == "-";
    if (token.kind != TokenKind::Word) return true;
    if (isStop() || peekOperator()) return false;
    constexpr auto ends =
        std::to_array<std::string_view>({"of", "in", "then", "to", "with", "without", "given", "times", "else", "from",
                                         "thru", "through", "by", "whose", "where"});
    return std::ranges::find(ends, token.word) == ends.end();
}

// Null where none of the words stands here.
Expression* ExpressionParser::parseEnumerator(std::span<Enumerator const> enumerators) {
    Enumerator const* best = nullptr;
    std::size_t most = 0;
    for (Enumerator const& enumerator : enumerators) {
        std::size_t const count = tokensSpelling(rest(), enumerator.name);
        if (count <= most) continue;
        most = count;
        best = &enumerator;
    }
    if (!best || matchTerm().tokenCount > most) return nullptr;
    std::size_t const first = place();
    skip(most);
    return &makeLiteral(first, ConstantLiteral{best->code});
}

void ExpressionParser::addParameter(CommandCall& call, CommandParameter const& parameter, Expression& value) const {
    if (std::ranges::find(call.arguments, parameter.code, &CommandArgument::code) != call.arguments.end())
        throw SyntaxError{.number = errors::ParameterTwice,
                          .message =
                              u"The " + std::u16string(parameter.label) + u" parameter is specified more than once.",
                          .range = value.range};
    call.arguments.push_back({.code = parameter.code, .value = &value});
}

// with administrator privileges and hidden answer
void ExpressionParser::parseBooleanParameters(CommandCall& call) {
    std::size_t const first = place();
    bool const isTrue = isWord("with");
    advance();
    do {
        auto const found = std::ranges::find_if(call.command->parameters, [&](CommandParameter const& parameter) {
            return parameter.isBoolean && tokensSpelling(rest(), parameter.label) > 0;
        });
        if (found == call.command->parameters.end())
            expected(u"“given”, “with”, “without”, other parameter name, etc.");
        skip(tokensSpelling(rest(), found->label));
        addParameter(call, *found, makeLiteral(first, isTrue));
    } while (takeSymbol(",") || takeWord("and"));
}

Expression& ExpressionParser::parseParameterValue(CommandParameter const& parameter) {
    std::size_t const first = place();
    if (Expression* const word = parseEnumerator(parameter.enumerators)) return *word;
    if (parameter.label == u"as" || parameter.label == u"new") {
        Code const code = parseClassName();
        return makeLiteral(first, TypeLiteral{code});
    }
    // make login item at end: of what is told.
    bool const isEnd = isWord("end");
    bool const isBareEnd = (isEnd || isWord("beginning")) && !ahead(1).isWord("of") && !ahead(1).isWord("in");
    if (!isBareEnd) return parseExpression();
    advance();
    Form const form = isEnd ? Form::End : Form::Beginning;
    return make(first, ElementReference{.elementClass = codes::InsertionLocation, .form = form});
}

// False where no parameter of the command follows.
bool ExpressionParser::parseCommandParameter(CommandCall& call) {
    if (current().kind != TokenKind::Word) return false;
    if (parseRawParameters(call)) return true;
    CommandParameter const* parameter = nullptr;
    std::size_t most = 0;
    for (CommandParameter const& candidate : call.command->parameters) {
        std::size_t const count = tokensSpelling(rest(), candidate.label);
        if (count <= most) continue;
        most = count;
        parameter = &candidate;
    }
    if (parameter) {
        skip(most);
        addParameter(call, *parameter, parseParameterValue(*parameter));
        return true;
    }
    bool const hasBooleans = std::ranges::any_of(call.command->parameters, &CommandParameter::isBoolean);
    if (!hasBooleans || (!isWord("with") && !isWord("without"))) return false;
    parseBooleanParameters(call);
    return true;
}

Expression& ExpressionParser::parseCommand(CommandTerm const& command, std::size_t firstToken) {
    CommandCall call{.command = &command};
    std::size_t const outerStops = stops().size();
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    for (CommandParameter const& parameter : command.parameters)
        stops().push_back(parameter.label);
    if (stops().empty()) stops().emplace_back(u"given");
    if (command.direct != DirectParameter::None) {
        // get eof of f; but choose file of type "txt"
        if (!isStop()) takeWord("of");
        call.direct = parseEnumerator(command.enumerators);
        bool const isSubtraction = isSymbol("-") && command.direct == DirectParameter::Optional;
        if (!call.direct && startsExpression() && !isSubtraction) call.direct = &parseExpression();
    }
    while (parseCommandParameter(call)) {}
    stops().resize(outerStops);
    m_labelsAllowed = labelsAllowed;
    return make(firstToken, std::move(call));
}

// count x, count of x, number of x, count x each integer, count integers in x.
Expression& ExpressionParser::parseCount() {
    std::size_t const first = place();
    advance();
    if (isWord("of") || isWord("in")) advance();
    CountExpression count;
    std::size_t const outerStops = stops().size();
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    if (takeWord("each")) {
        count.elementClass = parseClassName();
        if (!takeWord("in")) expectWord("of");
    }
    stops().emplace_back(u"each");
    // count binds like a property: number of words of x + 1
    if (startsExpression()) count.counted = &parseReference();
    stops().resize(outerStops);
    if (count.elementClass == 0 && takeWord("each")) count.elementClass = parseClassName();
    m_labelsAllowed = labelsAllowed;
    return make(first, count);
}

} // namespace mac::applescript
