#include "platform/launchservices/BundleFiles.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/system/LongPath.h"
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace mac {

namespace {

constexpr std::size_t LargestFile = std::size_t{4} << 20;

// How folders of languages were called before they were called by codes.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> OldLanguageNames{{
    {"de", "German"},
    {"en", "English"},
    {"es", "Spanish"},
    {"fr", "French"},
    {"it", "Italian"},
    {"ja", "Japanese"},
    {"nl", "Dutch"},
    {"zh", "Chinese"},
}};

std::vector<std::string> folderNames(std::string const& language) {
    std::vector<std::string> names{language};
    std::string withHyphen = language;
    std::ranges::replace(withHyphen, '_', '-');
    if (withHyphen != language) names.push_back(std::move(withHyphen));
    for (auto const& [code, name] : OldLanguageNames) {
        if (code == language) names.emplace_back(name);
    }
    return names;
}

} // namespace

NSDictionary dictionaryInFile(std::string const& path) {
    Result<FileContents> const contents = readFileAtPath(path, LargestFile);
    if (!contents.hasValue()) return nil;
    id const list = NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes(contents.value().bytes), NSPropertyListImmutable, nullptr, nullptr);
    return as<NSDictionary>(list);
}

NSDictionary bundleInformation(std::string const& bundlePath) {
    return dictionaryInFile(bundlePath + "/Contents/Info.plist");
}

NSDictionary localizedBundleInformation(std::string const& bundlePath, std::vector<std::string> const& languages) {
    for (std::string const& language : languages) {
        for (std::string const& name : folderNames(language)) {
            std::string path = bundlePath;
            path.append("/Contents/Resources/").append(name).append(".lproj/InfoPlist.strings");
            NSDictionary const strings = dictionaryInFile(path);
            if (strings != nil) return strings;
        }
    }
    return nil;
}

} // namespace mac
