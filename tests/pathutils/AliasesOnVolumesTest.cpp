#include "pathutils/AliasesAndContents.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <sys/mount.h>

namespace mac::test {
namespace {

class AliasesOnVolumes : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
};

TEST_F(AliasesOnVolumes, LeaveTheVolumeFreeToBeUnmounted) {
    std::string const point = m_folder.makeFolder("volume");
    mountMemory(point);
    NSString const file = path(m_folder.makeFile("volume/file", "one"));
    NSString const other = path(m_folder.makeFile("volume/other", "two"));
    NSData const alias = pxAliasDataOfPath(file);
    EXPECT_TRUE(pxPathOfAliasData(alias).isEqualToString_(file));
    EXPECT_FALSE(pxPathHasEqualContentsWithPath_(file, other));
    EXPECT_TRUE(pxExchangeFileWith_(file, other));
    EXPECT_NE(pxChecksumOfPath(file), 0);
    EXPECT_TRUE(pxModificationDateOfPath(file) != nil);
    EXPECT_EQ(::umount(point.c_str()), 0);
    EXPECT_TRUE(pxPathOfAliasData(alias) == nil);
    mountMemory(point);
}

} // namespace
} // namespace mac::test
