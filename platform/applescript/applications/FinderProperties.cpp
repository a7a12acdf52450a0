#include "platform/applescript/applications/FinderItem.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/files/Volumes.h"
#include "platform/foundation/Encodings.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/DisplayNames.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/Users.h"
#include "platform/system/items/OpenItem.h"
#include <algorithm>
#include <array>
#include <fcntl.h>
#include <fts.h>
#include <memory>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

// The properties of the Finder's items.

namespace mac::applescript {

namespace {

Value count(std::uint64_t number) { return Value::number(static_cast<double>(number)); }
Value shown(std::optional<std::string> const& name) {
    return name ? Value::text(unitsFromFileSystemBytes(*name)) : Value::missing();
}

std::u16string extensionOf(std::u16string_view name) {
    std::size_t const dot = name.rfind(u'.');
    bool const hasExtension = dot != std::u16string_view::npos && dot > 0 && dot + 1 < name.size();
    return hasExtension ? std::u16string(name.substr(dot + 1)) : std::u16string();
}

std::optional<MountedVolume> volumeAt(std::string const& path) {
    std::vector<MountedVolume> const volumes = mountedVolumes();
    auto const found = std::ranges::find(volumes, path, &MountedVolume::mountPoint);
    return found == volumes.end() ? std::nullopt : std::optional(*found);
}

struct CloseTree {
    void operator()(FTS* tree) const { ::fts_close(tree); }
};

} // namespace

std::vector<Code> FinderItem::propertyCodes() const {
    std::vector<Code> codes{codeOf("pcls"), codeOf("pnam"), codeOf("dnam"), codeOf("nmxt"), codeOf("hidx"),
                            codeOf("ctnr"), codeOf("cdis"), codeOf("ptsz"), codeOf("phys"), codeOf("kind"),
                            codeOf("comt"), codeOf("ascd"), codeOf("asmo"), codeOf("labi"), codeOf("sown"),
                            codeOf("sgrp"), codeOf("purl"), codeOf("aslk")};
    if (m_type == codeOf("cdis"))
        codes.insert(codes.end(), {codeOf("capa"), codeOf("frsp"), codeOf("isej"), codeOf("istd"), codeOf("dfmt")});
    return codes;
}

std::optional<Value> FinderItem::property(Code code) {
    std::u16string const name = m_path == "/" ? std::u16string(StartupVolumeName) : shownName(BytePath(m_path).leaf());
    switch (code) {
    case codeOf("pcls"):
        return Value::type(m_type);
    case codeOf("pnam"):
        if (m_type == codeOf("cdis")) return diskProperty(codeOf("pnam"));
        return Value::text(name);
    case codeOf("nmxt"):
        return Value::text(isContainer() ? std::u16string() : extensionOf(name));
    case codeOf("dnam"):
    case codeOf("hidx"):
    case codeOf("kind"):
        return shownProperty(code);
    case codeOf("phys"):
        return count(m_facts.physicalSize);
    case codeOf("ptsz"):
        return isFolder() ? wholeSize() : count(m_facts.size);
    case codeOf("dscr"):
        return Value::missing();
    case codeOf("ascd"):
        return Value::date(dateOfUnixTime(m_facts.created));
    case codeOf("asmo"):
        return Value::date(dateOfUnixTime(m_facts.modified));
    case codeOf("sown"):
        return shown(nameOfUser(m_facts.owner));
    case codeOf("sgrp"):
        return shown(nameOfGroup(m_facts.group));
    case codeOf("ownr"):
        return privilegesOf(m_facts.mode, 0);
    case codeOf("gppr"):
        return privilegesOf(m_facts.mode, 1);
    case codeOf("gstp"):
        return privilegesOf(m_facts.mode, 2);
    case codeOf("purl"):
        return Value::text(urlOf(m_path, isFolder()));
    case codeOf("aslk"):
        return Value::boolean(isLocked(open()));
    case codeOf("comt"):
        return Value::text(commentOf(open()));
    case codeOf("labi"):
        return Value::integer(labelIndexOf(open()));
    case codeOf("asty"):
    case codeOf("fcrt"):
        if (m_type != codeOf("docf")) return {};
        return fileTypeOf(open(), code == codeOf("fcrt")).value_or(Value::missing());
    default:
        break;
    }
    if (std::optional<Value> const place = placeProperty(code)) return place;
    if (m_type == codeOf("cdis")) return diskProperty(code);
    return m_type == codeOf("alia") ? linkProperty(code) : std::nullopt;
}

// As people are shown it.
Value FinderItem::shownProperty(Code code) const {
    Result<DiskItem> const item = diskItemAtPath(m_path);
    if (!item.hasValue()) throw fileError(item.problem(), specifier());
    if (code == codeOf("kind")) return Value::text(kindOf(m_type, item.value()));
    if (code == codeOf("hidx")) return Value::boolean(hidesExtension(item.value()));
    if (m_type == codeOf("cdis")) return *diskProperty(codeOf("pnam"));
    std::u16string name(displayNameOf(item.value()).codeUnits());
    std::ranges::replace(name, u':', u'/');
    return Value::text(std::move(name));
}

std::optional<Value> FinderItem::placeProperty(Code code) {
    switch (code) {
    case codeOf("ctnr"):
    case codeOf("asdr"):
    case codeOf("cfol"):
        if (m_path == "/") return {};
        return m_folder.isNothing() ? folderSpecifier(parentOf(m_path)) : m_folder;
    case codeOf("cdis"): {
        std::vector<MountedVolume> volumes = mountedVolumes();
        std::erase_if(volumes, [](MountedVolume const& volume) { return !volume.isStartup() && !volume.isBrowsable; });
        MountedVolume const* const volume = volumeOfPath(volumes, m_path);
        return folderSpecifier(volume ? volume->mountPoint : "/");
    }
    case codeOf("iwnd"):
        return propertySpecifier(termSymbol(codeOf("iwnd"), u"information window"), specifier());
    case codeOf("ects"):
        return isContainer() ? std::optional(entireContents()) : std::nullopt;
    case codeOf("pidx"): {
        if (m_path == "/") return {};
        std::shared_ptr<FinderItem> const folder = atPath(parentOf(m_path));
        if (!folder) return {};
        std::int32_t index = 0;
        for (ModelPointer const& one : folder->elements(codeOf("cobj")).value_or(std::vector<ModelPointer>())) {
            ++index;
            if (static_cast<FinderItem const&>(*one).path() == m_path) return Value::integer(index);
        }
        return Value::integer(0);
    }
    default:
        return {};
    }
}

std::optional<Value> FinderItem::diskProperty(Code code) const {
    std::optional<MountedVolume> const volume = volumeAt(m_path);
    struct statvfs space {};
    bool const hasSpace = ::statvfs(m_path.c_str(), &space) == 0;
    switch (code) {
    case codeOf("pnam"):
        return Value::text(volume ? volume->name : std::u16string(StartupVolumeName));
    case codeOf("capa"):
        return hasSpace ? count(std::uint64_t{space.f_blocks} * space.f_frsize) : Value::missing();
    case codeOf("frsp"):
        return hasSpace ? count(std::uint64_t{space.f_bavail} * space.f_frsize) : Value::missing();
    case codeOf("isej"):
        return Value::boolean(volume && driveOf(*volume).isEjectable);
    case codeOf("isrv"):
        return Value::boolean(volume && volume->isLocal);
    case codeOf("istd"):
        return Value::boolean(m_path == "/");
    case codeOf("dfmt"):
        return volume ? Value::text(unitsFromFileSystemBytes(volume->fileSystem)) : Value::missing();
    default:
        return {};
    }
}

std::optional<Value> FinderItem::linkProperty(Code code) const {
    if (code != codeOf("orig")) return {};
    OpenItem const item = open();
    Result<std::string> const target = linkText(item.item);
    if (!target.hasValue()) throw fileError(target.problem(), specifier());
    bool const isAbsolute = target.value().starts_with('/');
    std::shared_ptr<FinderItem> const original =
        atPath(isAbsolute ? target.value() : BytePath(parentOf(m_path)).joined(target.value()));
    if (!original) throw cannotGet(propertySpecifier(termSymbol(code, u"original item"), specifier()));
    return original->specifier();
}

// Of all files in it; what cannot be read does not count. Linux: a disk's is what is not free.
Value FinderItem::wholeSize() const {
    if (m_type == codeOf("cdis")) {
        struct statvfs space {};
        if (::statvfs(m_path.c_str(), &space) != 0) return Value::missing();
        return count(std::uint64_t{space.f_blocks - space.f_bfree} * space.f_frsize);
    }
    OpenItem const item = open();
    std::string const path = item.systemPath() + "/.";
    std::array<char*, 2> roots{const_cast<char*>(path.c_str()), nullptr};
    std::unique_ptr<FTS, CloseTree> const tree(
        ::fts_open(roots.data(), FTS_PHYSICAL | FTS_NOCHDIR | FTS_XDEV, nullptr));
    std::uint64_t size = 0;
    while (FTSENT const* const entry = tree ? ::fts_read(tree.get()) : nullptr) {
        stopRunIfAsked();
        if (entry->fts_info == FTS_F || entry->fts_info == FTS_SL)
            size += static_cast<std::uint64_t>(entry->fts_statp->st_size);
    }
    return count(size);
}

// Folders before what is in them. Not into packages, other volumes, nor through links.
Value FinderItem::entireContents() {
    std::vector<Value> all;
    std::vector<ModelPointer> waiting = *elements(codeOf("cobj"));
    std::ranges::reverse(waiting);
    while (!waiting.empty()) {
        stopRunIfAsked();
        ModelPointer const next = std::move(waiting.back());
        waiting.pop_back();
        all.push_back(next->specifier());
        bool const isEntered =
            next->isOfType(codeOf("cfol")) && !static_cast<FinderItem const&>(*next).facts().isMountPoint;
        if (!isEntered) continue;
        std::vector<ModelPointer> inner;
        try {
            inner = *next->elements(codeOf("cobj"));
        } catch (ScriptError const&) {
            // A folder that cannot be read is all that shows of it.
            continue;
        }
        waiting.insert(waiting.end(), inner.rbegin(), inner.rend());
    }
    return Value::list(std::move(all));
}

void FinderItem::rename(Value const& value, TextContext const& context) {
    std::u16string const wanted = requireText(value, context);
    std::optional<std::string> const name =
        wanted.find(u':') == std::u16string::npos ? nameOnDisk(wanted) : std::nullopt;
    if (!name || m_path == "/" || m_type == codeOf("cdis")) throw badFileName(specifier());
    OpenItem const item = open();
    if (*name == item.name) return;
    // A file system of several layers copies a folder of a lower layer.
    Result<void, ReplacingProblem> const moved = moveItem(
        {.item = item, .folder = item.folder, .name = *name, .shouldContinue = mayRunGoOn}, NameClash::IsRefused);
    if (!moved.isDone()) {
        if (moved.problem().transfer.kind != TransferProblem::Kind::OriginalStays) stopRunIfAsked();
        throw transferError(moved.problem(), specifier(), FileCommand::UseItem);
    }
    m_path = BytePath(parentOf(m_path)).joined(*name);
}

bool FinderItem::setProperty(Code code, Value const& value, TextContext const& context) {
    switch (code) {
    case codeOf("pnam"):
        rename(value, context);
        return true;
    case codeOf("comt"):
        setComment(open(), requireText(value, context), specifier());
        return true;
    case codeOf("aslk"):
        setLocked(open(), requireBoolean(value, context), specifier());
        return true;
    case codeOf("labi"):
        setLabelIndex(open(), requireInteger(value, context), specifier());
        return true;
    case codeOf("ownr"):
        return setPrivileges(open(), 0, value);
    case codeOf("gppr"):
        return setPrivileges(open(), 1, value);
    case codeOf("gstp"):
        return setPrivileges(open(), 2, value);
    case codeOf("asmo"): {
        if (!value.is(ValueKind::Date)) throw cannotMake(value, codeOf("ldt "));
        std::array<timespec, 2> const times{timespec{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                            timespec{.tv_sec = unixTimeOfDate(value.seconds()), .tv_nsec = 0}};
        OpenItem const item = open();
        if (::utimensat(item.item.number(), "", times.data(), AT_EMPTY_PATH) == 0) return true;
        SystemError const error = lastSystemError("utimensat", item.name);
        throw fileError(error, specifier());
    }
    default:
        return false;
    }
}

} // namespace mac::applescript
