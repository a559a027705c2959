#include "app/export/DesktopNotification.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QGuiApplication>
#include <QStringList>
#include <QVariantMap>

namespace snaplift {
namespace {

constexpr int timeTheDesktopChooses = -1;

}  // namespace

void notifyDesktop(const QString& text) {
  QDBusMessage call = QDBusMessage::createMethodCall("org.freedesktop.Notifications",
                                                     "/org/freedesktop/Notifications",
                                                     "org.freedesktop.Notifications", "Notify");
  const QString program = QGuiApplication::desktopFileName();
  // As the summary, which is plain; in the body below it, services read markup.
  call << QGuiApplication::applicationDisplayName() << 0U << program << text << QString()
       << QStringList() << QVariantMap{{"desktop-entry", program}} << timeTheDesktopChooses;
  QDBusConnection::sessionBus().asyncCall(call);
}

}  // namespace snaplift
