#include "fuzz/ScriptDescriptorTrial.h"
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const complaint = mac::fuzz::complaintAboutScriptDescriptor(std::as_bytes(std::span(data, size)));
    if (complaint.empty()) return 0;
    std::fprintf(stderr, "%s\n", complaint.c_str());
    std::abort();
}
