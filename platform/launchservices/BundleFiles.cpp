#include "platform/launchservices/BundleFiles.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/system/LongPath.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <array>
#include <cstdlib>
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

std::string_view environment(char const* name) {
    char const* const value = std::getenv(name);
    return value ? value : "";
}

// "de_AT.UTF-8@euro" is "de_AT"; the plain environments of C speak no language.
std::string_view languageOfLocale(std::string_view locale) {
    std::string_view const language = locale.substr(0, locale.find_first_of(".@"));
    return language == "C" || language == "POSIX" ? std::string_view() : language;
}

void add(std::vector<std::string>& languages, std::string_view language) {
    bool const isNew = std::ranges::find(languages, language) == languages.end();
    // A language is no path.
    if (!language.empty() && isNew && language.find('/') == std::string_view::npos) languages.emplace_back(language);
}

void addWithAndWithoutCountry(std::vector<std::string>& languages, std::string_view locale) {
    std::string_view const language = languageOfLocale(locale);
    add(languages, language);
    add(languages, language.substr(0, language.find('_')));
}

std::string_view localeOfMessages() {
    for (char const* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        std::string_view const value = environment(name);
        if (!value.empty()) return value;
    }
    return {};
}

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

std::vector<std::string> userLanguages() {
    std::vector<std::string> languages;
    std::string_view const locale = localeOfMessages();
    if (!languageOfLocale(locale).empty()) {
        for (std::string const& language : listInEnvironment("LANGUAGE", ""))
            addWithAndWithoutCountry(languages, language);
    }
    addWithAndWithoutCountry(languages, locale);
    add(languages, "en");
    return languages;
}

} // namespace mac
