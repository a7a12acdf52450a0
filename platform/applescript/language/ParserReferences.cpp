#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/ExpressionParser.h"
#include <algorithm>
#include <array>

namespace mac::applescript {

namespace {

constexpr auto Ordinals = std::to_array<std::string_view>(
    {"first", "second", "third", "fourth", "fifth", "sixth", "seventh", "eighth", "ninth", "tenth"});

// The place in the tree of a reference's container or a call's receiver. Null for other expressions.
Expression** containerOf(Expression& expression) {
    if (auto* const property = expression.as<PropertyReference>()) return &property->container;
    if (auto* const element = expression.as<ElementReference>()) return &element->container;
    if (auto* const call = expression.as<PositionalCall>()) return &call->receiver;
    auto* const call = expression.as<LabeledCall>();
    return call ? &call->receiver : nullptr;
}

// The filter that stands in parentheses. Null for anything else.
Expression* filterInside(Expression& expression) {
    Parentheses const* parentheses = expression.as<Parentheses>();
    Expression* inner = nullptr;
    for (; parentheses; parentheses = inner->as<Parentheses>())
        inner = parentheses->inner;
    return inner && inner->is<FilterReference>() ? inner : nullptr;
}

} // namespace

bool ExpressionParser::isContainerWord() const { return (isWord("of") || isWord("in")) && !isStop(); }

Expression& ExpressionParser::parseReference() {
    requireRoom();
    std::size_t const first = place();
    bool const startsWithName = isIdentifier(current());
    Expression* expression = &parsePostfix();
    if (isContainerWord() && !areWords({"in", "front", "of"}) && !areWords({"in", "back", "of"})) {
        advance();
        VariableReference const* const variable = startsWithName ? expression->as<VariableReference>() : nullptr;
        bool const mayBeCall = variable && m_labelsAllowed;
        bool const labelsAllowed = std::exchange(m_labelsAllowed, m_labelsAllowed && !mayBeCall);
        // A condition belongs to the whole reference.
        bool const inContainer = std::exchange(m_inContainer, true);
        Expression& container = parseReference();
        m_inContainer = inContainer;
        m_labelsAllowed = labelsAllowed;
        std::u16string_view label;
        if (mayBeCall && (labelLength(label) > 0 || startsGivenParameters()))
            return parseLabeledCall(variable->name, &container, first);
        expression = &attach(*expression, container);
        expression->range.start = tokenAt(first).range.start;
        close(*expression);
    }
    bool const isFilter = !m_inContainer && (isWord("whose") || isWord("where")) && !isStop();
    if (!isFilter) return *expression;
    advance();
    Expression& condition = parseExpression();
    return make(first, FilterReference{.filtered = expression, .condition = &condition});
}

Expression& ExpressionParser::parsePostfix() {
    Expression* expression = &parsePrimary();
    while (takeSymbol("'s"))
        expression = &parseAfterPossessive(*expression);
    return *expression;
}

// What follows 's, my or its: a property, an element or a call, in the owner.
Expression& ExpressionParser::parseAfterPossessive(Expression& owner) {
    std::size_t const first = place();
    Expression* const end = parseOwnedEnd();
    Expression& owned = attach(end ? *end : parsePrimary(), owner);
    owned.range.start = std::min(owner.range.start, tokenAt(first).range.start);
    return owned;
}

// The end or beginning in x's end. Null where something else stands there.
Expression* ExpressionParser::parseOwnedEnd() {
    std::size_t const first = place();
    bool const isEnd = takeWord("end");
    if (!isEnd && !takeWord("beginning")) return nullptr;
    Form const form = isEnd ? Form::End : Form::Beginning;
    return &make(first, ElementReference{.elementClass = codes::InsertionLocation, .form = form});
}

// Puts the head, which has no container yet, into the container.
Expression& ExpressionParser::attach(Expression& head, Expression& container) {
    if (Expression* const whole = attached(head, container)) return *whole;
    goBackTo(place() - 1);
    expected(u"end of line, etc.");
}

// Null where the head can lie in nothing.
Expression* ExpressionParser::attached(Expression& head, Expression& container) {
    requireRoom();
    if (Expression** const place = containerOf(head)) {
        if (*place) return attached(**place, container) ? &head : nullptr;
        *place = &container;
        return &head;
    }
    if (VariableReference const* const variable = head.as<VariableReference>()) {
        Symbol const name = variable->name;
        head.content = PropertyReference{.name = name, .container = &container, .getter = getterNamed(name->spelling)};
        return &head;
    }
    if (FilterReference const* const filter = head.as<FilterReference>())
        return attached(*filter->filtered, container) ? &head : nullptr;
    // A filter in parentheses gets its container from outside.
    if (Expression* const filter = filterInside(head)) return attached(*filter, container);
    DateExpression* const date = head.as<DateExpression>();
    if (date && !date->day) {
        date->day = &container;
        return &head;
    }
    // A class name where a property of that name is meant.
    Literal const* const literal = head.as<Literal>();
    TypeLiteral const* const type = literal ? std::get_if<TypeLiteral>(&literal->content) : nullptr;
    if (!type) return nullptr;
    Symbol const name = termSymbol(type->code, nameOfCode(type->code));
    head.content = PropertyReference{.name = name, .container = &container};
    return &head;
}

// Whether the place of an element may follow: item i, item 3, item (n + 1), item -1, folder "x".
bool ExpressionParser::startsIndex() const {
    Token const& token = current();
    switch (token.kind) {
    case TokenKind::Integer:
    case TokenKind::Real:
    case TokenKind::Text:
    case TokenKind::Barred:
        return true;
    case TokenKind::Mark:
        if (token.word == "(") return true;
        return token.word == "-" && (ahead(1).kind == TokenKind::Integer || ahead(1).kind == TokenKind::Real ||
                                     ahead(1).isSymbol("(") || isIdentifier(ahead(1)));
    case TokenKind::Word:
        return isIdentifier(token) && !isStop() && !peekOperator();
    default:
        return false;
    }
}

Expression& ExpressionParser::parseIndexOperand() {
    std::size_t const first = place();
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    bool const isNegation = takeSymbol("-");
    Expression& operand = parsePrimary();
    m_labelsAllowed = labelsAllowed;
    if (!isNegation) return operand;
    return make(first, UnaryOperation{.operation = Operation::Negate, .operand = &operand});
}

// every item, some item, first item, 3rd item, last item, middle item.
Expression* ExpressionParser::parseOrdinal() {
    std::size_t const first = place();
    double index = 0;
    Form form = Form::Index;
    if (current().kind == TokenKind::Ordinal)
        index = current().number;
    else if (isWord("every"))
        form = Form::Every;
    else if (isWord("some"))
        form = Form::Some;
    else if (isWord("middle"))
        form = Form::Middle;
    else if (isWord("last") || isWord("back"))
        form = Form::Last;
    else if (isWord("front"))
        index = 1;
    else
        for (std::size_t ordinal = 0; ordinal < Ordinals.size(); ++ordinal)
            if (isWord(Ordinals[ordinal])) index = static_cast<double>(ordinal) + 1;
    if (form == Form::Index && index == 0 && current().kind != TokenKind::Ordinal) return nullptr;
    advance();
    std::size_t const classPlace = place();
    Code const code = parseClassName();
    if (form == Form::Every && startsIndex()) {
        goBackTo(classPlace);
        return &parsePrimary();
    }
    Expression* const selector = form == Form::Index ? &makeLiteral(first, numberLiteral(index)) : nullptr;
    return &make(first, ElementReference{.elementClass = code, .form = form, .selector = selector});
}

// beginning, end; before x, after x.
Expression* ExpressionParser::parseInsertion() {
    std::size_t const first = place();
    ElementReference insertion{.elementClass = codes::InsertionLocation};
    bool const isEnd = isWord("end") || isWord("back");
    if ((isWord("beginning") || isWord("front") || isEnd) && (ahead(1).isWord("of") || ahead(1).isWord("in"))) {
        advance();
        insertion.form = isEnd ? Form::End : Form::Beginning;
        return &make(first, insertion);
    }
    bool const isBefore = takeWord("before") || takeWords({"in", "front", "of"});
    if (!isBefore && !takeWord("after") && !takeWord("behind") && !takeWords({"in", "back", "of"})) return nullptr;
    insertion.form = isBefore ? Form::Before : Form::After;
    insertion.container = &parseReference();
    return &make(first, insertion);
}

Expression& ExpressionParser::parseTerm(TermMatch const& match) {
    std::size_t const first = place();
    Term const& term = *match.term;
    skip(match.tokenCount);
    if (term.command) return parseCommand(*term.command, first);
    if (term.isValue) return makeLiteral(first, TypeLiteral{term.classCode});
    if (term.classCode != 0) return parseClassTerm(term, first);
    if (term.propertyCode == 0) return makeLiteral(first, ConstantLiteral{term.constantCode});
    Symbol const name = termSymbol(term.propertyCode, term.name);
    Expression& property = make(first, PropertyReference{.name = name, .isOfApplication = match.isOfApplication});
    if (!match.isOfApplication) m_body->names.push_back(&property);
    return property;
}

Expression& ExpressionParser::parseClassTerm(Term const& term, std::size_t firstToken) {
    // An application's own files are elements of it.
    bool const isOwnFile = Terminology::base().termNamed(term.name) != &term;
    bool const opensFile = term.classCode == codes::AliasType || term.classCode == codes::POSIXFileType ||
                           (term.classCode == codes::File && !term.isPlural && !isOwnFile);
    if (term.classCode == codes::DateType && startsIndex()) return parseDate(firstToken);
    if (opensFile && startsIndex() && current().kind != TokenKind::Integer) {
        Expression& path = parseIndexOperand();
        return make(firstToken, FileReference{.fileClass = term.classCode, .path = &path});
    }
    return parseElementOfClass(term, firstToken);
}

// An element, a range or all of the class; where none of them follows, the class itself or the property of its name.
Expression& ExpressionParser::parseElementOfClass(Term const& term, std::size_t firstToken) {
    ElementReference element{.elementClass = term.classCode, .form = Form::Index};
    if (takeWord("id"))
        element.form = Form::Identifier;
    else if (takeWord("named"))
        element.form = Form::Name;
    else
        takeWord("index");
    if (startsIndex() || (element.form == Form::Identifier && isSymbol("{"))) {
        element.selector = &parseIndexOperand();
        if (takeWord("thru") || takeWord("through")) {
            element.form = Form::Range;
            element.rangeEnd = &parseIndexOperand();
        }
        return make(firstToken, element);
    }
    if (isWord("from") && !isStop() && (term.isPlural || term.classCode == codes::TextType)) {
        bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
        advance();
        element.form = Form::Range;
        element.selector = &parsePostfix();
        if (!takeWord("thru") && !takeWord("through")) expectWord("to");
        element.rangeEnd = &parsePostfix();
        m_labelsAllowed = labelsAllowed;
        return make(firstToken, element);
    }
    element.form = Form::Every;
    Expression& whole =
        term.isPlural ? make(firstToken, element) : makeLiteral(firstToken, TypeLiteral{term.classCode});
    if (term.isPlural || term.propertyCode == 0 || !isContainerWord()) return whole;
    whole.content = PropertyReference{.name = termSymbol(term.propertyCode, term.name)};
    return whole;
}

Expression& ExpressionParser::parseDate(std::size_t firstToken) {
    Expression& text = parseIndexOperand();
    return make(firstToken, DateExpression{.text = &text});
}

Expression& ExpressionParser::parseApplication() {
    using Naming = ApplicationReference::Naming;
    std::size_t const first = place();
    advance();
    Naming const naming = takeWord("id") ? Naming::Identifier : Naming::Name;
    if (!startsIndex()) return makeLiteral(first, TypeLiteral{codes::Application});
    Expression& name = parseIndexOperand();
    return make(first, ApplicationReference{.name = &name, .naming = naming});
}

} // namespace mac::applescript
