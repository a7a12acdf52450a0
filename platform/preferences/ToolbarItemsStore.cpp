#include "platform/preferences/ToolbarItemsStore.h"
#include "platform/desktop/session/Session.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/foundation/text/NSString.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <iterator>
#include <utility>

namespace mac {

namespace {

// How many removed places can come back.
constexpr std::size_t MostRestorable = 100;
// A full URL.
constexpr std::int32_t FullURL = 15;

constexpr char FileData[] = "file-data";
constexpr char URLText[] = "_CFURLString";
constexpr char URLType[] = "_CFURLStringType";
constexpr char Label[] = "label";
constexpr char Store[] = "store";

struct StoreName {
    PlacesList list;
    std::string_view name;
};
constexpr std::array StoreNames{StoreName{PlacesList::GTK, "gtk"}, StoreName{PlacesList::KDE, "kde"}};

ToolbarItemsStore& sharedStore() {
    static ToolbarItemsStore store;
    return store;
}

bool staysInURL(char byte) {
    char16_t const lower = lowercaseASCII(static_cast<unsigned char>(byte));
    bool const isLetter = lower >= u'a' && lower <= u'z';
    return isLetter || isASCIIDigit(lower) ||
           std::string_view("-_.!~*'()/?:@&=+$,#").find(byte) != std::string_view::npos;
}

bool isEscape(std::string_view text) {
    auto const isDigit = [](char byte) {
        return std::string_view("0123456789abcdefABCDEF").find(byte) != std::string_view::npos;
    };
    return text.size() > 2 && text[0] == '%' && isDigit(text[1]) && isDigit(text[2]);
}

// The URI as a URL in ASCII. Browsers also read characters that a URL may not have, and see no parameters behind a
// semicolon in the name of a file.
std::string urlOfURI(std::string_view uri) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string url;
    for (std::size_t index = 0; index < uri.size(); ++index) {
        auto const byte = static_cast<unsigned char>(uri[index]);
        if (staysInURL(uri[index]) || isEscape(uri.substr(index)))
            url.push_back(uri[index]);
        else
            url.append({'%', digits[byte >> 4U], digits[byte & 0xFU]});
    }
    return url;
}

// Whether the URL names a file of this computer.
bool isOfThisComputer(std::string_view url) {
    return url.starts_with("file:///") || url.starts_with("file://localhost/") ||
           (url.starts_with("file:/") && !url.starts_with("file://"));
}

NSString stringOf(std::string const& text) { return NSString::stringWithUTF8String_(text); }

// nullopt if the value is no string.
std::optional<std::string> textOfValue(id const& value) {
    NSString const string = as<NSString>(value);
    return string == nil ? std::nullopt : std::optional(string.UTF8String());
}

template <class Item>
bool takeOne(std::vector<Item>& items, Item const& item) {
    auto const found = std::ranges::find(items, item);
    if (found == items.end()) return false;
    items.erase(found);
    return true;
}

Failure failureOf(PlacesProblem const& problem) {
    if (problem.cause) return failureForPeople({.code = problem.cause->code, .item = problem.file});
    bool const isForm = problem.kind == PlacesProblem::Kind::Form;
    NSString const reason =
        isForm ? NSLocalizedString("The places in it cannot be used as they are written", "A list of places")
               : NSLocalizedString("Another program has changed the file", "A list that cannot be written");
    std::string text = problem.file + ": " + reason.UTF8String();
    if (isForm) text += ": " + NSLocalizedString(stringOf(problem.reason), nil).UTF8String();
    return {std::move(text)};
}

} // namespace

NativeItems ToolbarItemsStore::readItems(NSArray const& kept) { return sharedStore().read(kept); }

NativeWriting ToolbarItemsStore::writeItems(NSArray const& items) { return sharedStore().write(items); }

std::optional<ToolbarItemsStore::Item> ToolbarItemsStore::itemOf(Place const& place) {
    std::string url = urlOfURI(place.uri);
    if (!isOfThisComputer(url)) return std::nullopt;
    auto const* const store = std::ranges::find(StoreNames, place.list, &StoreName::list);
    return Item{.url = std::move(url), .label = place.label, .store = std::string(store->name)};
}

std::optional<ToolbarItemsStore::Item> ToolbarItemsStore::itemOf(id const& dictionary) {
    NSDictionary const item = as<NSDictionary>(dictionary);
    NSDictionary const data = as<NSDictionary>(item.objectForKey_(FileData));
    id const label = item.objectForKey_(Label);
    id const store = item.objectForKey_(Store);
    NSUInteger const count = 1U + (label == nil ? 0U : 1U) + (store == nil ? 0U : 1U);
    std::optional<std::string> const url = textOfValue(data.objectForKey_(URLText));
    bool const isFullURL = as<NSNumber>(data.objectForKey_(URLType)).intValue() == FullURL;
    bool const hasForm = item.count() == count && data.count() == 2 && url && isFullURL;
    if (!hasForm || urlOfURI(*url) != *url || !isOfThisComputer(*url)) return std::nullopt;

    Item result{.url = *url};
    std::optional<std::string> const labelText = textOfValue(label);
    std::optional<std::string> const storeText = textOfValue(store);
    bool const isStore = storeText && std::ranges::find(StoreNames, *storeText, &StoreName::name) != StoreNames.end();
    if ((label != nil && !labelText) || (store != nil && !isStore)) return std::nullopt;
    result.label = labelText.value_or("");
    result.store = storeText.value_or("");
    if (!result.store.empty()) return result;
    std::vector<std::string> const desktops = currentDesktops();
    bool const isKDE = std::ranges::find(desktops, "KDE") != desktops.end();
    result.store = isKDE ? "kde" : "gtk";
    return result;
}

NSDictionary ToolbarItemsStore::dictionaryOf(Item const& item) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    NSDictionary const data = NSDictionary::dictionaryWithObjectsAndKeys_(
        {stringOf(item.url), URLText, NSNumber::numberWithInt_(FullURL), URLType});
    dictionary.setObject_forKey_(data, FileData);
    if (!item.label.empty()) dictionary.setObject_forKey_(stringOf(item.label), Label);
    dictionary.setObject_forKey_(stringOf(item.store), Store);
    return dictionary;
}

Place ToolbarItemsStore::placeOf(Item const& item) {
    auto const* const store = std::ranges::find(StoreNames, item.store, &StoreName::name);
    return {.list = store->list, .uri = item.url, .label = item.label};
}

NativeItems ToolbarItemsStore::read(NSArray const& kept) {
    KnownPlaces read = readPlaces();
    std::erase_if(read.places, [](Place const& place) { return !itemOf(place); });
    NSMutableArray const items = NSMutableArray::array();
    for (Place const& place : read.places)
        items.addObject_(dictionaryOf(*itemOf(place)));
    items.addObjectsFromArray_(kept);
    m_known = std::move(read.places);
    if (read.problems.empty()) return {.items = items};
    return {.items = items, .problem = failureOf(read.problems.front())};
}

NativeWriting ToolbarItemsStore::write(NSArray const& items) {
    NSMutableArray const kept = NSMutableArray::array();
    std::vector<Item> meant;
    for (NSUInteger index = 0; index < items.count(); ++index) {
        id const element = items.objectAtIndex_(index);
        if (std::optional<Item> item = itemOf(element))
            meant.push_back(std::move(*item));
        else
            kept.addObject_(element);
    }
    PlacesOutcome const outcome = changePlaces(changeTo(meant));
    remember(outcome, std::move(meant));
    if (outcome.problems.empty()) return {.kept = kept};
    return {.kept = kept, .problem = failureOf(outcome.problems.front())};
}

PlacesChange ToolbarItemsStore::changeTo(std::vector<Item> items) {
    PlacesChange change;
    for (Place const& place : m_known) {
        if (!takeOne(items, *itemOf(place))) change.removed.push_back(place);
    }
    change.restored = takeRemoved(items);
    std::ranges::transform(items, std::back_inserter(change.added), placeOf);
    return change;
}

std::vector<RemovedPlace> ToolbarItemsStore::takeRemoved(std::vector<Item>& missing) {
    std::vector<RemovedPlace> restored;
    // Among equal entries the last one removed comes back.
    for (std::size_t index = m_removed.size(); index > 0; --index) {
        RemovedPlace const& removed = m_removed[index - 1];
        if (takeOne(missing, *itemOf(removed.place))) restored.push_back(removed);
    }
    std::ranges::reverse(restored);
    return restored;
}

void ToolbarItemsStore::remember(PlacesOutcome const& outcome, std::vector<Item> meant) {
    std::ranges::copy(outcome.removed, std::back_inserter(m_removed));
    if (m_removed.size() > MostRestorable)
        m_removed.erase(m_removed.begin(), m_removed.end() - static_cast<std::ptrdiff_t>(MostRestorable));
    m_known = readPlaces().places;
    std::erase_if(m_known, [&](Place const& place) {
        std::optional<Item> const item = itemOf(place);
        return !item || !takeOne(meant, *item);
    });
}

} // namespace mac
