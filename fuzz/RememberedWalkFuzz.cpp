#include "fuzz/Complaint.h"
#include "fuzz/RememberedWalkTrial.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutRememberedWalk(mac::fuzz::bytesOf(data, size)));
    return 0;
}
