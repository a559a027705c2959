#include "widgets/desktop/TypeSelect.h"

#include <QApplication>
#include <QStringView>
#include <algorithm>

namespace snaplift {
namespace {

bool isDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

// The last run of digits before the extension.
QStringView numberOf(QStringView title) {
  const qsizetype dot = title.lastIndexOf(u'.');
  qsizetype end = dot > 0 ? dot : title.size();
  while (end > 0 && !isDigit(title[end - 1])) {
    --end;
  }
  qsizetype begin = end;
  while (begin > 0 && isDigit(title[begin - 1])) {
    --begin;
  }
  return title.sliced(begin, end - begin);
}

QStringView withoutZeros(QStringView digits) {
  while (digits.startsWith(u'0')) {
    digits = digits.sliced(1);
  }
  return digits;
}

int indexOfNumber(const QString& typed, int count, const std::function<QString(int)>& titleAt) {
  int beginning = -1;
  for (int index = 0; index < count; ++index) {
    const QString title = titleAt(index);
    const QStringView number = numberOf(title);
    if (number.isEmpty()) {
      continue;
    }
    if (withoutZeros(number) == withoutZeros(typed)) {
      return index;
    }
    if (beginning < 0 && (number.startsWith(typed) || withoutZeros(number).startsWith(typed))) {
      beginning = index;
    }
  }
  return beginning;
}

}  // namespace

const QString& TypeSelect::add(const QString& text) {
  m_typed = isTyping() ? m_typed + text : text;
  m_sinceLastKey.start();
  return m_typed;
}

bool TypeSelect::isTyping() const {
  return m_sinceLastKey.isValid() &&
         m_sinceLastKey.elapsed() < qint64{2} * QApplication::keyboardInputInterval();
}

int indexOfTyped(const QString& typed, int count, int focus,
                 const std::function<QString(int)>& titleAt) {
  if (typed.isEmpty() || count == 0) {
    return -1;
  }
  if (std::all_of(typed.begin(), typed.end(), isDigit)) {
    return indexOfNumber(typed, count, titleAt);
  }
  const int start = std::max(focus, 0) + (typed.size() == 1 && focus >= 0 ? 1 : 0);
  for (int i = 0; i < count; ++i) {
    const int index = (start + i) % count;
    if (titleAt(index).startsWith(typed, Qt::CaseInsensitive)) {
      return index;
    }
  }
  return -1;
}

}  // namespace snaplift
