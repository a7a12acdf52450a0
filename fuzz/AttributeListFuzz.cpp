#include "fuzz/AttributeListRoundTrip.h"
#include "fuzz/PropertyListRoundTrip.h"
#include <cstdint>
#include <cstdlib>
#include <unistd.h>

namespace {

// In memory, and gone with the program.
class File {
public:
    File() {
        int const file = ::mkstemp(m_path.data());
        if (file < 0) std::abort();
        ::close(file);
    }
    ~File() { ::unlink(m_path.c_str()); }
    File(File const&) = delete;
    File& operator=(File const&) = delete;

    std::string const& path() const { return m_path; }

private:
    std::string m_path{"/dev/shm/framekeeper-fuzz-XXXXXX"};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static File const file;
    mac::fuzz::requireNone(mac::fuzz::complaintAboutAttributeList(file.path(), std::as_bytes(std::span(data, size))));
    return 0;
}
