#include "platform/applescript/language/ExpressionParser.h"
#include <algorithm>

// Lists and records.

namespace mac::applescript {

bool ExpressionParser::isRecordKey() const {
    if (current().kind == TokenKind::Barred || current().kind == TokenKind::Raw) return ahead(1).isSymbol(":");
    if (current().kind != TokenKind::Word) return false;
    std::size_t const count = std::max<std::size_t>(matchTerm().tokenCount, 1);
    return ahead(count).isSymbol(":") || ahead(1).isSymbol(":");
}

Symbol ExpressionParser::parseRecordKey() {
    if (current().kind == TokenKind::Raw) {
        Literal const* const raw = parseRaw().as<Literal>();
        TypeLiteral const* const type = raw ? std::get_if<TypeLiteral>(&raw->content) : nullptr;
        if (!type) expected(u"expression, property or key form, etc.");
        return termSymbol(type->code, nameOfCode(type->code));
    }
    TermMatch const match = current().kind == TokenKind::Word ? matchTerm() : TermMatch();
    bool const isTerm = match.term && ahead(match.tokenCount).isSymbol(":") &&
                        (match.term->propertyCode != 0 || match.term->classCode != 0);
    if (!isTerm) {
        Symbol const name = symbolOfToken(current());
        advance();
        return name;
    }
    skip(match.tokenCount);
    Code const code = match.term->propertyCode != 0 ? match.term->propertyCode : match.term->classCode;
    return termSymbol(code, match.term->name);
}

// A list or a record.
Expression& ExpressionParser::parseBraces() {
    std::size_t const first = place();
    std::vector<std::u16string_view> outerStops = std::exchange(stops(), {});
    bool const labelsAllowed = std::exchange(m_labelsAllowed, true);
    advance();
    Expression& made = isRecordKey() ? make(first, parseRecordFields()) : make(first, parseListItems());
    if (!isSymbol("}")) expected(u"“,” or “}”");
    advance();
    stops() = std::move(outerStops);
    m_labelsAllowed = labelsAllowed;
    return close(made);
}

RecordExpression ExpressionParser::parseRecordFields() {
    RecordExpression record;
    do {
        if (isSymbol("}")) expected(u"expression");
        if (!isRecordKey()) expected(u"expression, property or key form, etc.");
        Symbol const key = parseRecordKey();
        expectSymbol(":");
        record.fields.push_back({.key = key, .value = &parseExpression()});
    } while (takeSymbol(","));
    return record;
}

ListExpression ExpressionParser::parseListItems() {
    ListExpression list;
    if (isSymbol("}")) return list;
    do {
        if (isSymbol("}")) expected(u"expression");
        list.items.push_back(&parseExpression());
    } while (takeSymbol(","));
    return list;
}

} // namespace mac::applescript
