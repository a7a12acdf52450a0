#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSString.h"

namespace mac {

// What a change notification carries; the values are the framework's own.
enum NSKeyValueObservingOptions : NSUInteger {
    NSKeyValueObservingOptionNew = 1,
    NSKeyValueObservingOptionOld = 2,
    NSKeyValueObservingOptionInitial = 4,
    NSKeyValueObservingOptionPrior = 8,
};

// The kind of change under "kind": a value was set as a whole.
inline constexpr NSUInteger NSKeyValueChangeSetting = 1;

// Keys of the change dictionary.
inline constexpr char NSKeyValueChangeKindKey[] = "kind";
inline constexpr char NSKeyValueChangeNewKey[] = "new";
inline constexpr char NSKeyValueChangeOldKey[] = "old";
inline constexpr char NSKeyValueChangeNotificationIsPriorKey[] = "notificationIsPrior";

// Stands in a setter for the whole change of one key: observers are told once when it ends. An exception of an observer
// goes on to the setter's caller, after all observers have been told; where the setter itself is left by an exception
// nobody is told. Observing is for one thread, the main thread by convention.
class KeyChange {
public:
    KeyChange(id const& object, NSString const& key);
    ~KeyChange() noexcept(false);
    KeyChange(KeyChange const&) = delete;
    KeyChange& operator=(KeyChange const&) = delete;

private:
    id m_object;
    NSString m_key;
    int m_exceptions;
};

}
