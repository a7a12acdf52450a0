#include "fuzz/BundleTrial.h"
#include "fuzz/PropertyListRoundTrip.h"
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutBundle(std::as_bytes(std::span(data, size))));
    return 0;
}
