#include "platform/applescript/additions/AdditionKeys.h"
#include "platform/applescript/additions/AdditionParameters.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/additions/StoredForms.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/FilePieces.h"
#include "platform/system/FileWriting.h"
#include <cerrno>

// Scripts in files.

namespace mac::applescript::additions {

namespace {

constexpr Code IsReplaced = constants::Yes;
constexpr Code IsKept = constants::No;
constexpr Code PersonIsAsked = constants::Ask;

// A file of scripts as the script names it.
struct ScriptFile {
    // For errors.
    Value object{};
    std::u16string path{};
    std::string bytes{};
};

ScriptFile scriptFileNamed(Value const& designator, TextContext const& context) {
    Value const named = resolved(designator, context);
    std::u16string const path = requirePath(named, context);
    Value const object = asFile(named, path);
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(path);
    if (!bytes) throw fileNotFound(object);
    return {.object = object, .path = path, .bytes = *bytes};
}

ScriptError errorAbout(SystemError const& error, ScriptFile const& file) {
    if (std::optional<std::int32_t> const number = fileErrorNumber(error, FileCommand::ReadOrWrite))
        return plainError(*number);
    // Pipes and devices hold no scripts.
    if (error.is(EINVAL)) return plainError(errors::FilePermission);
    bool const isMissing = error.is(ENOENT) || error.is(ENOTDIR) || error.is(ENAMETOOLONG) || error.is(ELOOP);
    return isMissing ? fileNotFound(file.object) : fileError(error, file.object);
}

// The bytes of the file, no more than the largest script has.
std::string bytesOfScript(ScriptFile const& file) {
    // The line before a stored script.
    constexpr std::size_t most = MostScriptBytes + 100;
    std::string bytes;
    Result<void> const read = readFileInPieces(file.bytes, [&](std::span<std::byte const> piece) {
        if (piece.size() > most - bytes.size()) throw plainError(errors::ValueTooLarge);
        bytes.append(reinterpret_cast<char const*>(piece.data()), piece.size());
    });
    if (!read.isDone()) throw errorAbout(read.problem(), file);
    return bytes;
}

std::u16string sourceIn(std::string bytes) {
    if (std::optional<std::u16string> stored = sourceInStoredScript(bytes)) return *std::move(stored);
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark)) bytes.erase(0, byteOrderMark.size());
    return textOfBytes(bytes);
}

std::u16string sourceOfScript(ScriptObject const& script) {
    SourceRange const body = script.definition().body;
    return script.tree()->source.substr(body.start, body.end - body.start);
}

// Throws -128 unless the person at the screen agrees.
void askToReplace(std::u16string const& path) {
    DialogRequest request;
    request.text = u"“" + path.substr(path.rfind(u'/') + 1) + u"” already exists. Do you want to replace it?";
    request.icon = DialogRequest::Icon::Caution;
    request.buttons = {u"Cancel", u"Replace"};
    request.cancelButton = 0;
    request.defaultButton = 1;
    if (requireInterface().runDialog(request).button != request.defaultButton) throw plainError(errors::UserCanceled);
}

FileReplacement replacementOf(ScriptFile const& file, Value const* answer) {
    Code const chosen = answer && answer->is(ValueKind::Constant) ? answer->asCode() : PersonIsAsked;
    if (chosen == IsReplaced) return {};
    // What is there now is replaced at most, and only once the person has agreed.
    FileReplacement replacement{.hasToBe = true};
    if (chosen == IsKept) return replacement;
    Result<FileStatus> const found = fileStatusAtPath(file.bytes);
    if (!found.hasValue()) return replacement;
    if (found.value().kind == FileStatus::Kind::File) askToReplace(file.path);
    replacement.state = found.value();
    return replacement;
}

} // namespace

// A stored script, or a file of source text, compiled. Its properties have their first values, and nothing of it has
// run.
Value loadScript(Evaluator& evaluator, CommandArguments const& arguments) {
    ScriptFile const file = scriptFileNamed(arguments.direct, evaluator.context());
    std::u16string const source = sourceIn(bytesOfScript(file));
    Evaluator inner(evaluator.state(), evaluator.options());
    try {
        return inner.load(parsedWithinScript(source));
    } catch (ScriptError& error) {
        error.range.reset();
        throw;
    }
}

// Linux: the file holds the script's text, so that its properties begin with their first values when it is loaded. A
// script that cannot be understood without what stands around it is not stored.
Value storeScript(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    Value const given = arguments.direct.isNothing() ? evaluator.currentScript() : resolved(arguments.direct, context);
    if (!given.is(ValueKind::Script)) throw cannotMake(given, codeOf("scpt"));
    // Only a person could choose a file.
    Value const* const in = arguments.find(parameters::In);
    if (!in) throw plainError(errors::NoUserInteraction);
    ScriptFile const file = scriptFileNamed(*in, context);
    std::u16string const source = sourceOfScript(given.script());
    std::string const bytes = storedScript(source);
    parsedWithinScript(source);
    FileReplacement const replacement = replacementOf(file, arguments.find(parameters::Replacing));
    Result<void> const written = replaceFileAtPath(file.bytes, std::as_bytes(std::span(bytes)), replacement);
    if (!written.isDone()) throw errorAbout(written.problem(), file);
    return {};
}

} // namespace mac::applescript::additions
