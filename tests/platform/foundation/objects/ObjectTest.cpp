#include "platform/foundation/objects/Object.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <concepts>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

template <class A, class B>
concept Comparable = requires(A const& a, B const& b) {
    a == b;
};

template <class A, class B>
concept Differing = requires(A const& a, B const& b) {
    a != b;
};

// A body that cannot be made.
class Stillborn : public Handle<Stillborn, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        Body() { throw NSGenericException("not today"); }

    private:
        Parcel m_parcel = Parcel::parcelWithName_("inside");
    };
    using Handle::Handle;

    static ClassDescription describeClass() { return {.name = "Stillborn", .superclass = classOf<NSObject>()}; }
    static Stillborn stillborn() { return adopt<Stillborn>(); }
};

} // namespace

TEST(Object, OnlyLiteralsConvertToStrings) {
    static_assert(std::convertible_to<char const(&)[4], id>);
    static_assert(std::convertible_to<char const(&)[4], NSString>);
    static_assert(!std::constructible_from<id, char(&)[4]>);
    static_assert(!std::constructible_from<NSString, char(&)[4]>);
    static_assert(!std::constructible_from<id, char const*>);
    static_assert(!std::constructible_from<NSString, char const*>);
    static_assert(!std::constructible_from<NSString, std::string>);
    static_assert(!std::constructible_from<NSArray, char const(&)[4]>);
    id const object = "abc";
    EXPECT_EQ(text(object), "abc");
}

TEST(Object, ZeroAndNullPointersAreNoObjects) {
    static_assert(std::convertible_to<Nil, id> && std::convertible_to<Nil, NSArray>);
    static_assert(!std::constructible_from<id, int>);
    static_assert(!std::constructible_from<id, std::nullptr_t>);
    static_assert(!std::constructible_from<id, bool>);
    static_assert(!std::constructible_from<NSString, std::nullptr_t>);
    static_assert(!std::constructible_from<NSArray, std::nullptr_t>);
    static_assert(!std::convertible_to<int, Nil> && !std::convertible_to<std::nullptr_t, Nil>);
    static_assert(!Comparable<id, int> && !Comparable<id, std::nullptr_t>);
    EXPECT_TRUE(id() == nil);
}

TEST(Object, AHandleIsNoTruthValueAndNoNumber) {
    static_assert(!std::constructible_from<bool, id>);
    static_assert(!std::constructible_from<bool, NSString>);
    static_assert(!std::constructible_from<int, NSNumber>);
    static_assert(!std::constructible_from<BOOL, id>);
}

TEST(Object, HandlesCompareWithNilOnly) {
    static_assert(Comparable<id, Nil> && Comparable<Nil, id> && Comparable<NSString, Nil> && Differing<NSArray, Nil>);
    static_assert(!Comparable<id, id> && !Differing<id, id>);
    static_assert(!Comparable<NSString, NSString> && !Differing<NSString, NSString>);
    static_assert(!Comparable<NSString, id> && !Comparable<NSString, char const(&)[4]>);
    static_assert(!Comparable<NSArray, NSMutableArray> && !Comparable<Class, Class>);
    EXPECT_TRUE(nil == id());
    EXPECT_TRUE(id("abc") != nil);
}

TEST(Object, AHandleConvertsToItsSuperclassesAndNoOther) {
    static_assert(std::convertible_to<NSMutableArray, NSArray> && std::convertible_to<NSArray, id>);
    static_assert(!std::convertible_to<NSArray, NSMutableArray> && !std::convertible_to<id, NSArray>);
    static_assert(!std::convertible_to<NSArray, NSString>);
    static_assert(sizeof(NSMutableArray) == sizeof(void*) && !std::is_polymorphic_v<NSMutableArray>);
}

TEST(Object, ATruthValueComesFromExactlyABool) {
    static_assert(std::convertible_to<bool, BOOL>);
    static_assert(!std::constructible_from<BOOL, int> && !std::constructible_from<BOOL, unsigned char>);
    static_assert(!std::constructible_from<BOOL, double> && !std::constructible_from<BOOL, void*>);
    static_assert(!std::constructible_from<BOOL, char const(&)[4]> && !std::constructible_from<BOOL, std::nullptr_t>);
    static_assert(!std::convertible_to<BOOL, bool> && !std::convertible_to<BOOL, int>);
    EXPECT_TRUE(static_cast<bool>(YES));
    EXPECT_FALSE(static_cast<bool>(NO));
    EXPECT_TRUE(!NO);
}

TEST(Object, AFourCharacterCodeIsBigEndian) {
    EXPECT_EQ(FourCharCode("aevt").value(), 0x61657674U);
    EXPECT_EQ(FourCharCode("\xC4\xC5\xFF!").value(), 0xC4C5FF21U);
    EXPECT_EQ(FourCharCode().value(), 0U);
}

TEST(Object, GoesWithItsLastHandle) {
    int const before = Parcel::count();
    {
        Parcel const first = Parcel::parcelWithName_("a");
        id const second = first;
        EXPECT_EQ(Parcel::count(), before + 1);
    }
    EXPECT_EQ(Parcel::count(), before);
}

TEST(Object, MovingAHandleLeavesNil) {
    id first = Parcel::parcelWithName_("a");
    id const second = std::move(first);
    EXPECT_TRUE(first == nil); // NOLINT(bugprone-use-after-move): what is left is asked for
    EXPECT_TRUE(as<Parcel>(second) != nil);
}

TEST(Object, SurvivesAssignmentOfAHandleToItself) {
    Parcel parcel = Parcel::parcelWithName_("a");
    Parcel const& same = parcel;
    parcel = same;
    EXPECT_EQ(text(parcel.name()), "a");
}

TEST(Object, IsReplacedBeforeTheOldOneGoes) {
    static Parcel parcel;
    parcel = Parcel::parcelWithName_("old");
    std::string seen;
    bodyOf(parcel)->m_lastWord = [&seen] { seen = text(parcel.name()); };
    parcel = Parcel::parcelWithName_("new");
    EXPECT_EQ(seen, "new");
    parcel = nil;
}

TEST(Object, CanBeHandedAboutWhileItIsDestroyed) {
    int const before = Parcel::count();
    Parcel parcel = Parcel::parcelWithName_("a");
    ObjectBody* const body = parcel.body();
    bodyOf(parcel)->m_lastWord = [body] {
        id const self = id::retain(body);
        id const other = self;
        EXPECT_TRUE(self.isKindOfClass_(classOf<Parcel>()));
    };
    parcel = nil;
    EXPECT_EQ(Parcel::count(), before);
}

TEST(Object, IsReleasedWholeWhenItsBodyCannotBeMade) {
    int const before = Parcel::count();
    EXPECT_THROW(Stillborn::stillborn(), NSGenericException);
    EXPECT_EQ(Parcel::count(), before);
}

TEST(Object, EqualsItselfAndNoOther) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_TRUE(parcel.isEqual_(parcel));
    EXPECT_FALSE(parcel.isEqual_(Parcel::parcelWithName_("a")));
    EXPECT_TRUE(isSame(parcel, id(parcel)));
    EXPECT_EQ(parcel.hash(), id(parcel).hash());
}

TEST(Object, NilEqualsNothing) {
    EXPECT_FALSE(id().isEqual_(nil));
    EXPECT_FALSE(id().isEqual_("a"));
    EXPECT_FALSE(id("a").isEqual_(nil));
    EXPECT_TRUE(isSame(nil, nil));
}

TEST(Object, AMessageToNilAnswersNothing) {
    id const none;
    EXPECT_TRUE(none.class_() == nil);
    EXPECT_FALSE(none.isKindOfClass_(classOf<NSObject>()));
    EXPECT_FALSE(none.isMemberOfClass_(classOf<NSObject>()));
    EXPECT_EQ(none.hash(), 0U);
    EXPECT_TRUE(none.description() == nil);
    EXPECT_TRUE(none.copy() == nil);
    EXPECT_TRUE(none.mutableCopy() == nil);
    EXPECT_FALSE(none.respondsToSelector_("description"));
    EXPECT_TRUE(none.performSelector_("no such message") == nil);
    EXPECT_TRUE(none.performSelector_withObject_("isEqual:", "a") == nil);
    EXPECT_TRUE(none.performSelector_withObject_withObject_("a:b:", "a", "b") == nil);
    EXPECT_TRUE(none.performSelector_withObjects_("a:b:c:", {"a", "b", "c"}) == nil);
}

TEST(Object, DescribesItselfByClassAndPlace) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_EQ(text(parcel).find("<Parcel: 0x"), 0U) << text(parcel);
}

TEST(Object, RaisesWhereItsClassCannotBeCopied) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_THROW(parcel.copy(), NSInvalidArgumentException);
    EXPECT_THROW(parcel.mutableCopy(), NSInvalidArgumentException);
}

TEST(Object, KnowsItsClassAndThoseAboveIt) {
    NSMutableArray const array = NSMutableArray::array();
    EXPECT_TRUE(isSame(array.class_(), classOf<NSMutableArray>()));
    EXPECT_TRUE(array.isMemberOfClass_(classOf<NSMutableArray>()));
    EXPECT_FALSE(array.isMemberOfClass_(classOf<NSArray>()));
    EXPECT_TRUE(array.isKindOfClass_(classOf<NSArray>()));
    EXPECT_TRUE(array.isKindOfClass_(classOf<NSObject>()));
    EXPECT_FALSE(array.isKindOfClass_(classOf<NSSet>()));
    EXPECT_FALSE(array.isKindOfClass_(nil));
    EXPECT_FALSE(array.isMemberOfClass_(nil));
}

TEST(Object, IsTakenForAnotherClassOnlyWhereItIsOne) {
    id const object = NSMutableArray::array();
    EXPECT_TRUE(isSame(as<NSMutableArray>(object), object));
    EXPECT_TRUE(isSame(as<NSArray>(object), object));
    EXPECT_TRUE(isSame(as<NSObject>(object), object));
    EXPECT_TRUE(as<NSString>(object) == nil);
    EXPECT_TRUE(as<NSMutableArray>(id(NSArray::array())) == nil);
    EXPECT_TRUE(as<NSArray>(nil) == nil);
}

TEST(Object, AnswersMessagesByName) {
    Parcel const parcel = Parcel::parcelWithName_("Ida");
    EXPECT_EQ(text(parcel.performSelector_("getLabel")), "to Ida");
    EXPECT_TRUE(isSame(parcel.performSelector_("self"), parcel));
    EXPECT_TRUE(isSame(parcel.performSelector_("class"), classOf<Parcel>()));
    EXPECT_TRUE(isSame(parcel.performSelector_("superclass"), classOf<NSObject>()));
    EXPECT_TRUE(as<NSNumber>(parcel.performSelector_withObject_("isEqual:", parcel)).boolValue());
    EXPECT_EQ(text(parcel.performSelector_withObject_withObject_("joined:with:", "a", "b")), "a+b");
    EXPECT_EQ(text(parcel.performSelector_withObjects_("joined:with:", {"a", "b", "c"})), "a+b");
}

TEST(Object, AMessageWithoutResultAnswersNil) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_TRUE(parcel.performSelector_("burn") == nil);
    EXPECT_TRUE(bodyOf(parcel)->m_isBurnt);
}

TEST(Object, ArgumentsOfAMessageThatAreMissingOrOfAnotherClassArriveAsNil) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_EQ(text(parcel.performSelector_withObject_("joined:with:", "a")), "a+");
    EXPECT_EQ(text(parcel.performSelector_withObject_withObject_("joined:with:", NSArray::array(), "b")), "+b");
    parcel.performSelector_withObject_("setWeight:", NSNumber::numberWithInt_(3));
    EXPECT_EQ(parcel.weight(), 3);
    parcel.performSelector_withObject_("setWeight:", NSArray::array());
    EXPECT_EQ(parcel.weight(), 0);
}

TEST(Object, RaisesForAMessageItDoesNotUnderstand) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_THROW(parcel.performSelector_("fly"), NSInvalidArgumentException);
    EXPECT_THROW(parcel.performSelector_(SEL()), NSInvalidArgumentException);
    EXPECT_THROW(id("text").performSelector_withObject_("addObject:", "a"), NSInvalidArgumentException);
    try {
        parcel.performSelector_("fly");
    } catch (NSInvalidArgumentException const& exception) {
        EXPECT_STREQ(exception.name(), "NSInvalidArgumentException");
        EXPECT_EQ(exception.reason(), "Parcel does not understand \"fly\"");
    }
}

TEST(Object, SaysWhichMessagesItUnderstands) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    EXPECT_TRUE(parcel.respondsToSelector_("getLabel"));
    EXPECT_TRUE(parcel.respondsToSelector_("description"));
    EXPECT_FALSE(parcel.respondsToSelector_("getLabel:"));
    EXPECT_FALSE(parcel.respondsToSelector_("count")); // of the class alone
    EXPECT_FALSE(parcel.respondsToSelector_(SEL()));
}

TEST(Object, LivesThroughAMessageThatDropsItsLastHandle) {
    static Parcel parcel;
    parcel = Parcel::parcelWithName_("a");
    bodyOf(parcel)->m_whileChanging = [] { parcel = nil; };
    parcel.performSelector_withObject_("setName:", "b");
    EXPECT_TRUE(parcel == nil);
}

} // namespace mac::test
