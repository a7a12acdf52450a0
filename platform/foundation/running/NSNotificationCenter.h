#pragma once

#include "platform/foundation/collections/NSDictionary.h"

namespace mac {

// What happened: a name, the object it happened to and details; the last two may be nil. Immutable.
class NSNotification : public Handle<NSNotification, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSNotification notificationWithName_object_userInfo_(NSString const& name, id const& object,
                                                                NSDictionary const& userInfo);

    NSString name() const;
    id object() const;
    NSDictionary userInfo() const;
};

// Brings notifications to whoever asked for them, at once and on the poster's thread, in the order of asking. Observers
// and the objects asked for are not kept alive; an observer that has gone is not told. Any thread.
class NSNotificationCenter : public Handle<NSNotificationCenter, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSNotificationCenter defaultCenter();

    // A nil name or object matches all. The selector takes the notification. Registering twice delivers twice.
    void addObserver_selector_name_object_(id const& observer, SEL selector, NSString const& name,
                                           id const& object) const;
    void removeObserver_(id const& observer) const;
    void removeObserver_name_object_(id const& observer, NSString const& name, id const& object) const;
    void postNotification_(NSNotification const& notification) const;
    void postNotificationName_object_(NSString const& name, id const& object) const;
    void postNotificationName_object_userInfo_(NSString const& name, id const& object,
                                               NSDictionary const& userInfo) const;
};

}
