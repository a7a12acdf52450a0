#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/ExpressionParser.h"

namespace mac::applescript {

namespace {

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

// The bytes that the digits write down; nullopt for an odd number of digits and for a character that is not a digit.
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

LiteralContent literalOfData(Code type, std::string const& bytes) {
    if (type != codes::UnicodeTextType) return DataLiteral{.type = type, .bytes = bytes};
    std::u16string units;
    for (std::size_t index = 0; index + 1 < bytes.size(); index += 2)
        units += static_cast<char16_t>(static_cast<unsigned char>(bytes[index]) << 8U |
                                       static_cast<unsigned char>(bytes[index + 1]));
    return units;
}

} // namespace

// The command of «event sysoexec». Null where another token stands.
CommandTerm const* ExpressionParser::rawCommandHere() const {
    constexpr std::u16string_view event = u"event ";
    std::u16string_view const content = current().text;
    bool const isEvent = current().kind == TokenKind::Raw && content.starts_with(event) && content.size() == 14;
    if (!isEvent) return nullptr;
    EventCode const code =
        static_cast<EventCode>(hexCode(content.substr(event.size(), 4))) << 32U | hexCode(content.substr(10));
    CommandTerm const* const known = Terminology::base().commandOf(code);
    return known ? known : &rawCommand(code);
}

// A class, or the property of that code where a property is meant.
Expression& ExpressionParser::parseRawClass(Code code, std::size_t firstToken) {
    // The name lives on in the table of symbols.
    Symbol const symbol = termSymbol(code, nameOfCode(code));
    Term const term{.name = symbol->spelling, .classCode = code, .propertyCode = code};
    Term const* const known = Terminology::base().termNamed(symbol->spelling);
    bool const isKnownClass =
        known && known->classCode != 0 && (known->classCode == code || known->propertyCode == code);
    Expression& parsed = parseClassTerm(isKnownClass ? *known : term, firstToken);
    PropertyReference* const property = parsed.as<PropertyReference>();
    if (property) property->name = termSymbol(property->name->code, nameOfCode(property->name->code));
    return parsed;
}

// «class docu», «constant ****yes », «data utxt0041», «event sysoexec», «property pnam».
Expression& ExpressionParser::parseRaw() {
    std::size_t const first = place();
    std::u16string_view const content = current().text;
    std::size_t const space = content.find(u' ');
    std::u16string_view const kind = content.substr(0, space);
    std::u16string_view const code =
        space == std::u16string_view::npos ? std::u16string_view() : content.substr(space + 1);
    if (kind == u"class" && !code.empty()) {
        advance();
        return parseRawClass(hexCode(code), first);
    }
    if (kind == u"property" && !code.empty()) {
        advance();
        return make(first, PropertyReference{.name = termSymbol(hexCode(code), nameOfCode(hexCode(code)))});
    }
    if (kind == u"constant" && code.size() > 4) {
        advance();
        return makeLiteral(first, ConstantLiteral{hexCode(code.substr(4))});
    }
    if (CommandTerm const* const command = rawCommandHere()) {
        advance();
        return parseCommand(*command, first);
    }
    if (kind == u"data" && code.size() >= 4) {
        std::optional<std::string> const bytes = bytesOfHex(code.substr(4));
        if (!bytes) expected(u"expression");
        advance();
        return makeLiteral(first, literalOfData(hexCode(code), *bytes));
    }
    expected(u"expression");
}

// given «class btns»:{"OK"}, «class dflt»:1
bool ExpressionParser::parseRawParameters(CommandCall& call) {
    bool const startsHere = isWord("given") && ahead(1).kind == TokenKind::Raw && ahead(2).isSymbol(":");
    if (!startsHere) return false;
    advance();
    do {
        if (current().kind != TokenKind::Raw) expected(u"identifier");
        Symbol const key = parseRecordKey();
        expectSymbol(":");
        addParameter(call, {.label = key->spelling, .code = key->code}, parseExpression());
    } while (takeSymbol(","));
    return true;
}

} // namespace mac::applescript
