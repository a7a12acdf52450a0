#include "platform/events/DescriptorContents.h"
#include "platform/foundation/running/Log.h"
#include <algorithm>

namespace mac {

namespace {

bool fits(AEDesc const& value) {
    if (contentsOf(value).depth < kDescriptorMaximumDepth) return true;
    NSLog("A descriptor nested deeper than %lu containers was left out", kDescriptorMaximumDepth);
    return false;
}

void put(DescriptorContents& contents, AEDesc& place, AEDesc value) {
    contents.depth = std::max(contents.depth, contentsOf(value).depth + 1);
    place = std::move(value);
}

} // namespace

AEDesc makeDesc(DescType type, std::span<std::byte const> bytes) {
    if (bytes.empty()) return {type, nullptr};
    DescriptorContents contents;
    contents.bytes.assign(bytes.begin(), bytes.end());
    return {type, std::make_shared<DescriptorContents>(std::move(contents))};
}

AEDesc makeContainer(DescType type, DescriptorForm form) {
    return {type, std::make_shared<DescriptorContents>(DescriptorContents{.form = form})};
}

DescriptorContents const& contentsOf(AEDesc const& desc) {
    static DescriptorContents const nothing;
    return desc.dataHandle ? *desc.dataHandle : nothing;
}

DescriptorContents& changeableContentsOf(AEDesc& desc) {
    if (!desc.dataHandle)
        desc.dataHandle = std::make_shared<DescriptorContents>();
    else if (desc.dataHandle.use_count() > 1)
        desc.dataHandle = std::make_shared<DescriptorContents>(*desc.dataHandle);
    return *desc.dataHandle;
}

std::optional<std::span<std::byte const>> bytesOf(AEDesc const& desc, DescType type) {
    DescriptorContents const& contents = contentsOf(desc);
    if (desc.descriptorType != type || contents.form != DescriptorForm::Bytes) return std::nullopt;
    return std::span<std::byte const>(contents.bytes);
}

AEDesc const* findEntry(std::span<DescriptorEntry const> entries, AEKeyword keyword) {
    auto const found = std::ranges::find(entries, keyword, &DescriptorEntry::keyword);
    return found == entries.end() ? nullptr : &found->desc;
}

bool putEntry(AEDesc& desc, AEKeyword keyword, AEDesc value, bool isAttribute) {
    DescriptorForm const form = contentsOf(desc).form;
    bool const hasPlace = form == DescriptorForm::Event || (form == DescriptorForm::Record && !isAttribute);
    if (!hasPlace || !fits(value)) return false;
    DescriptorContents& contents = changeableContentsOf(desc);
    std::vector<DescriptorEntry>& entries = contents.entriesOrAttributes(isAttribute);
    auto const found = std::ranges::find(entries, keyword, &DescriptorEntry::keyword);
    DescriptorEntry& entry = found == entries.end() ? entries.emplace_back() : *found;
    entry.keyword = keyword;
    put(contents, entry.desc, std::move(value));
    return true;
}

bool putItem(AEDesc& desc, std::int32_t index, AEDesc value) {
    DescriptorContents const& before = contentsOf(desc);
    auto const count = static_cast<std::int64_t>(before.entries.size());
    if (before.form != DescriptorForm::List || index < 0 || index > count + 1 || !fits(value)) return false;
    DescriptorContents& contents = changeableContentsOf(desc);
    bool const isNew = index == 0 || index > count;
    DescriptorEntry& entry =
        isNew ? contents.entries.emplace_back() : contents.entries[static_cast<std::size_t>(index) - 1];
    put(contents, entry.desc, std::move(value));
    return true;
}

} // namespace mac
