#include "app/details/DetailsText.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>
#include <chrono>
#include <cmath>

#include "widgets/desktop/PlainText.h"

namespace snaplift::detailsText {
namespace {

class Words {
  Q_DECLARE_TR_FUNCTIONS(Details)
};

// A camera writes what it likes: one line of it.
QString plain(const PictureFacts::Text& text) {
  return plainText::shortened(std::string_view(text.data())).simplified();
}

QString degrees(double value, const QString& positive, const QString& negative) {
  constexpr int digits = 5;  // a metre
  return Words::tr("%1° %2").arg(QLocale().toString(std::abs(value), 'f', digits),
                                 value < 0 ? negative : positive);
}

}  // namespace

QString date(const QDateTime& date) {
  return Words::tr("%1, %2").arg(
      QString::fromStdString(longDateText(instantFromUnixTime(date.toSecsSinceEpoch()))),
      QLocale().toString(date.time(), QLocale::ShortFormat));
}

QDateTime localDate(Instant instant) {
  using std::chrono::milliseconds;
  return QDateTime::fromMSecsSinceEpoch(
      std::chrono::floor<milliseconds>(instant.time_since_epoch()).count());
}

QDateTime photoDate(const PictureFacts& facts) {
  const PictureFacts::Clock& taken = facts.taken;
  return taken.year == 0 ? QDateTime()
                         : QDateTime(QDate(taken.year, taken.month, taken.day),
                                     QTime(taken.hour, taken.minute, taken.second));
}

QString dates(Instant first, Instant last) {
  const QString begin = QString::fromStdString(longDateText(first));
  const QString end = QString::fromStdString(longDateText(last));
  return begin == end ? begin : Words::tr("%1 – %2").arg(begin, end);
}

QString bytes(std::uint64_t count) {
  return QLocale().formattedDataSize(static_cast<qint64>(count), 1, QLocale::DataSizeSIFormat);
}

QString exactBytes(std::uint64_t count) {
  constexpr std::uint64_t smallest = 1'000;  // of which bytes() names not each byte
  return count < smallest
             ? bytes(count)
             : Words::tr("%1 (%2 bytes)")
                   .arg(bytes(count), QLocale().toString(static_cast<qulonglong>(count)));
}

QString kind(PhotoKind kind) {
  switch (kind) {
    case PhotoKind::Original:
      return Words::tr("Original");
    case PhotoKind::Edited:
      return Words::tr("Edited");
    case PhotoKind::Cloud:
      return Words::tr("Cloud library");
    case PhotoKind::Derived:
      break;
  }
  return Words::tr("Other");
}

QString pixels(int width, int height) {
  return Words::tr("%1 × %2").arg(width).arg(height);
}

QString counts(std::size_t photos, std::size_t films) {
  const auto number = [](std::size_t count) {
    return QLocale().toString(static_cast<qulonglong>(count));
  };
  const QString photosText =
      photos == 1 ? Words::tr("1 photo") : Words::tr("%1 photos").arg(number(photos));
  const QString filmsText =
      films == 1 ? Words::tr("1 film") : Words::tr("%1 films").arg(number(films));
  return films == 0    ? photosText
         : photos == 0 ? filmsText
                       : Words::tr("%1 and %2").arg(photosText, filmsText);
}

QString camera(const PictureFacts& facts) {
  const QString maker = plain(facts.maker);
  const QString model = plain(facts.model);
  return model.startsWith(maker, Qt::CaseInsensitive) ? model : (maker + " " + model).trimmed();
}

QString exposure(const PictureFacts& facts) {
  constexpr double shortest = 0.3;  // of the times that are written in seconds
  const QLocale locale;
  QStringList parts;
  if (facts.exposure > 0) {
    parts << (facts.exposure < shortest
                  ? Words::tr("1/%1 s").arg(locale.toString(std::round(1 / facts.exposure), 'f', 0))
                  : Words::tr("%1 s").arg(locale.toString(facts.exposure, 'g', 3)));
  }
  if (facts.aperture > 0) {
    parts << Words::tr("f/%1").arg(locale.toString(facts.aperture, 'g', 3));
  }
  if (facts.iso > 0) {
    parts << Words::tr("ISO %1").arg(facts.iso);
  }
  return parts.join(", ");
}

QString position(const PictureFacts& facts) {
  return facts.hasPosition == 0
             ? QString()
             : Words::tr("%1, %2").arg(degrees(facts.latitude, Words::tr("N"), Words::tr("S")),
                                       degrees(facts.longitude, Words::tr("E"), Words::tr("W")));
}

QString plainPosition(const PictureFacts& facts) {
  constexpr int digits = 6;
  return facts.hasPosition == 0 ? QString()
                                : QString::number(facts.latitude, 'f', digits) + ", " +
                                      QString::number(facts.longitude, 'f', digits);
}

QString devicePath(const PhotoInfo& info) {
  return plainText::shortened(info.devicePath).replace('\n', ' ');
}

}  // namespace snaplift::detailsText
