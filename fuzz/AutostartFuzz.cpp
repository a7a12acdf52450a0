#include "fuzz/AutostartTrial.h"
#include "fuzz/Complaint.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutAutostart(mac::fuzz::textOf(data, size)));
    return 0;
}
