#include "platform/foundation/propertylists/PropertyList.h"
#include "platform/foundation/propertylists/PropertyListXML.h"
#include "platform/foundation/propertylists/PropertyListXMLElements.h"
#include <algorithm>
#include <array>
#include <string>

namespace mac {

namespace {

using Container = PropertyListBuilder::Container;
using Element = PropertyListElement;

constexpr std::u16string_view Declaration = u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
constexpr std::array<std::u16string_view, 2> DocumentTypes{
    u"<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">",
    u"<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
    u"\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">",
};

struct PlainReference {
    std::u16string_view text;
    char16_t character;
};
constexpr std::array<PlainReference, 5> References{{
    {u"&amp;", u'&'},
    {u"&lt;", u'<'},
    {u"&gt;", u'>'},
    {u"&quot;", u'"'},
    {u"&apos;", u'\''},
}};

// Carriage returns are changed by parsers, and some units are no characters of XML, or no characters alone.
bool isPlain(char16_t unit) {
    bool const isControl = unit < u' ' && unit != u'\t' && unit != u'\n';
    bool const isSurrogate = unit >= 0xD800 && unit <= 0xDFFF;
    return !isControl && !isSurrogate && unit < 0xFFFE;
}

class PlainXMLReader {
public:
    PlainXMLReader(std::u16string_view text, NSPropertyListMutabilityOptions option)
        : m_rest(text), m_builder(option) {}

    std::optional<id> read() {
        if (!takeProlog()) return std::nullopt;
        for (takeBlanks(); take(u"<"); takeBlanks()) {
            if (take(u"/plist>")) return root();
            if (!readElement()) return std::nullopt;
        }
        return std::nullopt;
    }

private:
    bool take(std::u16string_view expected) {
        if (!m_rest.starts_with(expected)) return false;
        m_rest.remove_prefix(expected.size());
        return true;
    }

    void takeBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(u" \t\n"), m_rest.size())); }

    bool takeProlog() {
        takeBlanks();
        take(Declaration);
        takeBlanks();
        static_cast<void>(std::ranges::any_of(DocumentTypes, [this](std::u16string_view type) { return take(type); }));
        takeBlanks();
        return take(u"<plist version=\"1.0\">") || take(u"<plist>");
    }

    // After the end of the root element.
    std::optional<id> root() {
        takeBlanks();
        bool const isWhole = m_rest.empty() && m_builder.isComplete();
        return isWhole ? std::optional(m_builder.root()) : std::nullopt;
    }

    // After "<".
    bool readElement() {
        std::size_t const length = m_rest.find(u'>');
        if (length == std::u16string_view::npos) return false;
        std::u16string_view const tag = m_rest.substr(0, length);
        m_rest.remove_prefix(length + 1);
        if (tag.starts_with(u'/')) return end(propertyListElementOfName(tag.substr(1)));
        bool const isEmpty = tag.ends_with(u'/');
        std::u16string_view const name = tag.substr(0, tag.size() - (isEmpty ? 1 : 0));
        Element const element = propertyListElementOfName(name);
        switch (element) {
        case Element::Unknown:
        case Element::Plist:
            return false;
        case Element::Array:
            return m_builder.begin(Container::Array).empty() && (!isEmpty || end(element));
        case Element::Dictionary:
            return m_builder.begin(Container::Dictionary).empty() && (!isEmpty || end(element));
        default:
            return isEmpty ? add(element, {}) : readLeaf(element, name);
        }
    }

    bool end(Element element) {
        bool const isOpen = (element == Element::Array && m_builder.container() == Container::Array) ||
                            (element == Element::Dictionary && m_builder.container() == Container::Dictionary);
        return isOpen && m_builder.end(identifierOfDictionary).empty();
    }

    // After the tag.
    bool readLeaf(Element element, std::u16string_view name) {
        std::u16string_view const text = m_rest.substr(0, m_rest.find(u'<'));
        m_rest.remove_prefix(text.size());
        if (!take(u"</") || !take(name) || !take(u">") || !std::ranges::all_of(text, isPlain)) return false;
        if (text.find(u'&') != std::u16string_view::npos) return addWithReferences(element, text);
        return text.find(u"]]>") == std::u16string_view::npos && add(element, text);
    }

    bool addWithReferences(Element element, std::u16string_view text) {
        if (text.find(u"]]>") != std::u16string_view::npos) return false;
        std::u16string replaced;
        replaced.reserve(text.size());
        while (!text.empty()) {
            std::u16string_view const before = text.substr(0, text.find(u'&'));
            replaced.append(before);
            text.remove_prefix(before.size());
            if (text.empty()) break;
            auto const* const reference = std::ranges::find_if(
                References, [text](PlainReference const& each) { return text.starts_with(each.text); });
            if (reference == References.end()) return false;
            replaced.push_back(reference->character);
            text.remove_prefix(reference->text.size());
        }
        return add(element, replaced);
    }

    bool add(Element element, std::u16string_view text) { return addLeafElement(m_builder, element, text).empty(); }

    std::u16string_view m_rest;
    PropertyListBuilder m_builder;
};

} // namespace

std::optional<id> readPlainPropertyListXML(std::u16string_view text, NSPropertyListMutabilityOptions option) {
    return PlainXMLReader(text, option).read();
}

} // namespace mac
