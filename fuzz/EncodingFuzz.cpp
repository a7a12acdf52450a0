#include "fuzz/Complaint.h"
#include "fuzz/EncodingRoundTrip.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutEncoding(mac::fuzz::textOf(data, size)));
    return 0;
}
