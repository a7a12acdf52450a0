#include "platform/preferences/Preferences.h"
#include "platform/preferences/PreferenceFile.h"
#include <algorithm>

namespace mac {

namespace {

// The elements that the file has for a native store; nil if the value is no array.
NSArray keptElements(NSDictionary const& values, NSString const& key) {
    id const value = values.objectForKey_(key);
    return value == nil ? NSArray::array() : as<NSArray>(value);
}

NSString keyOf(NativeStore const& store) { return NSString::stringWithUTF8String_(store.key); }

void putValue(NSMutableDictionary const& values, NSString const& key, id const& value) {
    if (value == nil)
        values.removeObjectForKey_(key);
    else
        values.setObject_forKey_(value, key);
}

// nil for an empty array, which is no value.
id valueOf(NSArray const& items) { return items.count() > 0 ? id(items) : id(); }

// The caller may change its array later.
id copied(id const& value) {
    NSArray const array = as<NSArray>(value);
    return array == nil ? value : id(NSArray::arrayWithArray_(array));
}

} // namespace

NativeStore const* Preferences::storeOf(PreferenceDomain const& domain, NSString const& key) const {
    for (NativeStore const& store : m_stores) {
        if (store.domain == domain.nativeName && keyOf(store).isEqualToString_(key)) return &store;
    }
    return nullptr;
}

Preferences::Known& Preferences::readDomain(PreferenceDomain const& domain) {
    Known& known = m_known[domain.file];
    if (known.values != nil) return known;
    Result<NSDictionary> const file = PreferenceFile(domain.file).read();
    known.problem = file.hasValue() ? std::nullopt : std::optional(failureForPeople(file.problem()));
    NSMutableDictionary const values =
        NSMutableDictionary::dictionaryWithDictionary_(file.hasValue() ? file.value() : NSDictionary::dictionary());
    for (NativeStore const& store : m_stores) {
        NSArray const kept = keptElements(values, keyOf(store));
        if (store.domain != domain.nativeName || kept == nil) continue;
        NativeItems const native = store.read(kept);
        if (!known.problem) known.problem = native.problem;
        putValue(values, keyOf(store), valueOf(native.items));
    }
    known.values = values;
    return known;
}

id Preferences::value(PreferenceDomain const& domain, NSString const& key) {
    Known const& known = readDomain(domain);
    for (Change const& change : known.changes) {
        if (change.key.isEqualToString_(key)) return change.value;
    }
    return known.values.objectForKey_(key);
}

void Preferences::setValue(PreferenceDomain const& domain, NSString const& key, id const& value) {
    std::vector<Change>& changes = m_known[domain.file].changes;
    std::erase_if(changes, [&](Change const& change) { return change.key.isEqualToString_(key); });
    changes.push_back({NSString::stringWithString_(key), copied(value)});
}

Result<NSDictionary, Failure> Preferences::changedValues(PreferenceDomain const& domain, Known const& known,
                                                         NSDictionary const& values) const {
    NSMutableDictionary const changed = NSMutableDictionary::dictionaryWithDictionary_(values);
    for (Change const& change : known.changes) {
        NativeStore const* const store = storeOf(domain, change.key);
        if (!store) {
            putValue(changed, change.key, change.value);
            continue;
        }
        NSArray const items = change.value == nil ? NSArray::array() : as<NSArray>(change.value);
        if (items == nil || keptElements(values, change.key) == nil) return NSDictionary();
        NativeWriting const written = store->write(items);
        if (!written.isDone()) return *written.problem;
        putValue(changed, change.key, valueOf(written.kept));
    }
    return NSDictionary(changed);
}

NSDictionary Preferences::values(PreferenceDomain const& domain) {
    Known const& known = readDomain(domain);
    NSMutableDictionary const values = NSMutableDictionary::dictionaryWithDictionary_(known.values);
    for (Change const& change : known.changes)
        putValue(values, change.key, change.value);
    return values;
}

bool Preferences::hasChanges(PreferenceDomain const& domain) const {
    auto const known = m_known.find(domain.file);
    return known != m_known.end() && !known->second.changes.empty();
}

Result<void, Failure> Preferences::synchronize(PreferenceDomain const& domain, RefusedChanges refused) {
    Known& known = m_known[domain.file];
    if (known.changes.empty()) {
        known.values = nil;
        Known const& read = readDomain(domain);
        return read.problem ? *read.problem : Result<void, Failure>();
    }
    std::optional<Failure> ofDesktop;
    Result<void> const written = PreferenceFile(domain.file).change([&](NSDictionary const& values) {
        Result<NSDictionary, Failure> changed = changedValues(domain, known, values);
        if (changed.hasValue()) return changed.takeValue();
        ofDesktop = changed.problem();
        return NSDictionary();
    });
    if (written.isDone() || refused == RefusedChanges::AreForgotten) known.changes.clear();
    known.values = nil;
    if (written.isDone()) return {};
    if (ofDesktop) return *ofDesktop;
    // People know the file, and not the temporary one that is to take its place.
    return failureForPeople({.code = written.problem().code, .item = domain.file});
}

} // namespace mac
