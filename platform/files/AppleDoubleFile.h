#pragma once

#include "platform/files/AppleDouble.h"
#include "platform/files/OpenItem.h"

namespace mac {

// The file "._NAME" beside an item, as it was when it was read. For implementations; one thread at a time.
class AppleDoubleFile {
public:
    // The item outlives this object.
    explicit AppleDoubleFile(OpenItem const& item);

    // What it holds; changed here, it is not yet on the disk. Empty where there is no such file.
    AppleDouble contents{};

    // Whether something of that name is there that cannot be read, or that is no AppleDouble file: then it is somebody
    // else's and must not be written. errorNumber says why.
    bool isUsable() const { return m_error == 0; }
    int errorNumber() const { return m_error; }

    // Puts the contents on the disk, old whole or new whole, or removes the file when they are empty. False when that
    // fails; errno says why.
    bool save() const;

    // Of an item of that name, in the same folder.
    static std::string nameFor(std::string_view itemName);

private:
    void read();

    OpenItem const& m_item;
    std::string m_name;
    bool m_isThere{false};
    int m_error{0};
};

} // namespace mac
