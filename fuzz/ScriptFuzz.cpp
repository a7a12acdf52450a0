#include "fuzz/ScriptTrial.h"
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const complaint =
        mac::fuzz::complaintAboutScript(std::string_view(reinterpret_cast<char const*>(data), size));
    if (complaint.empty()) return 0;
    std::fputs((complaint + "\n").c_str(), stderr);
    std::abort();
}
