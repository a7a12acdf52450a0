#include "platform/foundation/objects/Class.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/NSNull.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>
#include <thread>

namespace mac::test {

namespace {

// A plain class under a name of its own, for tests of what happens once a class.
template <int number>
class Numbered : public Handle<Numbered<number>, NSObject> {
public:
    using Handle<Numbered<number>, NSObject>::Handle;

    inline static ClassDescription description{};

    static ClassDescription describeClass() { return description; }
    static Numbered make() { return adopt<Numbered>(); }
};

std::vector<std::string> s_initialized;

class Base : public Handle<Base, NSObject> {
public:
    using Handle::Handle;

    static ClassDescription describeClass() {
        return {.name = "Base", .superclass = classOf<NSObject>(), .makeBody = &makeEmptyBody<Base>, .initialize = [] {
                    s_initialized.emplace_back("Base");
                }};
    }
};

class Derived : public Handle<Derived, Base> {
public:
    using Handle::Handle;

    static ClassDescription describeClass() {
        return {
            .name = "Derived", .superclass = classOf<Base>(), .makeBody = &makeEmptyBody<Derived>, .initialize = [] {
                s_initialized.emplace_back("Derived");
                // Makes an object of the class while the class is being initialised.
                EXPECT_TRUE(alloc() != nil);
            }};
    }
};

NSString shout(Parcel const& parcel) { return parcel.name().stringByAppendingString_("!"); }
NSString whisper(Parcel const& parcel) { return parcel.name().stringByAppendingString_("..."); }

} // namespace

TEST(Class, IsFoundByNameForEachOfTheFramework) {
    char const* const names[]{"CFUUID",
                              "Class",
                              "NSArray",
                              "NSBundle",
                              "NSCharacterSet",
                              "NSData",
                              "NSDate",
                              "NSDictionary",
                              "NSDirectoryEnumerator",
                              "NSEnumerator",
                              "NSFileManager",
                              "NSIndexSet",
                              "NSMutableArray",
                              "NSMutableCharacterSet",
                              "NSMutableData",
                              "NSMutableDictionary",
                              "NSMutableIndexSet",
                              "NSMutableSet",
                              "NSMutableString",
                              "NSNotification",
                              "NSNotificationCenter",
                              "NSNull",
                              "NSNumber",
                              "NSNumberFormatter",
                              "NSObject",
                              "NSPredicate",
                              "NSPropertyListSerialization",
                              "NSRunLoop",
                              "NSScanner",
                              "NSSet",
                              "NSSortDescriptor",
                              "NSString",
                              "NSTask",
                              "NSThread",
                              "NSTimer",
                              "NSURL",
                              "NSValue",
                              "NSValueTransformer"};
    for (char const* name : names) {
        SCOPED_TRACE(name);
        Class const cls = NSClassFromString(NSString::stringWithUTF8String_(name));
        ASSERT_TRUE(cls != nil);
        EXPECT_EQ(cls.name(), name);
        EXPECT_EQ(NSStringFromClass(cls).UTF8String(), name);
    }
}

TEST(Class, IsNilForAnUnknownName) {
    EXPECT_TRUE(NSClassFromString("NSNoSuchThing") == nil);
    EXPECT_TRUE(NSClassFromString("nsarray") == nil);
    EXPECT_TRUE(NSClassFromString("") == nil);
    EXPECT_TRUE(NSClassFromString(nil) == nil);
}

TEST(Class, IsTheSameByNameAndByType) {
    EXPECT_TRUE(isSame(NSClassFromString("NSMutableDictionary"), classOf<NSMutableDictionary>()));
    EXPECT_TRUE(isSame(NSMutableDictionary::dictionary().class_(), classOf<NSMutableDictionary>()));
}

TEST(Class, NilIsNoClass) {
    Class const none;
    EXPECT_EQ(none.name(), "");
    EXPECT_TRUE(none.superclass() == nil);
    EXPECT_TRUE(none.alloc() == nil);
    EXPECT_FALSE(none.isSubclassOfClass_(classOf<NSObject>()));
    EXPECT_FALSE(none.instancesRespondToSelector_("init"));
    EXPECT_TRUE(none.performClassSelector_("alloc") == nil);
    EXPECT_TRUE(none.methodForSelector("init") == nullptr);
    EXPECT_TRUE(none.propertyForKey("name") == nullptr);
    none.addMethods({});
    none.initializeOnce();
    EXPECT_TRUE(NSStringFromClass(nil) == nil);
}

TEST(Class, StandsInATree) {
    EXPECT_TRUE(isSame(classOf<NSMutableArray>().superclass(), classOf<NSArray>()));
    EXPECT_TRUE(isSame(classOf<NSArray>().superclass(), classOf<NSObject>()));
    EXPECT_TRUE(classOf<NSObject>().superclass() == nil);
    EXPECT_TRUE(classOf<NSMutableArray>().isSubclassOfClass_(classOf<NSObject>()));
    EXPECT_TRUE(classOf<NSArray>().isSubclassOfClass_(classOf<NSArray>()));
    EXPECT_FALSE(classOf<NSArray>().isSubclassOfClass_(classOf<NSMutableArray>()));
    EXPECT_FALSE(classOf<NSArray>().isSubclassOfClass_(nil));
}

TEST(Class, IsAnObjectItself) {
    id const cls = classOf<NSArray>();
    EXPECT_TRUE(isSame(cls.class_(), classOf<Class>()));
    EXPECT_TRUE(isSame(classOf<Class>().class_(), classOf<Class>()));
    EXPECT_TRUE(isSame(as<Class>(cls), cls));
    EXPECT_TRUE(as<Class>(id(NSArray::array())) == nil);
    EXPECT_EQ(text(cls), "NSArray");
    EXPECT_TRUE(isSame(cls.copy(), cls));
    EXPECT_EQ(NSDictionary::dictionaryWithObject_forKey_("a", cls).count(), 1U);
}

TEST(Class, MakesEmptyObjects) {
    EXPECT_EQ(as<NSMutableArray>(NSClassFromString("NSMutableArray").alloc()).count(), 0U);
    EXPECT_TRUE(NSClassFromString("NSMutableArray").alloc().isMemberOfClass_(classOf<NSMutableArray>()));
    EXPECT_TRUE(NSMutableSet::alloc().isMemberOfClass_(classOf<NSMutableSet>()));
}

TEST(Class, WithoutEmptyObjectsAllocatesNone) {
    EXPECT_TRUE(classOf<NSEnumerator>().alloc() == nil);
    EXPECT_TRUE(classOf<NSNull>().alloc() == nil);
    EXPECT_TRUE(classOf<Class>().alloc() == nil);
}

TEST(Class, OfANameThatIsTakenRaises) {
    EXPECT_THROW(registerClass({.name = "NSArray"}), NSInvalidArgumentException);
    EXPECT_TRUE(isSame(NSClassFromString("NSArray"), classOf<NSArray>()));
}

TEST(Class, IsInitializedOnceAfterItsSuperclassAndBeforeItsFirstObject) {
    classOf<Derived>();
    EXPECT_TRUE(s_initialized.empty());
    Derived::alloc();
    EXPECT_EQ(s_initialized, (std::vector<std::string>{"Base", "Derived"}));
    Base::alloc();
    Derived::alloc();
    EXPECT_EQ(s_initialized.size(), 2U);
}

TEST(Class, IsInitializedOnceAlsoWhenThatRaises) {
    using Failing = Numbered<1>;
    static int calls = 0;
    Failing::description = {.name = "Failing", .superclass = classOf<NSObject>(), .initialize = [] {
                                ++calls;
                                throw NSGenericException("no");
                            }};
    EXPECT_THROW(Failing::make(), NSGenericException);
    EXPECT_TRUE(Failing::make() != nil);
    EXPECT_EQ(calls, 1);
}

TEST(Class, IsInitializedBeforeAnyThreadGetsAnObject) {
    using Slow = Numbered<2>;
    static std::atomic<int> calls{0};
    static std::atomic<bool> isDone{false};
    Slow::description = {.name = "Slow", .superclass = classOf<NSObject>(), .initialize = [] {
                             ++calls;
                             for (int index = 0; index < 100; ++index)
                                 std::this_thread::yield();
                             isDone = true;
                         }};
    std::atomic<int> early{0};
    onThreads(4, [&early](unsigned) {
        Slow::make();
        early += isDone ? 0 : 1;
    });
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(early, 0);
}

TEST(Class, KnowsWhichMessagesItsObjectsUnderstand) {
    EXPECT_TRUE(classOf<NSMutableArray>().instancesRespondToSelector_("addObject:"));
    EXPECT_TRUE(classOf<NSMutableArray>().instancesRespondToSelector_("objectAtIndex:"));
    EXPECT_FALSE(classOf<NSArray>().instancesRespondToSelector_("addObject:"));
    EXPECT_FALSE(classOf<Parcel>().instancesRespondToSelector_("count"));
}

TEST(Class, AnswersClassMethods) {
    Class const cls = NSClassFromString("Parcel");
    int const before = Parcel::count();
    EXPECT_EQ(as<NSNumber>(cls.performClassSelector_("count")).intValue(), before);
    EXPECT_THROW(cls.performClassSelector_("getLabel"), NSInvalidArgumentException);
    EXPECT_THROW(cls.performClassSelector_(SEL()), NSInvalidArgumentException);
}

TEST(Class, TakesMessagesAsAnyObjectDoes) {
    id const cls = classOf<Parcel>();
    EXPECT_TRUE(as<NSNumber>(cls.performSelector_("count")) != nil);
    EXPECT_TRUE(as<Parcel>(cls.performSelector_("alloc")) != nil);
    EXPECT_TRUE(isSame(cls.performSelector_("class"), cls));
    EXPECT_TRUE(isSame(cls.performSelector_("superclass"), classOf<NSObject>()));
    EXPECT_TRUE(as<NSNumber>(cls.performSelector_withObject_("isSubclassOfClass:", classOf<NSObject>())).boolValue());
    EXPECT_TRUE(isSame(id(classOf<NSNull>()).performSelector_("null"), NSNull::null()));
    EXPECT_TRUE(cls.respondsToSelector_("count"));
    EXPECT_FALSE(cls.respondsToSelector_("getLabel"));
    EXPECT_THROW(cls.performSelector_("getLabel"), NSInvalidArgumentException);
}

TEST(Class, HasNoKeysOfItsObjects) {
    id const cls = classOf<Parcel>();
    EXPECT_THROW(cls.valueForKey_("name"), NSUndefinedKeyException);
    EXPECT_THROW(cls.setValue_forKey_("a", "name"), NSUndefinedKeyException);
    EXPECT_EQ(text(cls.valueForKey_("superclass")), "NSObject");
}

TEST(Class, TakesFurtherMethodsTheLastOfANameCounting) {
    Parcel const parcel = Parcel::parcelWithName_("Ida");
    EXPECT_FALSE(parcel.respondsToSelector_("voice"));
    Method const loud[]{method<&shout>("voice")};
    classOf<Parcel>().addMethods(loud);
    EXPECT_EQ(text(parcel.performSelector_("voice")), "Ida!");
    EXPECT_EQ(text(parcel.valueForKey_("voice")), "Ida!");
    Method const soft[]{method<&whisper>("voice")};
    classOf<Parcel>().addMethods(soft);
    EXPECT_EQ(text(parcel.performSelector_("voice")), "Ida...");
    EXPECT_EQ(text(parcel.performSelector_("getLabel")), "to Ida");
}

TEST(Class, TakesFurtherMethodsWhileOthersAreCalled) {
    using Busy = Numbered<3>;
    Busy::description = {.name = "Busy", .superclass = classOf<NSObject>()};
    Busy const object = Busy::make();
    std::vector<std::string> names;
    names.reserve(100);
    for (int index = 0; index < 100; ++index)
        names.push_back("busy" + std::to_string(index));
    std::thread writer([&names] {
        for (std::string const& name : names) {
            Method const row[]{{name, [](id const& receiver, std::span<id const>) { return receiver; }}};
            classOf<Busy>().addMethods(row);
        }
    });
    int failures = 0;
    for (std::string const& name : names) {
        SEL const selector{std::string_view(name)};
        while (!object.respondsToSelector_(selector))
            std::this_thread::yield();
        failures += isSame(object.performSelector_(selector), object) ? 0 : 1;
    }
    writer.join();
    EXPECT_EQ(failures, 0);
}

} // namespace mac::test
