#include "platform/foundation/urls/URLParts.h"
#include <algorithm>

namespace mac {

namespace {

constexpr std::size_t None = std::u16string_view::npos;

bool isLetter(char16_t unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z'); }

bool isLetterOrDigit(char16_t unit) { return isLetter(unit) || (unit >= u'0' && unit <= u'9'); }

bool isSchemeCharacter(char16_t unit) { return isLetterOrDigit(unit) || unit == u'+' || unit == u'-' || unit == u'.'; }

bool isEscape(std::u16string_view text, std::size_t index) {
    return text.size() - index > 2 && hexadecimalValue(text[index + 1]) && hexadecimalValue(text[index + 2]);
}

// A scheme begins with a letter.
std::optional<URLRange> schemeOf(std::u16string_view text) {
    if (text.empty() || !isLetter(text.front())) return std::nullopt;
    std::size_t const end = static_cast<std::size_t>(std::ranges::find_if_not(text, isSchemeCharacter) - text.begin());
    if (end == text.size() || text[end] != u':') return std::nullopt;
    return URLRange{0, end};
}

// Cuts the text at the first separator behind the start.
std::optional<URLRange> cutFromSeparator(std::u16string_view& text, std::size_t start, char16_t separator) {
    std::size_t const found = text.find(separator, start);
    if (found == None) return std::nullopt;
    URLRange const part{found + 1, text.size()};
    text = text.substr(0, found);
    return part;
}

// user:password@host:port, where a host in brackets may have colons.
void readAuthority(URLParts& parts, std::u16string_view text, URLRange authority) {
    std::size_t start = authority.start;
    std::size_t const at = text.substr(0, authority.end).find(u'@', start);
    if (at != None) {
        std::size_t const colon = text.substr(0, at).find(u':', start);
        parts.user = URLRange{start, std::min(colon, at)};
        if (colon != None) parts.password = URLRange{colon + 1, at};
        start = at + 1;
    }
    std::size_t const bracket = text.substr(0, authority.end).find(u'[', start);
    std::size_t colon = text.substr(0, authority.end).find(u':', start);
    if (bracket < colon) {
        std::size_t const closing = text.substr(0, authority.end).find(u']', bracket);
        colon = closing == None ? None : text.substr(0, authority.end).find(u':', closing);
    }
    parts.host = URLRange{start, std::min(colon, authority.end)};
    if (colon != None) parts.port = URLRange{colon + 1, authority.end};
}

} // namespace

std::optional<URLRange> URLParts::userInformation() const {
    if (!user) return std::nullopt;
    return URLRange{user->start, password ? password->end : user->end};
}

std::optional<URLRange> URLParts::authority() const {
    if (!host) return std::nullopt;
    return URLRange{user ? user->start : host->start, port ? port->end : host->end};
}

std::optional<URLRange> URLParts::behindPath() const {
    std::optional<URLRange> const first = parameters ? parameters : query ? query : fragment;
    if (!first) return std::nullopt;
    std::optional<URLRange> const last = fragment ? fragment : query ? query : parameters;
    return URLRange{first->start, last->end};
}

bool isURLCharacter(char16_t unit) {
    return isLetterOrDigit(unit) || (unit != 0 && std::u16string_view(u"-_.!~*'();/?:@&=+$,").find(unit) != None);
}

std::optional<unsigned> hexadecimalValue(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10U;
    if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10U;
    return std::nullopt;
}

bool isURLText(std::u16string_view text) {
    for (std::size_t index = 0; index < text.size(); ++index) {
        char16_t const unit = text[index];
        bool const isAllowed =
            unit == u'%' ? isEscape(text, index) : isURLCharacter(unit) || unit == u'[' || unit == u']' || unit == u'#';
        if (!isAllowed) return false;
    }
    return std::ranges::count(text, u'#') <= 1;
}

URLParts partsOfURL(std::u16string_view text) {
    URLParts parts;
    parts.scheme = schemeOf(text);
    std::size_t start = parts.scheme ? parts.scheme->end + 1 : 0;
    parts.isDecomposable = !parts.scheme || text.substr(start).starts_with(u'/');
    parts.path = {start, text.size()};
    if (!parts.isDecomposable) return parts;
    parts.fragment = cutFromSeparator(text, start, u'#');
    if (text.substr(start).starts_with(u"//")) {
        URLRange const authority{start + 2, std::min(text.find_first_of(u"/?", start + 2), text.size())};
        if (authority.start != authority.end) readAuthority(parts, text, authority);
        start = authority.end;
    }
    parts.query = cutFromSeparator(text, start, u'?');
    parts.parameters = cutFromSeparator(text, start, u';');
    parts.path = {start, text.size()};
    return parts;
}

} // namespace mac
