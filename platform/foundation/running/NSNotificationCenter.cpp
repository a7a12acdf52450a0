#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace mac {

class NSNotification::Body : public ObjectBody {
public:
    Body(NSString const& name, id const& object, NSDictionary const& userInfo)
        : m_name(name), m_object(object), m_userInfo(userInfo) {}

    id copy() const override { return id::retain(const_cast<Body*>(this)); }

    NSString m_name;
    id m_object;
    NSDictionary m_userInfo;
};

ClassDescription NSNotification::describeClass() {
    return {
        .name = "NSNotification",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSNotification::name>("name"), method<&NSNotification::object>("object"),
                    method<&NSNotification::userInfo>("userInfo")},
    };
}

NSNotification NSNotification::notificationWithName_object_userInfo_(NSString const& name, id const& object,
                                                                     NSDictionary const& userInfo) {
    if (name == nil) throw NSInvalidArgumentException("A notification needs a name");
    return adopt<NSNotification>(name, object, userInfo);
}

NSString NSNotification::name() const { return *this == nil ? NSString() : bodyOf(*this)->m_name; }

id NSNotification::object() const { return *this == nil ? id() : bodyOf(*this)->m_object; }

NSDictionary NSNotification::userInfo() const { return *this == nil ? NSDictionary() : bodyOf(*this)->m_userInfo; }

namespace {

struct Registration {
    Registration(id const& itsObserver, SEL itsSelector, NSString const& itsName, id const& itsObject)
        : observer(itsObserver), selector(itsSelector), name(itsName), isOfAnyObject(itsObject == nil),
          object(itsObject) {}

    WeakReference const observer;
    SEL const selector;
    NSString const name;
    bool const isOfAnyObject;
    WeakReference const object;
    // Set while other threads may post.
    std::atomic<bool> isRemoved{false};

    bool wants(NSNotification const& notification) const {
        if (isRemoved) return false;
        if (name != nil && !name.isEqualToString_(notification.name())) return false;
        return isOfAnyObject || object.refersTo(notification.object());
    }
    bool isDead() const { return isRemoved || observer.isCleared() || object.isCleared(); }
};

} // namespace

class NSNotificationCenter::Body : public ObjectBody {
public:
    using Registrations = std::vector<std::shared_ptr<Registration>>;

    void add(std::shared_ptr<Registration> added) {
        std::lock_guard const guard(m_lock);
        std::erase_if(m_registrations, [](auto const& registration) { return registration->isDead(); });
        m_registrations.push_back(std::move(added));
    }

    void removeIf(std::function<bool(Registration const&)> const& isMeant) {
        std::lock_guard const guard(m_lock);
        std::erase_if(m_registrations, [&](std::shared_ptr<Registration> const& registration) {
            if (!isMeant(*registration)) return false;
            registration->isRemoved = true;
            return true;
        });
    }

    Registrations registrations() const {
        std::lock_guard const guard(m_lock);
        return m_registrations;
    }

private:
    mutable std::mutex m_lock;
    // Shared with a posting that is under way, which must see that one of them was removed meanwhile.
    Registrations m_registrations;
};

ClassDescription NSNotificationCenter::describeClass() {
    return {
        .name = "NSNotificationCenter",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSNotificationCenter>,
        .methods = {method<&NSNotificationCenter::postNotification_>("postNotification:"),
                    method<&NSNotificationCenter::removeObserver_>("removeObserver:")},
    };
}

NSNotificationCenter NSNotificationCenter::defaultCenter() {
    // Never destroyed: other threads may post until the program's last instruction.
    static NSNotificationCenter const& center =
        *std::make_unique<NSNotificationCenter>(adopt<NSNotificationCenter>()).release();
    return center;
}

void NSNotificationCenter::addObserver_selector_name_object_(id const& observer, SEL selector, NSString const& name,
                                                             id const& object) const {
    if (*this == nil || observer == nil) return;
    if (!selector) throw NSInvalidArgumentException("An observer of notifications needs a selector");
    bodyOf(*this)->add(std::make_shared<Registration>(observer, selector, as<NSString>(name.copy()), object));
}

void NSNotificationCenter::removeObserver_(id const& observer) const {
    removeObserver_name_object_(observer, nil, nil);
}

void NSNotificationCenter::removeObserver_name_object_(id const& observer, NSString const& name,
                                                       id const& object) const {
    if (*this == nil) return;
    bodyOf(*this)->removeIf([&](Registration const& registration) {
        return registration.observer.refersTo(observer) && (name == nil || registration.name.isEqual_(name)) &&
               (object == nil || registration.object.refersTo(object));
    });
}

void NSNotificationCenter::postNotification_(NSNotification const& notification) const {
    if (*this == nil) return;
    if (notification == nil) throw NSInvalidArgumentException("There is no notification to post");
    Body::Registrations const registrations = bodyOf(*this)->registrations();
    for (std::shared_ptr<Registration> const& registration : registrations) {
        if (!registration->wants(notification)) continue;
        id const observer = registration->observer.load();
        if (observer != nil) observer.performSelector_withObject_(registration->selector, notification);
    }
}

void NSNotificationCenter::postNotificationName_object_(NSString const& name, id const& object) const {
    postNotificationName_object_userInfo_(name, object, nil);
}

void NSNotificationCenter::postNotificationName_object_userInfo_(NSString const& name, id const& object,
                                                                 NSDictionary const& userInfo) const {
    postNotification_(NSNotification::notificationWithName_object_userInfo_(name, object, userInfo));
}

} // namespace mac
