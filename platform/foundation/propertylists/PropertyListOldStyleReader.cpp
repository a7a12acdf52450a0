#include "platform/foundation/propertylists/PropertyList.h"
#include "platform/foundation/propertylists/PropertyListBuilder.h"
#include "platform/foundation/propertylists/PropertyListOldStyleScanner.h"

namespace mac {

namespace {

using Container = PropertyListBuilder::Container;

// Each step answers why the text is no list, or an empty text.
class OldStyleReader {
public:
    OldStyleReader(std::u16string_view text, NSPropertyListMutabilityOptions option)
        : m_scanner(text), m_builder(option) {}

    Result<id, Failure> read() {
        std::string reason = readRoot();
        while (reason.empty() && m_builder.container() != Container::None)
            reason = m_builder.container() == Container::Array ? readElement() : readPair();
        if (reason.empty()) reason = m_scanner.skipBlanks();
        if (reason.empty() && !m_scanner.isAtEnd()) reason = m_scanner.failure("There is text behind the list");
        if (!reason.empty()) return Failure{std::move(reason)};
        return m_builder.root();
    }

private:
    // Adds the failure's line to a complaint of the builder.
    std::string withLine(std::string_view complaint) const {
        return complaint.empty() ? std::string() : m_scanner.failure(complaint);
    }

    std::string readRoot() {
        if (std::string reason = m_scanner.skipBlanks(); !reason.empty()) return reason;
        if (!m_scanner.isAtEnd() && !m_scanner.isAtString()) return readValue();

        // A lone string is the list; otherwise the text is the content of a dictionary, and read again as such.
        std::size_t const start = m_scanner.position();
        if (!m_scanner.isAtEnd()) {
            Result<std::u16string, Failure> const string = m_scanner.readString();
            if (!string.hasValue()) return string.problem().reason;
            if (std::string reason = m_scanner.skipBlanks(); !reason.empty()) return reason;
            if (m_scanner.isAtEnd()) return withLine(m_builder.addString(string.value()));
        }
        m_scanner.setPosition(start);
        m_endsWithText = true;
        return withLine(m_builder.begin(Container::Dictionary));
    }

    // A leaf, or the beginning of a container.
    std::string readValue() {
        if (m_scanner.accept(u'{')) return begin(Container::Dictionary);
        if (m_scanner.accept(u'(')) return begin(Container::Array);
        if (m_scanner.accept(u'<')) {
            Result<std::vector<std::byte>, Failure> const data = m_scanner.readData();
            return data.hasValue() ? withLine(m_builder.addData(data.value())) : data.problem().reason;
        }
        if (!m_scanner.isAtString()) return m_scanner.unexpected("A value");
        Result<std::u16string, Failure> const string = m_scanner.readString();
        return string.hasValue() ? withLine(m_builder.addString(string.value())) : string.problem().reason;
    }

    std::string begin(Container container) {
        m_isFirst = true;
        return withLine(m_builder.begin(container));
    }

    std::string end() {
        m_isFirst = false;
        return withLine(m_builder.end());
    }

    // Reads an element with the separator before it, or the end of the array. A trailing comma is allowed.
    std::string readElement() {
        if (std::string reason = m_scanner.skipBlanks(); !reason.empty()) return reason;
        if (m_scanner.accept(u')')) return end();
        if (!m_isFirst) {
            if (!m_scanner.accept(u',')) return m_scanner.unexpected("A \",\" or \")\"");
            if (std::string reason = m_scanner.skipBlanks(); !reason.empty()) return reason;
            if (m_scanner.accept(u')')) return end();
        }
        m_isFirst = false;
        return readValue();
    }

    // Reads a pair, or the end of the dictionary. A pair whose value is a container is ended when that has been read.
    std::string readPair() {
        if (std::string reason = m_scanner.skipBlanks(); !reason.empty()) return reason;
        if (!m_isFirst && !m_scanner.accept(u';')) return m_scanner.unexpected("A \";\"");
        if (std::string reason = m_scanner.skipBlanks(); !reason.empty()) return reason;
        bool const isOutermost = m_endsWithText && m_builder.depth() == 1;
        if (isOutermost ? m_scanner.isAtEnd() : m_scanner.accept(u'}')) return end();
        m_isFirst = false;
        return readKeyAndValue();
    }

    std::string readKeyAndValue() {
        if (!m_scanner.isAtString()) return m_scanner.unexpected("A key or \"}\"");
        Result<std::u16string, Failure> const key = m_scanner.readString();
        if (!key.hasValue()) return key.problem().reason;
        if (std::string reason = withLine(m_builder.addKey(key.value())); !reason.empty()) return reason;
        if (std::string reason = m_scanner.skipBlanks(); !reason.empty()) return reason;
        if (m_scanner.peek() == u';') return withLine(m_builder.addString(key.value()));
        if (!m_scanner.accept(u'=')) return m_scanner.unexpected(R"(A "=" or ";")");
        if (std::string reason = m_scanner.skipBlanks(); !reason.empty()) return reason;
        return readValue();
    }

    OldStyleScanner m_scanner;
    PropertyListBuilder m_builder;
    // The outermost dictionary has no braces.
    bool m_endsWithText{false};
    // Whether the innermost container is still empty.
    bool m_isFirst{true};
};

} // namespace

Result<id, Failure> readPropertyListOldStyle(std::u16string_view text, NSPropertyListMutabilityOptions option) {
    return OldStyleReader(text, option).read();
}

} // namespace mac
