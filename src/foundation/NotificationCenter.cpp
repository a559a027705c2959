#include "foundation/NotificationCenter.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace snaplift {

struct NotificationCenter::Observer {
  const std::string name;
  const void* const object;
  Handler handler;                       // emptied on removal, once nobody runs it
  bool removed = false;                  // guarded by State::mutex
  std::vector<std::thread::id> running;  // guarded by State::mutex; a nested post is there twice

  bool runsElsewhere() const {
    return std::any_of(running.begin(), running.end(),
                       [](std::thread::id id) { return id != std::this_thread::get_id(); });
  }
};

struct NotificationCenter::State {
  std::mutex mutex;
  std::condition_variable handlerReturned;
  std::vector<std::shared_ptr<Observer>> observers;  // a dozen in a process: a list is enough

  bool enter(Observer& observer) {
    const std::lock_guard lock(mutex);
    if (!observer.removed) {
      observer.running.push_back(std::this_thread::get_id());
    }
    return !observer.removed;
  }

  void leave(Observer& observer) {
    const std::lock_guard lock(mutex);
    observer.running.erase(
        std::find(observer.running.begin(), observer.running.end(), std::this_thread::get_id()));
    handlerReturned.notify_all();
  }

  void remove(Observer& observer) {
    Handler handler;  // what it captured is destroyed after the lock: it may hold tokens itself
    std::unique_lock lock(mutex);
    observer.removed = true;
    std::erase_if(observers, [&](const auto& each) { return each.get() == &observer; });
    handlerReturned.wait(lock, [&] { return !observer.runsElsewhere(); });
    if (observer.running.empty()) {
      handler = std::move(observer.handler);
    }
    lock.unlock();
  }
};

NotificationCenter::Token::Token(std::shared_ptr<State> state, std::shared_ptr<Observer> observer)
    : m_state(std::move(state)), m_observer(std::move(observer)) {}

NotificationCenter::Token& NotificationCenter::Token::operator=(Token&& other) noexcept {
  Token ended(std::move(*this));
  m_state = std::move(other.m_state);
  m_observer = std::move(other.m_observer);
  return *this;
}

void NotificationCenter::Token::remove() {
  const auto state = std::exchange(m_state, nullptr);
  const auto observer = std::exchange(m_observer, nullptr);
  if (observer) {
    state->remove(*observer);
  }
}

NotificationCenter::NotificationCenter() : m_state(std::make_shared<State>()) {}

NotificationCenter& NotificationCenter::defaultCenter() {
  static NotificationCenter center;
  return center;
}

NotificationCenter::Token NotificationCenter::addObserver(std::string name, const void* object,
                                                          Handler handler) {
  auto observer =
      std::make_shared<Observer>(Observer{std::move(name), object, std::move(handler), false, {}});
  const std::lock_guard lock(m_state->mutex);
  m_state->observers.push_back(observer);
  return Token(m_state, std::move(observer));
}

void NotificationCenter::post(std::string_view name, void* object,
                              const Notification::UserInfo& userInfo) {
  const auto state = m_state;
  std::vector<std::shared_ptr<Observer>> told;
  {
    const std::lock_guard lock(state->mutex);
    std::copy_if(state->observers.begin(), state->observers.end(), std::back_inserter(told),
                 [&](const auto& each) {
                   return each->name == name && (!each->object || each->object == object);
                 });
  }
  const Notification notification{name, object, userInfo};
  for (const auto& observer : told) {
    if (state->enter(*observer)) {
      observer->handler(notification);
      state->leave(*observer);
    }
  }
}

}  // namespace snaplift
