#include "platform/icons/IconFamilies.h"
#include "platform/icons/IconFamily.h"
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

namespace mac {

struct OpaqueIconSuite {
    struct Piece {
        OSType type{};
        MemoryHandle data{};
    };
    std::vector<Piece> pieces{};
};

namespace {

struct SelectedType {
    IconSelectorValue bit;
    OSType type;
};
constexpr std::array SelectedTypes{
    SelectedType{kSelectorLarge1Bit, OSType("ICN#")},     SelectedType{kSelectorLarge4Bit, OSType("icl4")},
    SelectedType{kSelectorLarge8Bit, OSType("icl8")},     SelectedType{kSelectorLarge32Bit, OSType("il32")},
    SelectedType{kSelectorSmall1Bit, OSType("ics#")},     SelectedType{kSelectorSmall4Bit, OSType("ics4")},
    SelectedType{kSelectorSmall8Bit, OSType("ics8")},     SelectedType{kSelectorSmall32Bit, OSType("is32")},
    SelectedType{kSelectorMini1Bit, OSType("icm#")},      SelectedType{kSelectorMini4Bit, OSType("icm4")},
    SelectedType{kSelectorMini8Bit, OSType("icm8")},      SelectedType{kSelectorHuge1Bit, OSType("ich#")},
    SelectedType{kSelectorHuge4Bit, OSType("ich4")},      SelectedType{kSelectorHuge8Bit, OSType("ich8")},
    SelectedType{kSelectorHuge32Bit, OSType("ih32")},     SelectedType{kSelectorLarge8BitMask, OSType("l8mk")},
    SelectedType{kSelectorSmall8BitMask, OSType("s8mk")}, SelectedType{kSelectorHuge8BitMask, OSType("h8mk")},
};

bool isSelected(OSType type, IconSelectorValue which) {
    if (which == kSelectorAllAvailableData) return true;
    return std::ranges::any_of(SelectedTypes, [type, which](SelectedType const& selected) {
        return selected.type == type && (selected.bit & which) != 0;
    });
}

std::vector<IconPart> selectedParts(std::vector<IconPart> parts, IconSelectorValue which) {
    std::erase_if(parts, [which](IconPart const& part) { return !isSelected(part.type, which); });
    return parts;
}

// A new block with these bytes; null without memory, and for more than a block holds.
MemoryHandle blockWith(std::span<std::byte const> bytes) {
    if (bytes.size() > std::size_t{INT32_MAX}) return nullptr;
    MemoryHandle const block = NewHandle(static_cast<std::int32_t>(bytes.size()));
    if (block && !bytes.empty()) std::memcpy(*block, bytes.data(), bytes.size());
    return block;
}

std::span<std::byte const> bytesOfBlock(MemoryHandle block) {
    std::int32_t const size = block ? GetHandleSize(block) : 0;
    if (size <= 0) return {};
    return {reinterpret_cast<std::byte const*>(*block), static_cast<std::size_t>(size)};
}

OSErr answerFamily(std::vector<IconPart> const& parts, IconFamilyHandle& iconFamily) {
    MemoryHandle const block = blockWith(contentsOfIconFamily(parts));
    if (!block) return memFullErr;
    iconFamily = block;
    return noErr;
}

} // namespace

OSErr IconRefToIconFamily(IconRef iconRef, IconSelectorValue whichIcons, IconFamilyHandle* iconFamily) {
    if (!iconRef) return invalidIconRefErr;
    if (!iconFamily) return paramErr;
    std::optional<std::vector<IconPart>> parts = partsOfIcon(iconRef);
    if (!parts) return noIconDataAvailableErr;
    return answerFamily(selectedParts(std::move(*parts), whichIcons), *iconFamily);
}

OSErr IconFamilyToIconSuite(IconFamilyHandle iconFamily, IconSelectorValue whichIcons, IconSuiteRef* iconSuite) {
    if (!iconFamily || !iconSuite) return paramErr;
    std::optional<std::vector<IconPart>> const parts = readIconFamily(bytesOfBlock(iconFamily));
    if (!parts) return invalidIconFamilyErr;
    auto suite = std::make_unique<OpaqueIconSuite>();
    for (IconPart const& part : selectedParts(*parts, whichIcons)) {
        MemoryHandle const block = blockWith(part.bytes);
        if (!block) {
            DisposeIconSuite(suite.release(), YES);
            return memFullErr;
        }
        suite->pieces.push_back({part.type, block});
    }
    *iconSuite = suite.release();
    return noErr;
}

OSErr IconSuiteToIconFamily(IconSuiteRef iconSuite, IconSelectorValue whichIcons, IconFamilyHandle* iconFamily) {
    if (!iconSuite || !iconFamily) return paramErr;
    std::vector<IconPart> parts;
    for (OpaqueIconSuite::Piece const& piece : iconSuite->pieces) {
        std::span<std::byte const> const bytes = bytesOfBlock(piece.data);
        if (isSelected(piece.type, whichIcons)) parts.push_back({piece.type, {bytes.begin(), bytes.end()}});
    }
    return answerFamily(parts, *iconFamily);
}

OSErr NewIconSuite(IconSuiteRef* iconSuite) {
    if (!iconSuite) return paramErr;
    *iconSuite = std::make_unique<OpaqueIconSuite>().release();
    return noErr;
}

OSErr AddIconToSuite(MemoryHandle iconData, IconSuiteRef iconSuite, OSType type) {
    if (!iconSuite) return paramErr;
    auto const known = std::ranges::find(iconSuite->pieces, type, &OpaqueIconSuite::Piece::type);
    if (known == iconSuite->pieces.end())
        iconSuite->pieces.push_back({type, iconData});
    else
        known->data = iconData;
    return noErr;
}

OSErr GetIconFromSuite(MemoryHandle* iconData, IconSuiteRef iconSuite, OSType type) {
    if (!iconSuite || !iconData) return paramErr;
    auto const known = std::ranges::find(iconSuite->pieces, type, &OpaqueIconSuite::Piece::type);
    *iconData = known == iconSuite->pieces.end() ? nullptr : known->data;
    return noErr;
}

OSErr DisposeIconSuite(IconSuiteRef iconSuite, BOOL disposeData) {
    if (!iconSuite) return paramErr;
    std::unique_ptr<OpaqueIconSuite> const suite(iconSuite);
    for (OpaqueIconSuite::Piece const& piece : suite->pieces) {
        if (disposeData && piece.data) DisposeHandle(piece.data);
    }
    return noErr;
}

OSErr ForEachIconDo(IconSuiteRef iconSuite, IconSelectorValue whichIcons, IconActionUPP action, void* context) {
    if (!iconSuite || !action) return paramErr;
    // By index and with a copy: the action may add pieces, which moves the others.
    for (std::size_t index = 0; index < iconSuite->pieces.size(); ++index) {
        OpaqueIconSuite::Piece const before = iconSuite->pieces[index];
        if (!isSelected(before.type, whichIcons)) continue;
        MemoryHandle data = before.data;
        OSErr const status = action(before.type, &data, context);
        bool const isStillThere = index < iconSuite->pieces.size() && iconSuite->pieces[index].type == before.type;
        if (data != before.data && isStillThere) iconSuite->pieces[index].data = data;
        if (status != noErr) return status;
    }
    return noErr;
}

} // namespace mac
