#include "pathutils/ExtendedAttributes.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "tests/pathutils/AttributeCalls.h"
#include "tests/support/Commands.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::test {
namespace {

NSString key(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

std::vector<std::string> sortedNamesOf(NSArray const& keys) {
    std::vector<std::string> names = fileSystemBytesOfEach(keys);
    std::ranges::sort(names);
    return names;
}

class PxExtendedAttributes : public testing::Test {
protected:
    TemporaryFolder const m_folder{};
    std::string const m_file{m_folder.makeFile("file", "contents")};
    NSString const m_path{path(m_file)};
};

using Names = std::vector<std::string>;

TEST_F(PxExtendedAttributes, AreNoneAtFirst) {
    EXPECT_EQ(pxExtendedAttributesKeys(m_path).count(), 0U);
    EXPECT_FALSE(pxExtendedAttributesKeys(m_path) == nil);
    EXPECT_TRUE(pxExtendedAttributes(m_path) == nil);
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "a") == nil);
    EXPECT_FALSE(pxRemoveExtendedAttributeForKey_(m_path, "a"));
    EXPECT_TRUE(pxExtendedAttributesForKeys_(m_path, NSArray::arrayWithObject_("a")) == nil);
    EXPECT_TRUE(pxExtendedAttributeDictionaryForKey_(m_path, "a") == nil);
}

TEST_F(PxExtendedAttributes, AreWrittenAndRead) {
    EXPECT_TRUE(pxSetExtendedAttributeData_forKey_(m_path, bytes("one"), "a"));
    EXPECT_TRUE(pxSetExtendedAttributeData_forKey_(m_path, bytes("two"), "b"));
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "a").isEqual_(bytes("one")));
    EXPECT_EQ(sortedNamesOf(pxExtendedAttributesKeys(m_path)), (Names{"a", "b"}));
    EXPECT_TRUE(pxSetExtendedAttributeData_forKey_(m_path, bytes("three"), "a"));
    NSDictionary const all = pxExtendedAttributes(m_path);
    EXPECT_EQ(all.count(), 2U);
    EXPECT_TRUE(all.objectForKey_("a").isEqual_(bytes("three")));
    EXPECT_TRUE(all.objectForKey_("b").isEqual_(bytes("two")));
    EXPECT_TRUE(pxRemoveExtendedAttributeForKey_(m_path, "a"));
    EXPECT_EQ(sortedNamesOf(pxExtendedAttributesKeys(m_path)), Names{"b"});
    EXPECT_FALSE(pxRemoveExtendedAttributeForKey_(m_path, "a"));
}

TEST_F(PxExtendedAttributes, ListsCanBeChanged) {
    pxSetExtendedAttributeData_forKey_(m_path, bytes("one"), "a");
    NSMutableArray const keys = pxExtendedAttributesKeys(m_path);
    keys.addObject_("b");
    EXPECT_EQ(keys.count(), 2U);
    NSMutableDictionary const all = pxExtendedAttributes(m_path);
    all.setObject_forKey_(bytes("two"), "b");
    EXPECT_EQ(all.count(), 2U);
}

TEST_F(PxExtendedAttributes, AreRemovedByNilData) {
    pxSetExtendedAttributeData_forKey_(m_path, bytes("one"), "a");
    EXPECT_TRUE(pxSetExtendedAttributeData_forKey_(m_path, nil, "a"));
    EXPECT_EQ(pxExtendedAttributesKeys(m_path).count(), 0U);
    EXPECT_FALSE(pxSetExtendedAttributeData_forKey_(m_path, nil, "a"));
}

TEST_F(PxExtendedAttributes, ThatAreEmptyReadAsNil) {
    EXPECT_TRUE(pxSetExtendedAttributeData_forKey_(m_path, NSData::data(), "empty"));
    EXPECT_EQ(sortedNamesOf(pxExtendedAttributesKeys(m_path)), Names{"empty"});
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "empty") == nil);
    EXPECT_EQ(pxExtendedAttributes(m_path).count(), 0U);
    EXPECT_FALSE(pxExtendedAttributes(m_path) == nil);
    pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), "full");
    EXPECT_EQ(sortedNamesOf(pxExtendedAttributes(m_path).allKeys()), Names{"full"});
}

TEST_F(PxExtendedAttributes, OfAMissingItemAreNone) {
    NSString const none = path(m_folder.path("none"));
    EXPECT_EQ(pxExtendedAttributesKeys(none).count(), 0U);
    EXPECT_FALSE(pxExtendedAttributesKeys(none) == nil);
    EXPECT_TRUE(pxExtendedAttributes(none) == nil);
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(none, "a") == nil);
    EXPECT_FALSE(pxSetExtendedAttributeData_forKey_(none, bytes("1"), "a"));
    EXPECT_FALSE(pxSetExtendedAttributeDictionary_forKey_(none, NSDictionary::dictionary(), "a"));
    EXPECT_FALSE(pxRemoveExtendedAttributeForKey_(none, "a"));
    EXPECT_FALSE(pxSetExtendedAttributeData_forKey_(none, nil, "a"));
    EXPECT_TRUE(pxExtendedAttributesForKeys_(none, NSArray::arrayWithObject_("a")) == nil);
    EXPECT_TRUE(pxExtendedAttributeDictionaryForKey_(none, "a") == nil);
    pxSetExtendedAttributes_(none, NSDictionary::dictionaryWithObject_forKey_(bytes("1"), "a"));
    EXPECT_FALSE(std::filesystem::exists(m_folder.path("none")));
    EXPECT_FALSE(std::filesystem::exists(m_folder.path("._none")));
}

TEST_F(PxExtendedAttributes, OfATextThatIsNoPathAreNone) {
    for (NSString const& text : {NSString(""), NSString::stringWithCodeUnits({u"/tmp\0x", 6})}) {
        EXPECT_EQ(pxExtendedAttributesKeys(text).count(), 0U);
        EXPECT_FALSE(pxSetExtendedAttributeData_forKey_(text, bytes("1"), "a"));
        EXPECT_TRUE(pxExtendedAttributeDataForKey_(text, "a") == nil);
    }
}

TEST_F(PxExtendedAttributes, OfNilAreNil) {
    EXPECT_TRUE(pxExtendedAttributesKeys(nil) == nil);
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(nil, "a") == nil);
    EXPECT_FALSE(pxSetExtendedAttributeData_forKey_(nil, bytes("1"), "a"));
    EXPECT_FALSE(pxSetExtendedAttributeData_forKey_(nil, nil, nil));
    EXPECT_FALSE(pxRemoveExtendedAttributeForKey_(nil, "a"));
    EXPECT_TRUE(pxExtendedAttributes(nil) == nil);
    EXPECT_TRUE(pxExtendedAttributesForKeys_(nil, NSArray::arrayWithObject_("a")) == nil);
    pxSetExtendedAttributes_(nil, NSDictionary::dictionaryWithObject_forKey_(bytes("1"), "a"));
    EXPECT_TRUE(pxExtendedAttributeDictionaryForKey_(nil, "a") == nil);
    EXPECT_FALSE(pxSetExtendedAttributeDictionary_forKey_(nil, NSDictionary::dictionary(), "a"));
    EXPECT_TRUE(pxExtendedAttributeDictionary(nil) == nil);
    pxSetExtendedAttributeDictionary_(nil, NSDictionary::dictionary());
}

TEST_F(PxExtendedAttributes, OfNoNameAreNone) {
    for (NSString const& name : {NSString(nil), NSString(""), NSString::stringWithCodeUnits(u"\xD800")}) {
        EXPECT_FALSE(pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), name));
        EXPECT_FALSE(pxRemoveExtendedAttributeForKey_(m_path, name));
        EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, name) == nil);
    }
    EXPECT_FALSE(pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), key(std::string(255, 'n'))));
    EXPECT_EQ(pxExtendedAttributesKeys(m_path).count(), 0U);
}

TEST_F(PxExtendedAttributes, OfALinkAreItsTargets) {
    ASSERT_EQ(::symlink("file", m_folder.path("link").c_str()), 0);
    NSString const link = path(m_folder.path("link"));
    EXPECT_TRUE(pxSetExtendedAttributeData_forKey_(link, bytes("1"), "a"));
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "a").isEqual_(bytes("1")));
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(link, "a").isEqual_(bytes("1")));
    EXPECT_TRUE(pxRemoveExtendedAttributeForKey_(link, "a"));
    EXPECT_EQ(pxExtendedAttributesKeys(m_path).count(), 0U);
}

TEST_F(PxExtendedAttributes, AreTheOnesOfOtherPrograms) {
    outputOf({"setfattr", "-n", "user.theirs", "-v", "value", m_file});
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "theirs").isEqual_(bytes("value")));
    pxSetExtendedAttributeData_forKey_(m_path, bytes("ours"), "mine");
    EXPECT_EQ(outputOf({"getfattr", "--absolute-names", "--only-values", "-n", "user.mine", m_file}), "ours");
}

// The walk goes on by the number of characters, and so lands within a name of several bytes a character.
TEST_F(PxExtendedAttributes, NamesOfSeveralBytesAreFollowedByPiecesOfThemselves) {
    auto const keysWith = [&](std::string const& name) {
        EXPECT_TRUE(pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), key(name)));
        Names const names = sortedNamesOf(pxExtendedAttributesKeys(m_path));
        EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, key(name)).isEqual_(bytes("1")));
        EXPECT_EQ(pxExtendedAttributes(m_path).count(), 1U);
        EXPECT_TRUE(pxRemoveExtendedAttributeForKey_(m_path, key(name)));
        return names;
    };
    EXPECT_EQ(keysWith("name"), Names{"name"});
    EXPECT_EQ(keysWith("n\xC3\xA9"), (Names{"", "n\xC3\xA9"}));
    EXPECT_EQ(keysWith("\xC3\xA9\xC3\xA9"), (Names{"\xA9", "\xC3\xA9\xC3\xA9"}));
    EXPECT_EQ(keysWith("\xE6\x97\xA5"), (Names{"\xA5", "\xE6\x97\xA5"}));
    EXPECT_EQ(keysWith("\xF0\x9F\x98\x80"), (Names{"\x80", "\xF0\x9F\x98\x80"}));
    EXPECT_EQ(keysWith("\xE6\x97\xA5tail"), (Names{"l", "\xE6\x97\xA5tail"}));
    // A byte that is no UTF-8 is one character.
    EXPECT_EQ(keysWith("\xFFname"), Names{"\xFFname"});
}

TEST_F(PxExtendedAttributes, AreReadByName) {
    pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), "a");
    pxSetExtendedAttributeData_forKey_(m_path, bytes("2"), "b");
    NSArray const wanted = NSArray::arrayWithObjects_({"b", "none", NSNull::null(), NSNumber::numberWithInt_(1)});
    NSMutableDictionary const some = pxExtendedAttributesForKeys_(m_path, wanted);
    EXPECT_EQ(some.count(), 1U);
    EXPECT_TRUE(some.objectForKey_("b").isEqual_(bytes("2")));
    some.removeAllObjects();
    EXPECT_TRUE(pxExtendedAttributesForKeys_(m_path, NSArray::array()) == nil);
    EXPECT_TRUE(pxExtendedAttributesForKeys_(m_path, nil) == nil);
    EXPECT_TRUE(pxExtendedAttributesForKeys_(m_path, NSArray::arrayWithObject_("none")) == nil);
}

TEST_F(PxExtendedAttributes, AreWrittenSeveralAtOnce) {
    pxSetExtendedAttributeData_forKey_(m_path, bytes("kept"), "kept");
    pxSetExtendedAttributeData_forKey_(m_path, bytes("old"), "c");
    pxSetExtendedAttributes_(m_path, NSDictionary::dictionaryWithObjectsAndKeys_(
                                         {bytes("1"), "a", bytes("2"), "b", "no data", "c", NSNull::null(), "kept",
                                          bytes("3"), NSNumber::numberWithInt_(3)}));
    EXPECT_EQ(sortedNamesOf(pxExtendedAttributesKeys(m_path)), (Names{"a", "b", "c", "kept"}));
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "c").isEqual_(bytes("old")));
    pxSetExtendedAttributes_(m_path, nil);
    EXPECT_EQ(pxExtendedAttributesKeys(m_path).count(), 4U);
}

TEST_F(PxExtendedAttributes, HoldAnyNumberOfBytes) {
    for (std::size_t const size : {1, 4'040, 65'536, 100'000}) {
        NSData const value = bytes(std::string(size, 'x'));
        EXPECT_TRUE(pxSetExtendedAttributeData_forKey_(m_path, value, "com.apple.ResourceFork"));
        EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "com.apple.ResourceFork").isEqualToData_(value)) << size;
    }
    EXPECT_EQ(pxExtendedAttributes(m_path).count(), 1U);
}

TEST_F(PxExtendedAttributes, HoldAPropertyListThatComesBackMutable) {
    NSDictionary const inner = NSDictionary::dictionaryWithObject_forKey_("text", "string");
    NSDictionary const list = NSDictionary::dictionaryWithObjectsAndKeys_(
        {NSNumber::numberWithInt_(7), "number", NSArray::arrayWithObject_(inner), "array", bytes("\x01"), "data",
         NSDate::dateWithTimeIntervalSinceReferenceDate_(1.5), "date", NSNumber::numberWithBool_(YES), "flag"});
    EXPECT_TRUE(pxSetExtendedAttributeDictionary_forKey_(m_path, list, "list"));
    NSDictionary const read = as<NSDictionary>(pxExtendedAttributeDictionaryForKey_(m_path, "list"));
    EXPECT_TRUE(read.isEqual_(list));
    EXPECT_FALSE(as<NSMutableDictionary>(read) == nil);
    NSMutableArray const array = as<NSMutableArray>(read.objectForKey_("array"));
    EXPECT_FALSE(array == nil);
    NSDictionary const innerRead = as<NSMutableDictionary>(array.objectAtIndex_(0));
    EXPECT_FALSE(as<NSMutableString>(innerRead.objectForKey_("string")) == nil);
    NSData const stored = pxExtendedAttributeDataForKey_(m_path, "list");
    EXPECT_EQ(std::memcmp(stored.bytes(), "bplist00", 8), 0);
}

TEST_F(PxExtendedAttributes, LoseTheListThatIsNil) {
    pxSetExtendedAttributeDictionary_forKey_(m_path, NSDictionary::dictionary(), "list");
    EXPECT_FALSE(pxExtendedAttributeDictionaryForKey_(m_path, "list") == nil);
    EXPECT_TRUE(pxSetExtendedAttributeDictionary_forKey_(m_path, nil, "list"));
    EXPECT_EQ(pxExtendedAttributesKeys(m_path).count(), 0U);
    EXPECT_FALSE(pxSetExtendedAttributeDictionary_forKey_(m_path, nil, "list"));
}

TEST_F(PxExtendedAttributes, LoseTheListThatIsNone) {
    pxSetExtendedAttributeDictionary_forKey_(m_path, "text", "list");
    EXPECT_TRUE(pxExtendedAttributeDictionaryForKey_(m_path, "list").isEqual_("text"));
    EXPECT_TRUE(pxSetExtendedAttributeDictionary_forKey_(m_path, NSNull::null(), "list"));
    EXPECT_EQ(pxExtendedAttributesKeys(m_path).count(), 0U);
}

TEST_F(PxExtendedAttributes, ThatAreNoListReadAsNil) {
    pxSetExtendedAttributeData_forKey_(m_path, bytes("bplist00 and then nothing"), "list");
    EXPECT_TRUE(pxExtendedAttributeDictionaryForKey_(m_path, "list") == nil);
    EXPECT_FALSE(pxExtendedAttributeDataForKey_(m_path, "list") == nil);
}

// The tests' program lies in no bundle and so has no identifier.
TEST_F(PxExtendedAttributes, UnderTheProgramsIdentifierAreNoneWithoutOne) {
    pxSetExtendedAttributeDictionary_(m_path, NSDictionary::dictionaryWithObject_forKey_("1", "a"));
    EXPECT_TRUE(pxExtendedAttributeDictionary(m_path) == nil);
    EXPECT_EQ(pxExtendedAttributesKeys(m_path).count(), 0U);
}

// Runs once more as the program of a bundle.
TEST_F(PxExtendedAttributes, UnderTheProgramsIdentifierAreThoseOfItsBundle) {
    if (NSBundle::mainBundle().bundleIdentifier() == nil) {
        std::string const bundle = m_folder.makeBundle("X.app", informationFile("com.example.X", "1", "1"));
        std::string const program = m_folder.makeFolder("X.app/Contents/Linux") + "/program";
        outputOf({"cp", "/proc/" + std::to_string(::getpid()) + "/exe", program});
        std::string const printed =
            outputOf({program, "--gtest_output=", "--gtest_filter=*.UnderTheProgramsIdentifierAreThoseOfItsBundle"});
        EXPECT_NE(printed.find("[  PASSED  ] 1 test."), std::string::npos) << printed;
        return;
    }
    NSDictionary const list = NSDictionary::dictionaryWithObject_forKey_("1", "a");
    pxSetExtendedAttributeDictionary_(m_path, list);
    EXPECT_TRUE(pxExtendedAttributesKeys(m_path).isEqual_(NSArray::arrayWithObject_("com.example.X")));
    NSMutableDictionary const read = as<NSMutableDictionary>(pxExtendedAttributeDictionary(m_path));
    EXPECT_TRUE(read.isEqual_(list));
    EXPECT_FALSE(read == nil);
    EXPECT_TRUE(pxExtendedAttributeDictionaryForKey_(m_path, "com.example.X").isEqual_(list));
    pxSetExtendedAttributeDictionary_(m_path, nil);
    EXPECT_EQ(pxExtendedAttributesKeys(m_path).count(), 0U);
}

TEST_F(PxExtendedAttributes, ListedWhileOneIsAddedAreNil) {
    pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), "a");
    AttributeCalls const calls([&](unsigned number) {
        if (number == 2) ::setxattr(m_file.c_str(), "user.b", "2", 1, 0);
    });
    EXPECT_TRUE(pxExtendedAttributesKeys(m_path) == nil);
    EXPECT_EQ(pxExtendedAttributesKeys(m_path).count(), 2U);
}

TEST_F(PxExtendedAttributes, ListedWhileOneIsRemovedAreNil) {
    pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), "a");
    pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), "b");
    AttributeCalls const calls([&](unsigned number) {
        if (number == 2) ::removexattr(m_file.c_str(), "user.b");
    });
    EXPECT_TRUE(pxExtendedAttributes(m_path) == nil);
    EXPECT_EQ(pxExtendedAttributes(m_path).count(), 1U);
}

TEST_F(PxExtendedAttributes, ReadWhileTheyGrowOrShrinkAreNil) {
    pxSetExtendedAttributeData_forKey_(m_path, bytes("123"), "a");
    for (std::string const next : {"1234", "12"}) {
        AttributeCalls const calls([&](unsigned number) {
            if (number == 2) ::setxattr(m_file.c_str(), "user.a", next.data(), next.size(), 0);
        });
        EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "a") == nil) << next;
    }
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "a").isEqual_(bytes("12")));
}

TEST_F(PxExtendedAttributes, OfAFileThatGoesMeanwhileAreNil) {
    pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), "a");
    {
        AttributeCalls const calls([&](unsigned number) {
            if (number == 2) ::unlink(m_file.c_str());
        });
        EXPECT_TRUE(pxExtendedAttributesKeys(m_path) == nil);
    }
    m_folder.makeFile("file", "");
    pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), "a");
    AttributeCalls const calls([&](unsigned number) {
        if (number == 2) ::unlink(m_file.c_str());
    });
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "a") == nil);
}

// A path that leads to no item reads as one without attributes, also if the item was there a moment ago.
TEST_F(PxExtendedAttributes, OfAFileThatGoesBeforeTheFirstCallAreNone) {
    auto const withoutFile = [&](auto const& reading) {
        m_folder.makeFile("file", "");
        pxSetExtendedAttributeData_forKey_(m_path, bytes("1"), "a");
        AttributeCalls const calls([&](unsigned number) {
            if (number == 1) ::unlink(m_file.c_str());
        });
        reading();
    };
    withoutFile([&] {
        NSMutableArray const keys = pxExtendedAttributesKeys(m_path);
        EXPECT_FALSE(keys == nil);
        EXPECT_EQ(keys.count(), 0U);
    });
    withoutFile([&] { EXPECT_TRUE(pxExtendedAttributes(m_path) == nil); });
    withoutFile([&] { EXPECT_TRUE(pxExtendedAttributeDataForKey_(m_path, "a") == nil); });
    withoutFile([&] { EXPECT_TRUE(pxExtendedAttributesForKeys_(m_path, NSArray::arrayWithObject_("a")) == nil); });
    withoutFile([&] { EXPECT_TRUE(pxExtendedAttributeDictionaryForKey_(m_path, "a") == nil); });
}

TEST_F(PxExtendedAttributes, AreMessagesOfStringsToo) {
    id const item = m_path;
    EXPECT_TRUE(
        as<NSNumber>(item.performSelector_withObject_withObject_("pxSetExtendedAttributeData:forKey:", bytes("1"), "a"))
            .boolValue());
    EXPECT_TRUE(item.performSelector_withObject_("pxExtendedAttributeDataForKey:", "a").isEqual_(bytes("1")));
    EXPECT_EQ(as<NSArray>(item.performSelector_("pxExtendedAttributesKeys")).count(), 1U);
}

} // namespace
} // namespace mac::test
