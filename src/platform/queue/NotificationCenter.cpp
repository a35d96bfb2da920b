#include "platform/queue/NotificationCenter.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace sweepwright::platform {

using Subscription = NotificationCenter::Subscription;

struct NotificationCenter::State {
    std::mutex mutex;
    std::map<std::string, std::vector<std::shared_ptr<Subscription::Entry>>, std::less<>> observers;
};

struct NotificationCenter::Subscription::Entry {
    std::weak_ptr<State> center;
    std::string name;

    std::mutex mutex;
    std::condition_variable left;
    Observer observer;
    bool ended = false;
    std::vector<std::thread::id> inside;  ///< the threads that run the observer, once a call

    void call(const UserInfo& info) {
        {
            const std::scoped_lock lock(mutex);
            if (ended) return;
            inside.push_back(std::this_thread::get_id());
        }
        observer(info);
        const std::scoped_lock lock(mutex);
        inside.erase(std::ranges::find(inside, std::this_thread::get_id()));
        left.notify_all();
    }

    void end() {
        std::unique_lock lock(mutex);
        ended = true;
        const auto self = std::this_thread::get_id();
        const auto isSelf = [self](std::thread::id id) { return id == self; };
        left.wait(lock, [&] { return std::ranges::all_of(inside, isSelf); });
    }

    void leaveCenter(const std::shared_ptr<Entry>& self) const {
        const auto state = center.lock();
        if (!state) return;
        const std::scoped_lock lock(state->mutex);
        const auto list = state->observers.find(name);
        if (list == state->observers.end()) return;
        std::erase(list->second, self);
        if (list->second.empty()) state->observers.erase(list);
    }
};

Subscription::Subscription(std::shared_ptr<Entry> entry) : entry_(std::move(entry)) {}

Subscription& Subscription::operator=(Subscription&& other) noexcept {
    if (this != &other) {
        reset();
        entry_ = std::move(other.entry_);
    }
    return *this;
}

Subscription::~Subscription() {
    reset();
}

void Subscription::reset() {
    const auto entry = std::exchange(entry_, nullptr);
    if (!entry) return;
    entry->leaveCenter(entry);
    entry->end();
}

NotificationCenter::NotificationCenter() : state_(std::make_shared<State>()) {}

NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::defaultCenter() {
    static auto* const center = new NotificationCenter;  // workers may post until the end
    return *center;
}

Subscription NotificationCenter::observe(std::string name, Observer observer) {
    auto entry = std::make_shared<Subscription::Entry>();
    entry->center = state_;
    entry->name = name;
    entry->observer = std::move(observer);
    const std::scoped_lock lock(state_->mutex);
    state_->observers[std::move(name)].push_back(entry);
    return Subscription(std::move(entry));
}

void NotificationCenter::post(std::string_view name, const UserInfo& info) {
    std::vector<std::shared_ptr<Subscription::Entry>> observers;
    {
        const std::scoped_lock lock(state_->mutex);
        const auto list = state_->observers.find(name);
        if (list != state_->observers.end()) observers = list->second;
    }
    for (const auto& observer : observers)
        observer->call(info);
}

}  // namespace sweepwright::platform
