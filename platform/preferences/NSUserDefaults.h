#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/collections/NSDictionary.h"

namespace mac {

// The domains that are searched beside the application's own.
inline constexpr char NSArgumentDomain[] = "NSArgumentDomain";
inline constexpr char NSGlobalDomain[] = "NSGlobalDomain";
inline constexpr char NSRegistrationDomain[] = "NSRegistrationDomain";

// Posted to the default notification centre on each change of the defaults; its object is the defaults.
inline constexpr char NSUserDefaultsDidChangeNotification[] = "NSUserDefaultsDidChangeNotification";

// The user's settings of this program: property-list values by key. A value is looked for in the program's arguments,
// in the application's domain, in the global domain of all programs and among the registered defaults, in this order.
// Only the application's domain is changed, and only it is stored: it is the domain kCFPreferencesCurrentApplication of
// CFPreferences.h. There is one object, which lives as long as the program. A nil key has no value and is not set. Main
// thread.
//
// The arguments are the words "-KEY VALUE" that the program was started with, read when the first value is looked for.
// The value is a string, or the array, dictionary, data or quoted string that the word is in the old-style or XML form
// of a property list. "--" ends them; a word that begins with two hyphens is no key, and one that is followed by
// another word with a hyphen has no value, unless that is a negative number.
//
// A change is written within a second while the main run loop runs, else at the program's exit. Values of other keys
// that another program wrote into the file meanwhile are kept.
// Linux: what cannot be written stays in memory and is tried again at the next change, by synchronize and at exit; the
// reason is logged. A file that cannot be read, or is damaged, is logged too and never overwritten.
class NSUserDefaults : public Handle<NSUserDefaults, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSUserDefaults standardUserDefaults();
    // Synchronises, and forgets the registered defaults and the arguments.
    static void resetStandardUserDefaults();

    // Nil if no domain has the key.
    id objectForKey_(NSString const& key) const;
    // Stores an immutable copy; nil removes the value. A value that is no property list raises
    // NSInvalidArgumentException.
    void setObject_forKey_(id const& value, NSString const& key) const;
    // Removes the value from the application's domain; the other domains may still have one.
    void removeObjectForKey_(NSString const& key) const;

    // A number is answered as its text; nil for a value of another class.
    NSString stringForKey_(NSString const& key) const;
    // Nil for a value of another class.
    NSArray arrayForKey_(NSString const& key) const;
    NSDictionary dictionaryForKey_(NSString const& key) const;
    NSData dataForKey_(NSString const& key) const;
    // Nil also for an array with an element that is no string.
    NSArray stringArrayForKey_(NSString const& key) const;
    // The number, or the number that a string begins with; 0 and NO for a value of another class. Texts that begin with
    // Y, y, T, t or a digit other than 0 are YES.
    NSInteger integerForKey_(NSString const& key) const;
    float floatForKey_(NSString const& key) const;
    double doubleForKey_(NSString const& key) const;
    bool boolForKey_(NSString const& key) const;
    void setInteger_forKey_(NSInteger value, NSString const& key) const;
    void setFloat_forKey_(float value, NSString const& key) const;
    void setDouble_forKey_(double value, NSString const& key) const;
    void setBool_forKey_(BOOL value, NSString const& key) const;

    // Adds values for keys that no other domain has; they are not stored. Later ones replace those of equal keys.
    void registerDefaults_(NSDictionary const& defaults) const;
    // All keys with the values that objectForKey_ finds.
    NSDictionary dictionaryRepresentation() const;
    // The values of NSArgumentDomain or NSRegistrationDomain; nil for another name.
    NSDictionary volatileDomainForName_(NSString const& name) const;
    // The stored values of NSGlobalDomain or of the domain named by an application's identifier, with changes that are
    // not written yet; empty if there are none.
    NSDictionary persistentDomainForName_(NSString const& name) const;

    // Writes the changes, then reads what other programs wrote. YES if all was written or, without changes, if the file
    // could be read.
    bool synchronize() const;
};

} // namespace mac
