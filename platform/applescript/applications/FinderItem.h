#pragma once

#include "platform/applescript/applications/ApplicationModel.h"
#include "platform/applescript/language/Codes.h"
#include "platform/system/items/ItemIdentity.h"

namespace mac {
struct DiskItem;
struct OpenItem;
} // namespace mac

namespace mac::applescript {

// An item's status on the disk.
struct ItemFacts {
    ItemIdentity identity{};
    std::uint32_t mode{0};
    std::uint32_t owner{0};
    std::uint32_t group{0};
    std::uint64_t size{0};
    std::uint64_t physicalSize{0};
    // Seconds since 1970.
    std::int64_t created{0};
    std::int64_t modified{0};
    // A volume is mounted there.
    bool isMountPoint{false};
    // Also true where the system (before Linux 5.8) does not tell.
    bool mayBeMountPoint{false};
};

// An item on a disk as the Finder shows it: a file, a folder, a disk. It holds the item's path and identity, and what
// is done to it is done only while they still belong together.
class FinderItem : public ModelObject {
public:
    FinderItem(std::string path, ItemFacts const& facts, Code type, Value folder)
        : m_path(std::move(path)), m_facts(facts), m_type(type), m_folder(std::move(folder)) {}

    // nullptr if no item is at the path, which may lead through symbolic links.
    static std::shared_ptr<FinderItem> atPath(std::string const& path);
    // The item of a name in the folder of that path; `folder` is the folder's specifier.
    static std::shared_ptr<FinderItem> inFolder(std::string const& folderPath, std::string const& name,
                                                Value const& folder);

    ClassRow const& row() const override;
    Value specifier() const override;
    ModelPointer elementNamed(Code elementType, std::u16string const& name) override;
    std::optional<Value> coerced(Code wanted) override;

    std::string const& path() const { return m_path; }
    ItemFacts const& facts() const { return m_facts; }
    bool isContainer() const { return isOfType(codes::Container); }
    // Whether it is a folder of the file system, such as a package.
    bool isFolder() const;
    // Opens this very item; throws if it is no longer there.
    OpenItem open() const;

    // The specifier of the folder that the item lies in.
    Value folder() const;
    // The items of the class in the folder, in the order of a list by name; nullopt if this is no folder.
    std::optional<std::vector<ModelPointer>> items(Code elementType);
    bool rename(Value const& value, TextContext const& context);

private:
    std::string m_path;
    ItemFacts m_facts;
    Code m_type;
    // The folder's specifier; nothing if it is to be made from the path.
    Value m_folder;
};

// FinderProperties.cpp and FinderKinds.cpp: the classes of items and what each class of them has.
extern ClassRow const FinderItemRow;
std::span<ClassRow const* const> finderItemKinds();
ClassRow const& finderClassOf(Code type);

// FinderMetadata.cpp: the metadata kept beside an item's contents. Reading answers an empty value if the item has none
// or it cannot be read; setting throws if it cannot be written.
std::u16string commentOf(OpenItem const& item);
void setComment(OpenItem const& item, std::u16string const& comment, Value const& object);
int labelIndexOf(OpenItem const& item);
void setLabelIndex(OpenItem const& item, int index, Value const& object);
std::optional<Value> fileTypeOf(OpenItem const& item, bool isCreator);
// The item's lock (ItemLock.h). A lock that cannot be set is a script error about the object.
bool isLocked(OpenItem const& item);
void setLocked(OpenItem const& item, bool isLocked, Value const& object);
// The permissions of owner (0), group (1) and others (2) as one of the Finder's constants, and back.
Value privilegesOf(std::uint32_t mode, int whose);
bool setPrivileges(OpenItem const& item, int whose, Value const& value);
std::u16string kindOf(Code type, DiskItem const& item);
std::u16string urlOf(std::string const& path, bool isFolder);

} // namespace mac::applescript
