#include "tests/support/Refusals.h"
#include <array>
#include <cerrno>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace mac::test {

void refuseCallOnThisThread(long call, int errorNumber) {
    std::array<sock_filter, 4> program{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(errorNumber)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    sock_fprog const filter{program.size(), program.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
        throw std::system_error(errno, std::generic_category(), "no call can be refused");
}

void withRefusedCall(long call, int errorNumber, std::function<void()> const& work) {
    std::thread([&] {
        refuseCallOnThisThread(call, errorNumber);
        work();
    }).join();
}

} // namespace mac::test
