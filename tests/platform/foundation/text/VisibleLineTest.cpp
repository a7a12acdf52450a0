#include "platform/foundation/text/VisibleLine.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(VisibleLine, KeepsText) { EXPECT_EQ(visibleLine(u"Übergabe 😀"), "Übergabe 😀"); }

TEST(VisibleLine, WritesCodesForWhatDrivesATerminal) {
    EXPECT_EQ(visibleLine(u"a\nb\x1b[1m\x7f\u0085\u202e"), "a\\nb\\x1b[1m\\x7f\\x85\\u202e");
}

TEST(VisibleLine, WritesCodesForMarksOfDirection) {
    EXPECT_EQ(visibleLine(u"a\u061cb\u200ec\u200fd\u200d"), "a\\u061cb\\u200ec\\u200fd\u200d");
}

TEST(VisibleLine, LeavesABackslashAlone) { EXPECT_EQ(visibleLine(u"a\\nb"), "a\\nb"); }

TEST(VisibleLine, WritesTheBytesOfANameThatIsNoText) {
    EXPECT_EQ(visibleLine(std::u16string{u'a', char16_t{0xDCFF}}), "a\\xff");
}

} // namespace
} // namespace mac::test
