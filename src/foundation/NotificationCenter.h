#pragma once

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace snaplift {

// What an observer is told: the event's name, who it happened to, and details by key. It lives as
// long as the post.
struct Notification {
  using UserInfo = std::map<std::string, std::any, std::less<>>;

  std::string_view name;
  void* object;  // the poster, by identity; the observer knows its type from the name
  const UserInfo& userInfo;

  // The detail `key` if it is there and is a T; otherwise nullptr.
  template <typename T>
  const T* value(std::string_view key) const {
    const auto found = userInfo.find(key);
    return found == userInfo.end() ? nullptr : std::any_cast<T>(&found->second);
  }
};

// Tells whoever subscribed, without the poster knowing them: a model thus reports to a controller
// that stands above it. Delivery is synchronous, on the posting thread, in the order of
// subscription. Every operation may be called on any thread, handlers included; no lock is held
// while a handler runs, so handlers may post, subscribe and unsubscribe.
class NotificationCenter {
  struct State;
  struct Observer;

public:
  using Handler = std::function<void(const Notification&)>;

  // One subscription, ended by remove() or by the token's end. When remove() returns, the handler
  // is not called any more and what it captured may be destroyed: a call that still runs on another
  // thread is waited for (so the caller must not hold what that handler waits for; a handler that
  // waits for the user interface is stopped first, see mainThread::beginQuitting). A handler may
  // remove its own token: that does not wait. A token may outlive its centre.
  class Token {
  public:
    Token() = default;
    Token(Token&& other) noexcept = default;
    Token& operator=(Token&& other) noexcept;
    ~Token() { remove(); }
    void remove();

  private:
    friend class NotificationCenter;
    Token(std::shared_ptr<State> state, std::shared_ptr<Observer> observer);
    std::shared_ptr<State> m_state;
    std::shared_ptr<Observer> m_observer;
  };

  NotificationCenter();
  NotificationCenter(const NotificationCenter&) = delete;
  NotificationCenter& operator=(const NotificationCenter&) = delete;

  // The one of the whole process.
  static NotificationCenter& defaultCenter();

  // Calls `handler` for each post of `name` by `object`, by anybody if that is nullptr.
  [[nodiscard]] Token addObserver(std::string name, const void* object, Handler handler);

  // Returns when every observer that was subscribed at the call has been told, save those that were
  // removed meanwhile. An observer that is added meanwhile hears of the next post.
  void post(std::string_view name, void* object, const Notification::UserInfo& userInfo = {});

private:
  std::shared_ptr<State> m_state;
};

}  // namespace snaplift
