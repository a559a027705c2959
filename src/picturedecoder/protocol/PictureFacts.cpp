#include "picturedecoder/protocol/PictureFacts.h"

#include <algorithm>
#include <chrono>

namespace snaplift {
namespace {

constexpr double longestExposure = 1'000'000;  // in seconds
constexpr double largestAperture = 1'000;
constexpr std::uint32_t largestIso = 100'000'000;

// Also false for what is no number.
bool isWithin(double value, double least, double most) {
  return value >= least && value <= most;
}

bool isPossible(const PictureFacts::Clock& clock) {
  const auto isIn = [](std::int32_t value, std::int32_t least, std::int32_t most) {
    return value >= least && value <= most;
  };
  return isIn(clock.year, 1, 9'999) && isIn(clock.month, 1, 12) && isIn(clock.day, 1, 31) &&
         std::chrono::year_month_day(std::chrono::year(clock.year),
                                     std::chrono::month(static_cast<unsigned>(clock.month)),
                                     std::chrono::day(static_cast<unsigned>(clock.day)))
             .ok() &&
         isIn(clock.hour, 0, 23) && isIn(clock.minute, 0, 59) && isIn(clock.second, 0, 59);
}

void keepOrClear(double& value, double most) {
  value = value > 0 && isWithin(value, 0, most) ? value : 0;
}

// Nothing behind the end, where one process could hide from the other what it was not asked for.
void endText(PictureFacts::Text& text) {
  text.back() = '\0';
  std::fill(std::find(text.begin(), text.end(), '\0'), text.end(), '\0');
}

}  // namespace

PictureFacts plausible(PictureFacts facts) {
  endText(facts.maker);
  endText(facts.model);
  if (!isPossible(facts.taken)) {
    facts.taken = {};
  }
  keepOrClear(facts.exposure, longestExposure);
  keepOrClear(facts.aperture, largestAperture);
  facts.iso = facts.iso <= largestIso ? facts.iso : 0;
  if (facts.hasPosition != 1 || !isWithin(facts.latitude, -90, 90) ||
      !isWithin(facts.longitude, -180, 180)) {
    facts.hasPosition = 0;
    facts.latitude = facts.longitude = 0;
  }
  return facts;
}

}  // namespace snaplift
