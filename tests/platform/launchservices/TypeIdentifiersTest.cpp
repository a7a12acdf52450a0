#include "platform/launchservices/TypeIdentifiers.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/icons/ImageSources.h"
#include "platform/launchservices/TypeTree.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

NSDictionary dictionaryOf(std::string_view list) {
    return as<NSDictionary>(NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes(std::as_bytes(std::span(list))), NSPropertyListImmutable, nullptr, nullptr));
}

NSString identifierFor(char const* tagClass, char const* tag, NSString const& kind = nil) {
    return UTTypeCreatePreferredIdentifierForTag(NSString::stringWithUTF8String_(tagClass),
                                                 NSString::stringWithUTF8String_(tag), kind);
}

TEST(TypeIdentifiers, AreEqualInAnyCase) {
    EXPECT_TRUE(UTTypeEqual("public.png", "Public.PNG"));
    EXPECT_FALSE(UTTypeEqual("public.png", "public.jpeg"));
    EXPECT_FALSE(UTTypeEqual("public.png", nil));
    EXPECT_FALSE(UTTypeEqual(nil, nil));
}

TEST(TypeIdentifiers, ConformToThemselvesAndToWhatTheyAreACaseOf) {
    for (char const* kind : {"public.jpeg", "public.image", "public.data", "public.item", "public.content"})
        EXPECT_TRUE(UTTypeConformsTo("public.jpeg", NSString::stringWithUTF8String_(kind))) << kind;
    EXPECT_TRUE(UTTypeConformsTo("PUBLIC.JPEG", "public.Image"));
    EXPECT_FALSE(UTTypeConformsTo("public.image", "public.jpeg"));
    EXPECT_FALSE(UTTypeConformsTo("public.jpeg", "public.text"));
    EXPECT_FALSE(UTTypeConformsTo("com.apple.application-bundle", "public.data"));
    EXPECT_TRUE(UTTypeConformsTo("com.apple.application-bundle", "com.apple.package"));
    EXPECT_TRUE(UTTypeConformsTo("public.mp3", "public.audio"));
    EXPECT_TRUE(UTTypeConformsTo("com.example.unknown", "com.example.Unknown"));
    EXPECT_FALSE(UTTypeConformsTo("com.example.unknown", "public.data"));
    EXPECT_FALSE(UTTypeConformsTo(nil, "public.data"));
    EXPECT_FALSE(UTTypeConformsTo("public.data", nil));
}

TEST(TypeIdentifiers, OfTheSystemAllConformToTypesThatAreThere) {
    TypeTree const tree = TypeTree::ofSystem();
    ASSERT_FALSE(systemTypes().empty());
    for (SystemType const& row : systemTypes()) {
        SCOPED_TRACE(row.identifier);
        DeclaredType const* const type = tree.typeOf(row.identifier);
        ASSERT_NE(type, nullptr);
        // Another row of the same identifier would be lost.
        EXPECT_EQ(type->description, row.description);
        for (std::string const& parent : type->conformsTo)
            EXPECT_NE(tree.typeOf(parent), nullptr) << parent;
    }
}

TEST(TypeIdentifiers, AreDeclaredWithOneTagOrSeveral) {
    NSDictionary const png = UTTypeCopyDeclaration("Public.PNG");
    EXPECT_TRUE(png.objectForKey_(kUTTypeIdentifierKey).isEqual_("public.png"));
    EXPECT_TRUE(png.objectForKey_(kUTTypeDescriptionKey).isEqual_("PNG image"));
    EXPECT_TRUE(png.objectForKey_(kUTTypeConformsToKey).isEqual_("public.image"));
    NSDictionary const tags = as<NSDictionary>(png.objectForKey_(kUTTypeTagSpecificationKey));
    EXPECT_TRUE(tags.objectForKey_(kUTTagClassFilenameExtension).isEqual_("png"));
    EXPECT_TRUE(tags.objectForKey_(kUTTagClassMIMEType).isEqual_("image/png"));
    NSDictionary const jpeg =
        as<NSDictionary>(UTTypeCopyDeclaration("public.jpeg").objectForKey_(kUTTypeTagSpecificationKey));
    EXPECT_TRUE(
        jpeg.objectForKey_(kUTTagClassFilenameExtension).isEqual_(NSArray::arrayWithObjects_({"jpeg", "jpg", "jpe"})));
    EXPECT_TRUE(UTTypeCopyDeclaration("public.item").objectForKey_(kUTTypeTagSpecificationKey) == nil);
    EXPECT_TRUE(UTTypeCopyDeclaration("com.example.unknown") == nil);
    EXPECT_TRUE(UTTypeCopyDeclaration(identifierFor(kUTTagClassFilenameExtension, "nobody")) == nil);
    EXPECT_TRUE(UTTypeCopyDeclaration("") == nil);
    EXPECT_TRUE(UTTypeCopyDeclaration(nil) == nil);
    EXPECT_TRUE(UTTypeCopyDescription("public.png").isEqualToString_("PNG image"));
    EXPECT_TRUE(UTTypeCopyDescription(nil) == nil);
}

TEST(TypeIdentifiers, AreFoundByTheirTags) {
    EXPECT_TRUE(identifierFor(kUTTagClassFilenameExtension, "JPG").isEqualToString_("public.jpeg"));
    EXPECT_TRUE(identifierFor(kUTTagClassMIMEType, "image/PNG").isEqualToString_("public.png"));
    EXPECT_TRUE(identifierFor(kUTTagClassOSType, "MooV").isEqualToString_("com.apple.quicktime-movie"));
    EXPECT_TRUE(identifierFor(kUTTagClassOSType, "moov").hasPrefix_("dyn."));
    EXPECT_TRUE(identifierFor(kUTTagClassOSType, "url ").isEqualToString_("public.url"));
    EXPECT_TRUE(identifierFor(kUTTagClassFilenameExtension, "app").isEqualToString_("com.apple.application-bundle"));
    EXPECT_TRUE(identifierFor(kUTTagClassFilenameExtension, "app", "public.data")
                    .isEqualToString_("com.apple.application-file"));
    EXPECT_TRUE(identifierFor(kUTTagClassFilenameExtension, "framework", "public.data").hasPrefix_("dyn."));
    EXPECT_TRUE(identifierFor("public.nonsense", "png") == nil);
    EXPECT_TRUE(identifierFor(kUTTagClassFilenameExtension, "") == nil);
    EXPECT_TRUE(UTTypeCreatePreferredIdentifierForTag(nil, "png", nil) == nil);
    EXPECT_TRUE(UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, nil, nil) == nil);
}

TEST(TypeIdentifiers, ThatAreDynamicKeepTheirTag) {
    for (char const* tag : {"nobody", "a", "\xC3\xA9t\xC3\xA9", "with blank", "line\npublic.image"}) {
        SCOPED_TRACE(tag);
        NSString const identifier = identifierFor(kUTTagClassFilenameExtension, tag);
        EXPECT_TRUE(UTTypeCopyPreferredTagWithClass(identifier, kUTTagClassFilenameExtension)
                        .isEqualToString_(NSString::stringWithUTF8String_(tag)));
        EXPECT_TRUE(UTTypeCopyPreferredTagWithClass(identifier, kUTTagClassMIMEType) == nil);
        EXPECT_TRUE(UTTypeConformsTo(identifier, "public.data"));
        EXPECT_FALSE(UTTypeConformsTo(identifier, "public.image"));
    }
    NSString const code = identifierFor(kUTTagClassOSType, "aBcD");
    EXPECT_TRUE(UTTypeCopyPreferredTagWithClass(code.uppercaseString(), kUTTagClassOSType).isEqualToString_("aBcD"));
}

TEST(TypeIdentifiers, ThatAreDynamicConformToWhatWasSaid) {
    NSString const text = identifierFor(kUTTagClassFilenameExtension, "nobody", "public.plain-text");
    EXPECT_TRUE(UTTypeConformsTo(text, "public.text"));
    EXPECT_FALSE(UTTypeConformsTo(text, "public.image"));
    EXPECT_FALSE(UTTypeEqual(text, identifierFor(kUTTagClassFilenameExtension, "nobody")));
}

TEST(TypeIdentifiers, OfMIMETypesConformAsTheseAreCasesOfOthers) {
    EXPECT_TRUE(UTTypeConformsTo(identifierFor(kUTTagClassMIMEType, "image/vnd.djvu"), "public.image"));
    EXPECT_TRUE(UTTypeConformsTo(identifierFor(kUTTagClassMIMEType, "text/x-tex"), "public.plain-text"));
    EXPECT_TRUE(UTTypeConformsTo(identifierFor(kUTTagClassMIMEType, "application/rss+xml"), "public.xml"));
    EXPECT_TRUE(UTTypeConformsTo(identifierFor(kUTTagClassMIMEType, "application/x-nobody"), "public.data"));
}

TEST(TypeIdentifiers, ThatLookDynamicAndAreNotConformToNothing) {
    for (char const* text : {"dyn.", "dyn.a", "dyn.!!!!", "dyn.aaaaaaaa", "dyn.mzzzzzzz"}) {
        NSString const identifier = NSString::stringWithUTF8String_(text);
        EXPECT_FALSE(UTTypeConformsTo(identifier, "public.data")) << text;
        EXPECT_TRUE(UTTypeCopyPreferredTagWithClass(identifier, kUTTagClassFilenameExtension) == nil) << text;
    }
}

TEST(TypeIdentifiers, AreDeclaredByApplications) {
    TypeTree tree = TypeTree::ofSystem();
    tree.addDeclarationsIn(dictionaryOf(R"({
        UTExportedTypeDeclarations = (
            {UTTypeIdentifier = com.example.frame; UTTypeConformsTo = public.image;
             UTTypeTagSpecification = {"public.filename-extension" = (frame, frm); "public.mime-type" = "image/x-frame";};},
            {UTTypeIdentifier = public.png; UTTypeConformsTo = public.text;},
            "no declaration", {UTTypeConformsTo = public.data;});
        UTImportedTypeDeclarations = (
            {UTTypeIdentifier = com.example.other; UTTypeConformsTo = (com.example.frame, (public.text));
             UTTypeTagSpecification = nonsense;}); })"));
    EXPECT_TRUE(conforms(tree, "com.example.frame", "public.image"));
    EXPECT_TRUE(conforms(tree, "com.example.other", "public.image"));
    EXPECT_FALSE(conforms(tree, "com.example.other", "public.text"));
    EXPECT_FALSE(conforms(tree, "public.png", "public.text"));
    EXPECT_EQ(identifierOfMIMEType(tree, "image/x-frame"), "com.example.frame");
    EXPECT_EQ(tree.typesWithTag(TagClass::Extension, "FRM").size(), 1U);
}

TEST(TypeIdentifiers, ThatConformToOneAnotherInACircleHaveAnEnd) {
    TypeTree tree;
    tree.addDeclarationsIn(dictionaryOf("{UTExportedTypeDeclarations = ({UTTypeIdentifier = a; UTTypeConformsTo = b;},"
                                        "{UTTypeIdentifier = b; UTTypeConformsTo = (a, b);});}"));
    EXPECT_TRUE(conforms(tree, "a", "b"));
    EXPECT_TRUE(conforms(tree, "b", "a"));
    EXPECT_FALSE(conforms(tree, "a", "c"));
}

TEST(TypeIdentifiers, OfImagesThatCanBeReadAreImages) {
    NSArray const types = CGImageSourceCopyTypeIdentifiers();
    EXPECT_TRUE(types.containsObject_("public.png"));
    EXPECT_TRUE(types.containsObject_("public.jpeg"));
    for (id const& type : types)
        EXPECT_TRUE(UTTypeConformsTo(as<NSString>(type), "public.image")) << as<NSString>(type).UTF8String();
}

} // namespace
} // namespace mac::test
