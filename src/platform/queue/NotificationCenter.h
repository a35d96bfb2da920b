#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace sweepwright::platform {

/// Announcements by name. Observers run on the poster's thread, in the order they subscribed.
class NotificationCenter {
  public:
    /// Numbers that travel with a notification, by name (points, counts).
    using UserInfo = std::map<std::string, double, std::less<>>;
    using Observer = std::function<void(const UserInfo&)>;

    /// Ends its observation when destroyed: once its destructor or reset() has returned, the
    /// observer does not run and will not run, unless the call comes from within the observer.
    class Subscription {
      public:
        Subscription() = default;
        Subscription(Subscription&&) noexcept = default;
        Subscription& operator=(Subscription&& other) noexcept;
        ~Subscription();
        void reset();

      private:
        friend class NotificationCenter;
        struct Entry;
        explicit Subscription(std::shared_ptr<Entry> entry);
        std::shared_ptr<Entry> entry_;
    };

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    /// The process's one center.
    static NotificationCenter& defaultCenter();

    /// Runs `observer` at every post of `name` for as long as the subscription lives.
    [[nodiscard]] Subscription observe(std::string name, Observer observer);

    /// Runs the observers of `name` on this thread. An observer may subscribe, unsubscribe or post.
    void post(std::string_view name, const UserInfo& info = {});

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace sweepwright::platform
