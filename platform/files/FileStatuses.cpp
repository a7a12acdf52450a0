#include "platform/files/FileStatuses.h"
#include "platform/files/CatalogInformation.h"
#include <algorithm>
#include <array>
#include <cerrno>

namespace mac {

namespace {

struct StatusRow {
    int code;
    OSErr finding;
    OSErr usingCatalog;
};

constexpr std::array<StatusRow, 12> Statuses{{
    {ENOENT, fnfErr, fnfErr},
    {EACCES, afpAccessDenied, permErr},
    {EPERM, afpAccessDenied, permErr},
    {EROFS, fnfErr, wPrErr},
    {EMFILE, tmfoErr, ioErr},
    {ENFILE, tmfoErr, ioErr},
    {EIO, ioErr, ioErr},
    {ENAMETOOLONG, errFSNameTooLong, ioErr},
    {ENODEV, nsvErr, ioErr},
    {ENXIO, nsvErr, ioErr},
    {ENOMEM, memFullErr, memFullErr},
    {ESTALE, errFSBadFSRef, ioErr},
}};

} // namespace

OSErr statusOf(SystemError const& error, FileOperation operation) {
    bool const isFinding = operation == FileOperation::Finding;
    auto const* const row = std::ranges::find(Statuses, error.code, &StatusRow::code);
    if (row == Statuses.end()) return isFinding ? fnfErr : ioErr;
    return isFinding ? row->finding : row->usingCatalog;
}

} // namespace mac
