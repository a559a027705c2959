#include "widgets/desktop/TransferRate.h"

#include <QCoreApplication>
#include <cmath>

namespace snaplift {
namespace {

struct RateWords {
  Q_DECLARE_TR_FUNCTIONS(TransferRate)
};

// Less says more about the clock than about the disk.
constexpr double shortestStep = 0.5;
// After so many seconds, a change of speed is believed by two thirds.
constexpr double memory = 5;

constexpr double minute = 60;
constexpr double hour = 60 * minute;

}  // namespace

void TransferRate::update(Time now, std::uint64_t done) {
  if (!m_last) {
    m_last = now;
    m_done = done;
    return;
  }
  const double seconds = std::chrono::duration<double>(now - *m_last).count();
  if (seconds < shortestStep) {
    return;
  }
  const double latest = static_cast<double>(done - m_done) / seconds;
  const double weight = 1 - std::exp(-seconds / memory);
  m_perSecond = m_perSecond ? *m_perSecond + weight * (latest - *m_perSecond) : latest;
  m_last = now;
  m_done = done;
}

QString timeLeftText(double seconds) {
  if (seconds < minute) {
    return RateWords::tr("less than a minute left");
  }
  if (seconds >= 99 * hour) {
    return RateWords::tr("more than 99 hours left");
  }
  const bool areHours = seconds >= 1.5 * hour;
  const int count = static_cast<int>(std::lround(seconds / (areHours ? hour : minute)));
  if (areHours) {
    return RateWords::tr("about %n hours left", nullptr, count);
  }
  return count == 1 ? RateWords::tr("about 1 minute left")
                    : RateWords::tr("about %n minutes left", nullptr, count);
}

}  // namespace snaplift
