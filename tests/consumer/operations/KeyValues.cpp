#include "coreutils/Collections.h"
#include "coreutils/DisclaimerAndViews.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/ObjectBody.h"
#include "tests/consumer/operations/Trial.h"

// Key-value coding and observing: of any object, and of managed objects.

namespace consumer {

using namespace mac;

namespace {

// Counts what it is told.
class Observer : public Handle<Observer, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        void observeValueForKeyPath(NSString const& /*keyPath*/, id const& /*object*/, NSDictionary const& /*change*/,
                                    void* /*context*/) override {
            ++count;
        }
        int count{0};
    };
    using Handle::Handle;
    static ClassDescription describeClass() { return {.name = "ConsumerObserver", .superclass = classOf<NSObject>()}; }
    // How often it was told since it was asked last.
    int count() const { return std::exchange(bodyOf(*this)->count, 0); }
};

NSMutableDictionary person(char const* name) {
    return NSMutableDictionary::dictionaryWithDictionary_(
        NSDictionary::dictionaryWithObjectsAndKeys_({NSString::stringWithUTF8String_(name), "name", "red", "colour"}));
}

// Sets both values that a person has, and answers how often the observer was told.
int toldOfChanges(Observer const& observer, NSMutableDictionary const& observed) {
    observer.count();
    observed.setValue_forKey_("Eve", "name");
    observed.setValue_forKey_("blue", "colour");
    return observer.count();
}

void tryObserving(Trial const& trial) {
    Observer const observer = adopt<Observer>();
    NSMutableDictionary const one = person("Ann");
    NSArray const all = NSArray::arrayWithObjects_({one, person("Bob")});
    NSArray const paths = NSArray::arrayWithObjects_({"name", "colour"});
    constexpr NSUInteger options = NSKeyValueObservingOptionNew;

    pxStartObserving_forKeyPath_options_context_(observer, one, "name", options, nullptr);
    trial.expect("pxStartObserving_forKeyPath_options_context_", toldOfChanges(observer, one) == 1);
    pxStopObserving_forKeyPath_(observer, one, "name");
    trial.expect("pxStopObserving_forKeyPath_", toldOfChanges(observer, one) == 0);
    pxStartObserving_forKeyPaths_options_context_(observer, one, paths, options, nullptr);
    trial.expect("pxStartObserving_forKeyPaths_options_context_", toldOfChanges(observer, one) == 2);
    pxStopObserving_forKeyPaths_(observer, one, paths);
    trial.expect("pxStopObserving_forKeyPaths_", toldOfChanges(observer, one) == 0);
    pxStartObservingAllObjectsOf_forKeyPath_options_context_(observer, all, "name", options, nullptr);
    trial.expect("pxStartObservingAllObjectsOf_forKeyPath_options_context_", toldOfChanges(observer, one) == 1);
    pxStopObservingAllObjectsOf_forKeyPath_(observer, all, "name");
    trial.expect("pxStopObservingAllObjectsOf_forKeyPath_", toldOfChanges(observer, one) == 0);
    pxStartObservingAllObjectsOf_forKeyPaths_options_context_(observer, all, paths, options, nullptr);
    trial.expect("pxStartObservingAllObjectsOf_forKeyPaths_options_context_", toldOfChanges(observer, one) == 2);
    pxStopObservingAllObjectsOf_forKeyPaths_(observer, all, paths);
    trial.expect("pxStopObservingAllObjectsOf_forKeyPaths_", toldOfChanges(observer, one) == 0);
    pxStartObservingAllKeysOfAllObjectsOf_options_context_(observer, all, options, nullptr);
    trial.expect("pxStartObservingAllKeysOfAllObjectsOf_options_context_", toldOfChanges(observer, one) == 2);
    pxStopObservingAllKeysOfAllObjectsOf_(observer, all);
    trial.expect("pxStopObservingAllKeysOfAllObjectsOf_", toldOfChanges(observer, one) == 0);
}

void tryManagedObjects() {
    Trial const trial("coreutils/DisclaimerAndViews");
    NSArray const keys = NSArray::arrayWithObject_("name");
    NSManagedObject const managed = NSManagedObject::alloc().init();
    pxSetPrimitiveValueFrom_forKey_(managed, person("Ann"), "name");
    trial.expect("pxSetPrimitiveValueFrom_forKey_", isText(managed.primitiveValueForKey_("name"), "Ann"));
    pxSetPrimitiveValuesFrom_forKeys_(managed, person("Bob"), keys);
    trial.expect("pxSetPrimitiveValuesFrom_forKeys_", isText(managed.primitiveValueForKey_("name"), "Bob"));
    pxSetPrimitiveValuesFrom_(managed, person("Eve"));
    trial.expect("pxSetPrimitiveValuesFrom_", isText(managed.primitiveValueForKey_("colour"), "red"));
    NSMutableDictionary const copy = NSMutableDictionary::dictionary();
    pxSetValueFromPrimitive_forKey_(copy, managed, "colour");
    trial.expect("pxSetValueFromPrimitive_forKey_", isText(copy.objectForKey_("colour"), "red"));
    pxSetValuesFromPrimitive_forKeys_(copy, managed, keys);
    trial.expect("pxSetValuesFromPrimitive_forKeys_", isText(copy.objectForKey_("name"), "Eve"));
}

} // namespace

void tryKeyValues() {
    Trial const trial("coreutils/Collections");
    NSMutableDictionary const receiver = NSMutableDictionary::dictionary();
    pxSetValueFrom_forKey_(receiver, person("Ann"), "name");
    trial.expect("pxSetValueFrom_forKey_", isText(receiver.objectForKey_("name"), "Ann"));
    pxSetValuesFrom_forKeys_(receiver, person("Bob"), NSArray::arrayWithObject_("name"));
    trial.expect("pxSetValuesFrom_forKeys_", isText(receiver.objectForKey_("name"), "Bob"));
    pxSetValuesFrom_(receiver, person("Eve"));
    trial.expect("pxSetValuesFrom_", receiver.count() == 2);
    NSMutableArray const list = NSMutableArray::arrayWithObjects_({"x", "y"});
    receiver.setObject_forKey_(list, "list");
    trial.expect("pxValueForKeyPath_", isText(pxValueForKeyPath_(receiver, "list.1"), "y"));
    pxSetValue_forKeyPath_(receiver, "z", "list.0");
    trial.expect("pxSetValue_forKeyPath_", areTexts(list, {"z", "y"}));
    tryObserving(trial);
    tryManagedObjects();
}

} // namespace consumer
