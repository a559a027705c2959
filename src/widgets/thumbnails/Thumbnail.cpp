#include "widgets/thumbnails/Thumbnail.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>

namespace snaplift {
namespace {

struct Words {
  Q_DECLARE_TR_FUNCTIONS(Thumbnail)
};

}  // namespace

ThumbnailTrouble troubleOf(const Thumbnail& thumbnail) {
  switch (thumbnail.state) {
    case Thumbnail::State::Missing:
      return {Words::tr("Missing"), Words::tr("The backup does not have this photo.")};
    case Thumbnail::State::Unreadable:
      return {Words::tr("Unreadable"), Words::tr("This photo is there, but it cannot be read.")};
    case Thumbnail::State::Undecodable:
      return {Words::tr("Damaged"),
              Words::tr("This photo is damaged, too large or of an unknown format.")};
    default:
      return thumbnail.isDamaged ? ThumbnailTrouble{Words::tr("Incomplete"),
                                                    Words::tr("A part of this photo is missing.")}
                                 : ThumbnailTrouble();
  }
}

QString filmLengthText(std::chrono::milliseconds length) {
  const auto seconds = std::chrono::ceil<std::chrono::seconds>(length).count();
  const QString clock =
      QString("%1:%2").arg(seconds / 60 % 60).arg(seconds % 60, 2, 10, QChar(u'0'));
  return seconds < 3600 ? clock : QString("%1:%2").arg(seconds / 3600).arg(clock, 5, QChar(u'0'));
}

int thumbnailStep(int pixels) {
  constexpr std::array steps{96, 128, 192, 256, 384, 512, 768, 1024, 1536};
  const auto* step = std::lower_bound(steps.begin(), steps.end(), pixels);
  return step == steps.end() ? 2048 : *step;
}

}  // namespace snaplift
