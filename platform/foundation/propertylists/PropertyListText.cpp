#include "platform/foundation/propertylists/PropertyList.h"
#include "platform/foundation/propertylists/PropertyListLimits.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <memory>
#include <string_view>
#include <unicode/ucnv.h>

namespace mac {

namespace {

// An XML declaration is the first thing in a file and short.
constexpr std::size_t kLongestDeclaration = 256;
constexpr std::string_view kMarkOfUTF32Little{"\xFF\xFE\0\0", 4};
constexpr std::string_view kMarkOfUTF32Big{"\0\0\xFE\xFF", 4};
// The longest name that is looked up among the encodings.
constexpr std::size_t kLongestEncodingName = 40;

struct CloseConverter {
    void operator()(UConverter* converter) const { ::ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

// Empty where nothing is declared.
std::string_view declaredEncoding(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    if (!text.starts_with("<?xml")) return {};
    std::string_view const head = text.substr(0, kLongestDeclaration);
    std::string_view const declaration = head.substr(0, head.find("?>"));
    std::size_t const name = declaration.find("encoding");
    std::size_t const quote = declaration.find_first_of("\"'", name == std::string_view::npos ? name : name + 8);
    if (quote == std::string_view::npos) return {};
    std::string_view const rest = declaration.substr(quote + 1);
    return rest.substr(0, rest.find(declaration[quote]));
}

// A line ends with LF, CR or both.
std::size_t lineAtEnd(std::u16string_view text) {
    std::size_t line = 1;
    for (std::size_t index = 0; index < text.size(); ++index) {
        bool const isHalfOfPair = text[index] == u'\r' && index + 1 < text.size() && text[index + 1] == u'\n';
        line += (text[index] == u'\n' || text[index] == u'\r') && !isHalfOfPair ? 1 : 0;
    }
    return line;
}

// Markup must be ASCII: other encodings (UTF-7, ISO-2022, EBCDIC) hide it from whoever looks at the bytes.
bool keepsASCII(UConverter* converter) {
    switch (::ucnv_getType(converter)) {
    case UCNV_SBCS:
    case UCNV_MBCS:
    case UCNV_LATIN_1:
    case UCNV_US_ASCII:
    case UCNV_UTF8:
    case UCNV_UTF16_BigEndian:
    case UCNV_UTF16_LittleEndian:
        break;
    default:
        return false;
    }
    UErrorCode status = U_ZERO_ERROR;
    std::string mark = "<";
    if (::ucnv_getMinCharSize(converter) == 2)
        mark.insert(::ucnv_getType(converter) == UCNV_UTF16_BigEndian ? 0 : 1, 1, '\0');
    char16_t unit = 0;
    ::ucnv_toUChars(converter, &unit, 1, mark.data(), static_cast<std::int32_t>(mark.size()), &status);
    ::ucnv_reset(converter);
    return unit == u'<' && (U_SUCCESS(status) || status == U_STRING_NOT_TERMINATED_WARNING);
}

// Where an encoding's name comes from: a byte order mark proves it, a declaration that is read as ASCII does not.
enum class Named { ByMark, ByText };

Result<std::u16string, Failure> decode(std::string_view bytes, std::string const& encoding,
                                       Named named = Named::ByText) {
    // Nearly all texts are UTF-8, which needs no converter; one tells what is wrong with the others.
    if (asciiLowercase(encoding) == "utf-8") {
        if (std::optional<std::u16string> text = unitsFromUTF8(bytes)) return std::move(*text);
    }
    UErrorCode status = U_ZERO_ERROR;
    Converter const converter(::ucnv_open(encoding.c_str(), &status));
    if (U_FAILURE(status) || (named == Named::ByText && !keepsASCII(converter.get())))
        return Failure{atLine("The text's encoding \"" + encoding + "\" is not supported", 1)};
    status = U_ZERO_ERROR;
    ::ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    if (U_FAILURE(status)) return Failure{"The text's encoding cannot be read"};

    // No encoding here makes more units than there are bytes, save a few that spell one character with several.
    std::u16string text(bytes.size() + 16, u'\0');
    char const* source = bytes.data();
    char const* const sourceEnd = source + bytes.size();
    std::size_t filled = 0;
    for (;;) {
        char16_t* target = text.data() + filled;
        status = U_ZERO_ERROR;
        ::ucnv_toUnicode(converter.get(), &target, text.data() + text.size(), &source, sourceEnd, nullptr, true,
                         &status);
        filled = static_cast<std::size_t>(target - text.data());
        if (status != U_BUFFER_OVERFLOW_ERROR) break;
        text.resize(text.size() * 2);
    }
    text.resize(filled);
    if (U_FAILURE(status))
        return Failure{atLine("The text is not valid in its encoding, " + encoding + ",", lineAtEnd(text))};
    return text;
}

} // namespace

Result<std::u16string, Failure> decodePropertyListText(std::span<std::byte const> data) {
    std::string_view const bytes(reinterpret_cast<char const*>(data.data()), data.size());
    if (bytes.starts_with("\xEF\xBB\xBF")) return decode(bytes.substr(3), "UTF-8");
    // Before UTF-16, whose little-endian mark begins this one.
    if (bytes.starts_with(kMarkOfUTF32Little)) return decode(bytes.substr(4), "UTF-32LE", Named::ByMark);
    if (bytes.starts_with(kMarkOfUTF32Big)) return decode(bytes.substr(4), "UTF-32BE", Named::ByMark);
    if (bytes.starts_with("\xFE\xFF")) return decode(bytes.substr(2), "UTF-16BE");
    if (bytes.starts_with("\xFF\xFE")) return decode(bytes.substr(2), "UTF-16LE");
    if (bytes.size() >= 2 && bytes[0] == '\0' && bytes[1] != '\0') return decode(bytes, "UTF-16BE");
    if (bytes.size() >= 2 && bytes[0] != '\0' && bytes[1] == '\0') return decode(bytes, "UTF-16LE");
    std::string_view const declared = declaredEncoding(bytes);
    if (declared.empty()) return decode(bytes, "UTF-8");
    std::string const name(declared.substr(0, kLongestEncodingName));
    bool const isName = std::ranges::all_of(name, [](char character) { return character > ' ' && character < '\x7F'; });
    if (!isName) return Failure{"The text's encoding has no name at line 1"};
    return decode(bytes, name);
}

} // namespace mac
