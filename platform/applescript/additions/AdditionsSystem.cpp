#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/language/StackRoom.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/files/Trash.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/NSBundle.h"
#include "platform/system/Users.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mac::applescript::additions {

namespace {

// How long a waiting script takes at most to notice that it is to stop.
constexpr std::chrono::milliseconds LongestWait{50};

std::u16string environmentValue(char const* name) {
    char const* const value = std::getenv(name);
    return value ? unitsFromFileSystemBytes(value) : std::u16string();
}

struct FolderRow {
    Code code;
    // The variable of the desktop's folder, where it has one, and the folder in the home; then what lies within.
    char const* variable;
    std::u16string_view inHome;
    std::u16string_view within{};
};

constexpr auto Folders = std::to_array<FolderRow>({
    {codeOf("cusr"), "", u""},
    {codeOf("desk"), "XDG_DESKTOP_DIR", u"Desktop"},
    {codeOf("docs"), "XDG_DOCUMENTS_DIR", u"Documents"},
    {codeOf("down"), "XDG_DOWNLOAD_DIR", u"Downloads"},
    {codeOf("mdoc"), "XDG_VIDEOS_DIR", u"Videos"},
    {codeOf("%doc"), "XDG_MUSIC_DIR", u"Music"},
    {codeOf("pdoc"), "XDG_PICTURES_DIR", u"Pictures"},
    {codeOf("pubb"), "XDG_PUBLICSHARE_DIR", u"Public"},
    {codeOf("font"), "XDG_DATA_HOME", u".local/share", u"/fonts"},
    {codeOf("asup"), "XDG_DATA_HOME", u".local/share"},
    {codeOf("pref"), "XDG_CONFIG_HOME", u".config"},
    {codeOf("dlib"), "XDG_DATA_HOME", u".local/share"},
});

// Its bundle, where it lies in one.
std::u16string pathOfThisProgram() {
    NSBundle const bundle = NSBundle::mainBundle();
    bool const isBundle = bundle.bundlePath().pathExtension().isEqualToString_("app");
    NSString const path = isBundle ? bundle.bundlePath() : bundle.executablePath();
    return std::u16string(path.codeUnits());
}

// With the folders around it, as far as they may be made.
void makeFolder(std::string const& path) {
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        ::mkdir(path.substr(0, slash).c_str(), S_IRWXU);
    ::mkdir(path.c_str(), S_IRWXU);
}

std::u16string fixedFolder(Code code) {
    switch (code) {
    case codeOf("boot"):
        return u"/";
    case codeOf("temp"): {
        std::u16string const folder = environmentValue("TMPDIR");
        return folder.empty() ? std::u16string(u"/tmp") : folder;
    }
    case codeOf("usrs"):
        return u"/home";
    case codeOf("me  "):
    case codeOf("cura"):
        return pathOfThisProgram();
    case codeOf("apps"):
    case codeOf("uti$"):
        return u"/usr/share/applications";
    default:
        return {};
    }
}

// Linux: the desktop's own folders, by their variables or their usual names. Empty for one that there is not.
std::u16string folderOf(Code code) {
    std::u16string const fixed = fixedFolder(code);
    if (!fixed.empty()) return fixed;
    auto const* const row = std::ranges::find(Folders, code, &FolderRow::code);
    if (row == Folders.end()) return {};
    if (*row->variable != '\0') {
        std::optional<std::string> const set = desktopFolder(row->variable);
        if (set) return unitsFromFileSystemBytes(*set) + std::u16string(row->within);
    }
    std::u16string const home(NSHomeDirectory().codeUnits());
    return row->inHome.empty() ? home : home + u"/" + std::u16string(row->inHome) + std::u16string(row->within);
}

// The folder of the user's own trash; if it is missing it is made with all that a trash consists of, or raises.
std::u16string trashFolder(bool mayMake, Value const& object) {
    Result<std::string, TrashProblem> const path =
        trashFolderForPath(ownHomeFolder(), mayMake ? MissingTrash::IsMade : MissingTrash::IsMissing);
    if (path.hasValue()) return unitsFromFileSystemBytes(path.value());
    throw mayMake ? trashError(path.problem(), object) : fileNotFound(object);
}

} // namespace

Value currentDate(Evaluator& /*evaluator*/, CommandArguments const& /*arguments*/) {
    return Value::date(applescript::currentDate());
}

Value timeToGMT(Evaluator& /*evaluator*/, CommandArguments const& /*arguments*/) {
    return Value::number(static_cast<double>(secondsToGMT()));
}

Value delay(Evaluator& evaluator, CommandArguments const& arguments) {
    double const seconds = arguments.direct.isNothing() ? 0 : requireReal(arguments.direct, evaluator.context());
    constexpr double longest = 1e8;
    auto const end =
        std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                               std::chrono::duration<double>(std::clamp(seconds, 0.0, longest)));
    while (true) {
        evaluator.stopIfAsked();
        auto const left = end - std::chrono::steady_clock::now();
        if (left <= std::chrono::steady_clock::duration::zero()) return {};
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(left, LongestWait));
    }
}

// Source text, or a script object. Its errors are this script's errors; the place is that of the command.
Value runScript(Evaluator& evaluator, CommandArguments const& arguments) {
    requireStackRoom();
    Value const script = resolved(arguments.direct, evaluator.context());
    Value const* const given = arguments.find(codeOf("plst"));
    std::vector<Value> const parameters =
        given ? requireType(*given, codeOf("list"), evaluator.context()).items() : std::vector<Value>();
    if (script.is(ValueKind::Script)) return evaluator.runScript(script.script(), parameters);
    std::u16string const source = requireText(script, evaluator.context());
    try {
        Evaluator inner(evaluator.state(), evaluator.options());
        Value const loaded = inner.load(ScriptParser(source, terminologySource()).parse());
        return inner.runScript(loaded.script(), parameters);
    } catch (ScriptError& error) {
        error.range.reset();
        error.isSyntax = false;
        throw;
    }
}

// A variable of the environment; without a name, the names of all.
Value systemAttribute(Evaluator& evaluator, CommandArguments const& arguments) {
    if (!arguments.direct.isNothing()) {
        std::u16string const name = requireText(arguments.direct, evaluator.context());
        return Value::text(environmentValue(utf8FromUnits(name).c_str()));
    }
    std::vector<Value> names;
    for (char** entry = environ; entry && *entry; ++entry) {
        std::string_view const assignment = *entry;
        names.push_back(Value::text(unitsFromFileSystemBytes(assignment.substr(0, assignment.find('=')))));
    }
    return Value::list(std::move(names));
}

Value systemInfo(Evaluator& /*evaluator*/, CommandArguments const& /*arguments*/) {
    std::array<char, 256> host{};
    if (::gethostname(host.data(), host.size() - 1) != 0) host.front() = '\0';
    std::u16string const name = unitsFromFileSystemBytes(host.data());
    auto const key = [](Code code) { return termSymbol(code, nameOfCode(code)); };
    return Value::record({
        {key(codeOf("siav")), Value::text(u"2.8")},
        {key(codeOf("sisn")), Value::text(unitsFromFileSystemBytes(nameOfUser(::getuid()).value_or("")))},
        {key(codeOf("siid")), Value::number(static_cast<double>(::getuid()))},
        {key(codeOf("sicn")), Value::text(name)},
        {key(codeOf("sihd")), makeObject<FileObject>(ValueKind::File, FileObject::Kind::PosixFile,
                                                     std::u16string(NSHomeDirectory().codeUnits()))},
    });
}

Value pathTo(Evaluator& evaluator, CommandArguments const& arguments) {
    if (!arguments.direct.is(ValueKind::Constant)) throw cannotMake(arguments.direct, codeOf("enum"));
    Value const* const makesFolder = arguments.find(codeOf("crfl"));
    bool const mayMake = !makesFolder || requireBoolean(*makesFolder, evaluator.context());
    Code const code = arguments.direct.asCode();
    std::u16string const path = code == codeOf("trsh") ? trashFolder(mayMake, arguments.direct) : folderOf(code);
    if (path.empty()) throw cannotGet(arguments.direct);
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(path);
    if (mayMake && bytes && !existsAt(path)) makeFolder(*bytes);
    Value const folder = makeObject<FileObject>(ValueKind::File, FileObject::Kind::Alias, path);
    Value const* const type = arguments.find(codeOf("rtyp"));
    bool const isText = type && type->is(ValueKind::Type) && type->asCode() != codeOf("alis");
    if (!existsAt(path)) throw fileNotFound(folder);
    return isText ? requireType(folder, type->asCode(), evaluator.context()) : folder;
}

} // namespace mac::applescript::additions
