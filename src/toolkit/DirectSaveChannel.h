#pragma once

#include <cstdint>
#include <memory>
#include <string>

struct xcb_connection_t;

namespace snaplift {

// The two ends of the direct-save protocol of X drags (XDS): the source leaves the name of a file,
// the target replaces it by the URL that the file is to have. Abstract, so that all else about a
// drag can be tested without a display.
class DirectSaveChannel {
public:
  virtual ~DirectSaveChannel() = default;

  // Leaves `name` where targets look for it. To be called while the drag runs.
  virtual void offer(const std::string& name) = 0;
  // What stands there now: a URL after the drop, the bare name before. Empty where nothing does.
  virtual std::string answer() = 0;
  virtual void withdraw() = 0;
};

// The channel of the drag that this process is the source of: a property of the window that owns
// the selection "XdndSelection". Everything that the program says to X by itself is said here. User
// interface's thread.
class XDirectSaveChannel final : public DirectSaveChannel {
public:
  // Null where the display is not X.
  static std::unique_ptr<XDirectSaveChannel> make();

  void offer(const std::string& name) override;
  std::string answer() override;
  void withdraw() override;

private:
  explicit XDirectSaveChannel(xcb_connection_t* connection) : m_connection(connection) {}
  std::uint32_t atom(const char* name) const;

  xcb_connection_t* m_connection;  // Qt's own, not owned
  std::uint32_t m_window = 0;
};

}  // namespace snaplift
