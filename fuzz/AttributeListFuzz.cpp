#include "fuzz/AttributeListRoundTrip.h"
#include "fuzz/Complaint.h"
#include <fcntl.h>
#include <unistd.h>

namespace {

// In memory, in a folder of its own with what comes to lie beside it, and gone with the program.
class File {
public:
    File() {
        if (!::mkdtemp(m_folder.data())) std::abort();
        m_path = m_folder + "/file";
        int const file = ::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (file < 0) std::abort();
        ::close(file);
    }
    ~File() {
        ::unlink((m_folder + "/._file").c_str());
        ::unlink(m_path.c_str());
        ::rmdir(m_folder.c_str());
    }
    File(File const&) = delete;
    File& operator=(File const&) = delete;

    std::string const& path() const { return m_path; }

private:
    std::string m_folder{"/dev/shm/framekeeper-fuzz-XXXXXX"};
    std::string m_path{};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static File const file;
    mac::fuzz::requireNone(mac::fuzz::complaintAboutAttributeList(file.path(), mac::fuzz::bytesOf(data, size)));
    return 0;
}
