#pragma once

#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_NodeAllocator.h"
#include "misc/rktl_TimeStamp.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <deque>
#include <utility>

namespace rktl {

/// Dated items, oldest first, of which those older than a window behind the newest are forgotten. Items of one time stand in
/// the order of their insertion. Not thread-safe.
///
/// Iterators walk the entries: first is the time, which must not be changed, second the item. They are good until the next
/// change of the queue. Items: where the entries stand, such as Fifo for short queues of plain values.
template <class T, class Items = std::deque<std::pair<TimeStamp, T>, NodeAllocator<std::pair<TimeStamp, T>>>> class TimeQueue {
public:
    using Entry = std::pair<TimeStamp, T>;
    using iterator = typename Items::iterator;
    using const_iterator = typename Items::const_iterator;

    /// window: how far back the queue keeps, not negative; throws rktl::Exception otherwise.
    explicit TimeQueue(ElapsedTime const& window)
        : mWindow(window)
    {
        if (window < ElapsedTime())
            fail("TimeQueue() - time window can not be negative");
    }
    virtual ~TimeQueue() = default;
    TimeQueue(TimeQueue const&) = default;
    TimeQueue(TimeQueue&&) = default;
    TimeQueue& operator=(TimeQueue const&) = default;
    TimeQueue& operator=(TimeQueue&&) = default;

    /// Puts the item at its place in time and forgets what lies more than the window before the newest entry. An item older
    /// than all others stays, and forgets nothing, until the next insertion.
    void insert(T item, TimeStamp const& time);

    /// Forgets, from the oldest on, each entry that lies more than the window before time.
    void clean(TimeStamp const& time);

    /// True when the entries together with time span more than the window; false on an empty queue.
    bool willPop(TimeStamp const& time) const;

    /// The entries that are older than time - window, as a range from the oldest on. Empty, at the end, on an empty queue and
    /// when the newest entry lies after time.
    std::pair<iterator, iterator> top(TimeStamp const& time);

    /// Throw rktl::Exception on an empty queue.
    T& oldest() { return entry(mItems.begin(), "oldest() - queue is empty").second; }
    T const& oldest() const { return entry(mItems.begin(), "oldest() - queue is empty").second; }
    T& newest() { return entry(newestPosition(*this), "newest() - queue is empty").second; }
    T const& newest() const { return entry(newestPosition(*this), "newest() - queue is empty").second; }
    TimeStamp const& oldestTime() const { return entry(mItems.begin(), "oldestTime() - queue is empty").first; }
    TimeStamp const& newestTime() const { return entry(newestPosition(*this), "newestTime() - queue is empty").first; }

    /// For Items that have it.
    void prefetch() const { mItems.prefetch(); }

    ElapsedTime const& getWindow() const { return mWindow; }
    bool empty() const { return mItems.empty(); }
    size_t size() const { return mItems.size(); }
    iterator begin() { return mItems.begin(); }
    iterator end() { return mItems.end(); }
    const_iterator begin() const { return mItems.begin(); }
    const_iterator end() const { return mItems.end(); }

    /// Returns the position behind the erased entry.
    iterator erase(iterator position) { return mItems.erase(position); }
    void clear() { mItems.clear(); }

private:
    // The end of an empty queue.
    template <class Queue> static auto newestPosition(Queue& queue)
    {
        return queue.mItems.empty() ? queue.mItems.end() : std::prev(queue.mItems.end());
    }

    template <class Position> auto& entry(Position position, char const* failure) const
    {
        if (mItems.empty())
            fail(failure);
        return *position;
    }

    [[noreturn]] static void fail(char const* text)
    {
        throw Exception("libraries/src/misc/rktl_TimeQueue", "rkml::TimeQueue", text);
    }

    Items mItems;
    ElapsedTime mWindow;
};

template <class T, class Items> void TimeQueue<T, Items>::insert(T item, TimeStamp const& time)
{
    if (mItems.empty()) {
        mItems.emplace_back(time, std::move(item));
        return;
    }
    if (time < oldestTime()) {
        mItems.emplace_front(time, std::move(item));
        return;
    }
    auto behind = mItems.end();
    while (time < std::prev(behind)->first)
        --behind;
    if (behind == mItems.end()) // as nearly always
        mItems.emplace_back(time, std::move(item));
    else
        mItems.emplace(behind, time, std::move(item));
    clean(newestTime());
}

template <class T, class Items> void TimeQueue<T, Items>::clean(TimeStamp const& time)
{
    while (!mItems.empty() && time - mItems.front().first > mWindow)
        mItems.pop_front();
}

template <class T, class Items> bool TimeQueue<T, Items>::willPop(TimeStamp const& time) const
{
    return !mItems.empty() && std::max(time, newestTime()) - std::min(time, oldestTime()) > mWindow;
}

template <class T, class Items>
std::pair<typename TimeQueue<T, Items>::iterator, typename TimeQueue<T, Items>::iterator> TimeQueue<T, Items>::top(
    TimeStamp const& time)
{
    if (mItems.empty() || newestTime() > time)
        return {end(), end()};
    TimeStamp const limit = time - mWindow;
    return {begin(), std::find_if(begin(), end(), [&](Entry const& entry) { return !(entry.first < limit); })};
}

} // namespace rktl
