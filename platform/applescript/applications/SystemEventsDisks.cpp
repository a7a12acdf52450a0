#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/files/HFSPaths.h"
#include "platform/files/Volumes.h"
#include "platform/foundation/Encodings.h"
#include "platform/system/BytePath.h"

// Disks, folders and files as System Events tells of them.

namespace mac::applescript::system_events {

namespace {

class DiskItem final : public ModelObject {
public:
    explicit DiskItem(std::shared_ptr<FinderItem> item) : m_item(std::move(item)) {}

    Code type() const override {
        if (m_item->type() == codeOf("cdis") || m_item->type() == codeOf("cfol")) return m_item->type();
        return codeOf("file");
    }
    bool isOfType(Code sought) const override {
        return sought == type() || sought == codeOf("ditm") || sought == codeOf("cobj");
    }
    Value specifier() const override {
        if (type() == codeOf("cdis"))
            return elementSpecifier(Form::Name, type(), itself(), *m_item->property(codeOf("pnam")));
        return elementSpecifier(Form::Name, type(), itself(), Value::text(hfsPath()));
    }

    std::optional<Value> property(Code code) override {
        switch (code) {
        case codeOf("pcls"):
            return Value::type(type());
        case codeOf("posx"):
        case codeOf("psxp"):
            return Value::text(unitsFromFileSystemBytes(m_item->path()));
        case codeOf("ppth"):
            return Value::text(hfsPath());
        case codeOf("url "):
            return m_item->property(codeOf("purl"));
        case codeOf("extn"):
            return m_item->property(codeOf("nmxt"));
        case codeOf("pvis"):
            return Value::boolean(!BytePath(m_item->path()).leaf().starts_with('.'));
        case codeOf("ctnr"): {
            ModelPointer const folder = m_item->path() == "/" ? nullptr : diskItemAt(parentOf(m_item->path()));
            return folder ? std::optional(folder->specifier()) : std::nullopt;
        }
        case codeOf("cdis"):
        case codeOf("ects"):
        case codeOf("iwnd"):
        case codeOf("orig"):
            return {};
        default:
            return m_item->property(code);
        }
    }

    std::vector<Code> propertyCodes() const override {
        return {codeOf("pcls"), codeOf("pnam"), codeOf("posx"), codeOf("ppth"), codeOf("url "), codeOf("ptsz"),
                codeOf("phys"), codeOf("kind"), codeOf("ascd"), codeOf("asmo"), codeOf("extn"), codeOf("pvis")};
    }

    bool setProperty(Code code, Value const& value, TextContext const& context) override {
        bool const isSettable = code == codeOf("pnam") || code == codeOf("asmo");
        return isSettable && m_item->setProperty(code, value, context);
    }

    std::optional<std::vector<ModelPointer>> elements(Code elementType) override {
        bool const isKnown = elementType == codeOf("ditm") || elementType == codeOf("cobj") ||
                             elementType == codeOf("file") || elementType == codeOf("cfol");
        if (!isKnown || !m_item->isFolder()) return {};
        std::vector<ModelPointer> all;
        for (ModelPointer const& inner : m_item->elements(codeOf("cobj")).value_or(std::vector<ModelPointer>())) {
            ModelPointer const item = std::make_shared<DiskItem>(std::static_pointer_cast<FinderItem>(inner));
            if (item->isOfType(elementType)) all.push_back(item);
        }
        return all;
    }

    ModelPointer elementNamed(Code elementType, std::u16string const& name) override {
        ModelPointer const inner = m_item->elementNamed(codeOf("cobj"), name);
        ModelPointer const item =
            inner ? std::make_shared<DiskItem>(std::static_pointer_cast<FinderItem>(inner)) : nullptr;
        return item && item->isOfType(elementType) ? item : nullptr;
    }

    std::optional<Value> coerced(Code wanted) override {
        if (isOfType(wanted)) return specifier();
        return wanted == codeOf("file") ? std::nullopt : m_item->coerced(wanted);
    }

    std::shared_ptr<FinderItem> const& item() const { return m_item; }

private:
    std::u16string hfsPath() const {
        return hfsPathFromPOSIXPath(unitsFromFileSystemBytes(m_item->path()), m_item->isFolder());
    }

    std::shared_ptr<FinderItem> m_item;
};

} // namespace

std::vector<ModelPointer> disks() {
    std::vector<ModelPointer> all;
    for (MountedVolume const& volume : mountedVolumes())
        if (volume.isStartup() || volume.isBrowsable)
            if (ModelPointer const disk = diskItemAt(volume.mountPoint)) all.push_back(disk);
    return all;
}

ModelPointer diskItemAt(std::string const& path) {
    std::shared_ptr<FinderItem> const item = FinderItem::atPath(path);
    return item ? std::make_shared<DiskItem>(item) : nullptr;
}

ModelPointer diskItemNamed(Code elementType, std::u16string const& name) {
    ModelPointer found;
    for (ModelPointer const& disk : disks()) {
        std::optional<Value> const diskName = disk->property(codeOf("pnam"));
        if (diskName && foldedName(diskName->units()) == foldedName(name)) found = disk;
    }
    if (!found) {
        // A name alone is something in the home folder.
        bool const isPath = name.find(u':') != std::u16string::npos || name.starts_with(u'/');
        std::u16string units = isPath ? posixPathOf(name) : name;
        if (name.starts_with(u"~/")) units = name.substr(2);
        std::optional<std::string> const bytes = fileSystemBytesFromUnits(units);
        if (bytes && !bytes->empty())
            found = diskItemAt(bytes->starts_with('/') ? *bytes : BytePath(homePath()).joined(*bytes));
    }
    return found && found->isOfType(elementType) ? found : nullptr;
}

std::shared_ptr<FinderItem> itemOf(ModelObject const& object) {
    bool const isDiskItem = object.isOfType(codeOf("ditm"));
    return isDiskItem ? static_cast<DiskItem const&>(object).item() : nullptr;
}

} // namespace mac::applescript::system_events
