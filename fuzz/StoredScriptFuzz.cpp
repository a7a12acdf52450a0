#include "fuzz/Complaint.h"
#include "fuzz/StoredScriptTrial.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutStoredScript(mac::fuzz::bytesOf(data, size)));
    return 0;
}
