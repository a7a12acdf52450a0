#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSPredicate.h"
#include "platform/foundation/NSSet.h"
#include "platform/foundation/NSSortDescriptor.h"
#include <algorithm>
#include <numeric>

namespace mac {

namespace {

// A value to sort by, with what makes comparing it cheap. ASCII text needs no rules of language: its letters are
// compared as they stand, or folded beforehand, and the order is that of the message.
struct SortValue {
    enum class Kind { Other, Number, Ascii };

    Kind kind{Kind::Other};
    id value{};
    // Of Ascii: the text as it is compared.
    std::string text{};
};

// The two messages of strings whose order over ASCII text is known here.
enum class TextOrder { Unknown, Plain, CaseInsensitive };

// One criterion with the values of all objects.
struct SortColumn {
    SEL selector;
    bool isAscending;
    std::vector<SortValue> values;
};

bool isAscii(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
}

char folded(char16_t unit) { return static_cast<char>(unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit); }

SortValue sortValue(id value, SEL selector, TextOrder textOrder) {
    SortValue result{.value = std::move(value)};
    if (as<NSNumber>(result.value) != nil && selector == SEL("compare:")) {
        result.kind = SortValue::Kind::Number;
        return result;
    }
    NSString const text = as<NSString>(result.value);
    if (text == nil || textOrder == TextOrder::Unknown || !isAscii(text.codeUnits())) return result;
    result.kind = SortValue::Kind::Ascii;
    for (char16_t const unit : text.codeUnits())
        result.text += textOrder == TextOrder::Plain ? static_cast<char>(unit) : folded(unit);
    return result;
}

template <class Read>
SortColumn sortColumn(std::span<id const> objects, SEL selector, bool isAscending, Read const& read) {
    TextOrder const textOrder = selector == SEL("compare:")                  ? TextOrder::Plain
                                : selector == SEL("caseInsensitiveCompare:") ? TextOrder::CaseInsensitive
                                                                             : TextOrder::Unknown;
    SortColumn column{selector, isAscending, {}};
    column.values.reserve(objects.size());
    for (id const& object : objects)
        column.values.push_back(sortValue(read(object), selector, textOrder));
    return column;
}

int compare(SortValue const& first, SortValue const& second, SEL selector) {
    using Kind = SortValue::Kind;
    if (first.kind == Kind::Ascii && second.kind == Kind::Ascii) return first.text.compare(second.text);
    if (first.kind == Kind::Number && second.kind == Kind::Number)
        return uncheckedCast<NSNumber>(first.value).compare_(uncheckedCast<NSNumber>(second.value));
    return compareBySelector(first.value, second.value, selector);
}

// The indexes in their stable order. A merge sort of our own: std::stable_sort reads past the end when a comparison
// contradicts itself, and these are answered by messages.
template <class IsLess>
std::vector<std::size_t> sortedIndexes(std::size_t count, IsLess const& isLess) {
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<std::size_t> merged(count);
    for (std::size_t width = 1; width < count; width *= 2) {
        for (std::size_t start = 0; start < count; start += 2 * width) {
            std::size_t const middle = std::min(start + width, count);
            std::size_t const end = std::min(start + 2 * width, count);
            auto const at = [](std::size_t index) { return static_cast<std::ptrdiff_t>(index); };
            std::merge(order.begin() + at(start), order.begin() + at(middle), order.begin() + at(middle),
                       order.begin() + at(end), merged.begin() + at(start), isLess);
        }
        order.swap(merged);
    }
    return order;
}

NSArray sorted(std::span<id const> objects, std::vector<SortColumn> const& columns) {
    auto const isLess = [&](std::size_t first, std::size_t second) {
        for (SortColumn const& column : columns) {
            int const result = compare(column.values[first], column.values[second], column.selector);
            if (result != 0) return (result < 0) == column.isAscending;
        }
        return false;
    };
    std::vector<id> result;
    result.reserve(objects.size());
    for (std::size_t const index : sortedIndexes(objects.size(), isLess))
        result.push_back(objects[index]);
    return NSArray::arrayWithVector(std::move(result));
}

std::vector<id> passing(std::span<id const> objects, NSPredicate const& predicate) {
    std::vector<id> result;
    std::ranges::copy_if(objects, std::back_inserter(result),
                         [&](id const& object) { return predicate.evaluateWithObject_(object); });
    return result;
}

// A copy to work on: a getter or a comparison may change the collection.
std::vector<id> copied(std::span<id const> objects) { return {objects.begin(), objects.end()}; }

} // namespace

NSArray NSArray::sortedArrayUsingDescriptors_(NSArray const& descriptors) const {
    if (*this == nil) return nil;
    std::vector<id> const all = copied(objects());
    std::vector<SortColumn> columns;
    for (id const& object : descriptors) {
        NSSortDescriptor const descriptor = as<NSSortDescriptor>(object);
        if (descriptor == nil) continue;
        columns.push_back(sortColumn(all, descriptor.selector(), descriptor.ascending(),
                                     [&](id const& row) { return descriptor.valueOfObject(row); }));
    }
    return sorted(all, columns);
}

NSArray NSArray::sortedArrayUsingSelector_(SEL comparator) const {
    if (*this == nil) return nil;
    std::vector<id> const all = copied(objects());
    std::vector<SortColumn> columns;
    columns.push_back(sortColumn(all, comparator, true, [](id const& object) { return object; }));
    return sorted(all, columns);
}

NSArray NSArray::filteredArrayUsingPredicate_(NSPredicate const& predicate) const {
    if (*this == nil) return nil;
    return NSArray::arrayWithVector(passing(copied(objects()), predicate));
}

void NSMutableArray::sortUsingDescriptors_(NSArray const& descriptors) const {
    if (*this != nil) setArray_(sortedArrayUsingDescriptors_(descriptors));
}

void NSMutableArray::filterUsingPredicate_(NSPredicate const& predicate) const {
    if (*this != nil) setArray_(filteredArrayUsingPredicate_(predicate));
}

NSSet NSSet::filteredSetUsingPredicate_(NSPredicate const& predicate) const {
    if (*this == nil) return nil;
    return NSSet::setWithArray_(allObjects().filteredArrayUsingPredicate_(predicate));
}

} // namespace mac
