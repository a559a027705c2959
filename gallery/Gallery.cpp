#include "Gallery.h"

#include <QPixmap>
#include <QWidget>

namespace snaplift::gallery {
namespace {

QPalette palette(QRgb window, QRgb base, QRgb text, QRgb button, QRgb highlight) {
  QPalette colors{QColor(button), QColor(window)};
  colors.setColor(QPalette::Base, base);
  colors.setColor(QPalette::AlternateBase, window);
  colors.setColor(QPalette::Highlight, highlight);
  colors.setColor(QPalette::HighlightedText, Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                          QPalette::ToolTipText, QPalette::BrightText}) {
    colors.setColor(role, text);
  }
  return colors;
}

}  // namespace

void save(QWidget& window, const QString& folder, const QString& name) {
  const QPixmap picture = window.grab();
  picture.save(QStringLiteral("%1/%2@%3x.png").arg(folder, name).arg(picture.devicePixelRatio()));
}

QPalette lightPalette() {
  return palette(0xffefeff0, 0xffffffff, 0xff232629, 0xfffcfcfc, 0xff3476c8);
}

QPalette darkPalette() {
  return palette(0xff2a2e32, 0xff1b1e20, 0xfffcfcfc, 0xff31363b, 0xff2f6fb5);
}

}  // namespace snaplift::gallery
