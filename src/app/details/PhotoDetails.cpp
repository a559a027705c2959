#include "app/details/PhotoDetails.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <cstdlib>
#include <utility>

#include "app/details/DetailsText.h"
#include "app/details/PhotoFrame.h"
#include "widgets/desktop/MainThread.h"
#include "widgets/desktop/PlainText.h"

namespace snaplift {
namespace {

constexpr int margin = 12;
// Sharp in the frame, also on a fine screen, and small enough for the decoder's memory.
constexpr int framePixels = 384;
constexpr int previewPixels = 160;  // what cameras embed

// The share of Get Info of what all decoders may take; see docs/architecture.md.
LoaderLimits detailLimits() {
  LoaderLimits limits;
  limits.memory = 40'000'000;
  limits.largeMemory = 0;
  return limits;
}

QToolButton* closeButton(QWidget* parent, const QString& name) {
  auto* button = new QToolButton(parent);
  button->setText(QStringLiteral("×"));
  button->setAccessibleName(name);
  button->setToolTip(name);
  button->setAutoRaise(true);
  return button;
}

}  // namespace

PhotoDetails::PhotoDetails(QWidget* parent)
    : QWidget(parent),
      m_title(new QLabel(this)),
      m_frame(new PhotoFrame(this)),
      m_table(new FactTable(this)),
      m_copyPosition(new QPushButton(tr("Copy Position"), this)),
      m_self(std::make_shared<PhotoDetails*>(this)) {
  setAccessibleName(tr("Info"));
  QFont bold = font();
  bold.setBold(true);
  m_title->setFont(bold);
  m_title->setTextFormat(Qt::PlainText);
  m_title->setWordWrap(true);
  m_title->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  QToolButton* close = closeButton(this, tr("Close Info"));
  connect(close, &QToolButton::clicked, this, &PhotoDetails::closeWanted);
  auto* top = new QHBoxLayout;
  top->addWidget(m_title, 1);
  top->addWidget(close, 0, Qt::AlignTop);

  auto* content = new QWidget;
  auto* facts = new QVBoxLayout(content);
  facts->setContentsMargins(margin, 0, margin, margin);
  facts->setSpacing(margin);
  facts->addWidget(m_frame);
  facts->addWidget(m_table);
  facts->addWidget(m_copyPosition, 0, Qt::AlignLeft);
  facts->addStretch(1);
  auto* scroll = new QScrollArea(this);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidgetResizable(true);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->setWidget(content);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  top->setContentsMargins(margin, margin, margin / 2, 0);
  layout->addLayout(top);
  layout->addWidget(scroll, 1);
  connect(m_copyPosition, &QPushButton::clicked, this, [this] {
    if (m_file.facts) {
      QApplication::clipboard()->setText(detailsText::plainPosition(*m_file.facts));
    }
  });
  showNothing();
}

PhotoDetails::~PhotoDetails() = default;

void PhotoDetails::showNothing() {
  showSums({}, {}, {});
}

void PhotoDetails::showPhoto(const ImageItem& photo, ImageBrowserItemPointer item,
                             const Thumbnail* known, const ImageItem* film) {
  const bool isOther = !m_item || m_item->imageUID() != item->imageUID();
  m_photo = &photo;
  m_film = film;
  m_item = std::move(item);
  if (isOther) {
    m_picture = known != nullptr ? *known : Thumbnail();
    m_file = {};
    request();
  }
  showTitle(plainText::shortened(m_item->imageTitle()));
  m_frame->setPicture(m_picture.picture);
  m_frame->show();
  showFacts();
}

void PhotoDetails::showSums(const QString& title, const std::vector<Fact>& others,
                            const PhotoSums& sums) {
  m_photo = m_film = nullptr;
  m_item.reset();
  m_file = {};
  if (m_loader) {
    m_loader->setWork({});
  }
  showTitle(title);
  m_frame->hide();
  m_copyPosition->hide();
  std::vector<Fact> facts = others;
  if (sums.photos + sums.films > 0) {
    facts.push_back({tr("Photos"), detailsText::counts(sums.photos, sums.films)});
    facts.push_back({tr("Size"), sums.unmeasured > 0 && sums.bytes == 0
                                     ? tr("Not known")
                                     : detailsText::exactBytes(sums.bytes)});
    facts.push_back(
        {tr("Dates"), sums.first ? detailsText::dates(*sums.first, *sums.last) : QString()});
    QStringList kinds;
    for (std::size_t i = 0; i < sums.kinds.size(); ++i) {
      if (sums.kinds[i] > 0) {
        kinds << tr("%1 × %2").arg(locale().toString(static_cast<qulonglong>(sums.kinds[i])),
                                   detailsText::kind(static_cast<PhotoKind>(i)));
      }
    }
    facts.push_back({tr("Kinds"), kinds.join('\n')});
  }
  m_table->setFacts(facts);
}

void PhotoDetails::showTitle(const QString& title) {
  if (m_title->text() != title) {
    m_title->setText(title);
  }
  m_title->setVisible(!title.isEmpty());
}

void PhotoDetails::request() {
  if (!m_loader) {
    m_loader = std::make_unique<ThumbnailLoader>(
        [self = std::weak_ptr(m_self)] {
          mainThread::run([self] {
            if (const auto panel = self.lock()) {
              (*panel)->takeResults();
            }
          });
        },
        1, detailLimits());
  }
  using Kind = ThumbnailRequest::Kind;
  std::vector<ThumbnailRequest> work{{m_item, m_item->imageUID(), Kind::Facts, framePixels, {}}};
  if (m_picture.picture.isNull()) {
    work.push_back({m_item, m_item->imageUID(), Kind::Preview, previewPixels, {}});
  }
  if (m_picture.pixels < framePixels && !m_picture.isBroken() && !m_item->isFilm()) {
    work.push_back({m_item, m_item->imageUID(), Kind::Decode, framePixels, {}});
  }
  m_loader->setWork(std::move(work));
}

void PhotoDetails::takeResults() {
  for (ThumbnailResult& result : m_loader->takeResults()) {
    if (!m_item || result.uid != m_item->imageUID()) {
      continue;  // of a photo that was shown before
    }
    if (!result.thumbnail.picture.isNull()) {
      m_picture = result.thumbnail;
    }
    if (result.kind == ThumbnailRequest::Kind::Facts) {
      m_file = std::move(result.thumbnail);
    }
    m_frame->setPicture(m_picture.picture);
    showFacts();
  }
}

void PhotoDetails::showFacts() {
  std::vector<Fact> facts = fileFacts();
  std::vector<Fact> record = recordFacts();
  facts.insert(facts.end(), record.begin(), record.end());
  m_table->setFacts(facts);
  m_copyPosition->setVisible(m_file.facts && m_file.facts->hasPosition == 1);
}

// What a photo's file says stands above, for it is what people look for.
std::vector<Fact> PhotoDetails::fileFacts() const {
  constexpr qint64 sameMinute = 60;  // a file is written a moment after the photo was taken
  const PictureFacts facts = m_file.facts ? *m_file.facts : PictureFacts();
  const std::optional<Instant> recorded = m_photo->info().date();
  const QDateTime record = recorded ? detailsText::localDate(*recorded) : QDateTime();
  const QDateTime photo = detailsText::photoDate(facts);
  std::vector<Fact> rows;
  if (record.isValid() && photo.isValid() && std::llabs(record.secsTo(photo)) >= sameMinute) {
    rows.push_back({tr("Date (record)"), detailsText::date(record)});
    rows.push_back({tr("Date (photo)"), detailsText::date(photo)});
  } else if (record.isValid() || photo.isValid()) {
    rows.push_back({tr("Date"), detailsText::date(record.isValid() ? record : photo)});
  }
  const QSize pixels = m_file.photoSize.isValid() ? m_file.photoSize : m_picture.photoSize;
  rows.push_back(
      {tr("Pixels"), pixels.isValid() ? detailsText::pixels(pixels.width(), pixels.height()) : ""});
  rows.push_back({tr("Length"), m_file.filmLength ? filmLengthText(*m_file.filmLength) : ""});
  rows.push_back({tr("Camera"), detailsText::camera(facts)});
  rows.push_back({tr("Exposure"), detailsText::exposure(facts)});
  rows.push_back({tr("Position"), detailsText::position(facts)});
  return rows;
}

std::vector<Fact> PhotoDetails::recordFacts() const {
  const PhotoInfo info = m_photo->info();
  QString size;
  if (info.size) {
    size = detailsText::exactBytes(*info.size);
  } else if (m_picture.byteCount > 0) {
    size = detailsText::exactBytes(static_cast<std::uint64_t>(m_picture.byteCount));
  }
  QString state;
  if (m_file.state == Thumbnail::State::Missing) {
    state = tr("Missing");
  } else if (m_file.state == Thumbnail::State::Unreadable) {
    state = tr("Cannot be read");
  } else if (m_file.isDamaged) {
    state = tr("Of another length than the backup states");
  } else if (m_file.state != Thumbnail::State::Unknown || m_file.facts) {
    state = tr("Whole");
  }
  std::vector<Fact> rows{
      {tr("Size"), size},
      {tr("Kind"), info.media == PhotoMedia::Film ? tr("Film, %1").arg(detailsText::kind(info.kind))
                                                  : detailsText::kind(info.kind)},
      {tr("In the backup"), state},
      {tr("On the device"), detailsText::devicePath(info)}};
  if (m_film != nullptr) {
    const PhotoInfo film = m_film->info();
    rows.insert(
        rows.begin() + 1,
        {tr("Live photo"), film.size ? tr("with a film of %1").arg(detailsText::bytes(*film.size))
                                     : tr("with a film")});
  }
  return rows;
}

void PhotoDetails::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    emit leaveWanted();
  } else {
    QWidget::keyPressEvent(event);
  }
}

// A panel that nobody sees keeps no decoder.
void PhotoDetails::hideEvent(QHideEvent* event) {
  if (!event->spontaneous()) {  // by the window's own means, and to come back as it was
    m_item.reset();
    m_loader.reset();
  }
}

}  // namespace snaplift
