#include "widgets/promises/DirectSaveChannel.h"

#include <QGuiApplication>
#include <cstdlib>
#include <cstring>

#include <xcb/xcb.h>

namespace snaplift {
namespace {

constexpr const char* propertyName = "XdndDirectSave0";
constexpr const char* formatsName = "XdndTypeList";
// File managers that were seen to save directly (the last knows a list of its own for that), as
// their windows name themselves.
constexpr const char* directSavers[] = {"pcmanfm", "thunar", "Thunar", "dolphin"};
constexpr std::uint32_t longestAnswer = 16'384;  // in units of four bytes; far beyond any path

struct Free {
  void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, Free>;

}  // namespace

std::unique_ptr<XDirectSaveChannel> XDirectSaveChannel::make() {
  const auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return application == nullptr ? nullptr
                                : std::unique_ptr<XDirectSaveChannel>(
                                      new XDirectSaveChannel(application->connection()));
}

std::uint32_t XDirectSaveChannel::atom(const char* name) const {
  const auto cookie =
      xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  const ReplyPointer<xcb_intern_atom_reply_t> reply(
      xcb_intern_atom_reply(m_connection, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::string XDirectSaveChannel::property(std::uint32_t window, std::uint32_t name) const {
  const auto cookie =
      xcb_get_property(m_connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, longestAnswer);
  const ReplyPointer<xcb_get_property_reply_t> reply(
      xcb_get_property_reply(m_connection, cookie, nullptr));
  if (!reply) {
    return {};
  }
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

void XDirectSaveChannel::offer(const std::string& name) {
  // Not the widget's window: Qt drags from a window of its own.
  const auto cookie = xcb_get_selection_owner(m_connection, atom("XdndSelection"));
  const ReplyPointer<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(m_connection, cookie, nullptr));
  m_window = reply ? reply->owner : 0;
  if (m_window == 0) {
    return;
  }
  xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom(propertyName),
                      atom("text/plain"), 8, static_cast<std::uint32_t>(name.size()), name.data());
  const std::string formats = property(m_window, atom(formatsName));
  m_allFormats.assign(formats.size() / sizeof(std::uint32_t), 0);
  formats.copy(reinterpret_cast<char*>(m_allFormats.data()), formats.size());
  m_directFormats = {atom(propertyName), atom("application/x-kde4-urilist")};
  xcb_flush(m_connection);
}

void XDirectSaveChannel::announce(const std::vector<std::uint32_t>& formats) const {
  xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom(formatsName),
                      XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(formats.size()),
                      formats.data());
  xcb_flush(m_connection);
}

bool XDirectSaveChannel::lookAtTarget() {
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
  const auto pointer = [this](xcb_window_t window) {
    return ReplyPointer<xcb_query_pointer_reply_t>(
        xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, window), nullptr));
  };
  const auto onRoot = pointer(root);
  const xcb_window_t target = onRoot ? onRoot->child : 0;
  if (target == m_target || m_window == 0) {
    return m_savesDirectly;
  }
  m_target = target;
  m_savesDirectly = false;
  // The window manager's frame has no class; the program's window inside of it has.
  std::string classes;
  for (xcb_window_t window = target; window != 0 && classes.empty();) {
    classes = property(window, XCB_ATOM_WM_CLASS);
    const auto inside = pointer(window);
    window = inside ? inside->child : 0;
  }
  for (const char* name : directSavers) {
    m_savesDirectly = m_savesDirectly || classes.c_str() == std::string_view(name);
  }
  announce(m_savesDirectly ? m_directFormats : m_allFormats);
  return m_savesDirectly;
}

std::string XDirectSaveChannel::answer() {
  return m_window == 0 ? std::string() : property(m_window, atom(propertyName));
}

void XDirectSaveChannel::withdraw() {
  if (m_window != 0) {
    xcb_delete_property(m_connection, m_window, atom(propertyName));
    xcb_flush(m_connection);
  }
}

}  // namespace snaplift
