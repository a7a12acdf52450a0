#include "fuzz/Complaint.h"
#include "fuzz/ScriptDescriptorTrial.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutScriptDescriptor(mac::fuzz::bytesOf(data, size)));
    return 0;
}
