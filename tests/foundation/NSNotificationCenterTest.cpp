#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/Weak.h"
#include <functional>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

// Writes down the names it is told, and may do something then.
class Listener : public Handle<Listener, NSObject> {
public:
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "NotificationListener",
                .superclass = classOf<NSObject>(),
                .methods = {method<&Listener::hear_>("hear:")}};
    }
    void hear_(NSNotification const& notification) const;
    std::string const& heard() const;
    static Listener make(std::function<void()> reaction = {});
};

class Listener::Body : public ObjectBody {
public:
    explicit Body(std::function<void()> toDo) : reaction(std::move(toDo)) {}
    std::string heard;
    std::function<void()> reaction;
};

void Listener::hear_(NSNotification const& notification) const {
    bodyOf(*this)->heard += notification.name().UTF8String() + " ";
    if (bodyOf(*this)->reaction) bodyOf(*this)->reaction();
}

std::string const& Listener::heard() const { return bodyOf(*this)->heard; }

Listener Listener::make(std::function<void()> reaction) { return adopt<Listener>(std::move(reaction)); }

class NotificationCenter : public testing::Test {
protected:
    NSNotificationCenter center = NSNotificationCenter::alloc();
    Listener listener = Listener::make();
    id sender = NSObject::alloc();
};

TEST_F(NotificationCenter, TellsWhoeverAskedForTheNameAndTheObject) {
    center.addObserver_selector_name_object_(listener, "hear:", "a", sender);
    center.postNotificationName_object_("a", sender);
    center.postNotificationName_object_("b", sender);
    center.postNotificationName_object_("a", nil);
    center.postNotificationName_object_("a", NSObject::alloc());
    EXPECT_EQ(listener.heard(), "a ");
}

TEST_F(NotificationCenter, TakesNilForEveryNameAndEveryObject) {
    center.addObserver_selector_name_object_(listener, "hear:", nil, nil);
    center.postNotificationName_object_("a", sender);
    center.postNotificationName_object_("b", nil);
    EXPECT_EQ(listener.heard(), "a b ");
}

TEST_F(NotificationCenter, ComparesObjectsByIdentity) {
    NSString const one = NSString::stringWithUTF8String_("equal");
    NSString const other = NSString::stringWithUTF8String_("equal");
    center.addObserver_selector_name_object_(listener, "hear:", "a", one);
    center.postNotificationName_object_("a", other);
    EXPECT_EQ(listener.heard(), "");
    center.postNotificationName_object_("a", one);
    EXPECT_EQ(listener.heard(), "a ");
}

TEST_F(NotificationCenter, TellsInTheOrderOfAskingAndTwiceWhoAskedTwice) {
    std::string order;
    Listener const first = Listener::make([&] { order += "1"; });
    Listener const second = Listener::make([&] { order += "2"; });
    center.addObserver_selector_name_object_(first, "hear:", "a", nil);
    center.addObserver_selector_name_object_(second, "hear:", "a", nil);
    center.addObserver_selector_name_object_(first, "hear:", "a", nil);
    center.postNotificationName_object_("a", nil);
    EXPECT_EQ(order, "121");
}

TEST_F(NotificationCenter, KeepsNoObserverAliveAndTellsNoneThatHasGone) {
    Listener shortLived = Listener::make();
    Weak<Listener> const weak(shortLived);
    center.addObserver_selector_name_object_(shortLived, "hear:", "a", nil);
    shortLived = nil;
    EXPECT_TRUE(weak.load() == nil);
    center.postNotificationName_object_("a", nil);
}

TEST_F(NotificationCenter, ForgetsARegistrationWhoseObjectHasGone) {
    id gone = NSObject::alloc();
    center.addObserver_selector_name_object_(listener, "hear:", "a", gone);
    gone = nil;
    center.postNotificationName_object_("a", nil);
    EXPECT_EQ(listener.heard(), "");
}

TEST_F(NotificationCenter, RemovesByObserverNameAndObject) {
    center.addObserver_selector_name_object_(listener, "hear:", "a", nil);
    center.addObserver_selector_name_object_(listener, "hear:", "b", nil);
    center.addObserver_selector_name_object_(listener, "hear:", "c", sender);
    center.removeObserver_name_object_(listener, "a", nil);
    center.removeObserver_name_object_(listener, "b", sender);
    center.removeObserver_name_object_(listener, nil, sender);
    center.postNotificationName_object_("a", sender);
    center.postNotificationName_object_("b", sender);
    center.postNotificationName_object_("c", sender);
    EXPECT_EQ(listener.heard(), "b ");
    center.removeObserver_(listener);
    center.postNotificationName_object_("b", sender);
    EXPECT_EQ(listener.heard(), "b ");
}

TEST_F(NotificationCenter, DoesNotTellAnObserverThatWasRemovedWhileItPosts) {
    Listener const remover = Listener::make([&] { center.removeObserver_(listener); });
    center.addObserver_selector_name_object_(remover, "hear:", "a", nil);
    center.addObserver_selector_name_object_(listener, "hear:", "a", nil);
    center.postNotificationName_object_("a", nil);
    EXPECT_EQ(listener.heard(), "");
}

TEST_F(NotificationCenter, TellsAnObserverAddedWhileItPostsFromTheNextOneOn) {
    bool isAdded = false;
    Listener const adder = Listener::make([&] {
        if (!std::exchange(isAdded, true)) center.addObserver_selector_name_object_(listener, "hear:", "a", nil);
    });
    center.addObserver_selector_name_object_(adder, "hear:", "a", nil);
    center.postNotificationName_object_("a", nil);
    EXPECT_EQ(listener.heard(), "");
    center.postNotificationName_object_("a", nil);
    EXPECT_EQ(listener.heard(), "a ");
}

TEST_F(NotificationCenter, MayPostWhileItPosts) {
    int depth = 0;
    Listener const poster = Listener::make([&] {
        if (++depth < 3) center.postNotificationName_object_("a", nil);
    });
    center.addObserver_selector_name_object_(poster, "hear:", "a", nil);
    center.postNotificationName_object_("a", nil);
    EXPECT_EQ(poster.heard(), "a a a ");
}

TEST_F(NotificationCenter, CarriesTheUserInformation) {
    NSDictionary const details = NSDictionary::dictionaryWithObject_forKey_("value", "key");
    NSNotification const notification = NSNotification::notificationWithName_object_userInfo_("a", sender, details);
    EXPECT_TRUE(isSame(notification.object(), sender));
    EXPECT_TRUE(isSame(notification.userInfo(), details));
    center.addObserver_selector_name_object_(listener, "hear:", "a", nil);
    center.postNotification_(notification);
    center.postNotificationName_object_userInfo_("a", nil, details);
    EXPECT_EQ(listener.heard(), "a a ");
}

TEST_F(NotificationCenter, RaisesForWhatCannotBePosted) {
    EXPECT_THROW(center.postNotification_(nil), NSInvalidArgumentException);
    EXPECT_THROW(center.postNotificationName_object_(nil, nil), NSInvalidArgumentException);
    EXPECT_THROW(center.addObserver_selector_name_object_(listener, SEL(), "a", nil), NSInvalidArgumentException);
    center.addObserver_selector_name_object_(listener, "unknown:", "a", nil);
    EXPECT_THROW(center.postNotificationName_object_("a", nil), NSInvalidArgumentException);
}

TEST_F(NotificationCenter, IsOneByDefault) {
    EXPECT_TRUE(isSame(NSNotificationCenter::defaultCenter(), NSNotificationCenter::defaultCenter()));
}

TEST(NilNotificationCenter, DoesNothing) {
    NSNotificationCenter const center;
    center.addObserver_selector_name_object_(nil, "hear:", "a", nil);
    center.removeObserver_(nil);
    center.removeObserver_name_object_(nil, nil, nil);
    center.postNotification_(nil);
    center.postNotificationName_object_("a", nil);
    EXPECT_TRUE(NSNotification(nil).name() == nil);
    EXPECT_TRUE(NSNotification(nil).object() == nil);
    EXPECT_TRUE(NSNotification(nil).userInfo() == nil);
}

} // namespace
} // namespace mac::test
