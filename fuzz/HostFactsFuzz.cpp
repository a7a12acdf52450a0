#include "fuzz/Complaint.h"
#include "fuzz/HostFactsTrial.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(framekeeper::test::complaintAboutHostFacts(mac::fuzz::textOf(data, size)));
    return 0;
}
