#include "fuzz/Trials.h"
#include "platform/foundation/text/Encodings.h"
#include <array>
#include <cstring>

namespace mac::fuzz {

namespace {

constexpr std::array Encodings{NSASCIIStringEncoding,
                               NSNEXTSTEPStringEncoding,
                               NSUTF8StringEncoding,
                               NSISOLatin1StringEncoding,
                               NSISOLatin2StringEncoding,
                               NSUTF16StringEncoding,
                               NSWindowsCP1252StringEncoding,
                               NSMacOSRomanStringEncoding,
                               NSUTF16BigEndianStringEncoding,
                               NSUTF16LittleEndianStringEncoding,
                               NSUTF32StringEncoding,
                               NSUTF32BigEndianStringEncoding,
                               NSUTF32LittleEndianStringEncoding};

std::u16string codeUnitsIn(std::string_view bytes) {
    std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
    if (!units.empty()) std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
    return units;
}

std::string complaintAboutUTF8(std::string_view bytes) {
    std::optional<std::u16string> const units = unitsFromUTF8(bytes);
    return !units || utf8FromUnits(*units) == bytes ? "" : "UTF-8 comes back otherwise";
}

std::string complaintAboutFileName(std::string_view bytes) {
    std::optional<std::string> const back = fileSystemBytesFromUnits(unitsFromFileSystemBytes(bytes));
    if (bytes.find('\0') != std::string_view::npos) return back ? "a NUL is part of a file name" : "";
    return back == bytes ? "" : "a file name comes back otherwise";
}

// What is read of the text once it was written: UTF-8 loses a byte order mark at its start.
std::u16string_view readBack(std::u16string_view units, NSStringEncoding encoding) {
    bool const losesMark = encoding == NSUTF8StringEncoding && units.starts_with(u'\xFEFF');
    return units.substr(losesMark ? 1 : 0);
}

std::string complaintAboutText(std::u16string const& units, NSStringEncoding encoding) {
    std::optional<std::string> const name = fileSystemBytesFromUnits(units);
    if (name && unitsFromFileSystemBytes(*name) != units) return "two texts name one file";
    if (!bytesFromUnitsWithLoss(units, encoding)) return "an encoding is unknown";
    std::optional<std::string> const bytes = bytesFromUnits(units, encoding);
    return !bytes || unitsFromBytes(*bytes, encoding) == readBack(units, encoding)
               ? ""
               : "a text that was written is read otherwise";
}

std::string complaintAboutBytes(std::string_view bytes, NSStringEncoding encoding) {
    std::optional<std::u16string> const units = unitsFromBytes(bytes, encoding);
    if (!units) return "";
    if (!bytesFromUnits(*units, encoding)) return "a text that was read cannot be written";
    return complaintAboutText(*units, encoding);
}

} // namespace

std::string complaintAboutEncoding(std::string_view bytes) {
    if (bytes.empty()) return "";
    NSStringEncoding const encoding = Encodings[static_cast<unsigned char>(bytes[0]) % Encodings.size()];
    std::string_view const rest = bytes.substr(1);
    for (std::string const& text :
         {complaintAboutUTF8(rest), complaintAboutFileName(rest), complaintAboutText(codeUnitsIn(rest), encoding),
          complaintAboutBytes(rest, encoding)})
        if (!text.empty()) return text;
    return "";
}

} // namespace mac::fuzz
