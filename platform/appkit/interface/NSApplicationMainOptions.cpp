#include "platform/appkit/interface/NSApplicationMain.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/foundation/text/NSString.h"
#include "platform/foundation/text/SystemErrorTexts.h"
#include "platform/foundation/text/VisibleLine.h"
#include "platform/system/StandardStreams.h"
#include <algorithm>
#include <array>
#include <string_view>

namespace mac {

namespace {

// The toolkit's own, without their hyphens.
constexpr std::array ToolkitFlags{"reverse", "nograb", "dograb", "sync", "widgetcount"};
constexpr std::array ToolkitOptionsWithValue{
    "platform", "platformpluginpath", "platformtheme", "plugin",  "qwindowgeometry", "qwindowicon", "qwindowtitle",
    "style",    "stylesheet",         "session",       "display", "geometry"};

// Without one or two hyphens at its beginning, and what stands behind an equals sign.
std::string_view nameOfOption(std::string_view word) {
    word.remove_prefix(word.starts_with("--") ? 2 : 1);
    return word.substr(0, word.find('='));
}

bool isOneOf(auto const& options, std::string_view name) {
    return std::ranges::any_of(options, [name](char const* option) { return name == option; });
}

// How many words of the beginning belong to an option that is known; 0 if they belong to none.
std::size_t wordsOfOption(std::span<std::string const> words) {
    std::string_view const word = words.front();
    if (word.size() < 2 || word.front() != '-') return 0;
    std::string_view const name = nameOfOption(word);
    bool const hasValueWord = words.size() > 1 && !words[1].starts_with('-');
    if (isOneOf(ToolkitFlags, name)) return 1;
    if (isOneOf(ToolkitOptionsWithValue, name) && word.find('=') != std::string_view::npos) return 1;
    if (isOneOf(ToolkitOptionsWithValue, name)) return std::min<std::size_t>(words.size(), 2);
    // A setting; a negative number is a value, too.
    bool const isNumber =
        words.size() > 1 && words[1].size() > 1 && words[1].find_first_not_of("0123456789.", 1) == std::string::npos;
    bool const isSetting = !word.starts_with("--") && (hasValueWord || isNumber);
    return isSetting ? 2 : 0;
}

// The first word that is no option; nullptr if all are.
std::string const* unknownWord(std::span<std::string const> words) {
    std::size_t index = 1;
    while (index < words.size()) {
        std::size_t const count = wordsOfOption(words.subspan(index));
        if (count == 0) return &words[index];
        index += count;
    }
    return nullptr;
}

std::string usageText(ProgramNames const& names) {
    NSString const usage = NSLocalizedString("usage: %@ [OPTION]...\n"
                                             "\n"
                                             "Opens the window, or brings the open one to the front.\n"
                                             "\n"
                                             "  -h, --help   this text\n"
                                             "  --version    the version\n"
                                             "  -KEY VALUE   a setting for this start alone\n",
                                             "The options stay as they are");
    return NSString::stringWithFormat_(usage, NSString::stringWithFileSystemRepresentation_(names.command))
        .UTF8String();
}

int say(ProgramNames const& names, std::string const& text) {
    Result<void> const written = writeTo(StandardStream::Output, text);
    if (written.isDone()) return 0;
    // If that cannot be written either, the status is left.
    std::string const reason = localizedSystemError(written.problem()).UTF8String();
    static_cast<void>(writeTo(StandardStream::Errors, names.command + ": " + reason + "\n"));
    return 1;
}

std::string visible(std::string const& word) {
    return visibleLine(NSString::stringWithFileSystemRepresentation_(word).codeUnits());
}

int refuseWord(ProgramNames const& names, std::string const& word) {
    NSString const what = word.starts_with('-') ? NSLocalizedString("There is no option “%@”", "An unknown option")
                                                : NSLocalizedString("“%@” is no option", "A word on the command line");
    NSString const shown = NSString::stringWithUTF8String_(visible(word));
    std::string const reason = NSString::stringWithFormat_(what, shown).UTF8String();
    static_cast<void>(writeTo(StandardStream::Errors, names.command + ": " + reason + "\n" + usageText(names)));
    return 2;
}

bool contains(std::span<std::string const> words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

} // namespace

std::optional<int> answerOptions(std::span<std::string const> words, ProgramNames const& names) {
    if (words.empty()) return std::nullopt;
    bool const wantsHelp = contains(words, "--help") || contains(words, "-h");
    bool const wantsVersion = contains(words, "--version");
    std::string const* const unknown = wantsHelp || wantsVersion ? nullptr : unknownWord(words);
    if (!wantsHelp && !wantsVersion && !unknown) return std::nullopt;
    prepareStandardStreams();
    if (unknown) return refuseWord(names, *unknown);
    return say(names, wantsHelp ? usageText(names) : names.command + " " + names.version + "\n");
}

} // namespace mac
