#include "platform/appkit/arrangement/KeyPathObserver.h"
#include "platform/foundation/objects/KeyValueObserving.h"

namespace mac {

namespace {

// The object that the framework tells.
class ObservingObject : public Handle<ObservingObject, NSObject> {
public:
    using Handle::Handle;

    class Body : public ObjectBody {
    public:
        explicit Body(std::function<void()> changed) : m_changed(std::move(changed)) {}

        void observeValueForKeyPath(NSString const&, id const&, NSDictionary const&, void*) override { m_changed(); }

    private:
        std::function<void()> m_changed;
    };

    static ClassDescription describeClass() { return {.name = "ObservingObject", .superclass = classOf<NSObject>()}; }
};

} // namespace

KeyPathObserver::KeyPathObserver(id const& object, NSString const& keyPath, std::function<void()> changed)
    : m_object(object), m_keyPath(keyPath), m_observer(adopt<ObservingObject>(std::move(changed))) {
    object.addObserver_forKeyPath_options_context_(m_observer, keyPath, 0, nullptr);
}

KeyPathObserver::~KeyPathObserver() {
    id const object = m_object.load();
    if (object != nil) object.removeObserver_forKeyPath_(m_observer, m_keyPath);
}

} // namespace mac
