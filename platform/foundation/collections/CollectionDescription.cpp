#include "platform/foundation/collections/CollectionBodies.h"
#include <algorithm>

namespace mac {

namespace {

// Deeper collections are shown as dots; so is what would come after that many code units.
constexpr unsigned DeepestShown = 64;
constexpr std::size_t LongestShown = 1U << 24;

bool isPlain(std::u16string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char16_t unit) {
        return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9');
    });
}

// By code unit where all are strings, else in the order of the dictionary.
std::vector<id> keysInOrder(NSDictionary const& dictionary) {
    NSArray const all = dictionary.allKeys();
    std::vector<id> keys(all.begin(), all.end());
    if (std::ranges::all_of(keys, [](id const& key) { return as<NSString>(key) != nil; }))
        std::ranges::sort(keys, {}, [](id const& key) { return uncheckedCast<NSString>(key).codeUnits(); });
    return keys;
}

class DescriptionWriter {
public:
    std::u16string text;

    void write(id const& object, unsigned depth) {
        NSArray const array = as<NSArray>(object);
        NSSet const set = as<NSSet>(object);
        NSDictionary const dictionary = as<NSDictionary>(object);
        if (array == nil && set == nil && dictionary == nil) {
            writeLeaf(object);
            return;
        }
        bool const holdsItself = std::ranges::any_of(m_around, [&](id const& outer) { return isSame(outer, object); });
        if (holdsItself || depth == DeepestShown) {
            text += u"...";
            return;
        }
        m_around.push_back(object);
        if (dictionary != nil)
            writeDictionary(dictionary, depth);
        else if (array != nil)
            writeList(array, depth, u"(", u")");
        else
            writeList(set.allObjects(), depth, u"{(", u")}");
        m_around.pop_back();
    }

private:
    void startLine(unsigned depth) {
        text += u'\n';
        text.append(std::size_t{depth} * 4, u' ');
    }

    bool isTooLong() {
        if (text.size() < LongestShown) return false;
        text += u"...";
        return true;
    }

    void writeLeaf(id const& object) {
        NSString const description = object.description();
        bool const isString = as<NSString>(object) != nil;
        if (!isString || isPlain(description.codeUnits())) {
            text += description.codeUnits();
            return;
        }
        text += u'"';
        for (char16_t const unit : description.codeUnits()) {
            if (unit == u'"' || unit == u'\\') text += u'\\';
            text += unit;
        }
        text += u'"';
    }

    void writeList(NSArray const& array, unsigned depth, std::u16string_view open, std::u16string_view close) {
        text += open;
        std::vector<id> const objects(array.begin(), array.end());
        for (bool isFirst = true; id const& object : objects) {
            if (!isFirst) text += u',';
            isFirst = false;
            startLine(depth + 1);
            if (isTooLong()) break;
            write(object, depth + 1);
        }
        startLine(depth);
        text += close;
    }

    void writeDictionary(NSDictionary const& dictionary, unsigned depth) {
        text += u'{';
        for (id const& key : keysInOrder(dictionary)) {
            startLine(depth + 1);
            if (isTooLong()) break;
            write(key, depth + 1);
            text += u" = ";
            write(dictionary.objectForKey_(key), depth + 1);
            text += u';';
        }
        startLine(depth);
        text += u'}';
    }

    // The collections that the present one lies in.
    std::vector<id> m_around;
};

} // namespace

NSString descriptionOfCollection(id const& collection) {
    DescriptionWriter writer;
    writer.write(collection, 0);
    return NSString::stringWithCodeUnits(writer.text);
}

} // namespace mac
