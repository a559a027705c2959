#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace snaplift {

// The two ends of the direct-save protocol of X drags (XDS): the source leaves the name of a file,
// the target replaces it by the URL that the file is to have. Few programs know it; and of those
// that do, each takes a list of files instead where a drag offers one as well. So what a drag
// offers depends on whose window is under the pointer. Abstract, so that all else about a drag can
// be tested without a display.
class DirectSaveChannel {
public:
  virtual ~DirectSaveChannel() = default;

  // Leaves `name` where targets look for it. To be called while the drag runs.
  virtual void offer(const std::string& name) = 0;
  // Whether the window under the pointer belongs to a program that saves directly. From now on it
  // sees no list among the drag's formats, and any other window sees it. To be called before the
  // drag itself learns of each move of the pointer.
  virtual bool lookAtTarget() = 0;
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
  bool lookAtTarget() override;
  std::string answer() override;
  void withdraw() override;

private:
  explicit XDirectSaveChannel(xcb_connection_t* connection) : m_connection(connection) {}
  std::uint32_t atom(const char* name) const;
  // Of a window in the server, as bytes; empty where there is none.
  std::string property(std::uint32_t window, std::uint32_t name) const;
  void announce(const std::vector<std::uint32_t>& formats) const;

  xcb_connection_t* m_connection;  // Qt's own, not owned
  std::uint32_t m_window = 0;
  std::vector<std::uint32_t> m_allFormats;     // as the drag announces them
  std::vector<std::uint32_t> m_directFormats;  // those of them that are no list
  std::uint32_t m_target = 0;                  // the window that was last looked at
  bool m_savesDirectly = false;
};

}  // namespace snaplift
