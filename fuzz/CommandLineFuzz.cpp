#include "fuzz/CommandLineTrial.h"
#include "fuzz/Complaint.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutCommandLine(mac::fuzz::textOf(data, size)));
    return 0;
}
