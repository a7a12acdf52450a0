#include "platform/foundation/collections/ValueOrder.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/TextFolding.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
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
    if (selector == SEL("compareAsVersion:")) return foldingOf(NSCaseInsensitiveSearch);
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
          m_knowsNumbers(m_selector == SEL("compare:")), m_countsDigits(m_selector == SEL("compareAsVersion:")) {}

    bool isBefore(int order) const { return m_isAscending ? order < 0 : order > 0; }

    // Other items are prepared next, one by one and then together. They are ready until the next ones begin.
    void begin() {
        m_bytes.clear();
        m_ends.clear();
    }
    void prepare(SortItem& item) {
        prepare(item, valueOf(item));
        if (item.kind == SortItem::Kind::Text) m_ends.push_back(m_bytes.size());
    }
    void finish(std::vector<SortItem>& items) {
        std::size_t start = 0;
        auto end = m_ends.begin();
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
        bool const isASCII = std::ranges::all_of(units, [](char16_t unit) { return unit < 0x80; });
        if (!isASCII) {
            for (FoldedCharacter const& character : foldedText(units, *m_folding))
                appendOrdered(m_bytes, character.codePoint);
        }
        for (char16_t const unit : isASCII ? units : std::u16string_view())
            m_bytes += static_cast<char>(m_folding->isCaseInsensitive ? lowercaseASCII(unit) : unit);
        if (m_countsDigits) orderDigits(start);
    }

    // Numbers in a text get the order of their values: each becomes a zero, the count of its digits without zeros in
    // front, and these digits.
    void orderDigits(std::size_t start) {
        constexpr std::string_view digits = "0123456789";
        std::string const text = m_bytes.substr(start);
        m_bytes.resize(start);
        for (std::size_t place = 0; place < text.size();) {
            std::size_t const number = std::min(text.find_first_of(digits, place), text.size());
            std::size_t const end = std::min(text.find_first_not_of(digits, number), text.size());
            std::size_t const value = std::min(text.find_first_not_of('0', number), end);
            m_bytes.append(text, place, number - place);
            if (number < end) {
                m_bytes += '0';
                appendOrdered(m_bytes, static_cast<char32_t>(std::min<std::size_t>(end - value, 0xFFFF)));
                m_bytes.append(text, value, end - value);
            }
            place = end;
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
    bool m_countsDigits;
    std::string m_bytes;
    // Where in the bytes the text of each item ends that has one.
    std::vector<std::size_t> m_ends;
};

// What preparing an item takes, by what moving one in a merge takes.
constexpr std::size_t PreparingCost = 8;
// What sorting a row of some ten thousand by two criteria takes in all, likewise: the preparing, and a move in each
// pass.
constexpr std::size_t RowCost = 48;

} // namespace

// Sorts by the first criterion, then what is equal by the next one. A merge sort of our own: std::stable_sort reads
// past the end when a comparison contradicts itself, and some are answered by messages.
class RowOrdering::Sorting {
public:
    Sorting(std::span<id const> values, NSArray const& descriptors) {
        for (id const& descriptor : descriptors)
            m_criteria.emplace_back(uncheckedCast<NSSortDescriptor>(descriptor), values.data() + m_criteria.size(),
                                    descriptors.count());
        if (m_criteria.empty()) return;
        m_rows.resize(values.size() / m_criteria.size());
        std::iota(m_rows.begin(), m_rows.end(), std::size_t{0});
        sortLater({.first = 0, .count = m_rows.size(), .column = 0});
    }

    std::vector<std::size_t> const& rows() const { return m_rows; }

    // Whether all is sorted after so much work.
    bool advance(std::size_t work) {
        for (std::size_t done = 0; done < work;) {
            if (m_stage == Stage::Idle && m_waiting.empty()) return true;
            done += advanceStage(work - done);
        }
        return m_stage == Stage::Idle && m_waiting.empty();
    }

private:
    // Rows that are equal by all criteria before the column's.
    struct Range {
        std::size_t first;
        std::size_t count;
        std::size_t column;
    };
    enum class Stage { Idle, Preparing, Merging };

    Criterion& criterion() { return m_criteria[m_range.column]; }
    void sortLater(Range range) {
        if (range.count > 1 && range.column < m_criteria.size()) m_waiting.push_back(range);
    }

    // Answers the work done.
    std::size_t advanceStage(std::size_t work) {
        switch (m_stage) {
        case Stage::Idle:
            begin();
            return 1;
        case Stage::Preparing:
            return prepare(work / PreparingCost + 1) * PreparingCost;
        case Stage::Merging:
            break;
        }
        return merge(work);
    }

    void begin() {
        m_range = m_waiting.back();
        m_waiting.pop_back();
        m_items.clear();
        m_items.reserve(m_range.count);
        criterion().begin();
        m_stage = Stage::Preparing;
    }

    std::size_t prepare(std::size_t most) {
        std::size_t const count = std::min(most, m_range.count - m_items.size());
        for (std::size_t index = 0; index < count; ++index) {
            m_items.push_back({.row = m_rows[m_range.first + m_items.size()]});
            criterion().prepare(m_items.back());
        }
        if (m_items.size() < m_range.count) return count;
        criterion().finish(m_items);
        m_merged.assign(m_items.size(), {});
        m_width = 1;
        m_stage = Stage::Merging;
        beginMerge(0);
        return count;
    }

    bool isLess(SortItem const& one, SortItem const& other) {
        return criterion().isBefore(criterion().compare(one, other));
    }

    // The two parts that begin there are merged next.
    void beginMerge(std::size_t start) {
        m_start = start;
        m_middle = std::min(start + m_width, m_items.size());
        m_stop = std::min(m_middle + m_width, m_items.size());
        m_left = m_start;
        m_right = m_middle;
        m_isInOrder = m_middle == m_stop || !isLess(m_items[m_middle], m_items[m_middle - 1]);
    }

    // Moves at most so many items on.
    std::size_t merge(std::size_t most) {
        std::size_t const count = std::min(most, m_middle - m_left + m_stop - m_right);
        std::size_t target = m_start + (m_left - m_start) + (m_right - m_middle);
        for (std::size_t const end = target + count; target < end; ++target) {
            bool const isFromBoth = !m_isInOrder && m_left < m_middle && m_right < m_stop;
            bool const isFromRight = isFromBoth ? isLess(m_items[m_right], m_items[m_left]) : m_left == m_middle;
            m_merged[target] = m_items[isFromRight ? m_right++ : m_left++];
        }
        if (target < m_stop) return count;
        if (m_stop == m_items.size())
            endPass();
        else
            beginMerge(m_stop);
        return count;
    }

    void endPass() {
        m_items.swap(m_merged);
        m_width *= 2;
        if (m_width < m_items.size()) return beginMerge(0);
        m_stage = Stage::Idle;
        for (std::size_t index = 0; index < m_items.size(); ++index)
            m_rows[m_range.first + index] = m_items[index].row;
        for (std::size_t first = 0; first < m_items.size();) {
            std::size_t next = first + 1;
            while (next < m_items.size() && criterion().compare(m_items[first], m_items[next]) == 0)
                ++next;
            sortLater({.first = m_range.first + first, .count = next - first, .column = m_range.column + 1});
            first = next;
        }
    }

    std::vector<Criterion> m_criteria;
    std::vector<std::size_t> m_rows;
    std::vector<Range> m_waiting;
    // What is being sorted.
    Stage m_stage{Stage::Idle};
    Range m_range{};
    std::vector<SortItem> m_items;
    // The next pass of the merge, as far as it is done; so long are the parts that are in order.
    std::vector<SortItem> m_merged;
    std::size_t m_width{1};
    // Two neighbouring parts that are being merged: where they begin and end, and what comes next of each.
    std::size_t m_start{0};
    std::size_t m_middle{0};
    std::size_t m_stop{0};
    std::size_t m_left{0};
    std::size_t m_right{0};
    // The second part follows the first as it stands.
    bool m_isInOrder{false};
};

RowOrdering::RowOrdering(std::span<id const> values, NSArray const& descriptors)
    : m_sorting(std::make_unique<Sorting>(values, descriptors)) {}

RowOrdering::~RowOrdering() = default;

bool RowOrdering::advance(std::size_t rows) { return m_sorting->advance(std::min(rows, SIZE_MAX / RowCost) * RowCost); }

std::vector<std::size_t> const& RowOrdering::order() const { return m_sorting->rows(); }

std::vector<std::size_t> orderOfRows(std::span<id const> values, NSArray const& descriptors) {
    RowOrdering ordering(values, descriptors);
    while (!ordering.advance(SIZE_MAX)) {}
    return ordering.order();
}

} // namespace mac
