#include "platform/preferences/Preferences.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/preferences/PreferenceHome.h"
#include <cerrno>

namespace mac::test {

namespace {

// What a desktop would keep: the strings of the array. Other elements have no form there.
struct DesktopStrings {
    NSArray items{};
    bool isReadable{true};
    bool isWritable{true};
    int writings{0};
};

DesktopStrings& desktop() {
    static DesktopStrings strings;
    return strings;
}

NativeItems readStrings(NSArray const& kept) {
    NSArray const items = desktop().items.arrayByAddingObjectsFromArray_(kept);
    if (desktop().isReadable) return {.items = items};
    return {.items = items, .problem = Failure{"The desktop is closed"}};
}

NativeWriting writeStrings(NSArray const& items) {
    ++desktop().writings;
    if (!desktop().isWritable) return {.problem = Failure{"The desktop refuses"}};
    NSMutableArray const strings = NSMutableArray::array();
    NSMutableArray const others = NSMutableArray::array();
    for (id const& item : items)
        (as<NSString>(item) != nil ? strings : others).addObject_(item);
    desktop().items = strings;
    return {.kept = others};
}

constexpr NativeStore Strings[] = {{"domain", "strings", readStrings, writeStrings}};

class PreferencesTest : public PreferenceHome {
protected:
    PreferencesTest() { desktop() = {.items = NSArray::array()}; }

    id value(NSString const& key = "strings") { return m_preferences.value(m_domain, key); }
    bool write(id const& value, NSString const& key = "strings") {
        m_preferences.setValue(m_domain, key, value);
        return m_preferences.synchronize(m_domain).isDone();
    }

    PreferenceDomain const m_domain{.file = file("domain"), .nativeName = "domain"};
    Preferences m_preferences{Strings};
};

NSArray mixed() { return NSArray::arrayWithObjects_({"a", NSNumber::numberWithInt_(1), "b"}); }

} // namespace

TEST_F(PreferencesTest, WhatTheDesktopHasNoFormForIsKeptInTheFileAndReadAsOneArray) {
    EXPECT_TRUE(write(mixed()));
    EXPECT_EQ(desktop().items.count(), 2u);
    EXPECT_EQ(contentsOf(m_domain.file).find("<string>"), std::string::npos);
    EXPECT_NE(contentsOf(m_domain.file).find("<integer>1</integer>"), std::string::npos);
    EXPECT_TRUE(value().isEqual_(NSArray::arrayWithObjects_({"a", "b", NSNumber::numberWithInt_(1)})));
}

TEST_F(PreferencesTest, AnArrayThatTheDesktopHoldsWholeNeedsNoFile) {
    EXPECT_TRUE(write(NSArray::arrayWithObject_("a")));
    EXPECT_NE(::access(m_domain.file.c_str(), F_OK), 0);
    EXPECT_TRUE(write(nil));
    EXPECT_EQ(desktop().items.count(), 0u);
    EXPECT_TRUE(value() == nil);
}

TEST_F(PreferencesTest, TheOtherKeysOfTheDomainLieInItsFile) {
    EXPECT_TRUE(write("text", "other"));
    EXPECT_EQ(desktop().writings, 0);
    EXPECT_TRUE(value("other").isEqual_("text"));
}

TEST_F(PreferencesTest, AChangedTypeOfAnEqualNumberIsStored) {
    EXPECT_TRUE(write(NSNumber::numberWithInt_(1), "other"));
    EXPECT_NE(contentsOf(m_domain.file).find("<integer>1</integer>"), std::string::npos);
    EXPECT_TRUE(write(NSNumber::numberWithBool_(YES), "other"));
    EXPECT_NE(contentsOf(m_domain.file).find("<true/>"), std::string::npos);
    EXPECT_TRUE(write(NSNumber::numberWithDouble_(1), "other"));
    EXPECT_NE(contentsOf(m_domain.file).find("<real>1</real>"), std::string::npos);
}

TEST_F(PreferencesTest, WhatIsTooLargeAsTextIsStoredInTheBinaryForm) {
    std::vector<std::byte> const bytes(std::size_t{13} << 20);
    NSData const data = NSData::dataWithBytes(bytes);
    EXPECT_TRUE(write(data, "other"));
    EXPECT_TRUE(contentsOf(m_domain.file).starts_with("bplist00"));
    EXPECT_TRUE(value("other").isEqual_(data));
}

TEST_F(PreferencesTest, WhatCouldNotBeReadAgainIsRefusedAndTheFileStays) {
    EXPECT_TRUE(write("text", "other"));
    std::string const before = contentsOf(m_domain.file);
    std::vector<std::byte> const bytes((std::size_t{16} << 20) + 1);
    m_preferences.setValue(m_domain, "large", NSData::dataWithBytes(bytes));
    Result<void, Failure> const written = m_preferences.synchronize(m_domain, RefusedChanges::AreForgotten);
    ASSERT_FALSE(written.isDone());
    EXPECT_NE(written.problem().reason.find(textOfSystemError(EFBIG)), std::string::npos) << written.problem().reason;
    EXPECT_EQ(contentsOf(m_domain.file), before);
    EXPECT_TRUE(value("other").isEqual_("text"));
}

TEST_F(PreferencesTest, AValueOfAnotherClassIsReadAsFoundAndNotOverwritten) {
    makeFile("domain", "<plist><dict><key>strings</key><string>odd</string></dict></plist>");
    EXPECT_TRUE(value().isEqual_("odd"));
    EXPECT_FALSE(write(NSArray::arrayWithObject_("a")));
    EXPECT_EQ(desktop().writings, 0);
    EXPECT_TRUE(value().isEqual_("odd"));
}

TEST_F(PreferencesTest, WhatIsNoArrayIsNotWritten) {
    EXPECT_FALSE(write("text"));
    EXPECT_EQ(desktop().writings, 0);
}

TEST_F(PreferencesTest, ADamagedFileHidesNothingOfTheDesktopAndStopsWriting) {
    makeFile("domain", "damaged");
    desktop().items = NSArray::arrayWithObject_("a");
    Result<void, Failure> const read = m_preferences.synchronize(m_domain);
    ASSERT_FALSE(read.isDone());
    EXPECT_EQ(read.problem().reason, m_domain.file + ": The file is damaged");
    EXPECT_TRUE(value().isEqual_(NSArray::arrayWithObject_("a")));
    EXPECT_FALSE(write(NSArray::array()));
    EXPECT_EQ(desktop().writings, 0);
    EXPECT_EQ(contentsOf(m_domain.file), "damaged");
}

TEST_F(PreferencesTest, ADesktopThatCannotBeReadWholeIsTold) {
    desktop().items = NSArray::arrayWithObject_("a");
    desktop().isReadable = false;
    Result<void, Failure> const read = m_preferences.synchronize(m_domain);
    ASSERT_FALSE(read.isDone());
    EXPECT_EQ(read.problem().reason, "The desktop is closed");
    EXPECT_TRUE(value().isEqual_(NSArray::arrayWithObject_("a")));
}

TEST_F(PreferencesTest, ADesktopThatCannotBeWrittenIsToldAndTheFileStaysAsItWas) {
    EXPECT_TRUE(write(mixed()));
    desktop().isWritable = false;
    m_preferences.setValue(m_domain, "strings", NSArray::array());
    Result<void, Failure> const written = m_preferences.synchronize(m_domain);
    ASSERT_FALSE(written.isDone());
    EXPECT_EQ(written.problem().reason, "The desktop refuses");
    EXPECT_TRUE(value().isEqual_(NSArray::arrayWithObjects_({"a", "b", NSNumber::numberWithInt_(1)})));
}

TEST_F(PreferencesTest, AnArrayChangedAfterItWasSetIsWrittenAsItWas) {
    NSMutableArray const items = NSMutableArray::arrayWithObjects_({"a"});
    m_preferences.setValue(m_domain, "strings", items);
    items.addObject_("b");
    EXPECT_TRUE(m_preferences.synchronize(m_domain).isDone());
    EXPECT_TRUE(value().isEqual_(NSArray::arrayWithObject_("a")));
}

} // namespace mac::test
