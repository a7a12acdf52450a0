#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace mac::applescript {

// The files that scripts have opened for access, by number. They are closed when this goes.
class OpenFiles {
public:
    OpenFiles();
    ~OpenFiles();
    OpenFiles(OpenFiles const&) = delete;
    OpenFiles& operator=(OpenFiles const&) = delete;

    struct File {
        int descriptor{-1};
        std::u16string path{};
        bool maySave{false};
        std::int64_t place{0};
    };

    // Takes the descriptor over; answers its number.
    std::int32_t add(File file);
    // Null for a number or path that is not open.
    File* withNumber(std::int32_t number);
    File* withPath(std::u16string const& path);
    bool close(File const& file);
    void closeAll();

private:
    std::map<std::int32_t, File> m_files;
    std::int32_t m_next{1};
};

} // namespace mac::applescript
