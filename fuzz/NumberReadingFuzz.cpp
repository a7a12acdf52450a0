#include "fuzz/Complaint.h"
#include "fuzz/NumberReading.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutNumbers(mac::fuzz::textOf(data, size)));
    return 0;
}
