#include "widgets/desktop/Motion.h"

#include <QApplication>
#include <QStyle>

namespace snaplift::motion {
namespace {

bool isReducedByUs = false;

}  // namespace

bool isReduced() {
  return isReducedByUs ||
         QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration) == 0;
}

void setReduced(bool reduced) {
  isReducedByUs = reduced;
}

}  // namespace snaplift::motion
