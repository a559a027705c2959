#include "widgets/promises/XDropRequests.h"

#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

namespace snaplift {
namespace {

constexpr std::string_view listFormat = "text/uri-list";

std::uint32_t atom(xcb_connection_t* connection, std::string_view name) {
  const auto cookie =
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
      xcb_intern_atom_reply(connection, cookie, nullptr), std::free);
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace

void XDropRequests::answerWith(QMimeData& data) {
  if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) {
    new XDropRequests(data, x11->connection());  // the data's
  }
}

// Of several filters the one that was installed last is asked first.
XDropRequests::XDropRequests(QMimeData& data, xcb_connection_t* connection)
    : QObject(&data),
      m_data(data),
      m_connection(connection),
      m_selection(atom(connection, "XdndSelection")),
      m_list(atom(connection, listFormat)) {
  qGuiApp->installNativeEventFilter(this);
}

bool XDropRequests::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  constexpr int kind = 0x7F;  // without the mark of an event that another client has sent
  if ((event->response_type & kind) != XCB_SELECTION_REQUEST) {
    return false;
  }
  const auto& request = *static_cast<const xcb_selection_request_event_t*>(message);
  return isMeant(request) && answer(request);
}

bool XDropRequests::isMeant(const xcb_selection_request_event_t& request) const {
  return request.selection == m_selection && request.target == m_list &&
         request.time == XCB_CURRENT_TIME && request.property != XCB_ATOM_NONE;
}

bool XDropRequests::answer(const xcb_selection_request_event_t& request) const {
  const QByteArray list = m_data.data(QString::fromLatin1(listFormat));
  constexpr std::uint64_t unit = 4, header = 32;
  if (static_cast<std::uint64_t>(list.size()) + header >
      unit * xcb_get_maximum_request_length(m_connection)) {
    return false;
  }
  xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                      m_list, 8, static_cast<std::uint32_t>(list.size()), list.constData());
  xcb_selection_notify_event_t notice{};
  notice.response_type = XCB_SELECTION_NOTIFY;
  notice.time = request.time;
  notice.requestor = request.requestor;
  notice.selection = request.selection;
  notice.target = request.target;
  notice.property = request.property;
  xcb_send_event(m_connection, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                 reinterpret_cast<const char*>(&notice));
  xcb_flush(m_connection);
  return true;
}

}  // namespace snaplift
