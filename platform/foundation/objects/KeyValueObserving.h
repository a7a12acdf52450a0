#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// What a change notification carries; the values are the framework's own.
enum NSKeyValueObservingOptions : NSUInteger {
    NSKeyValueObservingOptionNew = 1,
    NSKeyValueObservingOptionOld = 2,
    NSKeyValueObservingOptionInitial = 4,
    NSKeyValueObservingOptionPrior = 8,
};

// The kind of change under "kind": a value was set as a whole, or members of an array came, went or were replaced.
inline constexpr NSUInteger NSKeyValueChangeSetting = 1;
inline constexpr NSUInteger NSKeyValueChangeInsertion = 2;
inline constexpr NSUInteger NSKeyValueChangeRemoval = 3;
inline constexpr NSUInteger NSKeyValueChangeReplacement = 4;

// Keys of the change dictionary. Where there are "indexes", "new" and "old" are arrays of the members at them.
inline constexpr char NSKeyValueChangeKindKey[] = "kind";
inline constexpr char NSKeyValueChangeNewKey[] = "new";
inline constexpr char NSKeyValueChangeOldKey[] = "old";
inline constexpr char NSKeyValueChangeNotificationIsPriorKey[] = "notificationIsPrior";
inline constexpr char NSKeyValueChangeIndexesKey[] = "indexes";

// Stands in a setter for the whole change of one key: observers are told once when it ends. An exception of an
// observer, also of one told beforehand, goes on to the setter's caller, after all observers have been told; if the
// setter itself raises, observers are not told. Observing is for one thread, the main thread by convention.
class KeyChange {
public:
    KeyChange(id const& object, NSString const& key);
    // Announces a change of the members at these indexes of the array under the key. A change of the whole value
    // meanwhile is part of it.
    KeyChange(id const& object, NSString const& key, NSUInteger kind, NSIndexSet const& indexes);
    ~KeyChange() noexcept(false);
    KeyChange(KeyChange const&) = delete;
    KeyChange& operator=(KeyChange const&) = delete;

private:
    id m_object;
    NSString m_key;
    int m_exceptions;
};

}
