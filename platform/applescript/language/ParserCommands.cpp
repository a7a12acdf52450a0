#include "platform/applescript/language/ScriptParser.h"
#include <algorithm>
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
std::size_t ScriptParser::labelLength(std::u16string_view& label) const {
    if (current().kind != TokenKind::Word || !m_labelsAllowed || isStop()) return 0;
    std::span<Token const> const rest = std::span(m_tokens).subspan(m_place);
    for (std::u16string_view const candidate : Labels) {
        std::size_t const count = tokensSpelling(rest, candidate);
        if (count == 0) continue;
        label = candidate;
        return count;
    }
    return 0;
}

// given rounding:true, with rounding, without rounding
bool ScriptParser::startsGivenParameters() const {
    if (isStop()) return false;
    return isWord("given") || ((isWord("with") || isWord("without")) && isIdentifier(ahead(1)));
}

bool ScriptParser::isStop() const {
    if (m_stops.empty() || current().kind != TokenKind::Word) return false;
    if (isWord("with") || isWord("without") || isWord("given")) return true;
    std::span<Token const> const rest = std::span(m_tokens).subspan(m_place);
    return std::ranges::any_of(m_stops, [&](std::u16string_view stop) { return tokensSpelling(rest, stop) > 0; });
}

// Whether an expression may begin here. Operators and what ends an expression do not begin one.
bool ScriptParser::startsExpression() const {
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

Node* ScriptParser::parseEnumerator(std::span<Enumerator const> enumerators) {
    std::span<Token const> const rest = std::span(m_tokens).subspan(m_place);
    Enumerator const* best = nullptr;
    std::size_t most = 0;
    for (Enumerator const& enumerator : enumerators) {
        std::size_t const count = tokensSpelling(rest, enumerator.name);
        if (count <= most) continue;
        most = count;
        best = &enumerator;
    }
    if (!best || matchTerm().tokenCount > most) return nullptr;
    std::size_t const first = m_place;
    for (; most > 0; --most)
        advance();
    Node& node = make(NodeKind::Literal, first);
    node.value = Value::constant(best->code);
    return &node;
}

void ScriptParser::addParameter(Node& node, CommandParameter const& parameter, Node& value) const {
    if (std::ranges::find(node.codes, parameter.code) != node.codes.end()) {
        std::u16string const message =
            u"The " + std::u16string(parameter.label) + u" parameter is specified more than once.";
        throw syntaxError(errors::ParameterTwice, message, value.range);
    }
    node.codes.push_back(parameter.code);
    node.list.push_back(&value);
}

// with administrator privileges and hidden answer
void ScriptParser::parseBooleanParameters(Node& node, CommandTerm const& command) {
    std::size_t const first = m_place;
    bool const isTrue = isWord("with");
    advance();
    do {
        std::span<Token const> const rest = std::span(m_tokens).subspan(m_place);
        auto const found = std::ranges::find_if(command.parameters, [&](CommandParameter const& parameter) {
            return parameter.isBoolean && tokensSpelling(rest, parameter.label) > 0;
        });
        if (found == command.parameters.end()) expected(u"“given”, “with”, “without”, other parameter name, etc.");
        for (std::size_t count = tokensSpelling(rest, found->label); count > 0; --count)
            advance();
        Node& value = make(NodeKind::Literal, first);
        value.value = Value::boolean(isTrue);
        addParameter(node, *found, value);
    } while (takeSymbol(",") || takeWord("and"));
}

bool ScriptParser::parseCommandParameter(Node& node, CommandTerm const& command) {
    if (current().kind != TokenKind::Word) return false;
    std::span<Token const> const rest = std::span(m_tokens).subspan(m_place);
    CommandParameter const* parameter = nullptr;
    std::size_t most = 0;
    for (CommandParameter const& candidate : command.parameters) {
        std::size_t const count = tokensSpelling(rest, candidate.label);
        if (count <= most) continue;
        most = count;
        parameter = &candidate;
    }
    if (!parameter) {
        bool const hasBooleans = std::ranges::any_of(command.parameters, &CommandParameter::isBoolean);
        if (!hasBooleans || (!isWord("with") && !isWord("without"))) return false;
        parseBooleanParameters(node, command);
        return true;
    }
    std::size_t const first = m_place;
    for (; most > 0; --most)
        advance();
    Node* value = parseEnumerator(parameter->enumerators);
    if (!value && (parameter->label == u"as" || parameter->label == u"new")) {
        Code const code = parseClassName();
        value = &make(NodeKind::Literal, first);
        value->value = Value::type(code);
    }
    // make login item at end: of what is told.
    bool const isBareEnd =
        !value && (isWord("end") || isWord("beginning")) && !ahead(1).isWord("of") && !ahead(1).isWord("in");
    if (isBareEnd) {
        value = &parseElement(codeOf("insl"), m_place);
        value->form = isWord("end") ? Form::End : Form::Beginning;
        advance();
    }
    if (!value) value = &parseExpression();
    addParameter(node, *parameter, *value);
    return true;
}

Node& ScriptParser::parseCommand(CommandTerm const& command, std::size_t firstToken) {
    Node& node = make(NodeKind::Command, firstToken);
    node.command = &command;
    std::size_t const outerStops = m_stops.size();
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    for (CommandParameter const& parameter : command.parameters)
        m_stops.push_back(parameter.label);
    if (m_stops.empty()) m_stops.emplace_back(u"given");
    if (command.direct != DirectParameter::None) {
        node.a = parseEnumerator(command.enumerators);
        bool const isSubtraction = isSymbol("-") && command.direct == DirectParameter::Optional;
        if (!node.a && startsExpression() && !isSubtraction) node.a = &parseExpression();
    }
    while (parseCommandParameter(node, command)) {}
    m_stops.resize(outerStops);
    m_labelsAllowed = labelsAllowed;
    return close(node);
}

// count x, count of x, number of x, count x each integer, count integers in x.
Node& ScriptParser::parseCount() {
    std::size_t const first = m_place;
    advance();
    if (isWord("of") || isWord("in")) advance();
    Node& node = make(NodeKind::Count, first);
    std::size_t const outerStops = m_stops.size();
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    if (takeWord("each")) {
        node.code = parseClassName();
        if (!takeWord("in")) expectWord("of");
    }
    m_stops.emplace_back(u"each");
    if (startsExpression()) {
        // count binds like a property: number of words of x + 1
        node.a = &parseReference();
    }
    m_stops.resize(outerStops);
    if (node.code == 0 && takeWord("each")) node.code = parseClassName();
    m_labelsAllowed = labelsAllowed;
    return close(node);
}

// A variable or a call.
Node& ScriptParser::parseIdentifier() {
    std::size_t const first = m_place;
    Symbol const name = takeIdentifier(u"variable name or property");
    if (isSymbol("(")) return parseCall(name, first);
    bool const isInterleaved = isSymbol(":") && first > 0 &&
                               (m_tokens[first - 1].isWord("my") || m_tokens[first - 1].isWord("its") ||
                                m_tokens[first - 1].isSymbol("'s") || m_tokens[first - 1].isWord("to"));
    if (isInterleaved) return parseInterleavedCall(name, first);
    std::u16string_view label;
    bool const isLabeled = labelLength(label) > 0 || (m_labelsAllowed && startsGivenParameters());
    if (isLabeled) return parseLabeledCall(name, nullptr, first);
    return makeVariable(name, first);
}

Node& ScriptParser::parseCall(Symbol name, std::size_t firstToken) {
    std::vector<std::u16string_view> const stops = std::exchange(m_stops, {});
    bool const labelsAllowed = std::exchange(m_labelsAllowed, true);
    advance();
    Node& node = make(NodeKind::Call, firstToken);
    node.name = name;
    if (!isSymbol(")")) {
        do
            node.list.push_back(&parseExpression());
        while (takeSymbol(","));
    }
    if (!isSymbol(")")) expected(u"“,” or “)”");
    advance();
    m_stops = stops;
    m_labelsAllowed = labelsAllowed;
    return close(node);
}

// a:1 b:2 is the positional handler a_b_.
Node& ScriptParser::parseInterleavedCall(Symbol first, std::size_t firstToken) {
    Node& node = make(NodeKind::Call, firstToken);
    std::u16string name = first->spelling;
    while (true) {
        expectSymbol(":");
        name += u'_';
        node.list.push_back(&parseExpression(0));
        if (!(current().kind == TokenKind::Word && ahead(1).isSymbol(":"))) break;
        name += current().text;
        advance();
    }
    node.name = identifierSymbol(name);
    return close(node);
}

bool ScriptParser::parseLabeledArguments(Node& call) {
    std::u16string_view label;
    if (std::size_t count = labelLength(label); count > 0) {
        for (; count > 0; --count)
            advance();
        call.names.push_back(identifierSymbol(label));
        call.list.push_back(&parseExpression());
        return true;
    }
    if (takeWord("given")) {
        do {
            if (!isRecordKey()) expected(u"identifier");
            call.names.push_back(parseRecordKey());
            expectSymbol(":");
            call.list.push_back(&parseExpression());
        } while (takeSymbol(","));
        return true;
    }
    if (!startsGivenParameters()) return false;
    bool const isTrue = isWord("with");
    std::size_t const first = m_place;
    advance();
    do {
        call.names.push_back(takeIdentifier(u"identifier"));
        Node& value = make(NodeKind::Literal, first);
        value.value = Value::boolean(isTrue);
        call.list.push_back(&value);
    } while (takeSymbol(",") || (isWord("and") && isIdentifier(ahead(1)) && takeWord("and")));
    return true;
}

Node& ScriptParser::parseLabeledCall(Symbol name, Node* direct, std::size_t firstToken) {
    Node& node = make(NodeKind::LabeledCall, firstToken);
    node.name = name;
    node.b = direct;
    while (parseLabeledArguments(node)) {}
    return close(node);
}

} // namespace mac::applescript
