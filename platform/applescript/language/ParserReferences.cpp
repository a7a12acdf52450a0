#include "platform/applescript/language/ScriptParser.h"
#include "platform/applescript/language/StackRoom.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include <array>
#include <cmath>

namespace mac::applescript {

namespace {

constexpr auto Ordinals = std::to_array<std::string_view>(
    {"first", "second", "third", "fourth", "fifth", "sixth", "seventh", "eighth", "ninth", "tenth"});

Code hexCode(std::u16string_view characters) {
    Code code = 0;
    for (std::size_t index = 0; index < 4; ++index)
        code = code << 8U | (index < characters.size() ? characters[index] & 0xFFU : u' ');
    return code;
}

int hexDigit(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    char16_t const lower = unit | 0x20;
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

// Nothing where the digits are not whole bytes.
std::optional<std::string> bytesOfHex(std::u16string_view digits) {
    std::string bytes;
    if (digits.size() % 2 != 0) return {};
    for (std::size_t index = 0; index < digits.size(); index += 2) {
        int const high = hexDigit(digits[index]);
        int const low = hexDigit(digits[index + 1]);
        if (high < 0 || low < 0) return {};
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

Value valueOfData(Code type, std::string const& bytes) {
    if (type != codeOf("utxt")) return makeObject<DataObject>(ValueKind::Data, type, bytes);
    std::u16string units;
    for (std::size_t index = 0; index + 1 < bytes.size(); index += 2)
        units += static_cast<char16_t>(static_cast<unsigned char>(bytes[index]) << 8U |
                                       static_cast<unsigned char>(bytes[index + 1]));
    return Value::text(std::move(units));
}

} // namespace

bool ScriptParser::isContainerWord() const { return (isWord("of") || isWord("in")) && !isStop(); }

Node& ScriptParser::parseReference() {
    requireStackRoom();
    std::size_t const first = m_place;
    bool const startsWithName = isIdentifier(current());
    Node* node = &parsePostfix();
    if (isContainerWord() && !areWords({"in", "front", "of"}) && !areWords({"in", "back", "of"})) {
        advance();
        bool const mayBeCall = startsWithName && node->kind == NodeKind::Variable && m_labelsAllowed;
        bool const labelsAllowed = std::exchange(m_labelsAllowed, m_labelsAllowed && !mayBeCall);
        // A condition belongs to the whole reference.
        bool const inContainer = std::exchange(m_inContainer, true);
        Node& container = parseReference();
        m_inContainer = inContainer;
        m_labelsAllowed = labelsAllowed;
        std::u16string_view label;
        if (mayBeCall && (labelLength(label) > 0 || startsGivenParameters()))
            return parseLabeledCall(node->name, &container, first);
        node = &attach(*node, container);
        node->range.start = m_tokens[first].range.start;
        close(*node);
    }
    if (!m_inContainer && (isWord("whose") || isWord("where")) && !isStop()) {
        advance();
        Node& condition = parseExpression();
        Node& filter = make(NodeKind::Filter, first);
        filter.a = node;
        filter.b = &condition;
        node = &filter;
    }
    return *node;
}

Node& ScriptParser::parsePostfix() {
    Node* node = &parsePrimary();
    while (takeSymbol("'s"))
        node = &parseAfterPossessive(*node);
    return *node;
}

// What follows 's, my or its: a property, an element or a call, in the owner.
Node& ScriptParser::parseAfterPossessive(Node& owner) {
    std::size_t const first = m_place;
    Node& head = parsePrimary();
    Node& attached = attach(head, owner);
    attached.range.start = std::min(owner.range.start, m_tokens[first].range.start);
    return attached;
}

// Puts the head, which has no container yet, into the container.
Node& ScriptParser::attach(Node& head, Node& container) {
    switch (head.kind) {
    case NodeKind::Variable:
        head.kind = NodeKind::Property;
        head.a = &container;
        return head;
    case NodeKind::Property:
    case NodeKind::Element:
    case NodeKind::Call:
    case NodeKind::LabeledCall:
        if (head.a)
            attach(*head.a, container);
        else
            head.a = &container;
        return head;
    case NodeKind::Filter:
        attach(*head.a, container);
        return head;
    case NodeKind::Date:
        if (!head.b) {
            head.b = &container;
            return head;
        }
        break;
    case NodeKind::Literal:
        // A class name where a property of that name is meant.
        if (head.value.is(ValueKind::Type)) {
            Code const code = head.value.asCode();
            head.kind = NodeKind::Property;
            head.name = termSymbol(code, nameOfCode(code));
            head.a = &container;
            return head;
        }
        break;
    case NodeKind::Expression: {
        // A filter in parentheses gets its container from outside.
        Node* inner = head.a;
        while (inner->kind == NodeKind::Expression)
            inner = inner->a;
        if (inner->kind == NodeKind::Filter) return attach(*inner, container);
        break;
    }
    default:
        break;
    }
    --m_place;
    expected(u"end of line, etc.");
}

// Whether the place of an element may follow: item i, item 3, item (n + 1), item -1, folder "x".
bool ScriptParser::startsIndex() const {
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

Node& ScriptParser::parseIndexOperand() {
    bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
    Node* operand = nullptr;
    if (isSymbol("-")) {
        std::size_t const first = m_place;
        advance();
        Node& inner = parsePrimary();
        operand = &make(NodeKind::Unary, first);
        operand->operation = Operation::Negate;
        operand->a = &inner;
    } else {
        operand = &parsePrimary();
    }
    m_labelsAllowed = labelsAllowed;
    return *operand;
}

Node& ScriptParser::parseElement(Code classCode, std::size_t firstToken) {
    Node& node = make(NodeKind::Element, firstToken);
    node.code = classCode;
    return node;
}

// every item, some item, first item, 3rd item, last item, middle item.
Node* ScriptParser::parseOrdinal() {
    std::size_t const first = m_place;
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
        for (std::size_t place = 0; place < Ordinals.size(); ++place)
            if (isWord(Ordinals[place])) index = static_cast<double>(place) + 1;
    if (form == Form::Index && index == 0 && current().kind != TokenKind::Ordinal) return nullptr;
    advance();
    std::size_t const classPlace = m_place;
    Code const code = parseClassName();
    if (form == Form::Every && startsIndex()) {
        m_place = classPlace;
        return &parsePrimary();
    }
    Node& node = parseElement(code, first);
    node.form = form;
    if (form == Form::Index) {
        Node& literal = make(NodeKind::Literal, first);
        literal.value = Value::number(index);
        node.b = &literal;
    }
    return &node;
}

// beginning, end; before x, after x.
Node* ScriptParser::parseInsertion() {
    std::size_t const first = m_place;
    bool const isEnd = isWord("end") || isWord("back");
    if ((isWord("beginning") || isWord("front") || isEnd) && (ahead(1).isWord("of") || ahead(1).isWord("in"))) {
        advance();
        Node& node = parseElement(codeOf("insl"), first);
        node.form = isEnd ? Form::End : Form::Beginning;
        return &node;
    }
    bool const isBefore = takeWord("before") || takeWords({"in", "front", "of"});
    if (!isBefore && !takeWord("after") && !takeWord("behind") && !takeWords({"in", "back", "of"})) return nullptr;
    Node& neighbour = parseReference();
    Node& node = parseElement(codeOf("insl"), first);
    node.form = isBefore ? Form::Before : Form::After;
    node.a = &neighbour;
    return &node;
}

Node& ScriptParser::parseTerm(TermMatch const& match) {
    std::size_t const first = m_place;
    Term const& term = *match.term;
    for (std::size_t count = 0; count < match.tokenCount; ++count)
        advance();
    if (term.command) return parseCommand(*term.command, first);
    if (term.isValue) {
        Node& node = make(NodeKind::Literal, first);
        node.value = Value::type(term.classCode);
        return node;
    }
    if (term.classCode != 0) return parseClassTerm(term, first);
    if (term.propertyCode != 0) {
        Node& node = make(NodeKind::Property, first);
        node.name = termSymbol(term.propertyCode, term.name);
        node.isOfApplication = match.isOfApplication;
        if (!match.isOfApplication) m_body->names.push_back(&node);
        return node;
    }
    Node& node = make(NodeKind::Literal, first);
    node.value = Value::constant(term.constantCode);
    return node;
}

Node& ScriptParser::parseClassTerm(Term const& term, std::size_t firstToken) {
    // An application's own files are elements of it.
    bool const isOwnFile = Terminology::base().termNamed(term.name) != &term;
    bool const opensFile = term.classCode == codeOf("alis") || term.classCode == codeOf("psxf") ||
                           (term.classCode == codeOf("file") && !term.isPlural && !isOwnFile);
    if (term.classCode == codeOf("ldt ") && startsIndex()) return parseDate(firstToken);
    if (opensFile && startsIndex() && current().kind != TokenKind::Integer) {
        Node& path = parseIndexOperand();
        Node& node = make(NodeKind::File, firstToken);
        node.code = term.classCode;
        node.a = &path;
        return node;
    }
    Node& node = parseElement(term.classCode, firstToken);
    node.form = Form::Index;
    if (takeWord("id"))
        node.form = Form::Identifier;
    else if (takeWord("named"))
        node.form = Form::Name;
    else
        takeWord("index");
    if (startsIndex() || (node.form == Form::Identifier && isSymbol("{"))) {
        node.b = &parseIndexOperand();
        if (takeWord("thru") || takeWord("through")) {
            node.form = Form::Range;
            node.c = &parseIndexOperand();
        }
        return close(node);
    }
    if (isWord("from") && !isStop() && (term.isPlural || term.classCode == codeOf("ctxt"))) {
        bool const labelsAllowed = std::exchange(m_labelsAllowed, false);
        advance();
        node.form = Form::Range;
        node.b = &parsePostfix();
        if (!takeWord("thru") && !takeWord("through")) expectWord("to");
        node.c = &parsePostfix();
        m_labelsAllowed = labelsAllowed;
        return close(node);
    }
    if (term.isPlural) {
        node.form = Form::Every;
        return node;
    }
    node.kind = NodeKind::Literal;
    node.value = Value::type(term.classCode);
    if (term.propertyCode == 0 || !isContainerWord()) return node;
    node.kind = NodeKind::Property;
    node.name = termSymbol(term.propertyCode, term.name);
    return node;
}

Node& ScriptParser::parseDate(std::size_t firstToken) {
    Node& text = parseIndexOperand();
    Node& node = make(NodeKind::Date, firstToken);
    node.a = &text;
    return node;
}

Node& ScriptParser::parseApplication() {
    std::size_t const first = m_place;
    advance();
    bool const byIdentifier = takeWord("id");
    if (!startsIndex()) {
        Node& node = make(NodeKind::Literal, first);
        node.value = Value::type(codeOf("capp"));
        return node;
    }
    Node& name = parseIndexOperand();
    Node& node = make(NodeKind::Application, first);
    node.code = byIdentifier ? codeOf("ID  ") : 0;
    node.a = &name;
    return node;
}

// «class docu», «constant ****yes », «data utxt0041», «event sysoexec», «property pnam».
Node& ScriptParser::parseRaw() {
    std::size_t const first = m_place;
    std::u16string_view const content = current().text;
    std::size_t const space = content.find(u' ');
    std::u16string_view const kind = content.substr(0, space);
    std::u16string_view const code =
        space == std::u16string_view::npos ? std::u16string_view() : content.substr(space + 1);
    if (kind == u"class" && !code.empty()) {
        advance();
        // The name lives on in the table of symbols.
        Symbol const symbol = termSymbol(hexCode(code), nameOfCode(hexCode(code)));
        Term const term{.name = symbol->spelling, .classCode = symbol->code, .propertyCode = symbol->code};
        Term const* const known = Terminology::base().termNamed(nameOfCode(term.classCode));
        bool const isTerm = known && (known->classCode == term.classCode || known->propertyCode == term.classCode);
        Node& node = parseClassTerm(isTerm && known->classCode != 0 ? *known : term, first);
        if (node.name) node.name = termSymbol(node.name->code, nameOfCode(node.name->code));
        return node;
    }
    if (kind == u"property" && !code.empty()) {
        advance();
        Node& node = make(NodeKind::Property, first);
        node.name = termSymbol(hexCode(code), nameOfCode(hexCode(code)));
        return node;
    }
    if (kind == u"constant" && code.size() > 4) {
        advance();
        Node& node = make(NodeKind::Literal, first);
        node.value = Value::constant(hexCode(code.substr(4)));
        return node;
    }
    if (kind == u"event" && code.size() == 8) {
        EventCode const event = static_cast<EventCode>(hexCode(code.substr(0, 4))) << 32U | hexCode(code.substr(4));
        CommandTerm const* const command = Terminology::base().commandOf(event);
        if (!command) expected(u"expression");
        advance();
        return parseCommand(*command, first);
    }
    if (kind == u"data" && code.size() >= 4) {
        std::optional<std::string> const bytes = bytesOfHex(code.substr(4));
        if (!bytes) expected(u"expression");
        advance();
        Node& node = make(NodeKind::Literal, first);
        node.value = valueOfData(hexCode(code), *bytes);
        return node;
    }
    expected(u"expression");
}

} // namespace mac::applescript
