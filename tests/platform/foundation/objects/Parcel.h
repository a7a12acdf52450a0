#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/text/NSString.h"
#include "tests/support/ObjectTexts.h"
#include <atomic>
#include <functional>
#include <string>
#include <vector>

namespace mac::test {

inline constexpr NSUInteger New = NSKeyValueObservingOptionNew;
inline constexpr NSUInteger Old = NSKeyValueObservingOptionOld;
inline constexpr NSUInteger Initial = NSKeyValueObservingOptionInitial;
inline constexpr NSUInteger Prior = NSKeyValueObservingOptionPrior;

// A class of the tests' own. Name, weight and next are keys whose setters tell observers; label, fragile and burn are
// messages alone; serial can only be read.
class Parcel : public Handle<Parcel, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static Parcel parcelWithName_(NSString const& name);

    NSString name() const;
    void setName_(NSString const& name) const;
    NSInteger weight() const;
    void setWeight_(NSInteger weight) const;
    Parcel next() const;
    void setNext_(Parcel const& next) const;
    NSInteger serial() const { return 7; }
    NSString getLabel() const;
    bool isFragile() const { return *this != nil; }
    void burn() const;
    NSString joined(NSString const& first, NSString const& second) const;

    // How many there are.
    static int count();
};

class Parcel::Body : public ObjectBody {
public:
    Body();
    ~Body() override;

    NSString m_name;
    NSInteger m_weight{0};
    Parcel m_next;
    bool m_isBurnt{false};
    // Called when the parcel is destroyed.
    std::function<void()> m_lastWord;
    // Called by setters between the change and the word to the observers.
    std::function<void()> m_whileChanging;
};

// An object whose hash and equality a test chooses: equal to pegs of the same number.
class Peg : public Handle<Peg, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static Peg pegWithNumber_hash_(int number, std::uint64_t hash);
};

class Peg::Body : public ObjectBody {
public:
    Body(int number, std::uint64_t hash) : m_number(number), m_hash(hash) {}

    bool isEqual(id const& other) const override;
    std::uint64_t hash() const override { return m_hash; }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }

    int m_number;
    std::uint64_t m_hash;
    mutable unsigned m_comparisons{0};
    std::function<void()> m_whenCompared;
};

// An observer that keeps what it is told.
class Recorder : public Handle<Recorder, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static Recorder recorder();

    struct Notification {
        std::string keyPath;
        id object;
        NSDictionary change;
        void* context;
    };
    std::vector<Notification> const& told() const;
    std::size_t count() const { return told().size(); }
    // The last change's value for the key, as its description; "-" if there is none.
    std::string last(NSString const& key) const;
    void observe(id const& object, NSString const& keyPath, NSUInteger options = 0, void* context = nullptr) const;
    // Called at each notification, after it was kept.
    void whenTold(std::function<void()> function) const;
};

class Recorder::Body : public ObjectBody {
public:
    void observeValueForKeyPath(NSString const& keyPath, id const& object, NSDictionary const& change,
                                void* context) override;

    std::vector<Notification> m_told;
    std::function<void()> m_whenTold;
};

// Parcels a, b, c …, each the next of the one before.
Parcel chain(int length);
// Calls the function on so many threads at once, with their numbers, and waits for them.
void onThreads(unsigned count, std::function<void(unsigned)> const& function);
// An array of the strings.
NSArray words(std::initializer_list<char const*> words);

}
