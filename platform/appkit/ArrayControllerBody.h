#pragma once

#include "platform/appkit/KeptOrder.h"
#include "platform/appkit/KeyPathObserver.h"
#include "platform/appkit/LateRelease.h"
#include "platform/appkit/NSArrayController.h"
#include <memory>
#include <span>
#include <vector>

namespace mac {

// The content in order, whether it passes the filter or not. A change of content, order or filter makes the arranged
// objects anew and carries the selection over.
class NSArrayController::Body : public ObjectBody {
public:
    id const& content() const { return m_content; }
    void setContent(id const& content);
    void bind(id const& object, NSString const& keyPath);
    void unbind() { m_binding.reset(); }

    NSArray const& arrangedObjects() const { return m_arranged; }
    void rearrange();
    NSArray const& sortDescriptors() const { return m_descriptors; }
    void setSortDescriptors(NSArray const& descriptors);
    NSPredicate const& filterPredicate() const { return m_filter; }
    void setFilterPredicate(NSPredicate const& predicate);
    NSString const& identityKeyPath() const { return m_identityKeyPath; }
    void setIdentityKeyPath(NSString const& keyPath);

    NSUInteger contentCount() const { return static_cast<NSUInteger>(m_entries.size()); }
    NSArray selectedObjects() const;
    bool setSelectedObjects(NSArray const& objects);
    // Ascending rows of arrangedObjects.
    std::span<NSUInteger const> selectedRows() const { return m_selectedRows; }
    void setSelectedRows(std::vector<NSUInteger> rows);

    // While a change of arrangedObjects is told: what was arranged before, and where in it each object stood,
    // NSNotFound for a new one.
    NSArray const& previouslyArranged() const { return m_previouslyArranged; }
    std::span<NSUInteger const> previousRows() const { return m_previousRows; }

private:
    // An object of the content; its row in arrangedObjects, NSNotFound when the filter keeps it out.
    struct Entry {
        id object;
        id identity;
        NSUInteger row{NSNotFound};
        bool isSelected{false};
    };

    // The objects of a new content as far as they are read. Those that were there before come first, in their old
    // order.
    struct Reading {
        std::vector<Entry> entries;
        std::vector<std::size_t> formerPlaces;
        std::vector<id> sortValues;
    };

    // What is shown next; made whole before anything changes, since reading objects may raise.
    struct Arrangement {
        std::vector<Entry> entries;
        std::vector<id> arranged;
        std::vector<NSUInteger> previousRows;
        std::vector<NSUInteger> selectedRows;
        std::vector<id> stillAwaited;
        std::vector<id> sortValues;
    };
    struct Sorted {
        std::vector<Entry> entries;
        std::vector<id> values;
    };

    id self() { return id::retain(this); }
    Entry makeEntry(id const& object) const;
    Reading read(id const& content) const;
    // The entries that there are, by other criteria or changed in place.
    Reading readAnew(NSArray const& criteria) const;
    Sorted sorted(Reading reading, NSArray const& criteria) const;
    Arrangement arrange(Sorted sorted, NSPredicate const& filter) const;
    void show(Arrangement arrangement, std::function<void()> const& changeFurther,
              std::span<char const* const> furtherKeys);
    void readBinding();

    id m_content;
    std::vector<Entry> m_entries;
    KeptOrder m_order;
    NSArray m_arranged{NSArray::array()};
    NSArray m_descriptors{NSArray::array()};
    NSPredicate m_filter;
    NSString m_identityKeyPath;
    std::vector<NSUInteger> m_selectedRows;
    // Identities of what was selected when the content became unknown.
    std::vector<id> m_awaited;
    // Only while a change is told.
    NSArray m_previouslyArranged;
    std::vector<NSUInteger> m_previousRows;
    WeakReference m_boundObject;
    NSString m_boundKeyPath;
    std::unique_ptr<KeyPathObserver> m_binding;
    LateRelease m_discarded;
};

} // namespace mac
