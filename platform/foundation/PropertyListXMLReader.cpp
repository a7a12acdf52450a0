#include "platform/foundation/PropertyListBuilder.h"
#include "platform/foundation/PropertyListTree.h"
#include "platform/foundation/PropertyListXML.h"
#include "platform/foundation/PropertyListXMLControls.h"
#include "platform/foundation/PropertyListXMLMarkup.h"
#include "platform/foundation/PropertyListXMLValues.h"
#include <QString>
#include <QXmlStreamReader>
#include <algorithm>
#include <array>

namespace mac {

namespace {

using Container = PropertyListBuilder::Container;

// Longer names in messages help nobody.
constexpr qsizetype kLongestNameInMessage = 40;

enum class Element { Plist, Array, Dictionary, Key, String, Integer, Real, Date, Data, True, False, Unknown };

struct NamedElement {
    QLatin1String name;
    Element element;
};
constexpr std::array<NamedElement, 11> kElements{{
    {QLatin1String("plist"), Element::Plist},
    {QLatin1String("array"), Element::Array},
    {QLatin1String("dict"), Element::Dictionary},
    {QLatin1String("key"), Element::Key},
    {QLatin1String("string"), Element::String},
    {QLatin1String("integer"), Element::Integer},
    {QLatin1String("real"), Element::Real},
    {QLatin1String("date"), Element::Date},
    {QLatin1String("data"), Element::Data},
    {QLatin1String("true"), Element::True},
    {QLatin1String("false"), Element::False},
}};

Element elementOfName(QStringView name) {
    auto const* const found =
        std::ranges::find_if(kElements, [name](NamedElement const& each) { return name == each.name; });
    return found == kElements.end() ? Element::Unknown : found->element;
}

// Of a known element.
std::string nameOf(Element element) {
    return std::ranges::find(kElements, element, &NamedElement::element)->name.data();
}

bool isBlank(QChar character) {
    return character == u' ' || character == u'\t' || character == u'\n' || character == u'\r';
}

bool isXMLBlank(QStringView text) { return std::ranges::all_of(text, isBlank); }

QStringView viewOfText(std::u16string_view units) {
    return {reinterpret_cast<QChar const*>(units.data()), static_cast<qsizetype>(units.size())};
}

std::u16string_view viewOfUnits(QString const& text) {
    return {reinterpret_cast<char16_t const*>(text.utf16()), static_cast<std::size_t>(text.size())};
}

class XMLReader {
public:
    // Before an XML declaration nothing may stand, so blanks at the beginning are left out and their lines are counted.
    XMLReader(SubstitutedControls const& controls, NSPropertyListMutabilityOptions option)
        : m_controls(controls), m_text(viewOfText(controls.text())), m_builder(option) {
        auto const begin = std::ranges::find_if_not(m_text, isBlank);
        auto const blanks = begin - m_text.begin();
        m_linesBefore = static_cast<std::size_t>(m_text.left(blanks).count(u'\n'));
        m_text = m_text.mid(blanks);
        m_xml.addData(QString::fromRawData(m_text.data(), m_text.size()));
        m_xml.setNamespaceProcessing(false);
    }

    Result<id, Failure> read() {
        while (m_reason.empty() && !m_xml.atEnd() && !isBeforeTextBehindRoot())
            readToken(m_xml.readNext());
        if (!m_reason.empty()) return Failure{m_reason};
        if (m_xml.hasError()) return Failure{atLine(complaintOfParser(), line())};
        if (!m_builder.isComplete()) return Failure{atLine("The list is empty", line())};
        return m_builder.root();
    }

private:
    std::size_t line() const { return m_linesBefore + static_cast<std::size_t>(m_xml.lineNumber()); }
    // Text behind the root element is ignored, with all that follows it; a second element is a mistake.
    bool isBeforeTextBehindRoot() const {
        if (!m_sawElement || m_depth > 0) return false;
        QStringView const rest = m_text.mid(m_xml.characterOffset());
        auto const next = std::ranges::find_if_not(rest, isBlank);
        return next != rest.end() && *next != u'<';
    }
    // Some are whole sentences, to which the line is added.
    std::string complaintOfParser() const {
        std::string complaint = m_xml.errorString().toStdString();
        while (complaint.ends_with('.'))
            complaint.pop_back();
        return complaint;
    }
    void fail(std::string_view reason) {
        if (m_reason.empty() && !reason.empty()) m_reason = atLine(reason, line());
    }
    void readToken(QXmlStreamReader::TokenType token) {
        switch (token) {
        case QXmlStreamReader::StartElement:
            ++m_depth;
            readElement(elementOfName(m_xml.qualifiedName()));
            return;
        case QXmlStreamReader::EndElement:
            --m_depth;
            // A plist element holds no value of its own; all others are read to their end in readElement.
            if (elementOfName(m_xml.qualifiedName()) != Element::Plist) fail(m_builder.end(identifierOfDictionary));
            return;
        case QXmlStreamReader::Characters:
            if (!isXMLBlank(m_xml.text())) fail("There is text outside of a value");
            return;
        case QXmlStreamReader::EntityReference:
            fail("There is an entity that is not known");
            return;
        default:
            return;
        }
    }

    void readElement(Element element) {
        switch (element) {
        case Element::Plist:
            if (m_sawElement) fail("There is a <plist> within another element");
            break;
        case Element::Array:
            fail(m_builder.begin(Container::Array));
            break;
        case Element::Dictionary:
            fail(m_builder.begin(Container::Dictionary));
            break;
        case Element::Unknown:
            fail("There is no element <" + m_xml.qualifiedName().left(kLongestNameInMessage).toString().toStdString() +
                 "> in property lists");
            break;
        default:
            readLeaf(element);
        }
        m_sawElement = true;
    }

    void readLeaf(Element element) {
        QString text;
        for (auto token = m_xml.readNext(); token != QXmlStreamReader::EndElement; token = m_xml.readNext()) {
            if (token == QXmlStreamReader::Invalid) return;
            if (token != QXmlStreamReader::Characters) {
                fail("There is something other than text in <" + nameOf(element) + ">");
                return;
            }
            text += m_xml.text();
        }
        --m_depth;
        fail(addLeaf(element, text));
    }

    std::string_view addLeaf(Element element, QString const& text) {
        switch (element) {
        case Element::Key:
            return m_builder.addKey(m_controls.restored(viewOfUnits(text)));
        case Element::String:
            return m_builder.addString(m_controls.restored(viewOfUnits(text)));
        case Element::Integer:
            return addOrSay(integerOfText(text.toStdString()), "There is an <integer> that is no 64-bit integer");
        case Element::Real:
            return addOrSay(realOfText(text.toStdString()), "There is a <real> that is no number");
        case Element::Date:
            return addOrSay(dateOfText(text.toStdString()), "There is a <date> that is no date");
        case Element::Data:
            return addData(text);
        default:
            if (!text.isEmpty()) return "There is text in a <true> or <false>";
            return m_builder.addValue(NSNumber::numberWithBool_(element == Element::True));
        }
    }

    std::string_view addOrSay(id const& value, std::string_view complaint) {
        return value == nil ? complaint : m_builder.addValue(value);
    }

    std::string_view addData(QString const& text) {
        std::optional<std::vector<std::byte>> const data = dataOfText(text.toStdString());
        return data ? m_builder.addData(*data) : "There is <data> that is not in base 64";
    }

    SubstitutedControls const& m_controls;
    QStringView m_text;
    QXmlStreamReader m_xml;
    PropertyListBuilder m_builder;
    std::size_t m_linesBefore{0};
    // Elements that are open.
    std::size_t m_depth{0};
    bool m_sawElement{false};
    std::string m_reason;
};

} // namespace

Result<id, Failure> readPropertyListXML(std::u16string_view text, NSPropertyListMutabilityOptions option) {
    std::string const complaint = complaintAboutMarkup(text);
    if (!complaint.empty()) return Failure{complaint};
    SubstitutedControls const controls(text);
    return XMLReader(controls, option).read();
}

} // namespace mac
