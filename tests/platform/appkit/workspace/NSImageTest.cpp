#include "platform/appkit/workspace/NSImage.h"
#include "platform/appkit/workspace/NSGraphicsContext.h"
#include "platform/icons/Picture.h"
#include "tests/platform/icons/IconBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <limits>

namespace mac::test {
namespace {

NSBitmapImageRep formOf(int side, std::uint32_t pixel) {
    Picture picture = emptyPicture(side, side);
    picture.pixels.assign(picture.pixels.size(), pixel);
    return NSBitmapImageRep::withPicture(std::make_shared<Picture const>(std::move(picture)));
}

NSImage emptyImage(float side) { return NSImage::alloc().initWithSize_(NSMakeSize(side, side)); }

NSBitmapImageRep firstForm(NSImage const& image) {
    return image.representations().count() == 0 ? NSBitmapImageRep()
                                                : as<NSBitmapImageRep>(image.representations().objectAtIndex_(0));
}

TEST(NSImage, HasItsFormsInTheOrderInWhichTheyCame) {
    NSImage const image = emptyImage(16);
    EXPECT_EQ(image.representations().count(), 0U);
    NSBitmapImageRep const large = formOf(32, 0);
    NSBitmapImageRep const small = formOf(16, 0);
    image.addRepresentations_(NSArray::arrayWithObjects_({large, small, large}));
    image.addRepresentation_(nil);
    NSArray const before = image.representations();
    EXPECT_EQ(before.count(), 3U);
    EXPECT_TRUE(isSame(before.objectAtIndex_(1), small));
    image.removeRepresentation_(formOf(32, 0));
    image.removeRepresentation_(nil);
    EXPECT_EQ(image.representations().count(), 3U);
    image.removeRepresentation_(large);
    EXPECT_EQ(image.representations().count(), 1U);
    EXPECT_EQ(before.count(), 3U);
}

TEST(NSImage, HasASizeOfItsOwn) {
    NSImage const image = emptyImage(16);
    image.addRepresentation_(formOf(64, 0));
    image.setSize_(NSMakeSize(20, 10));
    EXPECT_EQ(image.size(), NSMakeSize(20, 10));
    EXPECT_EQ(firstForm(image).size(), NSMakeSize(64, 64));
    firstForm(image).setSize_(NSMakeSize(32, 32));
    EXPECT_EQ(firstForm(image).size(), NSMakeSize(32, 32));
    EXPECT_EQ(firstForm(image).pixelsWide(), 64);
    EXPECT_EQ(firstForm(image).pixelsHigh(), 64);
}

TEST(NSImage, IsMadeFromAFamilyOfIcons) {
    NSImage const image = NSImage::alloc().initWithData_(
        bytes(iconFamily(iconPiece("il32", packedPixels(32, 0x336699)) + iconPiece("is32", packedPixels(16, 0)))));
    ASSERT_EQ(image.representations().count(), 2U);
    EXPECT_EQ(image.size(), NSMakeSize(32, 32));
    NSColor const color = firstForm(image).colorAtX_y_(31, 31);
    EXPECT_DOUBLE_EQ(color.redComponent(), 0.2);
    EXPECT_DOUBLE_EQ(color.blueComponent(), 0.6);
    EXPECT_EQ(color.alphaComponent(), 1);
    EXPECT_TRUE(firstForm(image).colorAtX_y_(32, 0) == nil);
    EXPECT_TRUE(firstForm(image).colorAtX_y_(0, -1) == nil);
    EXPECT_TRUE(firstForm(image).colorAtX_y_(std::numeric_limits<NSInteger>::max(), 0) == nil);
}

TEST(NSImage, IsWrittenAsPNGAndComesBack) {
    TemporaryFolder const folder;
    NSData const png = formOf(8, 0xFF00FF00).representationUsingType_properties_(NSPNGFileType, nil);
    ASSERT_TRUE(png.writeToFile_atomically_(path(folder.path("a.png")), YES));
    NSImage const image = NSImage::alloc().initWithContentsOfFile_(path(folder.path("a.png")));
    EXPECT_EQ(firstForm(image).pixelsWide(), 8);
    EXPECT_EQ(firstForm(image).colorAtX_y_(0, 0).greenComponent(), 1);
    EXPECT_TRUE(formOf(8, 0).representationUsingType_properties_(NSTIFFFileType, nil) == nil);
    EXPECT_TRUE(NSBitmapImageRep::imageRepWithData_(png).isKindOfClass_(classOf<NSImageRep>()));
}

TEST(NSImage, IsNilForOtherFilesThanImages) {
    TemporaryFolder const folder;
    for (NSData const& data : {NSData(), NSData::data(), bytes("text"), bytes(iconFamily(""))}) {
        EXPECT_TRUE(NSImage::alloc().initWithData_(data) == nil);
        EXPECT_TRUE(NSBitmapImageRep::imageRepWithData_(data) == nil);
        EXPECT_EQ(NSBitmapImageRep::imageRepsWithData_(data).count(), 0U);
    }
    EXPECT_TRUE(NSImage::alloc().initWithContentsOfFile_(path(folder.path("missing"))) == nil);
    EXPECT_TRUE(NSImage::alloc().initWithContentsOfFile_(path(folder.path())) == nil);
    EXPECT_TRUE(NSImage::alloc().initWithContentsOfFile_(nil) == nil);
}

TEST(NSImage, IsDrawnIntoWhileItHasTheFocus) {
    NSImage const image = emptyImage(4);
    EXPECT_TRUE(NSGraphicsContext::currentContext() == nil);
    EXPECT_FALSE(formOf(2, 0xFFFF0000).drawInRect_(NSMakeRect(0, 0, 2, 2)));
    image.lockFocus();
    EXPECT_TRUE(NSGraphicsContext::currentContext() != nil);
    EXPECT_TRUE(formOf(2, 0xFFFF0000).drawInRect_(NSMakeRect(0, 0, 2, 2)));
    image.unlockFocus();
    EXPECT_TRUE(NSGraphicsContext::currentContext() == nil);
    ASSERT_EQ(image.representations().count(), 1U);
    EXPECT_EQ(firstForm(image).colorAtX_y_(0, 3).redComponent(), 1);
    EXPECT_EQ(firstForm(image).colorAtX_y_(3, 0).alphaComponent(), 0);
    // The image's former picture stays below what is drawn next.
    image.lockFocus();
    EXPECT_TRUE(formOf(2, 0xFF0000FF).drawInRect_(NSMakeRect(2, 2, 2, 2)));
    image.unlockFocus();
    EXPECT_EQ(firstForm(image).colorAtX_y_(0, 3).redComponent(), 1);
    EXPECT_EQ(firstForm(image).colorAtX_y_(3, 0).blueComponent(), 1);
    image.unlockFocus();
    EXPECT_EQ(image.representations().count(), 1U);
}

TEST(NSImage, GivesTheFocusBack) {
    NSImage const outer = emptyImage(4);
    NSImage const inner = emptyImage(8);
    outer.lockFocus();
    CGContextRef const first = NSGraphicsContext::currentContext().graphicsPort();
    inner.lockFocus();
    EXPECT_EQ(NSGraphicsContext::currentContext().graphicsPort()->picture.width, 8);
    inner.unlockFocus();
    EXPECT_EQ(NSGraphicsContext::currentContext().graphicsPort(), first);
    outer.unlockFocus();
    EXPECT_TRUE(NSGraphicsContext::currentContext() == nil);
}

TEST(NSImage, OfNoAreaHasNothingToDrawOn) {
    for (float const side : {0.0F, -1.0F, 4097.0F, std::numeric_limits<float>::quiet_NaN()}) {
        NSImage const image = emptyImage(side);
        image.addRepresentation_(formOf(2, 0));
        image.lockFocus();
        EXPECT_FALSE(formOf(2, 0).drawInRect_(NSMakeRect(0, 0, 2, 2)));
        image.unlockFocus();
        EXPECT_EQ(firstForm(image).pixelsWide(), 2);
    }
    EXPECT_FALSE(emptyImage(0).isValid());
    EXPECT_TRUE(emptyImage(1).isValid());
}

TEST(NSImage, IsCopiedWithFormsOfItsOwn) {
    NSImage const image = emptyImage(16);
    image.addRepresentation_(formOf(16, 0xFF112233));
    NSImage const copy = as<NSImage>(image.copy());
    EXPECT_EQ(copy.size(), image.size());
    ASSERT_EQ(copy.representations().count(), 1U);
    EXPECT_FALSE(isSame(firstForm(copy), firstForm(image)));
    EXPECT_EQ(firstForm(copy).colorAtX_y_(0, 0).description().UTF8String(),
              firstForm(image).colorAtX_y_(0, 0).description().UTF8String());
    copy.removeRepresentation_(firstForm(copy));
    EXPECT_EQ(image.representations().count(), 1U);
}

TEST(NSImage, NilAnswersNothing) {
    NSImage const none;
    EXPECT_FALSE(none.isValid());
    EXPECT_TRUE(none.representations() == nil);
    EXPECT_EQ(none.size(), NSZeroSize);
    none.addRepresentation_(formOf(2, 0));
    none.removeRepresentation_(formOf(2, 0));
    none.lockFocus();
    EXPECT_TRUE(NSGraphicsContext::currentContext() == nil);
    none.unlockFocus();
    EXPECT_TRUE(NSImage(nil).initWithData_(bytes("icns")) == nil);
    NSBitmapImageRep const noForm;
    EXPECT_EQ(noForm.pixelsWide() + noForm.pixelsHigh(), 0);
    EXPECT_EQ(noForm.size(), NSZeroSize);
    noForm.setSize_(NSMakeSize(1, 1));
    EXPECT_FALSE(noForm.drawInRect_(NSMakeRect(0, 0, 1, 1)));
    EXPECT_TRUE(noForm.representationUsingType_properties_(NSPNGFileType, nil) == nil);
    EXPECT_TRUE(NSGraphicsContext(nil).graphicsPort() == nullptr);
}

} // namespace
} // namespace mac::test
