#include "app/InTrashTransformer.h"
#include "tests/app/SelectedCopies.h"

namespace framekeeper::test {
namespace {

using InTrash = SelectedCopies;

bool isInTrash(id const& path) { return as<NSNumber>(adopt<InTrashTransformer>().transformedValue_(path)).boolValue(); }

TEST_F(InTrash, IsToldOfThePathOfACopy) {
    NSString const path = findCopy("a");
    EXPECT_FALSE(isInTrash(path));
    select({path});
    m_controller.trashAction_(nil);
    EXPECT_TRUE(isInTrash(pathInTrash()));
    EXPECT_FALSE(isInTrash(path)) << "it is gone";
}

TEST(InTrashTransformer, AnswersNoForWhatIsNoPath) {
    EXPECT_FALSE(isInTrash(nil));
    EXPECT_FALSE(isInTrash(NSNumber::numberWithInt_(1)));
}

TEST(InTrashTransformer, IsKnownByItsNameAndHasNoWayBack) {
    EXPECT_FALSE(NSValueTransformer::valueTransformerForName_("InTrashTransformer") == nil);
    EXPECT_FALSE(InTrashTransformer::allowsReverseTransformation());
}

} // namespace
} // namespace framekeeper::test
