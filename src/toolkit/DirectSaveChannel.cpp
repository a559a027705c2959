#include "toolkit/DirectSaveChannel.h"

#include <QGuiApplication>
#include <cstdlib>
#include <cstring>

#include <xcb/xcb.h>

namespace snaplift {
namespace {

constexpr const char* propertyName = "XdndDirectSave0";
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

void XDirectSaveChannel::offer(const std::string& name) {
  // Not the widget's window: Qt drags from a window of its own.
  const auto cookie = xcb_get_selection_owner(m_connection, atom("XdndSelection"));
  const ReplyPointer<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(m_connection, cookie, nullptr));
  m_window = reply ? reply->owner : 0;
  if (m_window != 0) {
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom(propertyName),
                        atom("text/plain"), 8, static_cast<std::uint32_t>(name.size()),
                        name.data());
    xcb_flush(m_connection);
  }
}

std::string XDirectSaveChannel::answer() {
  if (m_window == 0) {
    return {};
  }
  const auto cookie = xcb_get_property(m_connection, 0, m_window, atom(propertyName),
                                       XCB_GET_PROPERTY_TYPE_ANY, 0, longestAnswer);
  const ReplyPointer<xcb_get_property_reply_t> reply(
      xcb_get_property_reply(m_connection, cookie, nullptr));
  if (!reply || reply->format != 8) {
    return {};
  }
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

void XDirectSaveChannel::withdraw() {
  if (m_window != 0) {
    xcb_delete_property(m_connection, m_window, atom(propertyName));
    xcb_flush(m_connection);
  }
}

}  // namespace snaplift
