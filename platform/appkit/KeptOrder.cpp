#include "platform/appkit/KeptOrder.h"
#include "platform/foundation/NSSortDescriptor.h"
#include <algorithm>
#include <numeric>
#include <unordered_map>
#include <utility>

namespace mac {

namespace {

// Comparing by message costs about as much as reading twenty values, so only this part of the content is put in its
// place one by one.
constexpr std::size_t LargestAddedPart = 50;

// Sorts as the framework does and answers where each object came from; an object may stand there more than once.
std::vector<std::size_t> orderOf(std::vector<id> objects, NSArray const& criteria) {
    std::unordered_map<ObjectBody const*, std::size_t> first(objects.size());
    std::vector<std::size_t> next(objects.size(), KeptOrder::None);
    for (std::size_t index = objects.size(); index-- > 0;) {
        auto const [place, isNew] = first.try_emplace(objects[index].body(), index);
        if (!isNew) next[index] = std::exchange(place->second, index);
    }
    std::vector<std::size_t> order;
    order.reserve(objects.size());
    for (id const& object : NSArray::arrayWithVector(std::move(objects)).sortedArrayUsingDescriptors_(criteria)) {
        std::size_t& place = first.at(object.body());
        order.push_back(std::exchange(place, next[place]));
    }
    return order;
}

std::vector<id> valuesOf(std::span<id const> objects, NSArray const& criteria) {
    std::vector<NSString> keyPaths;
    for (id const& criterion : criteria)
        keyPaths.push_back(as<NSSortDescriptor>(criterion).key());
    std::vector<id> values;
    values.reserve(objects.size() * keyPaths.size());
    for (id const& object : objects) {
        for (NSString const& keyPath : keyPaths)
            values.push_back(valueOfKeyPath(object, keyPath));
    }
    return values;
}

bool comesBefore(id const* first, id const* second, NSArray const& criteria) {
    for (id const& criterion : criteria) {
        NSComparisonResult const order = as<NSSortDescriptor>(criterion).compareValues(*first++, *second++);
        if (order != NSOrderedSame) return order == NSOrderedAscending;
    }
    return false;
}

// The known ones are in order; each added one goes behind those that do not come after it.
std::vector<std::size_t> withAdded(std::span<id const> objects, std::size_t knownCount, std::vector<id> const& values,
                                   NSArray const& criteria) {
    std::size_t const width = criteria.count();
    std::vector<std::size_t> order;
    order.reserve(objects.size());
    std::size_t done = 0;
    for (std::size_t const added :
         orderOf({objects.begin() + static_cast<std::ptrdiff_t>(knownCount), objects.end()}, criteria)) {
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

KeptOrder::Result KeptOrder::sort(std::span<id const> objects, std::span<std::size_t const> formerPlaces,
                                  NSArray const& criteria) const {
    Result result;
    if (criteria.count() == 0) {
        result.order.resize(objects.size());
        std::iota(result.order.begin(), result.order.end(), std::size_t(0));
        return result;
    }
    std::vector<id> values = valuesOf(objects, criteria);
    std::size_t const knownCount =
        static_cast<std::size_t>(std::ranges::find(formerPlaces, None) - formerPlaces.begin());
    bool const areFewAdded = (objects.size() - knownCount) * LargestAddedPart <= knownCount;
    if (!m_values.empty() && areFewAdded && isAsBefore(values, formerPlaces, criteria.count()))
        result.order = withAdded(objects, knownCount, values, criteria);
    else
        result.order = orderOf({objects.begin(), objects.end()}, criteria);
    result.values.reserve(values.size());
    for (std::size_t const index : result.order) {
        for (std::size_t i = 0; i < criteria.count(); ++i)
            result.values.push_back(std::move(values[index * criteria.count() + i]));
    }
    return result;
}

} // namespace mac
