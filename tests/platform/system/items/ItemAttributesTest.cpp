#include "platform/system/items/ItemAttributes.h"
#include "platform/system/items/AttributeNames.h"
#include "tests/support/Failures.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <gtest/gtest.h>
#include <unistd.h>

namespace mac::test {

namespace {

class ItemAttributes : public testing::Test {
protected:
    OpenItem open(std::string const& path) const {
        Result<OpenItem> item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
        EXPECT_TRUE(item.hasValue()) << path;
        return item.takeValue();
    }
    static std::vector<std::byte> bytes(std::size_t size, int value = 'x') {
        return std::vector<std::byte>(size, static_cast<std::byte>(value));
    }

    TemporaryFolder const m_folder{};
    OpenItem const m_item{open(m_folder.makeFile("file", "x"))};
    AttributeName const m_name{"colour"};
};

TEST_F(ItemAttributes, AreReadAsTheyWereWritten) {
    // From none to more than a file system has room for, and longer than what is read at once.
    for (std::size_t const size : {0U, 1U, 4096U, 4097U, 100'000U}) {
        ASSERT_TRUE(writeAttribute(m_item, m_name, bytes(size)).isDone()) << size;
        Result<std::vector<std::byte>> const value = readAttribute(m_item, m_name);
        ASSERT_TRUE(value.hasValue()) << size;
        EXPECT_EQ(value.value(), bytes(size)) << size;
        EXPECT_EQ(sizeOfAttribute(m_item, m_name).valueOr(7), size);
        EXPECT_EQ(namesOfAttributes(m_item).valueOr({}), std::vector<std::string>{"colour"});
    }
    EXPECT_TRUE(removeAttribute(m_item, m_name).isDone());
    EXPECT_EQ(namesOfAttributes(m_item).valueOr({"?"}), std::vector<std::string>());
}

TEST_F(ItemAttributes, TellThatTheyAreMissing) {
    for (SystemError const& problem :
         {readAttribute(m_item, m_name).problem(), sizeOfAttribute(m_item, m_name).problem(),
          removeAttribute(m_item, m_name).problem()}) {
        EXPECT_EQ(problem.code, ENODATA) << problem.text();
        EXPECT_EQ(problem.item, "colour");
    }
}

TEST_F(ItemAttributes, AreWrittenOnTheGivenConditionAlone) {
    EXPECT_EQ(codeOf(writeAttribute(m_item, m_name, bytes(1), AttributeCondition::MustExist)), ENODATA);
    EXPECT_TRUE(writeAttribute(m_item, m_name, bytes(1), AttributeCondition::MustBeNew).isDone());
    EXPECT_EQ(codeOf(writeAttribute(m_item, m_name, bytes(2), AttributeCondition::MustBeNew)), EEXIST);
    EXPECT_TRUE(writeAttribute(m_item, m_name, bytes(3), AttributeCondition::MustExist).isDone());
    EXPECT_EQ(sizeOfAttribute(m_item, m_name).valueOr(0), 3U);
}

TEST_F(ItemAttributes, AreNotCarriedByASymbolicLink) {
    ASSERT_EQ(::symlink("file", m_folder.path("link").c_str()), 0);
    OpenItem const link = open(m_folder.path("link"));
    EXPECT_EQ(codeOf(readAttribute(link, m_name)), ENODATA);
    EXPECT_EQ(namesOfAttributes(link).valueOr({"?"}), std::vector<std::string>());
    EXPECT_EQ(codeOf(writeAttribute(link, m_name, bytes(1))), EPERM);
    EXPECT_EQ(codeOf(removeAttribute(link, m_name)), EPERM);
}

TEST_F(ItemAttributes, TakeFinderInformationOf32Bytes) {
    AttributeName const finder(XATTR_FINDERINFO_NAME);
    EXPECT_EQ(codeOf(writeAttribute(m_item, finder, bytes(31))), ERANGE);
    EXPECT_TRUE(writeAttribute(m_item, finder, bytes(32)).isDone());
    EXPECT_TRUE(writeAttribute(m_item, finder, bytes(32, 0)).isDone()) << "zeros remove it";
    EXPECT_EQ(codeOf(readAttribute(m_item, finder)), ENODATA);
}

TEST(AttributeName, IsCheckedForText) {
    EXPECT_EQ(AttributeName::make("").problem().code, EINVAL);
    EXPECT_EQ(AttributeName::make(std::string_view("a\0b", 3)).problem().code, EINVAL);
    EXPECT_EQ(AttributeName::make(std::string(255, 'n')).problem().code, ENAMETOOLONG);
    EXPECT_TRUE(AttributeName::make(std::string(254, 'n')).hasValue());
}

} // namespace

} // namespace mac::test
