#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mac {

// Items that other programs name and that may lie on a volume whose server has stopped, such as those of the user's
// places. The system gives a call to such a volume no time-out, so an item's status is asked for in another thread
// before the main thread reads anything of the item. Between the answer and the reading a server may still stop.
// Main thread.
class AnsweringItems {
public:
    // Asks for the status of the item at the path and comes back with the answer, whatever it is. Called in any thread.
    using Question = std::function<void(std::string const& path)>;

    // How long it waits for one item that is only to be drawn or described.
    static constexpr std::chrono::milliseconds Glance{200};
    // With more items than this, those that have answered and are not asked for again are forgotten.
    static constexpr std::size_t MostAnswered = 1024;

    // The question is the system's status call unless another one is handed in.
    explicit AnsweringItems(Question question = {});
    ~AnsweringItems();
    AnsweringItems(AnsweringItems const&) = delete;
    AnsweringItems& operator=(AnsweringItems const&) = delete;

    // The one of the program.
    static std::shared_ptr<AnsweringItems> const& shared();

    // Asks for all items and waits for the answers, for as long as the thread's patience lasts (Patience.h), and for
    // 0.1 s if that is over: what others waited for says nothing of these. One that has not answered by then is logged
    // once and is silent until it does; meanwhile it is neither asked nor waited for again. Whoever hands in a function
    // does without the silent items for now: when such an item has answered, the run loop calls the function that came
    // with its path last.
    void ask(std::vector<std::string> const& paths, std::function<void()> const& answeredLate = {});
    // Whether the item has been asked for and has not answered.
    bool isSilent(std::string const& path) const;
    // Whether the item may be read. A path that was never asked for, or is forgotten, may; any other is asked for
    // again, for at most a glance, and for 10 ms in a turn of the run loop in which an item has missed its glance
    // already. Nobody is told when one that missed it answers: a slow volume would have the same things drawn over and
    // over.
    bool mayRead(std::string const& path);

private:
    void forgetAllBut(std::vector<std::string> const& paths);
    void askFor(std::vector<std::string> const& paths, std::chrono::milliseconds longest);

    struct Known;
    std::shared_ptr<Known> m_known;
};

} // namespace mac
