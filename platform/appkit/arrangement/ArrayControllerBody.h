#pragma once

#include "platform/appkit/arrangement/ContentReading.h"
#include "platform/appkit/arrangement/KeptOrder.h"
#include "platform/appkit/arrangement/KeyPathObserver.h"
#include "platform/appkit/arrangement/LateRelease.h"
#include "platform/appkit/arrangement/NSArrayController.h"
#include "platform/foundation/collections/ValueOrder.h"
#include <QScopedValueRollback>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace mac {

// The content in order, whether it passes the filter or not. A change of content, order or filter makes the arranged
// objects anew and carries the selection over. Reading an object may run anything: what that changes here is changed
// once the reading is done, but for the selection.
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

    // Another order, another filter or both; nullopt: stays as it is.
    struct Criteria {
        std::optional<NSArray> sortDescriptors{};
        std::optional<NSPredicate> filter{};
    };
    // So many objects are read, filtered or sorted without a break: what that takes is not felt.
    static constexpr std::size_t RowsInStep = 10'000;
    // Does what the two setters do, for what the user asks for. With more objects than a step has, the event loop works
    // it off in steps; all keys stay as they are until the last one. What is asked for meanwhile is added to it. A
    // content that is set at once meanwhile is shown in the former order and with the former filter at first.
    void changeInSteps(Criteria criteria);
    // Does what setContent does, likewise in steps while an event loop runs. What comes while another content is under
    // way waits until that is shown; of several that come the last one is shown. With a selection all is read in the
    // first step and what is selected has its new state from then on, or is no longer selected: an action must not meet
    // what has gone. What comes while another content is under way and an object is selected is shown at once.
    void changeContentInSteps(id const& content);
    // Those asked for by changeInSteps, else those in force.
    NSArray const& wantedSortDescriptors() const;

    NSUInteger contentCount() const { return static_cast<NSUInteger>(m_entries.size()); }
    // No object is there, and none is under way.
    bool isEmpty() const { return m_entries.empty() && !hasUpcomingContent(); }
    NSArray const& selectedObjects() const { return m_selected; }
    bool setSelectedObjects(NSArray const& objects);
    // Ascending rows of arrangedObjects.
    std::span<NSUInteger const> selectedRows() const { return m_selectedRows; }
    void setSelectedRows(std::vector<NSUInteger> rows);

    // While a change of arrangedObjects is told: what was arranged before, and where in it each object stood,
    // NSNotFound for a new one.
    NSArray const& previouslyArranged() const { return m_previouslyArranged; }
    std::span<NSUInteger const> previousRows() const { return m_previousRows; }

private:
    using Entry = ArrangedEntry;

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

    // What the two functions for steps have under way. Rows are those of m_entries, or of the content that is read.
    struct Upcoming {
        Criteria criteria{};
        // Another content; nullopt: the one that there is.
        std::optional<id> content{};
        std::optional<ContentReading> reading{};
        // One value for each criterion of the order, object after object; only with another order.
        std::vector<id> sortValues{};
        std::unique_ptr<RowOrdering> ordering{};
        std::optional<std::vector<std::size_t>> order{};
        bool isSelectionRenewed{false};
        // How many objects have been read, and which of them pass the filter.
        std::size_t read{0};
        std::vector<bool> passes{};
    };

    id self() { return id::retain(this); }
    // Makes the change, at once or when what is read just now has been read; changes come in the order of asking.
    void inTurn(std::function<void()> change);
    void makeWaitingChanges();
    // Reads objects while nothing but the selection changes.
    template <class Read>
    auto undisturbed(Read const& read) {
        QScopedValueRollback<bool> const reading(m_isReading, true);
        return read();
    }
    void replaceContent(id const& content);
    void beginContent(id const& content);
    std::vector<NSUInteger> rowsOfObjects(NSArray const& objects) const;
    ContentEntries read(id const& content) const;
    // The entries that there are, which may have changed in place.
    ContentEntries readAnew() const;
    // What was there before keeps its row, and whether it is selected.
    void takeOverRows(ContentEntries& content) const;
    Sorted sorted(ContentEntries content) const;
    // The filter answers of each entry whether it passes.
    Arrangement arrange(Sorted sorted, std::function<bool(std::size_t, Entry const&)> const& passes) const;
    Arrangement arrange(Sorted sorted) const;
    void show(Arrangement arrangement, std::function<void()> const& changeFurther,
              std::span<char const* const> furtherKeys);
    void readBinding();
    void change(Criteria criteria);
    void advanceLater();
    void takeStep();
    void advanceNowAndLater();
    // False while there is more to do.
    bool advance();
    bool arrangeSome();
    // Gives the selected objects the state that they have in the content that was read, and deselects those that are
    // not in it. True if it was told: then everything may have changed.
    bool renewSelection();
    bool hasUpcomingContent() const { return m_upcoming && m_upcoming->content; }
    // Of what is selected while another content is under way, the newest state is to be known at once.
    void hastenContent();
    void tellWhetherEmpty();
    void awaitIdentities(NSArray const& objects);
    // What no content that is under way has brought is not selected later.
    void stopAwaitingUpcoming();
    // Takes the selected objects out of the entries.
    void gatherSelection();
    bool readContent();
    bool readSortValues();
    bool findOrder();
    std::optional<std::vector<std::size_t>> orderWithoutSorting() const;
    bool filterSome();
    Sorted sorted(Upcoming& upcoming) const;
    void showUpcoming();
    std::vector<Entry> const& upcomingEntries() const;
    // What is read so far has become worthless.
    void beginAnew();
    void forgetUpcomingContent();
    void discard(id const& content);

    id m_content;
    std::vector<Entry> m_entries;
    KeptOrder m_order;
    NSArray m_arranged{NSArray::array()};
    NSArray m_descriptors{NSArray::array()};
    NSPredicate m_filter;
    NSString m_identityKeyPath;
    std::optional<Upcoming> m_upcoming;
    // What is shown in steps behind the content that is under way.
    std::optional<id> m_nextContent;
    // Sends the steps; null before the first.
    std::unique_ptr<QTimer> m_steps;
    bool m_isReading{false};
    std::deque<std::function<void()>> m_waitingChanges;
    std::vector<NSUInteger> m_selectedRows;
    // Newer than what stands in those rows while another content is under way.
    NSArray m_selected{NSArray::array()};
    // Identities of what was selected when the content became unknown, or is to be selected when what is under way is
    // shown.
    std::vector<id> m_awaited;
    // Whether they are awaited no longer than a content is under way.
    bool m_awaitsUpcoming{false};
    // Only while a change is told.
    NSArray m_previouslyArranged;
    std::vector<NSUInteger> m_previousRows;
    WeakReference m_boundObject;
    NSString m_boundKeyPath;
    std::unique_ptr<KeyPathObserver> m_binding;
    LateRelease m_discarded;
};

} // namespace mac
