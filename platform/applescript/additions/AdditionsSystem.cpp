#include "platform/applescript/additions/AdditionKeys.h"
#include "platform/applescript/additions/AdditionParameters.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/applications/Program.h"
#include "platform/applescript/applications/StandardFolders.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/desktop/session/FrontProcess.h"
#include "platform/files/trash/Trash.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/processes/SerialNumbers.h"
#include "platform/system/Users.h"
#include "platform/system/XDGFolders.h"
#include "platform/system/processes/ProcessList.h"
#include <algorithm>
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

FolderDomain domainIn(CommandArguments const& arguments) {
    Value const* const given = arguments.find(parameters::From);
    if (!given) return FolderDomain::User;
    if (!given->is(ValueKind::Constant)) throw cannotMake(*given, codes::ConstantType);
    switch (given->asCode()) {
    case constants::UserDomain:
        return FolderDomain::User;
    case constants::LocalDomain:
        return FolderDomain::Local;
    case constants::SystemDomain:
        return FolderDomain::System;
    default:
        // Linux: no folders come from a network domain.
        throw plainError(errors::FolderNotFound);
    }
}

std::u16string pathOfFrontApplication() {
    std::optional<std::int32_t> const front = frontProcessID();
    std::optional<RunningProcess> const process = front ? runningProcess(*front) : std::nullopt;
    if (!process) return {};
    ProcessSerialNumber const number = serialNumberOf(process->identity);
    NSDictionary const information =
        ProcessInformationCopyDictionary(&number, kProcessDictionaryIncludeAllInformationMask);
    NSString const bundle = as<NSString>(information.objectForKey_(NSString::stringWithUTF8String_(kIOBundlePathKey)));
    return bundle == nil ? unitsFromFileSystemBytes(process->executable) : std::u16string(bundle.codeUnits());
}

// Empty for an application that is nowhere.
std::u16string pathOfApplication(ApplicationObject const& application) {
    std::optional<std::string> const path = application.byIdentifier ? pathOfApplicationIdentified(application.name)
                                                                     : pathOfApplicationNamed(application.name);
    return path ? unitsFromFileSystemBytes(*path) : std::u16string();
}

// Empty for what is no program.
std::u16string pathOfProgram(Code code) {
    switch (code) {
    case constants::Me:
    case constants::CurrentApplication:
        return pathOfThisProgram();
    case constants::FrontmostApplication:
        return pathOfFrontApplication();
    default:
        return {};
    }
}

// Empty if there is no such folder.
std::u16string folderOf(Code code, FolderDomain domain) {
    std::optional<std::string> const path = standardFolder(code, domain);
    return path ? unitsFromFileSystemBytes(*path) : std::u16string();
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
    Value const* const given = arguments.find(parameters::WithParameters);
    Value const list = given ? requireType(*given, codes::ListType, evaluator.context()) : Value::list();
    std::vector<Value> const parameters(list.items().begin(), list.items().end());
    if (script.is(ValueKind::Script)) return evaluator.runScript(script.script(), parameters);
    std::u16string const source = requireText(script, evaluator.context());
    try {
        Evaluator inner(evaluator.state(), evaluator.options());
        Value const loaded = inner.load(parsedWithinScript(source));
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

// `path to application "X"` and `path to current application` mean a program, `path to fonts from system domain` a
// folder.
Value pathTo(Evaluator& evaluator, CommandArguments const& arguments) {
    Value const& named = arguments.direct;
    bool const isApplication = named.is(ValueKind::Application);
    bool const isCurrent = named.is(ValueKind::CurrentApplication);
    if (!isApplication && !isCurrent && !named.is(ValueKind::Constant)) throw cannotMake(named, codes::ConstantType);
    FolderDomain const domain = domainIn(arguments);
    Value const* const makesFolder = arguments.find(parameters::FolderCreation);
    std::u16string path = isApplication ? pathOfApplication(named.application())
                          : isCurrent   ? pathOfThisProgram()
                                        : pathOfProgram(named.asCode());
    // No folder is made in place of a deleted program.
    bool const isFolder = path.empty() && !isApplication && !isCurrent;
    bool const isOfUser = isFolder && domain == FolderDomain::User;
    bool const mayMake = isOfUser && (!makesFolder || requireBoolean(*makesFolder, evaluator.context()));
    if (isFolder)
        path = named.asCode() == folders::Trash ? trashFolder(mayMake, named) : folderOf(named.asCode(), domain);
    if (path.empty()) throw cannotGet(named);
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(path);
    if (mayMake && bytes && !existsAt(path)) makeFolder(*bytes);
    Value const folder = makeObject<FileObject>(ValueKind::File, FileObject::Kind::Alias, path);
    Value const* const type = arguments.find(codes::RequestedTypeParameter);
    bool const isText = type && type->is(ValueKind::Type) && type->asCode() != codes::AliasType;
    if (!existsAt(path)) throw fileNotFound(folder);
    return isText ? requireType(folder, type->asCode(), evaluator.context()) : folder;
}

} // namespace mac::applescript::additions
