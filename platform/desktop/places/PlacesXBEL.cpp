#include "platform/desktop/places/PlacesFormat.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <QXmlStreamReader>
#include <algorithm>
#include <optional>
#include <utility>

namespace mac {

namespace {

constexpr unsigned DeepestElement = 64;
// The parser compares each attribute of a tag with all others; bookmarks have fewer than ten.
constexpr std::size_t MostAttributes = 100;
constexpr std::string_view XMLBlanks = " \t\r\n";

struct XBELBookmark {
    std::string uri{};
    std::string label{};
    bool isHidden{false};
};

// Reads the bookmarks right below the root, with the toolkit's parser, which tells whether the text is well-formed. The
// parser does not say where in the bytes they lie.
class XBELReader {
public:
    explicit XBELReader(std::string_view text)
        : m_reader(QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()))) {
        // KDE reads prefixes as a part of the name, declared or not.
        m_reader.setNamespaceProcessing(false);
    }

    Result<std::vector<XBELBookmark>, Failure> read() {
        while (!m_reader.atEnd() && !m_problem)
            take(m_reader.readNext());
        if (m_problem) return Failure{m_problem};
        if (m_reader.hasError()) return Failure{m_reader.errorString().toStdString()};
        return std::move(m_bookmarks);
    }

private:
    void take(QXmlStreamReader::TokenType token) {
        switch (token) {
        case QXmlStreamReader::StartDocument:
            if (!isInUTF8()) m_problem = localizable("it is not in UTF-8");
            break;
        case QXmlStreamReader::DTD:
            if (m_reader.text().contains(u'[')) m_problem = localizable("it defines entities");
            break;
        case QXmlStreamReader::StartElement:
            m_names.push_back(m_reader.qualifiedName().toString());
            begin(m_names.back());
            break;
        case QXmlStreamReader::EndElement:
            end(m_names.back());
            m_names.pop_back();
            break;
        case QXmlStreamReader::Characters:
            addText(m_reader.text().toString().toStdString());
            break;
        default:
            break;
        }
    }

    bool isInUTF8() const {
        QStringView const encoding = m_reader.documentEncoding();
        return encoding.isEmpty() || encoding.compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) == 0;
    }
    bool isInBookmark() const { return m_names.size() > 2 && m_names[1] == QLatin1String("bookmark"); }
    bool isTitle() const { return m_names.size() == 3 && m_names[2] == QLatin1String("title"); }

    void begin(QString const& name) {
        m_text.clear();
        if (m_names.size() > DeepestElement) m_problem = localizable("elements are nested too deep");
        if (m_names.size() == 1 && name != QLatin1String("xbel"))
            m_problem = localizable("it is not a list of bookmarks");
        if (m_names.size() != 2 || name != QLatin1String("bookmark")) return;
        if (m_bookmarks.size() == MostPlaces) m_problem = localizable("there are too many places");
        m_bookmarks.push_back({.uri = m_reader.attributes().value(QLatin1String("href")).toString().toStdString()});
    }

    void end(QString const& name) {
        if (isInBookmark() && name == QLatin1String("IsHidden") && m_text == "true") m_bookmarks.back().isHidden = true;
        m_text.clear();
    }

    void addText(std::string const& text) {
        if (!isInBookmark()) return;
        m_text += text;
        if (isTitle()) m_bookmarks.back().label += text;
    }

    QXmlStreamReader m_reader;
    std::vector<QString> m_names{};
    std::string m_text{};
    std::vector<XBELBookmark> m_bookmarks{};
    char const* m_problem{nullptr};
};

// Where the elements right below the root lie in the bytes of a text. They are what the parser takes them for if the
// text is well-formed; up to its first mistake the parser sees the same tags in any other.
class XBELScanner {
public:
    struct Stretch {
        std::size_t begin;
        std::size_t end;
    };

    explicit XBELScanner(std::string_view text) : m_text(text) {}

    // False if an element has no end, or a tag more attributes than the parser should see.
    bool scan() {
        for (std::size_t at = m_text.find('<'); at != std::string_view::npos; at = m_text.find('<', m_markupEnd)) {
            std::optional<std::size_t> const end = endOfMarkup(at);
            if (!end || m_hasCrowdedTag) return false;
            takeMarkup(at, *end);
            m_markupEnd = *end;
        }
        return m_depth == 0 && m_endOfList.has_value();
    }

    bool hasCrowdedTag() const { return m_hasCrowdedTag; }
    std::vector<Stretch> const& bookmarks() const { return m_bookmarks; }
    // REQUIRES: scan().
    std::size_t endOfList() const { return *m_endOfList; }

private:
    std::optional<std::size_t> after(std::string_view mark, std::size_t from) const {
        std::size_t const found = m_text.find(mark, from);
        return found == std::string_view::npos ? std::nullopt : std::optional(found + mark.size());
    }
    std::optional<std::size_t> endOfMarkup(std::size_t at) {
        std::string_view const rest = m_text.substr(at);
        if (rest.starts_with("<!--")) return after("-->", at + 4);
        if (rest.starts_with("<![CDATA[")) return after("]]>", at);
        if (rest.starts_with("<?")) return after("?>", at);
        return endOfTag(at);
    }
    // A tag, or a document type, ends with the first ">" that is not in quotes.
    std::optional<std::size_t> endOfTag(std::size_t at) {
        std::size_t attributes = 0;
        for (std::size_t stop = m_text.find_first_of("\"'>", at); stop != std::string_view::npos;
             stop = m_text.find_first_of("\"'>", stop + 1)) {
            if (m_text[stop] == '>') return stop + 1;
            stop = m_text.find(m_text[stop], stop + 1);
            if (stop == std::string_view::npos) return std::nullopt;
            m_hasCrowdedTag = m_hasCrowdedTag || ++attributes > MostAttributes;
        }
        return std::nullopt;
    }
    // The blanks before the position count as part of the element behind them.
    std::size_t withBlanksBefore(std::size_t at) const {
        while (at > m_markupEnd && XMLBlanks.find(m_text[at - 1]) != std::string_view::npos)
            --at;
        return at;
    }

    void takeMarkup(std::size_t at, std::size_t end) {
        if (m_text[at + 1] == '!' || m_text[at + 1] == '?') return;
        bool const isEndTag = m_text[at + 1] == '/';
        bool const isWhole = m_text[end - 2] == '/';
        if (isEndTag && m_depth == 1) m_endOfList = withBlanksBefore(at);
        if (!isEndTag && m_depth == 1) beginChild(at);
        // A root without contents has no room for another entry.
        if (!isEndTag && isWhole && m_depth == 0) m_endOfList = std::string_view::npos;
        if (isEndTag) --m_depth;
        if (!isEndTag && !isWhole) ++m_depth;
        if (m_depth == 1 && m_isInBookmark && (isEndTag || isWhole)) endChild(end);
    }
    void beginChild(std::size_t at) {
        std::string_view const name = m_text.substr(at + 1);
        constexpr std::string_view bookmark = "bookmark";
        m_isInBookmark =
            name.starts_with(bookmark) && (XMLBlanks.find(name[bookmark.size()]) != std::string_view::npos ||
                                           name[bookmark.size()] == '/' || name[bookmark.size()] == '>');
        m_childBegin = withBlanksBefore(at);
    }
    void endChild(std::size_t end) {
        m_bookmarks.push_back({m_childBegin, end});
        m_isInBookmark = false;
    }

    std::string_view m_text;
    // The end of the tag, comment or instruction before.
    std::size_t m_markupEnd{0};
    unsigned m_depth{0};
    bool m_isInBookmark{false};
    bool m_hasCrowdedTag{false};
    std::size_t m_childBegin{0};
    std::vector<Stretch> m_bookmarks{};
    std::optional<std::size_t> m_endOfList{};
};

Result<PlaceEntries, Failure> readXBEL(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) return Failure{localizable("it is not in UTF-8")};
    XBELScanner scanner(text);
    bool const isScanned = scanner.scan();
    if (scanner.hasCrowdedTag()) return Failure{localizable("a tag has too many attributes")};
    Result<std::vector<XBELBookmark>, Failure> bookmarks = XBELReader(text).read();
    if (!bookmarks.hasValue()) return bookmarks.problem();
    if (!isScanned || scanner.bookmarks().size() != bookmarks.value().size())
        return Failure{localizable("its elements cannot be told apart")};
    PlaceEntries read{.entries = {}, .endOfList = scanner.endOfList()};
    for (std::size_t index = 0; index < bookmarks.value().size(); ++index) {
        XBELBookmark& bookmark = bookmarks.value()[index];
        XBELScanner::Stretch const stretch = scanner.bookmarks()[index];
        if (bookmark.isHidden || bookmark.uri.empty()) continue;
        read.entries.push_back({std::move(bookmark.uri), std::move(bookmark.label), stretch.begin, stretch.end});
    }
    return read;
}

// Control characters, which XML cannot hold, become blanks.
std::string escapedForXML(std::string_view text) {
    std::string result;
    for (char const byte : text) {
        if (byte == '&')
            result += "&amp;";
        else if (byte == '<')
            result += "&lt;";
        else if (byte == '>')
            result += "&gt;";
        else if (byte == '"')
            result += "&quot;";
        else
            result += static_cast<unsigned char>(byte) < ' ' ? ' ' : byte;
    }
    return result;
}

std::string bookmarkElement(std::string_view uri, std::string_view label) {
    return "\n <bookmark href=\"" + escapedForXML(uri) + "\">\n  <title>" + escapedForXML(label) +
           "</title>\n </bookmark>";
}

// Whether the text would hold "]]>" across the seam, which XML allows only at the end of a CDATA section.
bool makesEndOfSection(std::string_view before, std::string_view after) {
    return (before.ends_with("]]") && after.starts_with(">")) || (before.ends_with("]") && after.starts_with("]>"));
}

// A blank keeps texts around an entry apart where they must not meet.
std::string joinedElements(std::string_view before, std::string_view entry, std::string_view after) {
    bool const needsBlank = entry.empty() && makesEndOfSection(before, after);
    return std::string(before).append(needsBlank ? " " : entry).append(after);
}

} // namespace

PlacesFormat const XBELFormat{.read = readXBEL,
                              .textOfEntry = bookmarkElement,
                              .joined = joinedElements,
                              .emptyFile =
                                  "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE xbel>\n"
                                  "<xbel xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\" "
                                  "xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\" "
                                  "xmlns:kdepriv=\"http://www.kde.org/kdepriv\">\n</xbel>\n"};

} // namespace mac
