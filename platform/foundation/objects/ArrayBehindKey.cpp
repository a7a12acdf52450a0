#include "platform/foundation/objects/ArrayBehindKey.h"
#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include <algorithm>

namespace mac {

namespace {

bool haveSameMembers(NSArray const& first, NSArray const& second) {
    return isSame(first, second) || std::ranges::equal(first.objects(), second.objects(), isSame);
}

} // namespace

NSArray ArrayBehindKey::valueNow() const {
    id const value = m_object.valueForKey_(uncheckedCast<NSString>(m_key));
    NSArray const array = as<NSArray>(value);
    if (value != nil && array == nil)
        throw NSInvalidArgumentException("There is no array under the key \"" + m_key.description().UTF8String() +
                                         "\" of " + std::string(m_object.class_().name()));
    return array == nil ? NSArray::array() : array;
}

std::span<id const> ArrayBehindKey::objects() {
    NSArray const now = valueNow();
    if (haveSameMembers(now, m_current)) return m_current.objects();
    if (!haveSameMembers(valueNow(), now))
        throw NSInvalidArgumentException("Each time other objects are under the key \"" +
                                         m_key.description().UTF8String() + "\" of " +
                                         std::string(m_object.class_().name()));
    m_current = now;
    return m_current.objects();
}

void ArrayBehindKey::change(NSUInteger kind, NSIndexSet const& indexes,
                            std::function<void(std::vector<id>&)> const& edit) {
    std::span<id const> const before = objects();
    std::vector<id> after(before.begin(), before.end());
    edit(after);
    NSMutableArray const changed = adopt<NSMutableArray>(std::move(after));
    NSString const key = uncheckedCast<NSString>(m_key);
    // The array that this one belongs to may go when the object is told.
    id const object = m_object;
    if (kind == NSKeyValueChangeSetting) {
        object.setValue_forKey_(changed, key);
        return;
    }
    KeyChange const observed(object, key, kind, indexes);
    object.setValue_forKey_(changed, key);
}

NSMutableArray id::mutableArrayValueForKey_(NSString const& key) const {
    if (*this == nil) return nil;
    requireObject(key, "The key of an array");
    return adopt<NSMutableArray>(std::make_unique<ArrayBehindKey>(*this, key));
}

NSMutableArray id::mutableArrayValueForKeyPath_(NSString const& keyPath) const {
    if (*this == nil) return nil;
    requireObject(keyPath, "The key path of an array");
    std::u16string_view const path = keyPath.codeUnits();
    std::size_t const dot = path.rfind(u'.');
    if (dot == std::u16string_view::npos) return mutableArrayValueForKey_(keyPath);
    id const owner = valueForKeyPath_(NSString::stringWithCodeUnits(path.substr(0, dot)));
    return owner.mutableArrayValueForKey_(NSString::stringWithCodeUnits(path.substr(dot + 1)));
}

} // namespace mac
