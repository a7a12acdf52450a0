#include "tests/platform/foundation/objects/Parcel.h"
#include "platform/foundation/objects/Method.h"
#include <thread>

namespace mac::test {

namespace {

std::atomic<int> s_count{0};

template <class Value>
void change(Parcel const& parcel, Value Parcel::Body::*field, Value const& value, NSString const& key) {
    if (parcel == nil) return;
    KeyChange const change(parcel, key);
    bodyOf(parcel)->*field = value;
    if (bodyOf(parcel)->m_whileChanging) bodyOf(parcel)->m_whileChanging();
}

} // namespace

Parcel::Body::Body() { ++s_count; }

Parcel::Body::~Body() {
    if (m_lastWord) m_lastWord();
    --s_count;
}

ClassDescription Parcel::describeClass() {
    return {
        .name = "Parcel",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<Parcel>,
        .methods =
            {
                method<&Parcel::setName_>("setName:"),
                method<&Parcel::setWeight_>("setWeight:"),
                method<&Parcel::getLabel>("getLabel"),
                method<&Parcel::isFragile>("isFragile"),
                method<&Parcel::burn>("burn"),
                method<&Parcel::joined>("joined:with:"),
            },
        .classMethods =
            {
                method<&Parcel::count>("count"),
            },
        .properties =
            {
                property<&Parcel::name, &Parcel::setName_>("name"),
                property<&Parcel::weight, &Parcel::setWeight_>("weight"),
                property<&Parcel::next, &Parcel::setNext_>("next"),
                readOnlyProperty<&Parcel::serial>("serial"),
            },
    };
}

Parcel Parcel::parcelWithName_(NSString const& name) {
    Parcel const made = alloc();
    bodyOf(made)->m_name = name;
    return made;
}

NSString Parcel::name() const { return *this == nil ? NSString() : bodyOf(*this)->m_name; }

void Parcel::setName_(NSString const& name) const { change(*this, &Body::m_name, name, "name"); }

NSInteger Parcel::weight() const { return *this == nil ? 0 : bodyOf(*this)->m_weight; }

void Parcel::setWeight_(NSInteger weight) const { change(*this, &Body::m_weight, weight, "weight"); }

Parcel Parcel::next() const { return *this == nil ? Parcel() : bodyOf(*this)->m_next; }

void Parcel::setNext_(Parcel const& next) const { change(*this, &Body::m_next, next, "next"); }

NSString Parcel::getLabel() const {
    return *this == nil ? NSString() : NSString("to ").stringByAppendingString_(name());
}

void Parcel::burn() const {
    if (*this != nil) bodyOf(*this)->m_isBurnt = true;
}

NSString Parcel::joined(NSString const& first, NSString const& second) const {
    return words({first.UTF8String().c_str(), second.UTF8String().c_str()}).componentsJoinedByString_("+");
}

int Parcel::count() { return s_count; }

ClassDescription Peg::describeClass() { return {.name = "Peg", .superclass = classOf<NSObject>()}; }

Peg Peg::pegWithNumber_hash_(int number, std::uint64_t hash) { return adopt<Peg>(number, hash); }

bool Peg::Body::isEqual(id const& other) const {
    ++m_comparisons;
    if (m_whenCompared) m_whenCompared();
    Peg const peg = as<Peg>(other);
    return peg != nil && bodyOf(peg)->m_number == m_number;
}

ClassDescription Recorder::describeClass() {
    return {.name = "Recorder", .superclass = classOf<NSObject>(), .makeBody = &makeEmptyBody<Recorder>};
}

Recorder Recorder::recorder() { return alloc(); }

std::vector<Recorder::Notification> const& Recorder::told() const { return bodyOf(*this)->m_told; }

std::string Recorder::last(NSString const& key) const {
    return told().empty() ? "-" : text(told().back().change.objectForKey_(key));
}

void Recorder::observe(id const& object, NSString const& keyPath, NSUInteger options, void* context) const {
    object.addObserver_forKeyPath_options_context_(*this, keyPath, options, context);
}

void Recorder::whenTold(std::function<void()> function) const { bodyOf(*this)->m_whenTold = std::move(function); }

void Recorder::Body::observeValueForKeyPath(NSString const& keyPath, id const& object, NSDictionary const& change,
                                            void* context) {
    m_told.push_back({keyPath.UTF8String(), object, change, context});
    if (m_whenTold) m_whenTold();
}

Parcel chain(int length) {
    Parcel first;
    for (int index = length - 1; index >= 0; --index) {
        std::string const name(1, static_cast<char>('a' + index));
        Parcel const parcel = Parcel::parcelWithName_(NSString::stringWithUTF8String_(name));
        parcel.setNext_(first);
        first = parcel;
    }
    return first;
}

void onThreads(unsigned count, std::function<void(unsigned)> const& function) {
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (unsigned number = 0; number < count; ++number)
        threads.emplace_back(function, number);
    for (std::thread& thread : threads)
        thread.join();
}

NSArray words(std::initializer_list<char const*> words) {
    NSMutableArray const made = NSMutableArray::array();
    for (char const* word : words)
        made.addObject_(NSString::stringWithUTF8String_(word));
    return as<NSArray>(made.copy());
}

} // namespace mac::test
