#include "platform/appkit/arrangement/KeptOrder.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/collections/ValueOrder.h"
#include <algorithm>
#include <numeric>

namespace mac {

namespace {

// Comparing by message costs about as much as reading twenty values, so only this part of the content is put in its
// place one by one.
constexpr std::size_t LargestAddedPart = 50;

bool comesBefore(id const* first, id const* second, NSArray const& criteria) {
    for (id const& criterion : criteria) {
        NSComparisonResult const order = as<NSSortDescriptor>(criterion).compareValues(*first++, *second++);
        if (order != NSOrderedSame) return order == NSOrderedAscending;
    }
    return false;
}

// The known ones are in order; each added one goes behind those that do not come after it.
std::vector<std::size_t> withAdded(std::size_t knownCount, std::span<id const> values, NSArray const& criteria) {
    std::size_t const width = criteria.count();
    std::vector<std::size_t> order;
    order.reserve(values.size() / width);
    std::size_t done = 0;
    for (std::size_t const added : orderOfRows(values.subspan(knownCount * width), criteria)) {
        std::size_t low = done;
        for (std::size_t high = knownCount; low < high;) {
            std::size_t const middle = (low + high) / 2;
            if (comesBefore(&values[(knownCount + added) * width], &values[middle * width], criteria))
                high = middle;
            else
                low = middle + 1;
        }
        for (; done < low; ++done)
            order.push_back(done);
        order.push_back(knownCount + added);
    }
    for (; done < knownCount; ++done)
        order.push_back(done);
    return order;
}

} // namespace

id valueOfKeyPath(id const& object, NSString const& keyPath) {
    if (keyPath.length() == 0) return object;
    bool const isKey = keyPath.codeUnits().find(u'.') == std::u16string_view::npos;
    return isKey ? object.valueForKey_(keyPath) : object.valueForKeyPath_(keyPath);
}

SortValueReader::SortValueReader(NSArray const& criteria) {
    for (id const& criterion : criteria)
        m_keyPaths.push_back(as<NSSortDescriptor>(criterion).key());
}

void SortValueReader::append(std::vector<id>& values, id const& object) const {
    for (NSString const& keyPath : m_keyPaths)
        values.push_back(valueOfKeyPath(object, keyPath));
}

bool KeptOrder::isAsBefore(std::span<id const> values, std::span<std::size_t const> formerPlaces,
                           std::size_t width) const {
    for (std::size_t index = 0; index < formerPlaces.size() && formerPlaces[index] != None; ++index) {
        for (std::size_t i = 0; i < width; ++i) {
            id const& now = values[index * width + i];
            id const& before = m_values[formerPlaces[index] * width + i];
            if (!isSame(now, before) && !now.isEqual_(before)) return false;
        }
    }
    return true;
}

KeptOrder::Result KeptOrder::sort(std::vector<id> values, std::span<std::size_t const> formerPlaces,
                                  NSArray const& criteria) const {
    std::optional<std::vector<std::size_t>> known = orderWithoutSorting(values, formerPlaces, criteria);
    Result result{known ? std::move(*known) : orderOfRows(values, criteria), {}};
    result.values = valuesInOrder(std::move(values), result.order, criteria.count());
    return result;
}

std::optional<std::vector<std::size_t>> KeptOrder::orderWithoutSorting(std::span<id const> values,
                                                                       std::span<std::size_t const> formerPlaces,
                                                                       NSArray const& criteria) const {
    std::size_t const count = formerPlaces.size();
    std::size_t const width = criteria.count();
    if (width == 0) {
        std::vector<std::size_t> order(count);
        std::iota(order.begin(), order.end(), std::size_t(0));
        return order;
    }
    std::size_t const knownCount =
        static_cast<std::size_t>(std::ranges::find(formerPlaces, None) - formerPlaces.begin());
    bool const areFewAdded = (count - knownCount) * LargestAddedPart <= knownCount;
    if (m_values.empty() || !areFewAdded || !isAsBefore(values, formerPlaces, width)) return std::nullopt;
    return withAdded(knownCount, values, criteria);
}

std::vector<id> KeptOrder::valuesInOrder(std::vector<id> values, std::span<std::size_t const> order,
                                         std::size_t width) {
    std::vector<id> result;
    result.reserve(values.size());
    for (std::size_t const index : order) {
        for (std::size_t i = 0; i < width; ++i)
            result.push_back(std::move(values[index * width + i]));
    }
    return result;
}

} // namespace mac
