#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/ManagedObjectBody.h"
#include "platform/foundation/objects/Method.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

NSManagedObject managedObject() { return NSManagedObject::alloc().init(); }

TEST(ManagedObject, HoldsAValueUnderAnyKey) {
    NSManagedObject const object = managedObject();
    EXPECT_TRUE(object.valueForKey_("title") == nil);
    object.setValue_forKey_("a", "title");
    EXPECT_EQ(text(object.valueForKey_("title")), "a");
    EXPECT_EQ(text(object.primitiveValueForKey_("title")), "a");
    object.setPrimitiveValue_forKey_("b", "title");
    EXPECT_EQ(text(object.valueForKey_("title")), "b");
    object.setValue_forKey_(nil, "title");
    EXPECT_TRUE(object.primitiveValueForKey_("title") == nil);
}

TEST(ManagedObject, TellsObserversUnlessTheValueIsPrimitive) {
    NSManagedObject const object = managedObject();
    Recorder const recorder = Recorder::recorder();
    recorder.observe(object, "title", New | Old);
    object.setValue_forKey_("a", "title");
    EXPECT_EQ(recorder.count(), 1U);
    object.setPrimitiveValue_forKey_("b", "title");
    EXPECT_EQ(recorder.count(), 1U);
    object.setValue_forKey_("c", "title");
    EXPECT_EQ(recorder.count(), 2U);
    EXPECT_EQ(recorder.last(NSKeyValueChangeOldKey), "b");
    EXPECT_EQ(recorder.last(NSKeyValueChangeNewKey), "c");
}

// A subclass with an accessor of its own for one attribute.
class Invoice : public Handle<Invoice, NSManagedObject> {
public:
    class Body : public NSManagedObject::Body {};
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "Invoice",
                .superclass = classOf<NSManagedObject>(),
                .makeBody = &makeEmptyBody<Invoice>,
                .properties = {property<&Invoice::title, &Invoice::setTitle_>("title")}};
    }
    NSString title() const {
        return NSString("Invoice ").stringByAppendingString_(as<NSString>(primitiveValueForKey_("title")));
    }
    void setTitle_(NSString const& title) const { setPrimitiveValue_forKey_(title, "title"); }
};

TEST(ManagedObject, ASubclassesOwnKeysComeFirst) {
    Invoice const invoice = Invoice::alloc();
    invoice.setValue_forKey_("7", "title");
    EXPECT_EQ(text(invoice.valueForKey_("title")), "Invoice 7");
    EXPECT_EQ(text(invoice.primitiveValueForKey_("title")), "7");
    invoice.setValue_forKey_(number(3), "amount");
    EXPECT_EQ(text(invoice.valueForKey_("amount")), "3");
}

TEST(ManagedObject, NilIsNoKeyAndNoObject) {
    EXPECT_THROW(managedObject().primitiveValueForKey_(nil), NSInvalidArgumentException);
    EXPECT_THROW(managedObject().setPrimitiveValue_forKey_("a", nil), NSInvalidArgumentException);
    EXPECT_TRUE(NSManagedObject(nil).primitiveValueForKey_("a") == nil);
    NSManagedObject(nil).setPrimitiveValue_forKey_("a", "a");
}

} // namespace
} // namespace mac::test
