#pragma once

#include "platform/system/walker/FolderLog.h"
#include <cstring>

namespace mac {

// One entry of a FolderLog as it lies in its bytes: a head, the name, and for a folder its stamp, for a volume's top
// folder the volume's identity as well.
struct FolderNote {
    // The first three have the numbers of RememberedFolders::Kind.
    enum class Kind : std::uint8_t { Name, Folder, Package, Volume, Failure };

    struct Head {
        FolderLog::Note parent = FolderLog::NoNote; // for Failure: the folder itself
        std::uint16_t nameBytes = 0;
        Kind kind = Kind::Name;
        std::uint8_t isZero = 0;
    };
    static constexpr std::size_t MostNameBytes = 0xFF;
    static constexpr std::size_t MostPathBytes = 0xFFFF;

    Head head;
    std::string_view name;
    FolderStamp stamp;
    VolumeIdentity volume;

    bool hasEntry() const { return head.kind == Kind::Folder || head.kind == Kind::Volume; }
    bool isChild() const { return head.kind <= Kind::Package; }

    // Reads the note at the position and moves that behind it. REQUIRES: a note begins there.
    static FolderNote read(std::string const& log, std::size_t& position) {
        FolderNote note;
        take(log, position, note.head);
        note.name = std::string_view(log).substr(position, note.head.nameBytes);
        position += note.head.nameBytes;
        if (note.hasEntry()) take(log, position, note.stamp);
        if (note.head.kind == Kind::Volume) take(log, position, note.volume);
        return note;
    }

private:
    template <class T>
    static void take(std::string const& log, std::size_t& position, T& value) {
        std::memcpy(&value, log.data() + position, sizeof value);
        position += sizeof value;
    }
};

} // namespace mac
