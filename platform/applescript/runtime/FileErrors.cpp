#include "platform/applescript/runtime/FileErrors.h"
#include "platform/foundation/text/Encodings.h"
#include <algorithm>
#include <array>
#include <cerrno>

namespace mac::applescript {

namespace {

constexpr std::int32_t WriteProtected = -44;
constexpr std::int32_t BadName = -37;
constexpr std::int32_t FileLocked = -45;
constexpr std::int32_t Busy = -47;
constexpr std::int32_t DuplicateName = -48;
constexpr std::int32_t NoPermission = -5000;
constexpr std::int32_t HandlerFailed = -10000;
constexpr std::int32_t NameTaken = -15267;
// The number depends on the place where the error occurs.
constexpr std::int32_t Open = 0;

struct NumberRow {
    int code;
    std::int32_t readOrWrite;
    std::int32_t useItem;
    std::int32_t transfer;

    std::int32_t numberFor(FileCommand command) const {
        if (command == FileCommand::ReadOrWrite) return readOrWrite;
        return command == FileCommand::UseItem ? useItem : transfer;
    }
};

constexpr auto Numbers = std::to_array<NumberRow>({
    {ENOENT, Open, errors::CannotGet, errors::CannotGet},
    {ESTALE, Open, errors::CannotGet, errors::CannotGet},
    {ENOTDIR, Open, errors::CannotGet, errors::CannotGet},
    {EACCES, errors::FilePermission, NoPermission, NoPermission},
    {EPERM, errors::FilePermission, NoPermission, NoPermission},
    {EISDIR, errors::FilePermission, errors::InputOutput, errors::InputOutput},
    {EROFS, errors::FilePermission, WriteProtected, WriteProtected},
    {ENOSPC, errors::DiskFull, errors::DiskFull, errors::DiskFull},
    {EDQUOT, errors::DiskFull, errors::DiskFull, errors::DiskFull},
    {EIO, errors::InputOutput, errors::InputOutput, errors::InputOutput},
    {ENAMETOOLONG, Open, BadName, BadName},
    {EINVAL, Open, BadName, errors::CannotPutThere},
    {EBUSY, Open, Busy, Busy},
    {EEXIST, Open, DuplicateName, NameTaken},
    {ItemIsLocked, Open, FileLocked, FileLocked},
    {ECANCELED, Open, errors::InputOutput, errors::UserCanceled},
});

struct MessageRow {
    std::int32_t number;
    std::u16string_view message;
};

// The Finder's messages that name no object.
constexpr auto Messages = std::to_array<MessageRow>({
    {NoPermission, u"The operation can’t be completed because you don’t have the necessary permission."},
    {WriteProtected, u"The disk is write protected."},
    {errors::DiskFull, u"The disk is full."},
    {BadName, u"Bad name for file."},
    {FileLocked, u"The file is locked."},
    {Busy, u"The file is busy."},
    {DuplicateName, u"An item with the same name already exists in this location."},
    {NameTaken, u"An item with the same name already exists in this location."},
    {errors::InputOutput, u"The disk could not be read or written."},
});

ScriptError errorOfNumber(std::int32_t number, Value const& object) {
    if (number == errors::CannotGet) return cannotGet(object);
    auto const* const row = std::ranges::find(Messages, number, &MessageRow::number);
    if (row == Messages.end()) return plainError(number);
    return {.number = number, .message = std::u16string(row->message), .from = object};
}

} // namespace

std::optional<std::int32_t> fileErrorNumber(SystemError const& error, FileCommand command) {
    auto const* const row = std::ranges::find(Numbers, error.code, &NumberRow::code);
    std::int32_t const number = row == Numbers.end() ? Open : row->numberFor(command);
    return number == Open ? std::nullopt : std::optional(number);
}

ScriptError fileError(SystemError const& error, Value const& object, FileCommand command) {
    return errorOfNumber(fileErrorNumber(error, command).value_or(errors::InputOutput), object);
}

ScriptError badFileName(Value const& object) { return errorOfNumber(BadName, object); }

ScriptError originalStays(SystemError const& error, Value const& object) {
    // ESTALE: the original has changed while it was copied.
    ScriptError script = error.is(ESTALE) ? errorOfNumber(Busy, object) : fileError(error, object);
    script.message = u"The copy is complete, but the original could not be removed. " + script.message;
    return script;
}

ScriptError trashError(TrashProblem const& problem, Value const& object) {
    switch (problem.kind) {
    case TrashProblem::NotThere:
    case TrashProblem::Changed:
        return cannotGet(object);
    case TrashProblem::NotAllowed:
        return errorOfNumber(NoPermission, object);
    case TrashProblem::Locked:
        return errorOfNumber(FileLocked, object);
    case TrashProblem::ReadOnly:
        return errorOfNumber(WriteProtected, object);
    case TrashProblem::Full:
        return errorOfNumber(errors::DiskFull, object);
    case TrashProblem::NameTaken:
        return errorOfNumber(DuplicateName, object);
    case TrashProblem::InTrash:
    case TrashProblem::Immovable:
        return {.number = errors::NotOfThisClass, .message = messageOfNumber(errors::NotOfThisClass), .from = object};
    default:
        return {.number = HandlerFailed, .message = unitsFromFileSystemBytes(problem.text()), .from = object};
    }
}

ScriptError transferError(ReplacingProblem const& problem, Value const& object, FileCommand command) {
    if (problem.trash) return trashError(*problem.trash, object);
    SystemError const& error = problem.transfer.error;
    if (problem.transfer.kind == TransferProblem::Kind::OriginalStays) return originalStays(error, object);
    return fileError(error, object, command);
}

} // namespace mac::applescript
