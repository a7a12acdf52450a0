#include "platform/events/DescriptorCoercion.h"
#include "platform/events/DescriptorContents.h"
#include "platform/foundation/text/Encodings.h"

namespace mac {

namespace {

// Longer descriptions end in dots: they are read by people, and one descriptor may hold another many times.
constexpr std::size_t LongestText = 65536;

class Printer {
public:
    void print(AEDesc const& desc) {
        if (isFull()) return;
        switch (contentsOf(desc).form) {
        case DescriptorForm::Bytes:
            return printValue(desc);
        case DescriptorForm::List:
            return printEntries(desc, u"[ ", u" ]");
        case DescriptorForm::Record:
            if (desc.descriptorType != typeAERecord) printCode(desc.descriptorType);
            return printEntries(desc, u"{ ", u" }");
        case DescriptorForm::Event:
            return printEvent(desc);
        }
    }

    std::u16string takeText() {
        if (isFull()) {
            m_text.resize(LongestText);
            m_text.append(u"...");
        }
        return std::move(m_text);
    }

private:
    bool isFull() const { return m_text.size() > LongestText; }

    void printCode(FourCharCode code) { m_text.append(u"'").append(textOfCode(code)).append(u"'"); }

    void printEvent(AEDesc const& desc) {
        auto const code = [&](AEKeyword keyword) {
            AEDesc const* const value = findEntry(contentsOf(desc).attributes, keyword);
            printCode(FourCharCode(value ? valueOf<std::uint32_t>(*value, typeType).value_or(0) : 0));
        };
        code(keyEventClassAttr);
        m_text.append(u"\\");
        code(keyEventIDAttr);
        printEntries(desc, u"{ ", u" }");
    }

    void printEntries(AEDesc const& desc, std::u16string_view before, std::u16string_view after) {
        DescriptorContents const& contents = contentsOf(desc);
        m_text.append(before);
        bool isFirst = true;
        for (DescriptorEntry const& entry : contents.entries) {
            if (isFull()) return;
            if (!isFirst) m_text.append(u", ");
            isFirst = false;
            if (contents.form != DescriptorForm::List) {
                printCode(entry.keyword);
                m_text.append(u":");
            }
            print(entry.desc);
        }
        m_text.append(after);
    }

    void printValue(AEDesc const& desc) {
        DescType const type = desc.descriptorType;
        if (std::optional<std::int32_t> const integer = valueOf<std::int32_t>(desc, typeSInt32)) {
            m_text.append(DescriptorNumber(std::int64_t{*integer}).text());
            return;
        }
        bool const isCode = type == typeType || type == typeEnumerated;
        std::optional<std::uint32_t> const code = isCode ? valueOf<std::uint32_t>(desc, type) : std::nullopt;
        if (code) return printCode(FourCharCode(*code));
        printCode(type);
        m_text.append(u"(");
        std::optional<AEDesc> const converted = coerced(desc, typeUnicodeText);
        std::optional<std::u16string> const text = converted ? plainTextOf(*converted) : std::nullopt;
        if (text)
            m_text.append(u"\"").append(text->substr(0, LongestText)).append(u"\"");
        else
            printBytes(contentsOf(desc).bytes);
        m_text.append(u")");
    }

    void printBytes(std::vector<std::byte> const& bytes) {
        constexpr std::u16string_view digits = u"0123456789ABCDEF";
        if (bytes.empty()) return;
        m_text.append(u"$");
        for (std::byte const byte : bytes) {
            if (isFull()) return;
            m_text.push_back(digits[std::to_integer<std::size_t>(byte) >> 4]);
            m_text.push_back(digits[std::to_integer<std::size_t>(byte) & 0xF]);
        }
        m_text.append(u"$");
    }

    std::u16string m_text{u"<NSAppleEventDescriptor: "};
};

} // namespace

NSString NSAppleEventDescriptor::Body::description() const {
    Printer printer;
    printer.print(desc);
    return NSString::stringWithCodeUnits(printer.takeText().append(u">"));
}

} // namespace mac
