#include "widgets/photogrid/PhotoPreview.h"

#include <QFontMetrics>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <algorithm>

#include "widgets/desktop/MainThread.h"
#include "widgets/desktop/PlainText.h"
#include "widgets/photogrid/ImageBrowserView.h"

namespace snaplift {
namespace {

// Photos are judged before a dark neutral ground, whatever the desktop's colours.
constexpr QRgb groundColor = qRgb(0x1c, 0x1c, 0x1e);
constexpr QRgb captionColor = qRgb(0xd6, 0xd6, 0xd8);
constexpr int margin = 24;
constexpr int buttonSide = 36;
// Five photos of the largest step.
constexpr std::int64_t neighbourCapacity = 85'000'000;
// Larger than any picture: decoders scale down to what they have room for.
constexpr int fullPixels = 16'384;

QPalette darkPalette() {
  QPalette palette(QColor(0x3a, 0x3a, 0x3d), QColor(groundColor));
  palette.setColor(QPalette::ButtonText, QColor(captionColor));
  return palette;
}

// The preview has one worker; what it may take is the preview's share of the bound for all.
LoaderLimits previewLimits() {
  LoaderLimits limits;
  limits.memory = limits.largeMemory;
  limits.largeMemory = 0;
  return limits;
}

bool isSharpAt(const Thumbnail& photo, int pixels) {
  const bool isWhole = photo.picture.size() == photo.photoSize;
  return photo.state == Thumbnail::State::Ready && (photo.pixels >= pixels || isWhole);
}

}  // namespace

PhotoPreview::PhotoPreview(ImageBrowserView* view)
    : QWidget(view),
      m_view(view),
      m_previous(addButton(QStringLiteral("‹"), tr("Previous Photo"))),
      m_next(addButton(QStringLiteral("›"), tr("Next Photo"))),
      m_close(addButton(QStringLiteral("×"), tr("Close Preview"))),
      m_player(new QPushButton(tr("Open in Player"), this)),
      m_neighbours(neighbourCapacity),
      m_self(std::make_shared<PhotoPreview*>(this)) {
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setPalette(darkPalette());
  connect(m_previous, &QToolButton::clicked, this,
          [this] { go(isRightToLeft() ? Qt::Key_Right : Qt::Key_Left); });
  connect(m_next, &QToolButton::clicked, this,
          [this] { go(isRightToLeft() ? Qt::Key_Left : Qt::Key_Right); });
  connect(m_close, &QToolButton::clicked, this, [this] { m_view->setPreviewOpen(false); });
  m_player->setFocusPolicy(Qt::TabFocus);
  m_player->hide();
  connect(m_player, &QPushButton::clicked, this, [this] {
    if (m_view->delegate() != nullptr) {
      m_view->delegate()->imageBrowserOpenItemAtIndex(*m_view, m_index);
    }
  });
  m_loader = std::make_unique<ThumbnailLoader>(
      [self = std::weak_ptr(m_self)] {
        mainThread::run([self] {
          if (const auto preview = self.lock()) {
            (*preview)->takeResults();
          }
        });
      },
      1, previewLimits());
}

PhotoPreview::~PhotoPreview() = default;

// The keyboard has keys for what the buttons do, and stays with the photo.
QToolButton* PhotoPreview::addButton(const QString& sign, const QString& name) {
  auto* button = new QToolButton(this);
  button->setText(sign);
  button->setAccessibleName(name);
  button->setToolTip(name);
  button->setFocusPolicy(Qt::NoFocus);
  button->setCursor(Qt::ArrowCursor);
  button->setAutoRaise(true);
  button->setFixedSize(buttonSide, buttonSide);
  QFont font = button->font();
  font.setPixelSize(buttonSide * 2 / 3);
  button->setFont(font);
  return button;
}

void PhotoPreview::showPhoto(int index) {
  m_direction = index < m_index ? -1 : 1;
  m_index = index;
  m_item = m_view->itemAtIndex(index);
  m_zoom = 1;
  m_centre = {};
  unsetCursor();
  if (const Thumbnail* decoded = m_neighbours.find(m_item->imageUID())) {
    m_photo = *decoded;
  } else {
    const Thumbnail* known = m_view->thumbnailAtIndex(index);
    m_photo = known != nullptr ? *known : Thumbnail();
    // What the grid decoded is only the first paint here.
    if (m_photo.state == Thumbnail::State::Ready) {
      m_photo.state = Thumbnail::State::Preview;
    }
  }
  setAccessibleName(title());
  setAccessibleDescription(place());
  setWindowTitle(title());
  m_previous->setEnabled(index > 0);
  m_next->setEnabled(index + 1 < m_view->itemCount());
  m_player->setVisible(hasFilm());
  request();
  update();
}

int PhotoPreview::screenPixels() const {
  const QSizeF device = QSizeF(photoArea().size()) * devicePixelRatio();
  return thumbnailStep(qCeil(std::max(device.width(), device.height())));
}

bool PhotoPreview::needsFullPicture() const {
  const QSizeF device = photoRect().size() * devicePixelRatio();
  return m_zoom > 1 && std::max(device.width(), device.height()) > screenPixels();
}

// First the photo that is looked at, then the next, then the one before.
void PhotoPreview::request() {
  std::vector<ThumbnailRequest> work;
  if (m_item != nullptr) {
    appendDecode(work, m_index);
    if (needsFullPicture() && !isSharpAt(m_photo, fullPixels) && !m_photo.isBroken()) {
      work.push_back({m_item, m_item->imageUID(), ThumbnailRequest::Kind::Decode, fullPixels, {}});
    }
    appendDecode(work, m_index + m_direction);
    appendDecode(work, m_index - m_direction);
  }
  m_loader->setWork(std::move(work));
}

void PhotoPreview::appendDecode(std::vector<ThumbnailRequest>& work, int index) {
  if (index < 0 || index >= m_view->itemCount()) {
    return;
  }
  ImageBrowserItemPointer item = m_view->itemAtIndex(index);
  std::string uid = item->imageUID();
  const Thumbnail* known = m_neighbours.find(uid);
  const int pixels = screenPixels();
  if (known == nullptr || (!known->isBroken() && !isSharpAt(*known, pixels))) {
    work.push_back({std::move(item), std::move(uid), ThumbnailRequest::Kind::Decode, pixels, {}});
  }
}

void PhotoPreview::takeResults() {
  for (ThumbnailResult& result : m_loader->takeResults()) {
    keep(std::move(result));
  }
}

void PhotoPreview::keep(ThumbnailResult&& result) {
  const bool isShown = m_item != nullptr && result.uid == m_item->imageUID();
  // The full picture of a photo may be refused where a smaller one is not.
  const bool isBetter = result.pixels == fullPixels ? !result.thumbnail.isBroken()
                                                    : !isSharpAt(m_photo, result.pixels);
  if (isShown && isBetter) {
    m_photo = result.thumbnail;
    update();
  }
  if (result.pixels != fullPixels) {
    m_neighbours.insert(result.uid, std::move(result.thumbnail));
  }
}

bool PhotoPreview::hasFilm() const {
  return m_item != nullptr && (m_item->isFilm() || m_item->isLivePhoto());
}

// Beside the buttons, which no photo hides.
QRect PhotoPreview::photoArea() const {
  const int caption = fontMetrics().height() + margin +
                      (hasFilm() ? m_player->sizeHint().height() + margin / 2 : 0);
  const int side = buttonSide + margin / 2;
  return rect().adjusted(side, margin, -side, -caption - margin / 2);
}

// As large as the area allows, never larger than the photo is.
QSizeF PhotoPreview::fittedSize() const {
  const QSizeF size = QSizeF(m_photo.wholeSize()) / devicePixelRatio();
  const QSizeF area = photoArea().size();
  const bool fits = size.width() <= area.width() && size.height() <= area.height();
  return (fits ? size : size.scaled(area, Qt::KeepAspectRatio)).expandedTo(QSizeF(1, 1));
}

QRectF PhotoPreview::photoRect() const {
  QRectF photo(QPointF(), fittedSize() * m_zoom);
  photo.moveCenter(QRectF(photoArea()).center() + m_centre);
  return photo;
}

void PhotoPreview::toggleFullScreen() {
  const bool leaves = isWindow();
  hide();
  if (leaves) {
    setParent(m_view, Qt::Widget);
    setGeometry(m_view->rect());
    show();
    m_view->window()->activateWindow();
  } else {
    setParent(m_view, Qt::Window);
    showFullScreen();
    activateWindow();
  }
  setFocus();
}

QString PhotoPreview::title() const {
  return plainText::shortened(m_item->imageTitle());
}

QString PhotoPreview::place() const {
  return tr("%1 of %2").arg(locale().toString(m_index + 1), locale().toString(m_view->itemCount()));
}

void PhotoPreview::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(groundColor));
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const QRect area = photoArea();
  painter.setPen(QColor(captionColor));
  if (!m_photo.picture.isNull() && !area.isEmpty()) {
    painter.setClipRect(area);
    painter.drawImage(photoRect(), m_photo.picture);
    painter.setClipping(false);
  } else if (m_photo.isFilm) {
    painter.drawText(area, Qt::AlignCenter, tr("The backup has no picture of this film."));
  } else if (m_photo.isBroken()) {
    painter.drawText(area, Qt::AlignCenter, troubleOf(m_photo).sentence);
  }
  const QRect line(margin, height() - margin - fontMetrics().height(), width() - 2 * margin,
                   fontMetrics().height());
  QStringList caption{title(), place(),
                      m_photo.picture.isNull() ? "" : troubleOf(m_photo).sentence};
  caption.removeAll(QString());
  painter.drawText(line, Qt::AlignCenter,
                   fontMetrics().elidedText(caption.join("  –  "), Qt::ElideMiddle, line.width()));
}

void PhotoPreview::resizeEvent(QResizeEvent*) {
  constexpr int gap = 6;
  const int middle = (height() - buttonSide) / 2;
  const int begin = isRightToLeft() ? width() - buttonSide - gap : gap;
  const int end = width() - buttonSide - begin;
  m_previous->move(begin, middle);
  m_next->move(end, middle);
  m_close->move(end, gap);
  const QSize player = m_player->sizeHint();
  m_player->setGeometry(
      QRect((width() - player.width()) / 2,
            height() - 2 * margin - fontMetrics().height() - player.height() + margin / 2,
            player.width(), player.height()));
  moveTo(m_centre);
  request();
}

}  // namespace snaplift
