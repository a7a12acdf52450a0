#include "platform/foundation/text/SystemErrorTexts.h"
#include "platform/foundation/text/Localization.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include <cerrno>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(SystemErrorTexts, AreThoseOfTheSystemWithoutACatalogue) {
    for (int const code : {EACCES, ENOTDIR, EDOTDOT, ItemIsLocked, 4000})
        EXPECT_EQ(text(localizedSystemError(code)), textOfSystemError(code));
    SystemError const error{.code = EACCES, .operation = "rename", .item = "notes.txt"};
    EXPECT_EQ(text(localizedSystemError(error)), error.text());
    EXPECT_EQ(text(localizedSystemError({.code = ENOSPC, .operation = "write"})), "write: No space left on device");
}

// A key that differs from the system's text by a letter would stay in English.
TEST(SystemErrorTexts, AreThoseOfTheCatalogueForWhatHappensToFiles) {
    EnvironmentVariable const preferred("LANGUAGE", "de");
    EnvironmentVariable const all("LC_ALL", "de_DE.UTF-8");
    ASSERT_EQ(loadLocalization(), "de");
    for (int const code :
         {ItemIsLocked, EPERM,   ENOENT,    EINTR,      EIO,       ENXIO,        E2BIG,     ENOEXEC,      EAGAIN,
          ENOMEM,       EACCES,  EBUSY,     EEXIST,     EXDEV,     ENODEV,       ENOTDIR,   EISDIR,       EINVAL,
          ENFILE,       EMFILE,  ETXTBSY,   EFBIG,      ENOSPC,    EROFS,        EMLINK,    ENAMETOOLONG, ENOTEMPTY,
          ELOOP,        ENODATA, ENOTCONN,  EOPNOTSUPP, ETIMEDOUT, ECONNREFUSED, EHOSTDOWN, EHOSTUNREACH, ENETUNREACH,
          ESTALE,       EUCLEAN, EREMOTEIO, EDQUOT,     ENOKEY})
        EXPECT_NE(text(localizedSystemError(code)), textOfSystemError(code));
    EXPECT_EQ(text(localizedSystemError(EACCES)), "Keine Berechtigung");
    EXPECT_EQ(text(localizedSystemError({.code = EACCES, .operation = "rename", .item = "notes.txt"})),
              "rename von „notes.txt“: Keine Berechtigung");
    EXPECT_EQ(textOfSystemError(EACCES), "Permission denied") << "what programs read stays as it is";
    loadLocalization("", {});
}

} // namespace
} // namespace mac::test
