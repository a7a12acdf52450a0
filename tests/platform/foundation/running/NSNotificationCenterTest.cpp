#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
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
    NSNotificationCenter m_center = NSNotificationCenter::alloc();
    Listener m_listener = Listener::make();
    id m_sender = NSObject::alloc();
};

TEST_F(NotificationCenter, DeliversToObserversOfTheNameAndTheObject) {
    m_center.addObserver_selector_name_object_(m_listener, "hear:", "a", m_sender);
    m_center.postNotificationName_object_("a", m_sender);
    m_center.postNotificationName_object_("b", m_sender);
    m_center.postNotificationName_object_("a", nil);
    m_center.postNotificationName_object_("a", NSObject::alloc());
    EXPECT_EQ(m_listener.heard(), "a ");
}

TEST_F(NotificationCenter, TakesNilForEveryNameAndEveryObject) {
    m_center.addObserver_selector_name_object_(m_listener, "hear:", nil, nil);
    m_center.postNotificationName_object_("a", m_sender);
    m_center.postNotificationName_object_("b", nil);
    EXPECT_EQ(m_listener.heard(), "a b ");
}

TEST_F(NotificationCenter, ComparesObjectsByIdentity) {
    NSString const one = NSString::stringWithUTF8String_("equal");
    NSString const other = NSString::stringWithUTF8String_("equal");
    m_center.addObserver_selector_name_object_(m_listener, "hear:", "a", one);
    m_center.postNotificationName_object_("a", other);
    EXPECT_EQ(m_listener.heard(), "");
    m_center.postNotificationName_object_("a", one);
    EXPECT_EQ(m_listener.heard(), "a ");
}

TEST_F(NotificationCenter, TellsInTheOrderOfAskingAndTwiceWhoAskedTwice) {
    std::string order;
    Listener const first = Listener::make([&] { order += "1"; });
    Listener const second = Listener::make([&] { order += "2"; });
    m_center.addObserver_selector_name_object_(first, "hear:", "a", nil);
    m_center.addObserver_selector_name_object_(second, "hear:", "a", nil);
    m_center.addObserver_selector_name_object_(first, "hear:", "a", nil);
    m_center.postNotificationName_object_("a", nil);
    EXPECT_EQ(order, "121");
}

TEST_F(NotificationCenter, KeepsNoObserverAliveAndTellsNoneThatHasGone) {
    Listener shortLived = Listener::make();
    Weak<Listener> const weak(shortLived);
    m_center.addObserver_selector_name_object_(shortLived, "hear:", "a", nil);
    shortLived = nil;
    EXPECT_TRUE(weak.load() == nil);
    m_center.postNotificationName_object_("a", nil);
}

TEST_F(NotificationCenter, ForgetsARegistrationWhoseObjectHasGone) {
    id gone = NSObject::alloc();
    m_center.addObserver_selector_name_object_(m_listener, "hear:", "a", gone);
    gone = nil;
    m_center.postNotificationName_object_("a", nil);
    EXPECT_EQ(m_listener.heard(), "");
}

TEST_F(NotificationCenter, RemovesByObserverNameAndObject) {
    m_center.addObserver_selector_name_object_(m_listener, "hear:", "a", nil);
    m_center.addObserver_selector_name_object_(m_listener, "hear:", "b", nil);
    m_center.addObserver_selector_name_object_(m_listener, "hear:", "c", m_sender);
    m_center.removeObserver_name_object_(m_listener, "a", nil);
    m_center.removeObserver_name_object_(m_listener, "b", m_sender);
    m_center.removeObserver_name_object_(m_listener, nil, m_sender);
    m_center.postNotificationName_object_("a", m_sender);
    m_center.postNotificationName_object_("b", m_sender);
    m_center.postNotificationName_object_("c", m_sender);
    EXPECT_EQ(m_listener.heard(), "b ");
    m_center.removeObserver_(m_listener);
    m_center.postNotificationName_object_("b", m_sender);
    EXPECT_EQ(m_listener.heard(), "b ");
}

TEST_F(NotificationCenter, DoesNotTellAnObserverThatWasRemovedWhileItPosts) {
    Listener const remover = Listener::make([&] { m_center.removeObserver_(m_listener); });
    m_center.addObserver_selector_name_object_(remover, "hear:", "a", nil);
    m_center.addObserver_selector_name_object_(m_listener, "hear:", "a", nil);
    m_center.postNotificationName_object_("a", nil);
    EXPECT_EQ(m_listener.heard(), "");
}

TEST_F(NotificationCenter, TellsAnObserverAddedWhileItPostsFromTheNextOneOn) {
    bool isAdded = false;
    Listener const adder = Listener::make([&] {
        if (!std::exchange(isAdded, true)) m_center.addObserver_selector_name_object_(m_listener, "hear:", "a", nil);
    });
    m_center.addObserver_selector_name_object_(adder, "hear:", "a", nil);
    m_center.postNotificationName_object_("a", nil);
    EXPECT_EQ(m_listener.heard(), "");
    m_center.postNotificationName_object_("a", nil);
    EXPECT_EQ(m_listener.heard(), "a ");
}

TEST_F(NotificationCenter, MayPostWhileItPosts) {
    int depth = 0;
    Listener const poster = Listener::make([&] {
        if (++depth < 3) m_center.postNotificationName_object_("a", nil);
    });
    m_center.addObserver_selector_name_object_(poster, "hear:", "a", nil);
    m_center.postNotificationName_object_("a", nil);
    EXPECT_EQ(poster.heard(), "a a a ");
}

TEST_F(NotificationCenter, CarriesTheUserInformation) {
    NSDictionary const details = NSDictionary::dictionaryWithObject_forKey_("value", "key");
    NSNotification const notification = NSNotification::notificationWithName_object_userInfo_("a", m_sender, details);
    EXPECT_TRUE(isSame(notification.object(), m_sender));
    EXPECT_TRUE(isSame(notification.userInfo(), details));
    m_center.addObserver_selector_name_object_(m_listener, "hear:", "a", nil);
    m_center.postNotification_(notification);
    m_center.postNotificationName_object_userInfo_("a", nil, details);
    EXPECT_EQ(m_listener.heard(), "a a ");
}

TEST_F(NotificationCenter, RaisesForWhatCannotBePosted) {
    EXPECT_THROW(m_center.postNotification_(nil), NSInvalidArgumentException);
    EXPECT_THROW(m_center.postNotificationName_object_(nil, nil), NSInvalidArgumentException);
    EXPECT_THROW(m_center.addObserver_selector_name_object_(m_listener, SEL(), "a", nil), NSInvalidArgumentException);
    m_center.addObserver_selector_name_object_(m_listener, "unknown:", "a", nil);
    EXPECT_THROW(m_center.postNotificationName_object_("a", nil), NSInvalidArgumentException);
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
