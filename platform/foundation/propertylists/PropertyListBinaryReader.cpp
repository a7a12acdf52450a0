#include "platform/foundation/propertylists/PropertyList.h"
#include "platform/foundation/propertylists/PropertyListBinaryFile.h"
#include "platform/foundation/propertylists/PropertyListBuilder.h"
#include <algorithm>

namespace mac {

namespace {

// An object of the file that has been read, or is being read when it is a container.
struct Seen {
    id object{};
    // The number of objects in the tree below, the object included; a shared object counts at each place.
    std::uint64_t objects{0};
    std::uint64_t contents{0};
    std::size_t height{0};
    bool isOpen{false};
};

// A container whose members are being read. A dictionary's references are its keys, then as many values.
struct Open {
    std::size_t reference;
    BinaryContainer container;
    std::size_t next{0};
    std::vector<NSString> keys{};
    std::vector<id> values{};
    Seen total{};
};

class BinaryReader {
public:
    BinaryReader(BinaryFile const& file, NSPropertyListMutabilityOptions option)
        : m_file(file), m_objects(option), m_seen(file.count()) {}

    Result<id, Failure> read() {
        std::string reason = visit(m_file.top());
        while (reason.empty() && !m_open.empty())
            reason = step();
        if (!reason.empty()) return Failure{std::move(reason)};
        return m_root.object;
    }

private:
    // Reads the innermost open container's next member, or closes it.
    std::string step() {
        Open& open = m_open.back();
        if (open.next == open.container.referenceCount()) return close();
        std::size_t const reference = m_file.reference(open.container, open.next);
        if (reference >= m_file.count())
            return atOffset("A reference leads outside of the file's objects", open.container.offset);
        return visit(reference);
    }

    std::string visit(std::size_t reference) {
        Seen const& seen = m_seen[reference];
        if (seen.isOpen) return atOffset("A container holds itself", m_file.offset(reference));
        if (seen.object != nil && !isToBeOwn(seen.object)) return add(seen);
        BinaryObject object;
        if (std::string reason = m_file.readObject(reference, object); !reason.empty()) return reason;
        if (object.container) return open(reference, *object.container);
        if (!m_budget.add(0, object.contents())) return atOffset(kPropertyListTooLarge, m_file.offset(reference));
        Seen const leaf{.object = leafObject(object), .objects = 1, .contents = object.contents(), .height = 0};
        m_seen[reference] = leaf;
        return add(leaf);
    }

    // Mutable objects that are shared in the file are not shared by the list.
    bool isToBeOwn(id const& object) const {
        if (m_objects.makesMutableContainers() &&
            (object.isKindOfClass_(classOf<NSArray>()) || object.isKindOfClass_(classOf<NSDictionary>())))
            return true;
        return m_objects.makesMutableLeaves() &&
               (object.isKindOfClass_(classOf<NSString>()) || object.isKindOfClass_(classOf<NSData>()));
    }

    id leafObject(BinaryObject const& object) const {
        if (object.string) return m_objects.string(*object.string);
        if (object.data) return m_objects.data(*object.data);
        return object.value;
    }

    std::string open(std::size_t reference, BinaryContainer const& container) {
        if (m_open.size() >= kPropertyListMaximumDepth) return atOffset(kPropertyListTooDeep, container.offset);
        m_seen[reference].isOpen = true;
        m_open.push_back({.reference = reference, .container = container, .total = {.objects = 1}});
        return {};
    }

    std::string close() {
        Open open = std::move(m_open.back());
        m_open.pop_back();
        open.total.height += 1;
        if (open.container.isDictionary)
            open.total.object = m_objects.dictionary(open.keys, open.values);
        else
            open.total.object = m_objects.array(std::move(open.values));
        m_seen[open.reference] = open.total;
        return add(open.total);
    }

    // Gives an object that has been read to the innermost open container.
    std::string add(Seen const& member) {
        if (m_open.empty()) {
            m_root = member;
            return {};
        }
        Open& open = m_open.back();
        Seen& total = open.total;
        total.objects += member.objects;
        total.contents += member.contents;
        total.height = std::max(total.height, member.height);
        if (total.objects > kPropertyListMaximumObjects || total.contents > kPropertyListMaximumContents)
            return atOffset(kPropertyListTooLarge, open.container.offset);
        if (m_open.size() + member.height > kPropertyListMaximumDepth)
            return atOffset(kPropertyListTooDeep, open.container.offset);
        bool const isKey = open.container.isDictionary && open.next < open.container.count;
        ++open.next;
        // The totals bound what a walk meets; this bounds what is held while containers are open.
        if (!m_budget.add(1)) return atOffset(kPropertyListTooLarge, open.container.offset);
        if (!isKey) {
            open.values.push_back(member.object);
            return {};
        }
        if (!member.object.isKindOfClass_(classOf<NSString>()))
            return atOffset("A dictionary has a key that is no string", open.container.offset);
        open.keys.push_back(uncheckedCast<NSString>(member.object));
        return {};
    }

    BinaryFile const& m_file;
    PropertyListObjects m_objects;
    PropertyListBudget m_budget;
    std::vector<Seen> m_seen;
    std::vector<Open> m_open;
    Seen m_root;
};

} // namespace

bool isPropertyListBinary(std::span<std::byte const> data) {
    std::string_view const bytes(reinterpret_cast<char const*>(data.data()), data.size());
    return bytes.starts_with(kBinaryMagic);
}

Result<id, Failure> readPropertyListBinary(std::span<std::byte const> data, NSPropertyListMutabilityOptions option) {
    Result<BinaryFile, Failure> const file = BinaryFile::open(data);
    if (!file.hasValue()) return Failure{file.problem().reason};
    return BinaryReader(file.value(), option).read();
}

} // namespace mac
