#pragma once

#include <QString>
#include <chrono>
#include <cstdint>
#include <optional>

namespace snaplift {

// How fast something goes on, from what is done by when: the last seconds count most, and no answer
// is given before there is one worth giving.
class TransferRate {
public:
  using Time = std::chrono::steady_clock::time_point;

  // `done` never shrinks.
  void update(Time now, std::uint64_t done);

  // How much a second; absent in the beginning.
  std::optional<double> perSecond() const { return m_perSecond; }

private:
  std::optional<Time> m_last;
  std::uint64_t m_done = 0;
  std::optional<double> m_perSecond;
};

// "about 3 minutes left", in steps that do not flicker.
QString timeLeftText(double seconds);

}  // namespace snaplift
