#include "platform/foundation/CollectionBodies.h"
#include <algorithm>

namespace mac {

namespace {

// Deeper collections (or one that holds itself) are shown as dots.
constexpr unsigned DeepestShown = 64;

bool isPlain(std::u16string_view text)
{
    return !text.empty() && std::ranges::all_of(text, [](char16_t unit) {
        return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9')
            || unit == u'_' || unit == u'$' || unit == u'/' || unit == u':' || unit == u'.';
    });
}

class Writer {
public:
    std::u16string text;

    void write(id const& object, unsigned depth)
    {
        NSArray const array = as<NSArray>(object);
        NSSet const set = as<NSSet>(object);
        NSDictionary const dictionary = as<NSDictionary>(object);
        if (array == nil && set == nil && dictionary == nil)
            writeLeaf(object);
        else if (depth == DeepestShown)
            text += u"...";
        else if (dictionary != nil)
            writeDictionary(dictionary, depth);
        else if (array != nil)
            writeList(array, depth, u"(", u")");
        else
            writeList(set.allObjects(), depth, u"{(", u")}");
    }

private:
    void startLine(unsigned depth)
    {
        text += u'\n';
        text.append(std::size_t { depth } * 4, u' ');
    }

    void writeLeaf(id const& object)
    {
        NSString const description = object.description();
        bool const isString = as<NSString>(object) != nil;
        if (!isString || isPlain(description.codeUnits())) {
            text += description.codeUnits();
            return;
        }
        text += u'"';
        for (char16_t const unit : description.codeUnits()) {
            if (unit == u'"' || unit == u'\\')
                text += u'\\';
            text += unit;
        }
        text += u'"';
    }

    void writeList(NSArray const& array, unsigned depth, std::u16string_view open, std::u16string_view close)
    {
        text += open;
        for (NSUInteger index = 0; index < array.count(); ++index) {
            if (index > 0)
                text += u',';
            startLine(depth + 1);
            write(array.objectAtIndex_(index), depth + 1);
        }
        startLine(depth);
        text += close;
    }

    void writeDictionary(NSDictionary const& dictionary, unsigned depth)
    {
        text += u'{';
        for (id const& key : dictionary.allKeys()) {
            startLine(depth + 1);
            write(key, depth + 1);
            text += u" = ";
            write(dictionary.objectForKey_(key), depth + 1);
            text += u';';
        }
        startLine(depth);
        text += u'}';
    }
};

}

NSString descriptionOfCollection(id const& collection)
{
    Writer writer;
    writer.write(collection, 0);
    return NSString::stringWithCodeUnits(writer.text);
}

}
