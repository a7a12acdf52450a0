#include "fuzz/Complaint.h"
#include "fuzz/TemporaryNameTrial.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutTemporaryName(mac::fuzz::textOf(data, size)));
    return 0;
}
