#include "widgets/desktop/PlainText.h"

#include <algorithm>

namespace snaplift::plainText {

QString shortened(const QString& text) {
  return text.size() <= mostLetters ? text : text.left(mostLetters) + u'…';
}

QString shortened(std::string_view utf8) {
  constexpr std::size_t mostBytes = 4;  // of a letter
  const std::size_t length = std::min(utf8.size(), mostBytes * (mostLetters + 1));
  return shortened(QString::fromUtf8(utf8.data(), static_cast<qsizetype>(length)));
}

QString toolTip(const QString& text) {
  return text.isEmpty() ? QString()
                        : "<p style='white-space:pre-wrap'>" + text.toHtmlEscaped() + "</p>";
}

}  // namespace snaplift::plainText
