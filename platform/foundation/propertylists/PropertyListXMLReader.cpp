#include "platform/foundation/propertylists/PropertyList.h"
#include "platform/foundation/propertylists/PropertyListXML.h"
#include "platform/foundation/propertylists/PropertyListXMLControls.h"
#include "platform/foundation/propertylists/PropertyListXMLElements.h"
#include <QString>
#include <QXmlStreamReader>
#include <algorithm>

namespace mac {

namespace {

using Container = PropertyListBuilder::Container;
using Element = PropertyListElement;

// Messages cut longer names.
constexpr qsizetype kLongestNameInMessage = 40;

bool isBlank(QChar character) {
    return character == u' ' || character == u'\t' || character == u'\n' || character == u'\r';
}

bool isXMLBlank(QStringView text) { return std::ranges::all_of(text, isBlank); }

QStringView viewOfText(std::u16string_view units) {
    return {reinterpret_cast<QChar const*>(units.data()), static_cast<qsizetype>(units.size())};
}

std::u16string_view viewOfUnits(QStringView text) {
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
            readElement(propertyListElementOfName(viewOfUnits(m_xml.qualifiedName())));
            return;
        case QXmlStreamReader::EndElement:
            --m_depth;
            // A plist element holds no value of its own; all others are read to their end in readElement.
            if (propertyListElementOfName(viewOfUnits(m_xml.qualifiedName())) != Element::Plist)
                fail(m_builder.end(identifierOfDictionary));
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
                fail("There is something other than text in <" + nameOfPropertyListElement(element) + ">");
                return;
            }
            text += m_xml.text();
        }
        --m_depth;
        fail(addLeafElement(m_builder, element, m_controls.restored(viewOfUnits(text))));
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
    if (std::optional<id> const list = readPlainPropertyListXML(text, option)) return *list;
    std::string const complaint = complaintAboutMarkup(text);
    if (!complaint.empty()) return Failure{complaint};
    SubstitutedControls const controls(text);
    return XMLReader(controls, option).read();
}

} // namespace mac
