#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/Weak.h"
#include <algorithm>
#include <memory>
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
    WeakReference observer;
    SEL selector;
    NSString name;
    bool isOfAnyObject;
    WeakReference object;
    bool isRemoved{false};

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
    // Shared with a posting that is under way, which must see that one of them was removed meanwhile.
    std::vector<std::shared_ptr<Registration>> m_registrations;
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
    static NSNotificationCenter const center = adopt<NSNotificationCenter>();
    return center;
}

void NSNotificationCenter::addObserver_selector_name_object_(id const& observer, SEL selector, NSString const& name,
                                                             id const& object) const {
    if (*this == nil || observer == nil) return;
    if (!selector) throw NSInvalidArgumentException("An observer of notifications needs a selector");
    auto& registrations = bodyOf(*this)->m_registrations;
    std::erase_if(registrations, [](auto const& registration) { return registration->isDead(); });
    registrations.push_back(std::make_shared<Registration>(
        Registration{observer, selector, as<NSString>(name.copy()), object == nil, object}));
}

void NSNotificationCenter::removeObserver_(id const& observer) const {
    removeObserver_name_object_(observer, nil, nil);
}

void NSNotificationCenter::removeObserver_name_object_(id const& observer, NSString const& name,
                                                       id const& object) const {
    if (*this == nil) return;
    std::erase_if(bodyOf(*this)->m_registrations, [&](std::shared_ptr<Registration> const& registration) {
        bool const isMeant = registration->observer.refersTo(observer) &&
                             (name == nil || registration->name.isEqual_(name)) &&
                             (object == nil || registration->object.refersTo(object));
        registration->isRemoved = registration->isRemoved || isMeant;
        return isMeant;
    });
}

void NSNotificationCenter::postNotification_(NSNotification const& notification) const {
    if (*this == nil) return;
    if (notification == nil) throw NSInvalidArgumentException("There is no notification to post");
    std::vector<std::shared_ptr<Registration>> const registrations = bodyOf(*this)->m_registrations;
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
