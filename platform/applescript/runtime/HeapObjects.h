#pragma once

#include "platform/applescript/language/ScriptToken.h"
#include "platform/applescript/runtime/ScriptValue.h"
#include "platform/applescript/runtime/ValueList.h"
#include "platform/system/items/ItemIdentity.h"
#include <memory>
#include <optional>

namespace mac::applescript {

// An object that may hold values and so be part of a circle, which counting alone never frees.
class ContainerObject : public HeapObject {
public:
    ContainerObject();
    ~ContainerObject() override;

    // Frees the containers that only containers of the same circle hold. Called now and then, and when a script ends.
    static void collectCircles();
    // How many live.
    static std::size_t countOfAll();

protected:
    // Calls back for each value held.
    virtual void visit(void (*visitor)(Value const& held)) const = 0;
    // Lets go of every value held.
    virtual void clear() = 0;

private:
    ContainerObject* m_previous{nullptr};
    ContainerObject* m_next{nullptr};
    std::uint32_t m_outside{0};
    bool m_reached{false};
};

struct TextContext;
struct FoundTextElements;

struct TextObject final : HeapObject {
    explicit TextObject(std::u16string text);
    ~TextObject() override;

    // REQUIRES: no other holder relies on the present text.
    void append(std::u16string_view added);
    // Whether every code unit is a character of its own, so that places need no counting; found out on first need.
    bool isSimple() const;

    std::u16string units;

private:
    enum class Simplicity : std::uint8_t { Unknown, Simple, Composed };
    mutable Simplicity m_simplicity{Simplicity::Unknown};
    friend std::vector<SourceRange> const& textElements(TextObject const& text, Code elementClass,
                                                        TextContext const& context);
    mutable std::unique_ptr<FoundTextElements> m_elements;
};

struct ListObject final : ContainerObject {
    explicit ListObject(ValueList values) : items(std::move(values)) {}
    ValueList items;

protected:
    void visit(void (*visitor)(Value const& held)) const override;
    void clear() override;
};

struct RecordObject final : ContainerObject {
    explicit RecordObject(std::vector<std::pair<Symbol, Value>> pairs) : fields(std::move(pairs)) {}
    std::vector<std::pair<Symbol, Value>> fields;

protected:
    void visit(void (*visitor)(Value const& held)) const override;
    void clear() override;
};

struct DateObject final : HeapObject {
    explicit DateObject(std::int64_t moment) : seconds(moment) {}
    std::int64_t seconds;
};

// An alias names an item that was there; the other two kinds may name none. The path is a POSIX path.
struct FileObject final : HeapObject {
    enum class Kind : std::uint8_t { Alias, File, PosixFile };
    FileObject(Kind kindOfFile, std::u16string posixPath) : kind(kindOfFile), path(std::move(posixPath)) {}
    Kind kind;
    std::u16string path;
    // The item that is meant, of a file that an event refers to by more than its path: another one that has taken its
    // place is not that file.
    std::optional<ItemIdentity> identity{};
};

struct ApplicationObject final : HeapObject {
    ApplicationObject(std::u16string nameOrIdentifier, bool isIdentifier)
        : name(std::move(nameOrIdentifier)), byIdentifier(isIdentifier) {}
    std::u16string name;
    bool byIdentifier;
};

struct DataObject final : HeapObject {
    DataObject(Code typeCode, std::string content) : type(typeCode), bytes(std::move(content)) {}
    Code type;
    std::string bytes;
};

template <class T, class... Arguments>
Value makeObject(ValueKind kind, Arguments&&... arguments) {
    // The value takes the first reference; the last one to go deletes.
    return Value::object(kind, *std::make_unique<T>(std::forward<Arguments>(arguments)...).release());
}

inline TextObject& Value::textObject() const { return static_cast<TextObject&>(*m_content.object); }
inline std::u16string const& Value::units() const { return textObject().units; }
inline ValueList& Value::items() const { return static_cast<ListObject&>(*m_content.object).items; }
inline std::vector<std::pair<Symbol, Value>>& Value::fields() const {
    return static_cast<RecordObject&>(*m_content.object).fields;
}
inline std::int64_t& Value::seconds() const { return static_cast<DateObject&>(*m_content.object).seconds; }
inline FileObject& Value::file() const { return static_cast<FileObject&>(*m_content.object); }
inline ApplicationObject& Value::application() const { return static_cast<ApplicationObject&>(*m_content.object); }
inline DataObject& Value::data() const { return static_cast<DataObject&>(*m_content.object); }

} // namespace mac::applescript
