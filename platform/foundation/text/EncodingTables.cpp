#include "platform/foundation/text/EncodingTables.h"
#include <memory>
#include <unicode/ucnv.h>

namespace mac {

namespace {

struct CloseTableConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

UpperHalf tableFromICU(char const* name) {
    UpperHalf table;
    table.fill(u'\uFFFD');
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, CloseTableConverter> const converter(ucnv_open(name, &status));
    if (U_FAILURE(status)) return table;
    for (std::size_t index = 0; index < table.size(); ++index) {
        char const byte = static_cast<char>(0x80 + index);
        UErrorCode byteStatus = U_ZERO_ERROR;
        std::array<char16_t, 4> units{};
        std::int32_t const length = ucnv_toUChars(converter.get(), units.data(), units.size(), &byte, 1, &byteStatus);
        if (U_SUCCESS(byteStatus) && length == 1) table[index] = units[0];
    }
    return table;
}

// As the Unicode consortium's mapping file has it; ICU knows no such converter.
constexpr UpperHalf NEXTSTEP{
    0x00A0, 0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C7, 0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC,
    0x00CD, 0x00CE, 0x00CF, 0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D9, 0x00DA, 0x00DB,
    0x00DC, 0x00DD, 0x00DE, 0x00B5, 0x00D7, 0x00F7, 0x00A9, 0x00A1, 0x00A2, 0x00A3, 0x2044, 0x00A5, 0x0192,
    0x00A7, 0x00A4, 0x2019, 0x201C, 0x00AB, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x00AE, 0x2013, 0x2020, 0x2021,
    0x00B7, 0x00A6, 0x00B6, 0x2022, 0x201A, 0x201E, 0x201D, 0x00BB, 0x2026, 0x2030, 0x00AC, 0x00BF, 0x00B9,
    0x02CB, 0x00B4, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x00A8, 0x00B2, 0x02DA, 0x00B8, 0x00B3, 0x02DD,
    0x02DB, 0x02C7, 0x2014, 0x00B1, 0x00BC, 0x00BD, 0x00BE, 0x00E0, 0x00E1, 0x00E2, 0x00E3, 0x00E4, 0x00E5,
    0x00E7, 0x00E8, 0x00E9, 0x00EA, 0x00EB, 0x00EC, 0x00C6, 0x00ED, 0x00AA, 0x00EE, 0x00EF, 0x00F0, 0x00F1,
    0x0141, 0x00D8, 0x0152, 0x00BA, 0x00F2, 0x00F3, 0x00F4, 0x00F5, 0x00F6, 0x00E6, 0x00F9, 0x00FA, 0x00FB,
    0x0131, 0x00FC, 0x00FD, 0x0142, 0x00F8, 0x0153, 0x00DF, 0x00FE, 0x00FF, 0xFFFD, 0xFFFD,
};

} // namespace

UpperHalf const& upperHalfOfISOLatin2() {
    static UpperHalf const table = tableFromICU("ISO-8859-2");
    return table;
}

UpperHalf const& upperHalfOfMacOSRoman() {
    static UpperHalf const table = tableFromICU("macintosh");
    return table;
}

UpperHalf const& upperHalfOfNEXTSTEP() { return NEXTSTEP; }

UpperHalf const& upperHalfOfWindowsCP1252() {
    static UpperHalf const table = tableFromICU("windows-1252");
    return table;
}

} // namespace mac
