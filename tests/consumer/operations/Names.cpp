#include "pathutils/BundleVersions.h"
#include "pathutils/PathRelations.h"
#include "tests/consumer/operations/Trial.h"

// Versions of bundles, and how paths lie to one another.

namespace consumer {

using namespace mac;

namespace {

void tryVersions(NSString const& bundle) {
    Trial const trial("pathutils/BundleVersions");
    trial.expect("pxVersionOfPath", isText(pxVersionOfPath(bundle), "2.5.1"));
    std::int32_t major = 0;
    std::int32_t minor = 0;
    std::int32_t subminor = -1;
    pxParseVersionToMajor_minor_subminor_("v2.5b3", &major, &minor, &subminor);
    trial.expect("pxParseVersionToMajor_minor_subminor_", major == 2 && minor == 5 && subminor == 0);
    trial.expect("pxTrimmedVersion_", isText(pxTrimmedVersion_("2.5.1", 2), "2.5"));
    trial.expect("pxTrimmedVersion", isText(pxTrimmedVersion("2.5.0"), "2.5"));
    trial.expect("pxVersionCompare_", pxVersionCompare_("1.10", "1.9") == 1);
}

void tryPackages(Trial const& trial, Places const& places, NSString const& bundle) {
    NSString const inner = places.path("Title.app/Contents/Info.plist");
    trial.expect("pxIsPathPackageOrPartOfPackageCheckingMaxLevels_",
                 pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(bundle, 1));
    trial.expect("pxIsPathPartOfPackageCheckingMaxLevels_", pxIsPathPartOfPackageCheckingMaxLevels_(inner, 3) &&
                                                                !pxIsPathPartOfPackageCheckingMaxLevels_(bundle, 1));
    trial.expect("pxInfoDictionaryForPath",
                 isText(pxInfoDictionaryForPath(bundle).objectForKey_("CFBundleVersion"), "2.5.1"));
    trial.expect("pxInfoDictionaryForPathUncached",
                 isText(pxInfoDictionaryForPathUncached(bundle).objectForKey_("CFBundleVersion"), "2.5.1"));
    trial.expect("pxDisplayNameOfPath", isText(pxDisplayNameOfPath(bundle), "Title.app"));
    places.file("listed/.hidden", "");
    places.file("listed/shown", "");
    trial.expect("pxVisibleDirectoryContentsAtPath_",
                 areTexts(pxVisibleDirectoryContentsAtPath_(places.path("listed"), NO), {"shown"}));
}

} // namespace

void tryNames(Places const& places) {
    places.file("Title.app/Contents/Info.plist", "{CFBundleVersion = \"2.5.1\"; CFBundlePackageType = APPL;}");
    NSString const bundle = places.path("Title.app");
    tryVersions(bundle);
    Trial const trial("pathutils/PathRelations");
    trial.expect("pxIsEqualToPath_", pxIsEqualToPath_("/title/İ", NSString("/TITLE/./İ")));
    trial.expect("pxIsChildOf_", pxIsChildOf_("/TITLE/a/b", NSString("/title")));
    trial.expect("pxFastIsChildOf_", pxFastIsChildOf_("/a/b", "/a") && !pxFastIsChildOf_("/a", "/a"));
    trial.expect("pxParentPathOfPath", isText(pxParentPathOfPath("/a/b/"), "/a"));
    tryPackages(trial, places, bundle);
    trial.expect("pxFilenameExtensionOfUTI", isText(pxFilenameExtensionOfUTI("public.tiff"), "tiff"));
    trial.expect("pxFilenameExtensionOfUTIPanther", isText(pxFilenameExtensionOfUTIPanther("public.png"), "png"));
    NSString const text = places.file("plain.txt", "text");
    // What can be read is known by the module for pictures alone.
    trial.expect("pxIsImageFile", pxIsImageFile(places.file("picture.png", "")) && !pxIsImageFile(text));
    trial.expect("pxIsAudioFile", !pxIsAudioFile(text));
    trial.expect("pxIsWritableFileAtPath", pxIsWritableFileAtPath(text) && !pxIsWritableFileAtPath("/etc/passwd"));
    trial.expect("pxIsDeletableFileAtPath", pxIsDeletableFileAtPath(text) && !pxIsDeletableFileAtPath("/etc/passwd"));
    trial.expect("pxURLOfPath", pxURLOfPath(bundle).absoluteString().hasSuffix_("/Title.app/"));
    trial.expect("pxURLOfPath_", isText(pxURLOfPath_("/a", YES).absoluteString(), "file://localhost/a/"));
}

} // namespace consumer
