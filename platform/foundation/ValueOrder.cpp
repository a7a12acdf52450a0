#include "platform/foundation/ValueOrder.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSSortDescriptor.h"
#include "platform/foundation/TextFolding.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>
#include <optional>

namespace mac {

namespace {

// A row among those that are sorted by one criterion. Most comparisons end with the prefixes of two rows.
struct SortItem {
    enum class Kind : std::uint8_t { Other, Number, Text };

    std::size_t row;
    Kind kind{Kind::Other};
    // Whether those with the same prefix are equal.
    bool isWhole{false};
    std::uint64_t prefix{0};
    // Of Text: as it is compared.
    std::string_view text{};
};

// What the prefix of a text has room for, beside its length.
constexpr std::size_t PrefixBytes = 7;
constexpr std::uint64_t LongerThanPrefix = 0xFF;
// Below this size each whole number is a different real.
constexpr double LargestExact = 9007199254740992;

// In the order of reals; not for not-a-number.
std::uint64_t orderedBits(double value) {
    constexpr std::uint64_t sign = std::uint64_t{1} << 63;
    // Adding zero makes the negative zero the positive one.
    auto const bits = std::bit_cast<std::uint64_t>(value + 0.0);
    return (bits & sign) != 0 ? ~bits : bits | sign;
}

std::uint64_t prefixOf(std::string_view text) {
    std::uint64_t prefix = 0;
    for (std::size_t index = 0; index < PrefixBytes; ++index)
        prefix = prefix << 8 | (index < text.size() ? static_cast<unsigned char>(text[index]) : 0U);
    return prefix << 8 | (text.size() > PrefixBytes ? LongerThanPrefix : text.size());
}

// UTF-8 also of lone surrogates: bytes in the order of code points.
void appendOrdered(std::string& bytes, char32_t codePoint) {
    auto const append = [&](char32_t byte) { bytes += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (codePoint < 0x80) return append(codePoint);
    if (codePoint < 0x800) {
        append(0xC0 | codePoint >> 6);
    } else if (codePoint < 0x10000) {
        append(0xE0 | codePoint >> 12);
        append(0x80 | (codePoint >> 6 & 0x3F));
    } else {
        append(0xF0 | codePoint >> 18);
        append(0x80 | (codePoint >> 12 & 0x3F));
        append(0x80 | (codePoint >> 6 & 0x3F));
    }
    append(0x80 | (codePoint & 0x3F));
}

// The folding of the messages whose order is known here; nothing for another message.
std::optional<TextFolding> foldingOfMessage(SEL selector) {
    if (selector == SEL("compare:")) return foldingOf(0);
    if (selector == SEL("caseInsensitiveCompare:")) return foldingOf(NSCaseInsensitiveSearch);
    return {};
}

// What a criterion makes of the values before it compares them. Texts are folded once and not at each comparison: their
// bytes then have the order that the message answers.
class Criterion {
public:
    // The column of values starts at the first one; one of the next row is a width further.
    Criterion(NSSortDescriptor const& descriptor, id const* firstValue, std::size_t width)
        : m_firstValue(firstValue), m_width(width), m_selector(descriptor.selector()),
          m_isAscending(descriptor.ascending()), m_folding(foldingOfMessage(m_selector)),
          m_knowsNumbers(m_selector == SEL("compare:")) {}

    bool isBefore(int order) const { return m_isAscending ? order < 0 : order > 0; }

    // They are ready until the next ones are.
    void prepare(std::vector<SortItem>& items) {
        m_bytes.clear();
        std::vector<std::size_t> ends;
        for (SortItem& item : items) {
            prepare(item, valueOf(item));
            if (item.kind == SortItem::Kind::Text) ends.push_back(m_bytes.size());
        }
        std::size_t start = 0;
        auto end = ends.begin();
        for (SortItem& item : items) {
            if (item.kind != SortItem::Kind::Text) continue;
            item.text = std::string_view(m_bytes).substr(start, *end - start);
            start = *end++;
        }
        leaveOutCommonStart(items);
    }

    int compare(SortItem const& first, SortItem const& second) const {
        using Kind = SortItem::Kind;
        if (first.kind != second.kind || first.kind == Kind::Other)
            return compareBySelector(valueOf(first), valueOf(second), m_selector);
        if (first.prefix != second.prefix) return first.prefix < second.prefix ? -1 : 1;
        if (first.isWhole && second.isWhole) return 0;
        if (first.kind == Kind::Text) return first.text.compare(second.text);
        return uncheckedCast<NSNumber>(valueOf(first)).compare_(uncheckedCast<NSNumber>(valueOf(second)));
    }

private:
    id const& valueOf(SortItem const& item) const { return m_firstValue[item.row * m_width]; }

    void prepare(SortItem& item, id const& value) {
        if (NSNumber const number = m_knowsNumbers ? as<NSNumber>(value) : NSNumber(); number != nil) {
            double const real = number.doubleValue();
            if (std::isnan(real)) return;
            item.kind = SortItem::Kind::Number;
            item.prefix = orderedBits(real);
            item.isWhole = std::abs(real) < LargestExact;
            return;
        }
        NSString const text = m_folding ? as<NSString>(value) : NSString();
        if (text == nil) return;
        item.kind = SortItem::Kind::Text;
        appendFolded(text.codeUnits());
    }

    void appendFolded(std::u16string_view units) {
        std::size_t const start = m_bytes.size();
        for (char16_t const unit : units) {
            if (unit >= 0x80) {
                m_bytes.resize(start);
                for (FoldedCharacter const& character : foldedText(units, *m_folding))
                    appendOrdered(m_bytes, character.codePoint);
                return;
            }
            m_bytes += static_cast<char>(m_folding->isCaseInsensitive ? lowercaseASCII(unit) : unit);
        }
    }

    // The prefixes tell more when what all texts begin with, such as a folder, does not count.
    static void leaveOutCommonStart(std::vector<SortItem>& items) {
        std::optional<std::string_view> common;
        for (SortItem const& item : items) {
            if (item.kind != SortItem::Kind::Text) continue;
            if (!common) common = item.text;
            auto const* const end = std::ranges::mismatch(*common, item.text).in1;
            common = common->substr(0, static_cast<std::size_t>(end - common->begin()));
        }
        for (SortItem& item : items) {
            if (item.kind != SortItem::Kind::Text) continue;
            item.text.remove_prefix(common->size());
            item.prefix = prefixOf(item.text);
            item.isWhole = item.text.size() <= PrefixBytes;
        }
    }

    id const* m_firstValue;
    std::size_t m_width;
    SEL m_selector;
    bool m_isAscending;
    std::optional<TextFolding> m_folding;
    bool m_knowsNumbers;
    std::string m_bytes;
};

// A merge sort of our own: std::stable_sort reads past the end when a comparison contradicts itself, and some are
// answered by messages.
template <class IsLess>
void mergeSort(std::vector<SortItem>& items, IsLess const& isLess) {
    std::vector<SortItem> merged(items.size());
    auto const at = [](auto begin, std::size_t index) { return begin + static_cast<std::ptrdiff_t>(index); };
    for (std::size_t width = 1; width < items.size(); width *= 2) {
        for (std::size_t start = 0; start < items.size(); start += 2 * width) {
            auto const first = at(items.begin(), start);
            auto const middle = at(items.begin(), std::min(start + width, items.size()));
            auto const end = at(items.begin(), std::min(start + 2 * width, items.size()));
            auto const target = at(merged.begin(), start);
            bool const isInOrder = middle == end || !isLess(*middle, *(middle - 1));
            if (isInOrder)
                std::copy(first, end, target);
            else
                std::merge(first, middle, middle, end, target, isLess);
        }
        items.swap(merged);
    }
}

// Sorts by the first criterion, then what is equal by the next one.
class RowSorting {
public:
    RowSorting(std::span<id const> values, NSArray const& descriptors) {
        for (id const& descriptor : descriptors)
            m_criteria.emplace_back(uncheckedCast<NSSortDescriptor>(descriptor), values.data() + m_criteria.size(),
                                    descriptors.count());
    }

    void sort(std::span<std::size_t> rows, std::size_t column) {
        if (rows.size() < 2 || column == m_criteria.size()) return;
        Criterion& criterion = m_criteria[column];
        std::vector<SortItem> items;
        items.reserve(rows.size());
        for (std::size_t const row : rows)
            items.push_back({.row = row});
        criterion.prepare(items);
        mergeSort(items, [&](SortItem const& first, SortItem const& second) {
            return criterion.isBefore(criterion.compare(first, second));
        });

        std::ranges::transform(items, rows.begin(), &SortItem::row);
        for (std::size_t first = 0; first < items.size();) {
            std::size_t next = first + 1;
            while (next < items.size() && criterion.compare(items[first], items[next]) == 0)
                ++next;
            sort(rows.subspan(first, next - first), column + 1);
            first = next;
        }
    }

private:
    std::vector<Criterion> m_criteria;
};

} // namespace

std::vector<std::size_t> orderOfRows(std::span<id const> values, NSArray const& descriptors) {
    std::size_t const width = descriptors.count();
    if (width == 0 || values.empty()) return {};
    std::vector<std::size_t> rows(values.size() / width);
    std::iota(rows.begin(), rows.end(), std::size_t{0});
    RowSorting(values, descriptors).sort(rows, 0);
    return rows;
}

} // namespace mac
