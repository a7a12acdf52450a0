#include "platform/files/references/FileStatuses.h"
#include "platform/files/FileOperations.h"
#include <algorithm>
#include <array>
#include <cerrno>

namespace mac {

namespace {

struct StatusRow {
    int code;
    OSErr finding;
    OSErr usingCatalog;
    OSErr changing;

    OSErr statusFor(FileOperation operation) const {
        switch (operation) {
        case FileOperation::Finding:
            return finding;
        case FileOperation::UsingCatalog:
            return usingCatalog;
        default:
            return changing;
        }
    }
};

constexpr auto Statuses = std::to_array<StatusRow>({
    {ENOENT, fnfErr, fnfErr, fnfErr},
    {ENOTDIR, fnfErr, ioErr, errFSNotAFolder},
    {EACCES, afpAccessDenied, permErr, permErr},
    {EPERM, afpAccessDenied, permErr, permErr},
    {EROFS, fnfErr, wPrErr, wPrErr},
    {EMFILE, tmfoErr, ioErr, tmfoErr},
    {ENFILE, tmfoErr, ioErr, tmfoErr},
    {EIO, ioErr, ioErr, ioErr},
    {ENAMETOOLONG, errFSNameTooLong, ioErr, errFSNameTooLong},
    {ENODEV, nsvErr, ioErr, nsvErr},
    {ENXIO, nsvErr, ioErr, nsvErr},
    {ENOMEM, memFullErr, memFullErr, memFullErr},
    {ESTALE, errFSBadFSRef, ioErr, fnfErr},
    {EEXIST, fnfErr, ioErr, dupFNErr},
    {ENOTEMPTY, fnfErr, ioErr, fBsyErr},
    {EBUSY, fnfErr, ioErr, fBsyErr},
    {ENOSPC, fnfErr, ioErr, dskFulErr},
    {EDQUOT, fnfErr, ioErr, dskFulErr},
    {EINVAL, fnfErr, ioErr, badMovErr},
    {ItemIsLocked, fnfErr, fLckdErr, fLckdErr},
});

} // namespace

OSErr statusOf(SystemError const& error, FileOperation operation) {
    auto const* const row = std::ranges::find(Statuses, error.code, &StatusRow::code);
    if (row != Statuses.end()) return row->statusFor(operation);
    return operation == FileOperation::Finding ? fnfErr : ioErr;
}

} // namespace mac
