#include "platform/system/UserLanguages.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace mac {

namespace {

// "de_AT" of "de_AT.UTF-8@euro"; empty for "C" and "POSIX", which name no language.
std::string_view languageOfLocale(std::string_view locale) {
    std::string_view const language = locale.substr(0, locale.find_first_of(".@"));
    return language == "C" || language == "POSIX" ? std::string_view() : language;
}

void addLanguage(std::vector<std::string>& languages, std::string_view language) {
    bool const isNew = std::ranges::find(languages, language) == languages.end();
    // A name with a slash is a path, not a language.
    if (!language.empty() && isNew && language.find('/') == std::string_view::npos) languages.emplace_back(language);
}

void addWithAndWithoutCountry(std::vector<std::string>& languages, std::string_view locale) {
    std::string_view const language = languageOfLocale(locale);
    addLanguage(languages, language);
    addLanguage(languages, language.substr(0, language.find('_')));
}

std::string_view localeOfMessages() {
    for (char const* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        char const* const value = std::getenv(name);
        if (value && *value != '\0') return value;
    }
    return {};
}

} // namespace

std::vector<std::string> userLanguages() {
    std::vector<std::string> languages;
    std::string_view const locale = localeOfMessages();
    if (!languageOfLocale(locale).empty()) {
        for (std::string const& language : listInEnvironment("LANGUAGE", ""))
            addWithAndWithoutCountry(languages, language);
    }
    addWithAndWithoutCountry(languages, locale);
    addLanguage(languages, "en");
    return languages;
}

} // namespace mac
