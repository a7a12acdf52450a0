#include "fuzz/Complaint.h"
#include "fuzz/ContentTypeTrial.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutContentType(mac::fuzz::bytesOf(data, size)));
    return 0;
}
