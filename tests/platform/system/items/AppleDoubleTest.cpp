#include "platform/system/items/AppleDouble.h"
#include "platform/files/ExtendedAttributes.h"
#include <algorithm>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

// A file put together by hand, number by number.
class FileBytes {
public:
    FileBytes& number(std::uint32_t value, unsigned width = 4) {
        for (unsigned index = width; index > 0; --index)
            m_bytes.push_back(static_cast<std::byte>(value >> (8 * (index - 1))));
        return *this;
    }
    FileBytes& text(std::string_view text) {
        std::span<std::byte const> const bytes = std::as_bytes(std::span(text));
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
        return *this;
    }
    FileBytes& zeros(std::size_t count) {
        m_bytes.resize(m_bytes.size() + count);
        return *this;
    }
    FileBytes& header(std::uint32_t parts) {
        return number(0x00051607).number(0x00020000).text("Mac OS X        ").number(parts, 2);
    }
    FileBytes& part(std::uint32_t kind, std::uint32_t offset, std::uint32_t length) {
        return number(kind).number(offset).number(length);
    }
    std::vector<std::byte> const& get() const { return m_bytes; }

private:
    std::vector<std::byte> m_bytes;
};

std::string textOfBytes(std::optional<std::span<std::byte const>> bytes) {
    if (!bytes) return "-";
    return {reinterpret_cast<char const*>(bytes->data()), bytes->size()};
}

std::string complaint(FileBytes const& bytes) { return AppleDouble::read(bytes.get()).problem().reason; }

// Finder information of 32 bytes at 50, the table at 84 with its first entry at 120.
FileBytes withTable(std::uint32_t attributes) {
    FileBytes bytes;
    bytes.header(2).part(9, 50, 110).part(2, 160, 4).text("APPLMRFM").zeros(26);
    return bytes.text("ATTR").number(7).number(160).number(152).number(8).zeros(14).number(attributes, 2);
}

// Its entries, of an attribute "a" of 5 bytes and one "b:c" of 3, their values and a resource fork.
void appendTwoAttributesAndFork(FileBytes& bytes) {
    bytes.number(152).number(5).number(0, 2).number(2, 1).text("a").zeros(4);
    bytes.number(157).number(3).number(0, 2).number(4, 1).text("b:c").zeros(2);
    bytes.text("valueyes").text("fork");
}

TEST(AppleDouble, IsReadAsMacOSXWritesIt) {
    FileBytes bytes = withTable(2);
    appendTwoAttributesAndFork(bytes);
    ASSERT_EQ(bytes.get().size(), 164U);
    Result<AppleDouble, Failure> const file = AppleDouble::read(bytes.get());
    ASSERT_TRUE(file.hasValue()) << file.problem().reason;
    EXPECT_EQ(textOfBytes(file.value().valueOf("a")), "value");
    EXPECT_EQ(textOfBytes(file.value().valueOf("b:c")), "yes");
    EXPECT_EQ(textOfBytes(file.value().valueOf(XATTR_RESOURCEFORK_NAME)), "fork");
    EXPECT_EQ(textOfBytes(file.value().valueOf(XATTR_FINDERINFO_NAME)), "APPLMRFM" + std::string(24, '\0'));
    EXPECT_EQ(file.value().names(),
              (std::vector<std::string>{XATTR_FINDERINFO_NAME, XATTR_RESOURCEFORK_NAME, "a", "b:c"}));
    EXPECT_EQ(textOfBytes(file.value().valueOf("c")), "-");
}

TEST(AppleDouble, TellsFromItsBeginningWhatIsThere) {
    FileBytes bytes = withTable(2);
    appendTwoAttributesAndFork(bytes);
    std::size_t const size = bytes.get().size();
    std::span<std::byte const> const all(bytes.get());
    constexpr std::size_t fork = 160;
    Result<AppleDouble, Failure> const withoutFork = AppleDouble::readBeginning(all.first(fork), size);
    ASSERT_TRUE(withoutFork.hasValue()) << withoutFork.problem().reason;
    EXPECT_EQ(textOfBytes(withoutFork.value().valueOf("a")), "value");
    EXPECT_EQ(textOfBytes(withoutFork.value().valueOf("b:c")), "yes");
    EXPECT_TRUE(withoutFork.value().resourceFork.empty());
    EXPECT_EQ(withoutFork.value().names(), AppleDouble::read(all).value().names()) << "the fork is there";
    constexpr std::size_t entries = 152;
    Result<AppleDouble, Failure> const withoutValues = AppleDouble::readBeginning(all.first(entries), size);
    ASSERT_TRUE(withoutValues.hasValue()) << withoutValues.problem().reason;
    EXPECT_EQ(withoutValues.value().names(), AppleDouble::read(all).value().names());
    EXPECT_EQ(textOfBytes(withoutValues.value().valueOf("a")), "");
    EXPECT_EQ(AppleDouble::readBeginning(all.first(entries - 1), size).problem().reason, "An attribute is damaged");
    constexpr std::size_t table = 120;
    EXPECT_EQ(AppleDouble::readBeginning(all.first(table - 1), size).problem().reason,
              "The Finder information lies behind what is read");
    EXPECT_EQ(AppleDouble::readBeginning(all.first(fork), fork).problem().reason,
              "A part lies outside of the file, or in another one");
}

TEST(AppleDouble, LeavesValuesEmptyThatLieBehindItsBeginning) {
    // The table's values need not lie in the Finder information.
    FileBytes bytes;
    bytes.header(1).part(9, 50, 90).zeros(12).text("APPLMRFM").zeros(26);
    bytes.text("ATTR").number(7).number(0).number(0).number(0).zeros(14).number(2, 2);
    bytes.number(160).number(5).number(0, 2).number(2, 1).text("a").zeros(4);
    bytes.number(152).number(3).number(0, 2).number(4, 1).text("b:c").zeros(2);
    bytes.text("yes").zeros(5).text("value");
    std::span<std::byte const> const all(bytes.get());
    Result<AppleDouble, Failure> const read = AppleDouble::readBeginning(all.first(155), all.size());
    ASSERT_TRUE(read.hasValue()) << read.problem().reason;
    EXPECT_EQ(textOfBytes(read.value().valueOf("a")), "");
    EXPECT_EQ(textOfBytes(read.value().valueOf("b:c")), "yes");
    EXPECT_EQ(textOfBytes(AppleDouble::read(all).value().valueOf("a")), "value");
}

TEST(AppleDouble, IsWrittenAsMacOSXReadsIt) {
    AppleDouble file;
    ASSERT_TRUE(file.setValue("a", std::as_bytes(std::span("value", 5))));
    ASSERT_TRUE(file.setValue("b:c", std::as_bytes(std::span("yes", 3))));
    ASSERT_TRUE(file.setValue(XATTR_RESOURCEFORK_NAME, std::as_bytes(std::span("fork", 4))));
    FileBytes expected;
    expected.header(2).part(9, 50, 110).part(2, 160, 4).zeros(34);
    expected.text("ATTR").number(0).number(160).number(152).number(8).zeros(14).number(2, 2);
    appendTwoAttributesAndFork(expected);
    EXPECT_EQ(file.written(), expected.get());
}

TEST(AppleDouble, KeepsPartsOfOthers) {
    FileBytes const bytes = FileBytes().header(2).part(3, 50, 4).part(0x8053567E, 54, 0).text("Name");
    Result<AppleDouble, Failure> file = AppleDouble::read(bytes.get());
    ASSERT_TRUE(file.hasValue());
    AppleDouble changed = file.takeValue();
    EXPECT_FALSE(changed.isEmpty());
    ASSERT_TRUE(changed.setValue("a", {}));
    Result<AppleDouble, Failure> const again = AppleDouble::read(changed.written().value());
    ASSERT_TRUE(again.hasValue()) << again.problem().reason;
    EXPECT_EQ(again.value(), changed);
    EXPECT_EQ(again.value().otherParts.size(), 2U);
    EXPECT_EQ(textOfBytes(again.value().valueOf("a")), "");
}

TEST(AppleDouble, KeepsWhatItDoesNotKnow) {
    FileBytes bytes;
    bytes.number(0x00051607).number(0x00020000).text("HFS plus        ").number(2, 2);
    bytes.part(9, 50, 88).part(2, 138, 0).zeros(34);
    bytes.text("ATTR").number(0xCAFE).number(138).number(136).number(1).text("twelve bytes").number(0xBEEF, 2);
    bytes.number(1, 2).number(136).number(1).number(0x1234, 2).number(2, 1).text("a").zeros(4).text("v").zeros(1);
    ASSERT_EQ(bytes.get().size(), 138U);
    Result<AppleDouble, Failure> read = AppleDouble::read(bytes.get());
    ASSERT_TRUE(read.hasValue()) << read.problem().reason;
    AppleDouble changed = read.takeValue();
    EXPECT_EQ(changed.tableMarks.tag, 0xCAFEU);
    ASSERT_TRUE(changed.setValue("a", std::as_bytes(std::span("new", 3))));
    ASSERT_TRUE(changed.setValue("b", {}));
    Result<AppleDouble, Failure> const again = AppleDouble::read(changed.written().value());
    ASSERT_TRUE(again.hasValue()) << again.problem().reason;
    EXPECT_EQ(again.value(), changed);
    EXPECT_EQ(textOfBytes(again.value().homeFileSystem), "HFS plus        ");
    EXPECT_EQ(textOfBytes(again.value().tableMarks.reserved), "twelve bytes");
    EXPECT_EQ(again.value().tableMarks.flags, 0xBEEFU);
    EXPECT_EQ(again.value().attributes[0].flags, 0x1234U);
    EXPECT_EQ(again.value().attributes[1].flags, 0U);
}

TEST(AppleDouble, KeepsWhatOthersHavePutBehindTheFinderInformation) {
    FileBytes const bytes = FileBytes().header(1).part(9, 38, 100).text("APPL").zeros(28).text("theirs").zeros(62);
    Result<AppleDouble, Failure> read = AppleDouble::read(bytes.get());
    ASSERT_TRUE(read.hasValue()) << read.problem().reason;
    AppleDouble changed = read.takeValue();
    EXPECT_EQ(changed.informationTail.size(), 68U);
    ASSERT_TRUE(changed.removeValue(XATTR_FINDERINFO_NAME));
    EXPECT_FALSE(changed.isEmpty());
    Result<AppleDouble, Failure> const again = AppleDouble::read(changed.written().value());
    ASSERT_TRUE(again.hasValue()) << again.problem().reason;
    EXPECT_EQ(again.value(), changed);
    // There is no place for a table.
    ASSERT_TRUE(changed.setValue("a", {}));
    EXPECT_FALSE(changed.written());
}

TEST(AppleDouble, KeepsNoPadding) {
    FileBytes const bytes = FileBytes().header(1).part(9, 38, 4'000).text("APPL").zeros(3'996);
    Result<AppleDouble, Failure> const read = AppleDouble::read(bytes.get());
    ASSERT_TRUE(read.hasValue()) << read.problem().reason;
    EXPECT_TRUE(read.value().informationTail.empty());
}

TEST(AppleDouble, HoldsAtMost1024Attributes) {
    AppleDouble file;
    for (int index = 0; index < 1'024; ++index)
        ASSERT_TRUE(file.setValue(std::to_string(index), {}));
    std::optional<std::vector<std::byte>> const written = file.written();
    ASSERT_TRUE(written);
    Result<AppleDouble, Failure> const read = AppleDouble::read(*written);
    ASSERT_TRUE(read.hasValue()) << read.problem().reason;
    EXPECT_EQ(read.value(), file);
    ASSERT_TRUE(file.setValue("one more", {}));
    EXPECT_FALSE(file.written());
    EXPECT_EQ(complaint(withTable(1'025).zeros(64)), "There are too many attributes");
}

TEST(AppleDouble, WithoutInformationOrForkHasNoneOfThese) {
    Result<AppleDouble, Failure> const file = AppleDouble::read(AppleDouble().written().value());
    ASSERT_TRUE(file.hasValue());
    EXPECT_TRUE(file.value().isEmpty());
    EXPECT_TRUE(file.value().names().empty());
    EXPECT_FALSE(file.value().valueOf(XATTR_FINDERINFO_NAME));
    EXPECT_FALSE(file.value().valueOf(XATTR_RESOURCEFORK_NAME));
}

TEST(AppleDouble, ChangesByName) {
    AppleDouble file;
    std::vector<std::byte> const information(32, std::byte{1});
    EXPECT_FALSE(file.setValue(XATTR_FINDERINFO_NAME, std::span(information).first(31)));
    EXPECT_TRUE(file.setValue(XATTR_FINDERINFO_NAME, information));
    EXPECT_TRUE(file.setValue("a", information));
    EXPECT_TRUE(file.setValue("a", {}));
    EXPECT_EQ(textOfBytes(file.valueOf("a")), "");
    EXPECT_FALSE(file.removeValue("b"));
    EXPECT_TRUE(file.removeValue("a"));
    EXPECT_FALSE(file.removeValue("a"));
    EXPECT_TRUE(file.removeValue(XATTR_FINDERINFO_NAME));
    EXPECT_TRUE(file.isEmpty());
}

TEST(AppleDouble, SaysWhatIsWrong) {
    EXPECT_EQ(complaint(FileBytes()), "It is no AppleDouble file");
    EXPECT_EQ(complaint(FileBytes().text("somebody's notes")), "It is no AppleDouble file");
    EXPECT_EQ(complaint(FileBytes().number(0x00051607).number(0x00010000).zeros(18)),
              "It is an AppleDouble file of another version");
    EXPECT_EQ(complaint(FileBytes().number(0x00051607).number(0x00020000)), "It is cut short");
    EXPECT_EQ(complaint(FileBytes().header(2).part(2, 38, 0)), "The list of parts is cut short");
    EXPECT_EQ(complaint(FileBytes().header(1).part(2, 38, 1)), "A part lies outside of the file, or in another one");
    EXPECT_EQ(complaint(FileBytes().header(1).part(2, 0xFFFFFFFF, 0xFFFFFFFF)),
              "A part lies outside of the file, or in another one");
    EXPECT_EQ(complaint(FileBytes().header(3).part(2, 0, 30).part(3, 0, 30).part(4, 0, 30)),
              "A part lies outside of the file, or in another one");
    EXPECT_EQ(complaint(FileBytes().header(2).part(2, 50, 0).part(2, 50, 0)), "A part is there twice");
    EXPECT_EQ(complaint(FileBytes().header(1).part(9, 38, 4).zeros(4)), "The Finder information is cut short");
}

TEST(AppleDouble, SaysWhatIsWrongWithItsAttributes) {
    auto const entry = [](std::uint32_t offset, std::uint32_t length, std::string_view name) {
        FileBytes bytes = withTable(1);
        return bytes.number(offset)
            .number(length)
            .number(0, 2)
            .number(static_cast<std::uint32_t>(name.size()), 1)
            .text(name)
            .zeros(64);
    };
    using std::string_view_literals::operator""sv;
    EXPECT_EQ(complaint(entry(0, 4, "a\0"sv)), "");
    EXPECT_EQ(complaint(entry(0, 4, "a"sv)), "An attribute is damaged");
    EXPECT_EQ(complaint(entry(0, 4, "\0"sv)), "An attribute is damaged");
    EXPECT_EQ(complaint(entry(0, 4, ""sv)), "An attribute is damaged");
    EXPECT_EQ(complaint(entry(0, 4, "ab"sv)), "An attribute is damaged");
    EXPECT_EQ(complaint(entry(0, 4, "a\0b\0"sv)), "An attribute is damaged");
    EXPECT_EQ(complaint(entry(0, 4, "com.apple.FinderInfo\0"sv)), "An attribute is damaged");
    EXPECT_EQ(complaint(entry(5000, 4, "a\0"sv)), "An attribute is damaged");
    EXPECT_EQ(complaint(entry(4, 0xFFFFFFFF, "a\0"sv)), "An attribute is damaged");
    EXPECT_EQ(complaint(withTable(1'000).zeros(44)), "An attribute is damaged");
}

TEST(AppleDouble, WritesNoNameItCouldNotRead) {
    for (std::string const& name : {std::string(), std::string("a\0b", 3), std::string(255, 'n')}) {
        AppleDouble file;
        file.attributes.push_back({name, {}});
        EXPECT_FALSE(file.written()) << name;
    }
}

} // namespace
} // namespace mac::test
