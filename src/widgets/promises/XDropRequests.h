#pragma once

#include <QAbstractNativeEventFilter>
#include <QMimeData>
#include <QObject>
#include <cstdint>

struct xcb_connection_t;
struct xcb_selection_request_event_t;

namespace snaplift {

// Answers who asks for the list of dragged files without saying when they were dragged. Programs of
// GTK 4 do so, and from a window that no drag leads to: Qt cannot tell which drag they mean, and
// refuses. They mean the latest, for there is one pointer. All other requests are left to Qt.
//
// Belongs to the data of a drag and lives as long as that. User interface's thread.
class XDropRequests final : public QObject, public QAbstractNativeEventFilter {
public:
  // From here on for `data`; does nothing without an X server.
  static void answerWith(QMimeData& data);

private:
  XDropRequests(QMimeData& data, xcb_connection_t* connection);
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  bool isMeant(const xcb_selection_request_event_t& request) const;
  bool answer(const xcb_selection_request_event_t& request) const;

  QMimeData& m_data;
  xcb_connection_t* const m_connection;
  const std::uint32_t m_selection;
  const std::uint32_t m_list;
};

}  // namespace snaplift
