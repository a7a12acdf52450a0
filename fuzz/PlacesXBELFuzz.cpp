#include "fuzz/Complaint.h"
#include "fuzz/PlacesRoundTrip.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::fuzz::requireNone(mac::fuzz::complaintAboutPlaces(mac::XBELFormat, mac::fuzz::textOf(data, size)));
    return 0;
}
