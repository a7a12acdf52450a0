#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/propertylists/CFKeyedArchiverUID.h"
#include "platform/foundation/propertylists/PropertyList.h"
#include "platform/foundation/propertylists/PropertyListLimits.h"
#include "platform/foundation/propertylists/PropertyListXML.h"
#include "platform/foundation/propertylists/PropertyListXMLValues.h"
#include <algorithm>

namespace mac {

namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kTail = "</plist>\n";

// Lines of base 64 end before this column where a tab counts as eight, but are never shorter than the second figure.
constexpr std::size_t kDataColumns = 76;
constexpr std::size_t kFewestDataColumns = 16;

bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

// Whether XML has the characters, references to them included.
bool isTextOfXML(std::u16string_view units) {
    for (std::size_t index = 0; index < units.size(); ++index) {
        char16_t const unit = units[index];
        if (unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r') return false;
        if (unit >= 0xFFFE || isLowSurrogate(unit)) return false;
        if (!isHighSurrogate(unit)) continue;
        if (++index == units.size() || !isLowSurrogate(units[index])) return false;
    }
    return true;
}

class XMLWriter {
public:
    Result<std::string, Failure> write(id const& propertyList) {
        m_text = kHead;
        if (!writeValue(propertyList, 0)) return Failure{m_reason};
        m_text += kTail;
        return std::move(m_text);
    }

private:
    bool fail(std::string_view reason) {
        m_reason = reason;
        return false;
    }

    // Recursion is as deep as the list, which is checked.
    bool writeValue(id const& value, std::size_t depth) {
        PropertyListKind const kind = propertyListKind(value);
        if (kind == PropertyListKind::None) return fail(complaintAboutKind(value));
        // The indentation counts too: it can be most of the text.
        if (!m_budget.add(1, depth)) return fail(kPropertyListTooLarge);
        switch (kind) {
        case PropertyListKind::Array:
            return writeArray(uncheckedCast<NSArray>(value), depth);
        case PropertyListKind::Dictionary:
            return writeDictionary(uncheckedCast<NSDictionary>(value), depth);
        case PropertyListKind::String:
            return writeText("string", uncheckedCast<NSString>(value), depth);
        case PropertyListKind::Data:
            return writeData(uncheckedCast<NSData>(value), depth);
        case PropertyListKind::Date:
            return writeDate(uncheckedCast<NSDate>(value), depth);
        case PropertyListKind::Identifier:
            return writeIdentifier(uncheckedCast<CFKeyedArchiverUIDRef>(value), depth);
        default:
            writeNumber(uncheckedCast<NSNumber>(value), depth);
            return true;
        }
    }

    bool writeArray(NSArray const& array, std::size_t depth) {
        if (depth >= kPropertyListMaximumDepth) return fail(kPropertyListTooDeep);
        if (array.count() == 0) return writeLine("<array/>", depth);
        writeLine("<array>", depth);
        for (id const& value : array) {
            if (!writeValue(value, depth + 1)) return false;
        }
        return writeLine("</array>", depth);
    }

    bool writeDictionary(NSDictionary const& dictionary, std::size_t depth) {
        if (depth >= kPropertyListMaximumDepth) return fail(kPropertyListTooDeep);
        if (dictionary.count() == 0) return writeLine("<dict/>", depth);
        std::optional<std::vector<NSString>> const keys = sortedKeys(dictionary);
        if (!keys) return fail(kPropertyListKeyIsNoString);
        writeLine("<dict>", depth);
        for (NSString const& key : *keys) {
            if (!m_budget.add(1, depth)) return fail(kPropertyListTooLarge);
            if (!writeText("key", key, depth + 1)) return false;
            if (!writeValue(dictionary.objectForKey_(key), depth + 1)) return false;
        }
        return writeLine("</dict>", depth);
    }

    bool writeText(std::string_view element, NSString const& string, std::size_t depth) {
        std::u16string_view const units = string.codeUnits();
        if (!m_budget.add(0, units.size() * sizeof(char16_t))) return fail(kPropertyListTooLarge);
        if (!isTextOfXML(units)) return fail("A string holds characters that XML does not have");
        m_text.append(depth, '\t').append("<").append(element).append(">");
        for (char const character : string.UTF8String())
            appendEscaped(character);
        m_text.append("</").append(element).append(">\n");
        return true;
    }

    void appendEscaped(char character) {
        switch (character) {
        case '<':
            m_text += "&lt;";
            return;
        case '>':
            m_text += "&gt;";
            return;
        case '&':
            m_text += "&amp;";
            return;
        case '\r':
            // A bare one would be read as a line feed.
            m_text += "&#13;";
            return;
        default:
            m_text += character;
        }
    }

    bool writeData(NSData const& data, std::size_t depth) {
        if (!m_budget.add(0, data.length())) return fail(kPropertyListTooLarge);
        std::string const text = textOfData(data.span());
        std::size_t const indent = std::min(depth * 8, kDataColumns - kFewestDataColumns);
        std::size_t const width = (kDataColumns - indent) / 4 * 4;
        writeLine("<data>", depth);
        for (std::size_t start = 0; start < text.size(); start += width)
            writeLine(std::string_view(text).substr(start, width), depth);
        return writeLine("</data>", depth);
    }

    bool writeDate(NSDate const& date, std::size_t depth) {
        std::optional<std::string> const text = textOfDate(date);
        if (!text) return fail("A date lies outside the years that XML has");
        return writeLine("<date>" + *text + "</date>", depth);
    }

    bool writeIdentifier(CFKeyedArchiverUIDRef const& identifier, std::size_t depth) {
        if (depth >= kPropertyListMaximumDepth) return fail(kPropertyListTooDeep);
        if (!m_budget.add(2, 2 * depth)) return fail(kPropertyListTooLarge);
        writeLine("<dict>", depth);
        writeLine("<key>" + std::string(kPropertyListIdentifierKey) + "</key>", depth + 1);
        writeLine("<integer>" + std::to_string(CFKeyedArchiverUIDGetValue(identifier)) + "</integer>", depth + 1);
        return writeLine("</dict>", depth);
    }

    void writeNumber(NSNumber const& number, std::size_t depth) {
        if (number.kind() == NSNumber::Kind::Boolean)
            writeLine(number.boolValue() ? "<true/>" : "<false/>", depth);
        else if (number.kind() == NSNumber::Kind::Real)
            writeLine("<real>" + textOfNumber(number) + "</real>", depth);
        else
            writeLine("<integer>" + textOfNumber(number) + "</integer>", depth);
    }

    bool writeLine(std::string_view line, std::size_t depth) {
        m_text.append(depth, '\t').append(line).append("\n");
        return true;
    }

    std::string m_text;
    std::string m_reason;
    PropertyListBudget m_budget;
};

} // namespace

Result<std::string, Failure> writePropertyListXML(id const& propertyList) { return XMLWriter().write(propertyList); }

} // namespace mac
