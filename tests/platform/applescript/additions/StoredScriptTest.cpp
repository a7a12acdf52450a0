#include "platform/applescript/additions/StoredScript.h"
#include "platform/applescript/runtime/ScriptError.h"
#include <gtest/gtest.h>

namespace mac::applescript::test {

namespace {

std::int32_t problemOfStored(std::string_view bytes) {
    try {
        sourceInStoredScript(bytes);
        return 0;
    } catch (ScriptError const& error) {
        return error.number;
    }
}

std::int32_t problemOfStoring(std::u16string const& source) {
    try {
        storedScript(source);
        return 0;
    } catch (ScriptError const& error) {
        return error.number;
    }
}

TEST(StoredScript, IsALineAndTheSourceText) {
    EXPECT_EQ(storedScript(u"return 1\n"), "%Framekeeper script 1, 9 bytes\nreturn 1\n");
    EXPECT_EQ(storedScript(u"\"→\""), "%Framekeeper script 1, 5 bytes\n\"→\"");
    EXPECT_EQ(storedScript(u""), "%Framekeeper script 1, 0 bytes\n");
}

TEST(StoredScript, IsReadAsItWasWritten) {
    for (std::u16string const& source :
         {std::u16string(), std::u16string(u"say \"é→😀\"\r\n"), std::u16string(4, u'\0')})
        EXPECT_EQ(sourceInStoredScript(storedScript(source)), source);
}

TEST(StoredScript, IsTakenForNothingElse) {
    EXPECT_EQ(sourceInStoredScript(""), std::nullopt);
    EXPECT_EQ(sourceInStoredScript("return 1"), std::nullopt);
    EXPECT_EQ(sourceInStoredScript("Framekeeper script 1, 1 bytes\na"), std::nullopt);
    EXPECT_EQ(sourceInStoredScript("%Framed"), std::nullopt);
}

TEST(StoredScript, IsRefusedWhereverItIsCut) {
    std::string const whole = storedScript(u"return \"é\"");
    for (std::size_t size = 1; size < whole.size(); ++size)
        EXPECT_EQ(problemOfStored(whole.substr(0, size)), errors::EndOfFile) << size;
    EXPECT_EQ(problemOfStored(whole), 0);
}

TEST(StoredScript, IsRefusedInAnotherForm) {
    EXPECT_EQ(problemOfStored("%Framekeeper script 2, 1 bytes\na"), errors::CorruptData);
    EXPECT_EQ(problemOfStored("%Framekeeper script 11, 1 bytes\na"), errors::CorruptData);
    EXPECT_EQ(problemOfStored("%Framekeeper script 1, -1 bytes\na"), errors::CorruptData);
    EXPECT_EQ(problemOfStored("%Framekeeper script 1, 1 byte\na"), errors::CorruptData);
    EXPECT_EQ(problemOfStored("%Framekeeper script 1, 1 bytes\nab"), errors::CorruptData);
    EXPECT_EQ(problemOfStored("%Framekeeper script 1, 2 bytes\n\xC3\x28"), errors::CorruptData);
    EXPECT_EQ(problemOfStored("%Framekeeper script 1, 99999999999999999999999 bytes\na"), errors::ValueTooLarge);
}

TEST(StoredScript, HasItsGreatestSize) {
    EXPECT_EQ(problemOfStoring(std::u16string(MostScriptBytes, u'a')), 0);
    EXPECT_EQ(problemOfStoring(std::u16string(MostScriptBytes + 1, u'a')), errors::ValueTooLarge);
    EXPECT_EQ(problemOfStored("%Framekeeper script 1, 4194305 bytes\n" + std::string(MostScriptBytes + 1, 'a')),
              errors::ValueTooLarge);
}

TEST(StoredScript, HoldsNoHalfOfACharacter) {
    EXPECT_EQ(problemOfStoring(std::u16string(1, char16_t{0xD800})), errors::CannotCoerce);
}

} // namespace

} // namespace mac::applescript::test
