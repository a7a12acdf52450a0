#include "fuzz/Complaint.h"
#include "fuzz/DynamicTypeRoundTrip.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutDynamicType(mac::fuzz::textOf(data, size)));
    return 0;
}
