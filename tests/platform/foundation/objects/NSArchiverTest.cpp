#include "platform/foundation/objects/NSArchiver.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSNull.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

// Holds one text.
class Note : public Handle<Note, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        explicit Body(NSString text) : m_text(std::move(text)) {}
        NSString m_text;
    };
    using Handle::Handle;
    static ClassDescription describeClass() { return {.name = "ArchivedNote", .superclass = classOf<NSObject>()}; }
};

class SpecialNote : public Handle<SpecialNote, Note> {
public:
    using Handle::Handle;
    static ClassDescription describeClass() { return {.name = "SpecialNote", .superclass = classOf<Note>()}; }
};

id listOfNote(id const& note) { return bodyOf(as<Note>(note))->m_text; }
id noteOf(id const& list) {
    NSString const text = as<NSString>(list);
    return text == nil ? id() : id(adopt<Note>(text));
}

TEST(NSArchiver, KeepsPropertyLists) {
    id const list = NSDictionary::dictionaryWithObject_forKey_(
        NSArray::arrayWithObjects_({"text", NSNumber::numberWithInt_(7), bytes("data")}), "key");
    NSData const archive = NSArchiver::archivedDataWithRootObject_(list);
    EXPECT_TRUE(NSUnarchiver::unarchiveObjectWithData_(archive).isEqual_(list));
}

TEST(NSArchiver, KeepsObjectsOfClassesWithAForm) {
    addArchivedForm(classOf<Note>(), {&listOfNote, &noteOf});
    NSData const archive = NSArchiver::archivedDataWithRootObject_(adopt<Note>("text"));
    Note const note = as<Note>(NSUnarchiver::unarchiveObjectWithData_(archive));
    ASSERT_TRUE(note != nil);
    EXPECT_TRUE(bodyOf(note)->m_text.isEqualToString_("text"));
    EXPECT_TRUE(NSArchiver::archivedDataWithRootObject_(adopt<Note>(nil)) == nil);
    EXPECT_TRUE(NSArchiver::archivedDataWithRootObject_(adopt<SpecialNote>("text")).isEqual_(archive));
}

TEST(NSArchiver, KeepsNil) {
    NSData const archive = NSArchiver::archivedDataWithRootObject_(nil);
    EXPECT_GT(archive.length(), 0U);
    EXPECT_TRUE(NSUnarchiver::unarchiveObjectWithData_(archive) == nil);
}

TEST(NSArchiver, KeepsNoOtherObjects) {
    EXPECT_TRUE(NSArchiver::archivedDataWithRootObject_(NSNull::null()) == nil);
    EXPECT_TRUE(NSArchiver::archivedDataWithRootObject_(NSArray::arrayWithObject_(NSNull::null())) == nil);
}

TEST(NSArchiver, ReadsNothingElse) {
    for (NSData const& data : {NSData(), NSData::data(), bytes("text"), bytes("{a = b;}"), bytes("(a, b)"),
                               bytes("{\"$archiver\" = NSArchiver; \"$version\" = 1; \"$class\" = NSString;}")})
        EXPECT_TRUE(NSUnarchiver::unarchiveObjectWithData_(data) == nil);
}

} // namespace
} // namespace mac::test
