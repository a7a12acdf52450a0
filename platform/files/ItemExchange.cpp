#include "platform/files/ItemExchange.h"
#include "platform/files/references/CatalogFields.h"
#include "platform/foundation/dates/UTCDateTime.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/AttributesOnItem.h"
#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/ItemAttributes.h"
#include "platform/system/items/ItemDates.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/ItemRename.h"
#include "platform/system/items/KeptCreationDate.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace mac {

namespace {

using AttributeValue = std::optional<std::vector<std::byte>>;

SystemError problem(int code, std::string const& name) { return {.code = code, .operation = "exchange", .item = name}; }

Result<AttributeValue> valueOf(OpenItem const& item, char const* name) {
    Result<std::vector<std::byte>> value = readAttribute(item, AttributeName(name));
    if (value.hasValue()) return AttributeValue(value.takeValue());
    bool const isAbsent = value.problem().is(ENODATA) || value.problem().is(EOPNOTSUPP);
    return isAbsent ? Result<AttributeValue>(AttributeValue()) : value.problem();
}

Result<void> setValue(OpenItem const& item, char const* name, AttributeValue const& value) {
    Result<AttributeValue> const now = valueOf(item, name);
    if (now.hasValue() && now.value() == value) return {};
    if (value) return writeAttribute(item, AttributeName(name), *value);
    Result<void> removed = removeAttribute(item, AttributeName(name));
    return removed.isDone() || removed.problem().is(ENODATA) ? Result<void>() : removed;
}

// The metadata that stays with a name.
struct NamesMetadata {
    AttributeValue finderInformation{};
    // As it is kept in the attribute, where the file system's own date does not count.
    AttributeValue keptDate{};
    std::uint64_t creationUnits{0};
};

Result<NamesMetadata> metadataOf(OpenItem const& item) {
    NamesMetadata metadata;
    Result<AttributeValue> finder = valueOf(item, XATTR_FINDERINFO_NAME);
    if (!finder.hasValue()) return finder.problem();
    Result<AttributeValue> kept = valueOf(item, CreateDateAttribute);
    if (!kept.hasValue()) return kept.problem();
    FSCatalogInfo information;
    Result<void> const read = readCatalogFields(item, kFSCatInfoCreateDate, information);
    if (!read.isDone()) return read.problem();
    return NamesMetadata{finder.takeValue(), kept.takeValue(), unitsOf(information.createDate)};
}

Result<void> giveMetadata(OpenItem const& item, NamesMetadata const& metadata) {
    Result<void> const finder = setValue(item, XATTR_FINDERINFO_NAME, metadata.finderInformation);
    return finder.isDone() ? keepCreationDate(item, {metadata.creationUnits}) : finder;
}

// Restores the metadata that the item had before, byte for byte, as far as possible.
void giveBackMetadata(OpenItem const& item, NamesMetadata const& metadata) {
    static_cast<void>(setValue(item, XATTR_FINDERINFO_NAME, metadata.finderInformation));
    static_cast<void>(setValue(item, CreateDateAttribute, metadata.keptDate));
}

Result<void> exchangeNames(NameInFolder first, NameInFolder second) {
    int const failed = ::renameat2(first.folder.number(), first.name.c_str(), second.folder.number(),
                                   second.name.c_str(), RENAME_EXCHANGE);
    if (failed != 0) return lastSystemError("rename", first.name);
    return {};
}

// The error of an item that stays at the other one's name.
SystemError notBack(SystemError const& cause, std::string const& name) {
    return {.code = cause.code, .operation = "exchange back", .item = name};
}

// One of the two items, as it was before the exchange.
struct Side {
    OpenItem const& item;
    NamesMetadata metadata{};
    bool isLink{false};
    std::optional<OpenSidecar> sidecar{};
    // When the sidecar was changed.
    timespec sidecarDate{};
};

Result<Side> sideOf(OpenItem const& item) {
    if (item.name.empty()) return problem(EISDIR, "/");
    struct stat status {};
    if (::fstat(item.item.number(), &status) != 0) return lastSystemError("stat", item.name);
    if (S_ISDIR(status.st_mode)) return problem(EISDIR, item.name);
    if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) return problem(EINVAL, item.name);
    if (status.st_nlink > 1) return problem(EMLINK, item.name);
    if (lockOf(item) == ItemLock::Locked) return lockedItem(item.name);
    if (S_ISLNK(status.st_mode)) return Side{.item = item, .isLink = true};
    Result<NamesMetadata> metadata = metadataOf(item);
    if (!metadata.hasValue()) return metadata.problem();
    Result<std::optional<OpenSidecar>> sidecar = sidecarBeside(item.folder, item.name);
    if (!sidecar.hasValue()) return sidecar.problem();
    Side side{.item = item, .metadata = metadata.takeValue(), .sidecar = sidecar.takeValue()};
    if (!side.sidecar) return side;
    struct stat beside {};
    if (::fstat(side.sidecar->file.number(), &beside) != 0) return lastSystemError("stat", side.sidecar->name);
    side.sidecarDate = beside.st_mtim;
    return side;
}

enum class SidecarFiles {
    AreThoseBefore,
    // Attributes were written and given back, which makes new files where the file system has no attributes.
    MayBeNew,
};

class Exchange {
public:
    Exchange(Side const& first, Side const& second, ExchangeSteps const& steps)
        : m_first(first), m_second(second), m_steps(steps) {}

    Result<void> run() const;

private:
    Result<void> told(ExchangeStep step) const { return m_steps ? m_steps(step) : Result<void>(); }
    Result<void> exchangeItemNames() const;
    Result<void> exchangeSidecars() const;
    Result<void> exchangeSidecarsBack(SidecarFiles files) const;
    Result<void> confirmSidecar(Side const& moved, Side const& place, SidecarFiles files) const;
    Result<void> takeNewSidecar(Side const& moved, Side const& place) const;
    Result<void> takeBack() const;
    Result<void> exchangeMetadata() const;
    Result<OpenItem> openMoved(Side const& moved, Side const& place) const;

    Side const& m_first;
    Side const& m_second;
    ExchangeSteps const& m_steps;
};

NameInFolder nameOf(Side const& side) { return {side.item.folder, side.item.name}; }

// Done if the name of the place leads to the item.
Result<void> isAt(Side const& place, Side const& item) {
    return confirmItemInFolder(place.item.folder, place.item.name, item.item.item);
}

Result<void> Exchange::exchangeItemNames() const {
    for (Side const* side : {&m_first, &m_second}) {
        Result<void> const there = isAt(*side, *side);
        if (!there.isDone()) return there;
    }
    Result<void> const exchanged = exchangeNames(nameOf(m_first), nameOf(m_second));
    if (!exchanged.isDone()) return exchanged;
    Result<void> const firstMoved = isAt(m_second, m_first);
    Result<void> const secondMoved = isAt(m_first, m_second);
    if (firstMoved.isDone() && secondMoved.isDone()) return {};
    if (!firstMoved.isDone() && !secondMoved.isDone()) return notBack(firstMoved.problem(), m_first.item.name);
    // Another item had taken one of the names, and gets it back; the known one tells whether that was so.
    Result<void> back = exchangeNames(nameOf(m_first), nameOf(m_second));
    Side const& known = firstMoved.isDone() ? m_first : m_second;
    if (back.isDone()) back = isAt(known, known);
    return back.isDone() ? problem(ESTALE, m_first.item.name) : notBack(back.problem(), m_first.item.name);
}

// Gives both items their own names back, unless another item has one of the names by now.
Result<void> Exchange::takeBack() const {
    Result<void> back = isAt(m_second, m_first);
    if (back.isDone()) back = isAt(m_first, m_second);
    if (back.isDone()) back = exchangeNames(nameOf(m_first), nameOf(m_second));
    return back.isDone() ? back : notBack(back.problem(), m_first.item.name);
}

// A sidecar holds the resource fork, which goes with the contents.
Result<void> Exchange::exchangeSidecars() const {
    std::string const firstName = AppleDoubleSidecar::nameFor(m_first.item.name);
    std::string const secondName = AppleDoubleSidecar::nameFor(m_second.item.name);
    NameInFolder const first{m_first.item.folder, firstName};
    NameInFolder const second{m_second.item.folder, secondName};
    if (m_first.sidecar && m_second.sidecar) return exchangeNames(first, second);
    if (m_first.sidecar) return renameWithoutReplacing(first.folder, first.name, second.folder, second.name);
    if (m_second.sidecar) return renameWithoutReplacing(second.folder, second.name, first.folder, first.name);
    return {};
}

// Done if the sidecar at the place is that of the item that has moved there, or if both have none. It gets its date
// back.
Result<void> Exchange::takeNewSidecar(Side const& moved, Side const& place) const {
    if (Result<void> const there = isAt(place, moved); !there.isDone()) return there;
    Result<std::optional<OpenSidecar>> const sidecar = sidecarBeside(place.item.folder, place.item.name);
    if (!sidecar.hasValue()) return sidecar.problem();
    if (sidecar.value().has_value() != moved.sidecar.has_value()) return problem(ESTALE, place.item.name);
    if (!sidecar.value()) return {};
    return setDates(sidecar.value()->file, {.modified = moved.sidecarDate}, sidecar.value()->name);
}

Result<void> Exchange::confirmSidecar(Side const& moved, Side const& place, SidecarFiles files) const {
    if (files == SidecarFiles::MayBeNew && !moved.isLink) return takeNewSidecar(moved, place);
    if (!moved.sidecar) return {};
    return confirmItemInFolder(place.item.folder, AppleDoubleSidecar::nameFor(place.item.name), moved.sidecar->file);
}

Result<void> Exchange::exchangeSidecarsBack(SidecarFiles files) const {
    std::string const firstName = AppleDoubleSidecar::nameFor(m_first.item.name);
    std::string const secondName = AppleDoubleSidecar::nameFor(m_second.item.name);
    NameInFolder const first{m_first.item.folder, firstName};
    NameInFolder const second{m_second.item.folder, secondName};
    Result<void> back = confirmSidecar(m_first, m_second, files);
    if (back.isDone()) back = confirmSidecar(m_second, m_first, files);
    if (!back.isDone()) return notBack(back.problem(), firstName);
    if (m_first.sidecar && m_second.sidecar)
        back = exchangeNames(first, second);
    else if (m_first.sidecar)
        back = renameWithoutReplacing(second.folder, second.name, first.folder, first.name);
    else if (m_second.sidecar)
        back = renameWithoutReplacing(first.folder, first.name, second.folder, second.name);
    return back.isDone() ? back : notBack(back.problem(), firstName);
}

// The item that has moved to the other one's name.
Result<OpenItem> Exchange::openMoved(Side const& moved, Side const& place) const {
    OpenItem item{.folder = FileDescriptor(::openat(place.item.folder.number(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC)),
                  .item = FileDescriptor(::fcntl(moved.item.item.number(), F_DUPFD_CLOEXEC, 0)),
                  .name = place.item.name};
    if (!item.folder.isOpen() || !item.item.isOpen()) return lastSystemError("open", item.name);
    return item;
}

Result<void> Exchange::exchangeMetadata() const {
    Result<OpenItem> const first = openMoved(m_second, m_first);
    if (!first.hasValue()) return first.problem();
    Result<OpenItem> const second = openMoved(m_first, m_second);
    if (!second.hasValue()) return second.problem();
    // A link carries no attributes.
    Result<void> done = m_second.isLink ? Result<void>() : giveMetadata(first.value(), m_first.metadata);
    if (done.isDone() && !m_first.isLink) done = giveMetadata(second.value(), m_second.metadata);
    if (done.isDone()) return done;
    if (!m_second.isLink) giveBackMetadata(first.value(), m_second.metadata);
    if (!m_first.isLink) giveBackMetadata(second.value(), m_first.metadata);
    return done;
}

Result<void> Exchange::run() const {
    if (Result<void> const exchanged = exchangeItemNames(); !exchanged.isDone()) return exchanged;
    Result<void> done = told(ExchangeStep::Exchanged);
    if (done.isDone()) done = exchangeSidecars();
    if (done.isDone()) {
        done = told(ExchangeStep::SidecarsFollowed);
        SidecarFiles const files = done.isDone() ? SidecarFiles::MayBeNew : SidecarFiles::AreThoseBefore;
        if (done.isDone()) done = exchangeMetadata();
        Result<void> const back = done.isDone() ? done : exchangeSidecarsBack(files);
        // The resource forks stay with the contents.
        if (!back.isDone()) return back;
    }
    if (done.isDone()) return done;
    Result<void> const back = takeBack();
    return back.isDone() ? done : back;
}

} // namespace

Result<void> exchangeItems(OpenItem const& first, OpenItem const& second, ExchangeSteps const& steps) {
    Result<Side> const one = sideOf(first);
    if (!one.hasValue()) return one.problem();
    Result<Side> const other = sideOf(second);
    if (!other.hasValue()) return other.problem();
    Result<ItemPlace> const onePlace = placeOf(first.folder);
    if (!onePlace.hasValue()) return onePlace.problem();
    Result<ItemPlace> const otherPlace = placeOf(second.folder);
    if (!otherPlace.hasValue()) return otherPlace.problem();
    if (onePlace.value().mount != otherPlace.value().mount) return problem(EXDEV, first.name);
    return Exchange(one.value(), other.value(), steps).run();
}

} // namespace mac
