#include "tests/support/FileLocks.h"
#include "tests/support/TemporaryFolder.h"
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace mac::test {

bool canLockFilesIn(TemporaryFolder const& folder) {
    std::string const trial = folder.makeFile("trial of locks", "");
    bool const canLock = setLocked(trial, true) && setLocked(trial, false);
    ::unlink(trial.c_str());
    return canLock;
}

bool setLocked(std::string const& file, bool isLocked) {
    int const opened = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    int flags = 0;
    bool isDone = opened >= 0 && ::ioctl(opened, FS_IOC_GETFLAGS, &flags) == 0;
    flags = isLocked ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    isDone = isDone && ::ioctl(opened, FS_IOC_SETFLAGS, &flags) == 0;
    ::close(opened);
    return isDone;
}

} // namespace mac::test
