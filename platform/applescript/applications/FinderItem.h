#pragma once

#include "platform/applescript/applications/ApplicationModel.h"
#include "platform/system/items/ItemIdentity.h"

namespace mac {
struct DiskItem;
struct OpenItem;
} // namespace mac

namespace mac::applescript {

// What the disk tells of an item.
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
    // What lies in it is another volume's.
    bool isMountPoint{false};
};

// One item on a disk as the Finder shows it: a file, a folder, a disk. It holds the item's path and identity, and what
// is done to it is done only while they still belong together.
class FinderItem : public ModelObject {
public:
    FinderItem(std::string path, ItemFacts const& facts, Code type, Value folder)
        : m_path(std::move(path)), m_facts(facts), m_type(type), m_folder(std::move(folder)) {}

    // Null where nothing is at the path, which may go through links.
    static std::shared_ptr<FinderItem> atPath(std::string const& path);
    // In the folder of that path; `folder` is its specifier.
    static std::shared_ptr<FinderItem> inFolder(std::string const& folderPath, std::string const& name,
                                                Value const& folder);

    Code type() const override { return m_type; }
    bool isOfType(Code sought) const override;
    Value specifier() const override;
    std::optional<Value> property(Code code) override;
    std::vector<Code> propertyCodes() const override;
    bool setProperty(Code code, Value const& value, TextContext const& context) override;
    std::optional<std::vector<ModelPointer>> elements(Code elementType) override;
    ModelPointer elementNamed(Code elementType, std::u16string const& name) override;
    std::optional<Value> coerced(Code wanted) override;

    std::string const& path() const { return m_path; }
    ItemFacts const& facts() const { return m_facts; }
    bool isContainer() const { return isOfType(codeOf("ctnr")); }
    // A folder to the disk, a package among them.
    bool isFolder() const;
    // The very item, open; throws -43 when it is not there any more.
    OpenItem open() const;

private:
    std::optional<Value> diskProperty(Code code) const;
    Value shownProperty(Code code) const;
    std::optional<Value> placeProperty(Code code);
    std::optional<Value> linkProperty(Code code) const;
    Value entireContents();
    Value wholeSize() const;
    void rename(Value const& value, TextContext const& context);

    std::string m_path;
    ItemFacts m_facts;
    Code m_type;
    // Nothing: to be found out from the path.
    Value m_folder;
};

// What errno says, as the Finder's error about the object.
ScriptError fileError(int errorNumber, Value const& object);
// Of an item that was copied instead of moved and cannot be removed.
ScriptError originalStays(int errorNumber, Value const& object);

// FinderMetadata.cpp: what is kept beside the contents. Nothing where the item has none, and where it cannot be read;
// to set something throws then.
std::u16string commentOf(OpenItem const& item);
void setComment(OpenItem const& item, std::u16string const& comment, Value const& object);
int labelIndexOf(OpenItem const& item);
void setLabelIndex(OpenItem const& item, int index, Value const& object);
std::optional<Value> fileTypeOf(OpenItem const& item, bool isCreator);
// Whether it may not be changed at all, whoever owns it.
bool isLocked(OpenItem const& item);
// The rights of owner (0), group (1) and everybody (2) as one of the Finder's constants, and back.
Value privilegesOf(std::uint32_t mode, int whose);
bool setPrivileges(OpenItem const& item, int whose, Value const& value);
std::u16string kindOf(Code type, DiskItem const& item);
std::u16string urlOf(std::string const& path, bool isFolder);

} // namespace mac::applescript
