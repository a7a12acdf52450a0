#include "platform/foundation/text/Encodings.h"
#include <bit>

namespace mac {

namespace {

constexpr char32_t ByteOrderMark = 0xFEFF;

struct WideEncoding {
    std::size_t unitSize;
    std::endian order;
    bool hasMark;
};

std::optional<WideEncoding> wideEncoding(NSStringEncoding encoding) {
    switch (encoding) {
    case NSUnicodeStringEncoding:
        return WideEncoding{2, std::endian::native, true};
    case NSUTF16BigEndianStringEncoding:
        return WideEncoding{2, std::endian::big, false};
    case NSUTF16LittleEndianStringEncoding:
        return WideEncoding{2, std::endian::little, false};
    case NSUTF32StringEncoding:
        return WideEncoding{4, std::endian::native, true};
    case NSUTF32BigEndianStringEncoding:
        return WideEncoding{4, std::endian::big, false};
    case NSUTF32LittleEndianStringEncoding:
        return WideEncoding{4, std::endian::little, false};
    default:
        return std::nullopt;
    }
}

char32_t unitAt(std::string_view bytes, WideEncoding const& encoding) {
    char32_t unit = 0;
    for (std::size_t index = 0; index < encoding.unitSize; ++index) {
        std::size_t const place = encoding.order == std::endian::big ? index : encoding.unitSize - 1 - index;
        unit = unit << 8 | static_cast<unsigned char>(bytes[place]);
    }
    return unit;
}

void appendUnit(std::string& bytes, char32_t unit, WideEncoding const& encoding) {
    for (std::size_t index = 0; index < encoding.unitSize; ++index) {
        std::size_t const place = encoding.order == std::endian::big ? encoding.unitSize - 1 - index : index;
        bytes.push_back(static_cast<char>(unit >> place * 8));
    }
}

std::endian otherOrder(std::endian order) { return order == std::endian::big ? std::endian::little : std::endian::big; }

} // namespace

std::optional<std::u16string> unitsFromWideBytes(std::string_view bytes, NSStringEncoding encoding) {
    std::optional<WideEncoding> const known = wideEncoding(encoding);
    if (!known || bytes.size() % known->unitSize != 0) return std::nullopt;
    WideEncoding wide = *known;
    if (wide.hasMark && !bytes.empty()) {
        WideEncoding const swapped{wide.unitSize, otherOrder(wide.order), true};
        if (unitAt(bytes, swapped) == ByteOrderMark) wide = swapped;
        if (unitAt(bytes, wide) == ByteOrderMark) bytes.remove_prefix(wide.unitSize);
    }
    std::u16string units;
    for (; !bytes.empty(); bytes.remove_prefix(wide.unitSize)) {
        char32_t const unit = unitAt(bytes, wide);
        bool const isSurrogate = unit >= 0xD800 && unit <= 0xDFFF;
        if (unit > 0x10FFFF || (wide.unitSize == 4 && isSurrogate)) return std::nullopt;
        appendCodePoint(units, unit);
    }
    return units;
}

std::optional<std::string> wideBytesFromUnits(std::u16string_view units, NSStringEncoding encoding) {
    std::optional<WideEncoding> const wide = wideEncoding(encoding);
    if (!wide) return std::nullopt;
    std::string bytes;
    bytes.reserve((units.size() + 1) * wide->unitSize);
    if (wide->hasMark) appendUnit(bytes, ByteOrderMark, *wide);
    for (std::size_t index = 0; index < units.size();) {
        char32_t const codePoint = wide->unitSize == 2 ? units[index] : codePointAt(units, index);
        bool const isLone = wide->unitSize == 4 && codePoint >= 0xD800 && codePoint <= 0xDFFF;
        if (isLone) return std::nullopt;
        appendUnit(bytes, codePoint, *wide);
        index += wide->unitSize == 2 ? 1 : unitCount(codePoint);
    }
    return bytes;
}

} // namespace mac
