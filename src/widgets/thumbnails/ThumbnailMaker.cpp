#include "widgets/thumbnails/ThumbnailMaker.h"

#include <algorithm>
#include <utility>

namespace snaplift {
namespace {

using Kind = ThumbnailRequest::Kind;

// Exif stands at the front of a JPEG file in a segment of at most 64 kB, its preview in it; behind
// it stands what tells the size of the photo.
constexpr std::size_t exifReach = std::size_t{96} << 10;

Thumbnail shrunk(const ThumbnailRequest& request) {
  Thumbnail result = request.source;
  result.picture = request.source.picture.scaled(request.pixels, request.pixels,
                                                 Qt::KeepAspectRatio, Qt::SmoothTransformation);
  result.pixels = request.pixels;
  return result;
}

// The bytes that a decoder has to see.
std::optional<Bytes> neededBytes(const ImageBrowserItem& item, Kind kind) {
  if (kind == Kind::Preview || kind == Kind::Facts) {
    std::optional<Bytes> bytes = item.imageBeginning(exifReach);
    if (!bytes || bytes->size() < exifReach || textOf(*bytes).starts_with("\xFF\xD8")) {
      return bytes;
    }
  }
  return item.imageRepresentation();
}

Thumbnail brokenThumbnail(ImageBrowserItem::Content content) {
  Thumbnail broken;
  broken.state = content == ImageBrowserItem::Content::Missing ? Thumbnail::State::Missing
                                                               : Thumbnail::State::Unreadable;
  return broken;
}

PictureRequest::Kind kindFor(Kind kind) {
  return kind == Kind::Preview ? PictureRequest::Kind::EmbeddedPreview
         : kind == Kind::Facts ? PictureRequest::Kind::Facts
                               : PictureRequest::Kind::Picture;
}

Thumbnail thumbnailOf(DecodedPicture&& decoded, const ThumbnailRequest& request) {
  Thumbnail result;
  const bool isPreview = request.kind == Kind::Preview;
  switch (decoded.outcome) {
    case DecodedPicture::Outcome::Decoded:
      result.state = isPreview ? Thumbnail::State::Preview : Thumbnail::State::Ready;
      if (request.kind == Kind::Facts) {
        result.state = Thumbnail::State::Unknown;
        result.facts = std::make_shared<const PictureFacts>(decoded.facts);
      }
      break;
    case DecodedPicture::Outcome::NoPreview:
      result.state = Thumbnail::State::Unknown;
      break;
    default:
      result.state = Thumbnail::State::Undecodable;
  }
  result.pixels =
      isPreview ? std::max(decoded.image.width(), decoded.image.height()) : request.pixels;
  result.picture = std::move(decoded.image);
  result.photoSize = decoded.wholeSize;
  result.isDamaged = decoded.isDamaged;
  return result;
}

}  // namespace

ThumbnailMaker::ThumbnailMaker(LoaderLimits limits, std::size_t memory)
    : m_limits(std::move(limits)), m_decoder({m_limits.decoder, memory, m_limits.time}) {}

// A decoder that may take more is there for one picture only.
DecodedPicture ThumbnailMaker::decode(const ThumbnailJob& job, ByteView bytes,
                                      const StopSignal& stop) {
  const PictureRequest request{kindFor(job.request.kind),
                               static_cast<std::uint32_t>(job.request.pixels)};
  return job.isLarge ? PictureDecoder({m_limits.decoder, m_limits.largeMemory, m_limits.time})
                           .decode(request, bytes, stop)
                     : m_decoder.decode(request, bytes, stop);
}

// The small picture that the source has beside the photo, as a first paint; nothing where there is
// none that can be shown. How large the whole photo is, it does not tell.
std::optional<Thumbnail> ThumbnailMaker::devicePreview(const ThumbnailJob& job,
                                                       const StopSignal& stop) {
  const std::optional<Bytes> bytes = job.request.item->imageThumbnail();
  if (!bytes) {
    return std::nullopt;
  }
  DecodedPicture decoded = m_decoder.decode(
      {PictureRequest::Kind::Picture, static_cast<std::uint32_t>(job.request.pixels)}, *bytes,
      stop);
  if (decoded.outcome != DecodedPicture::Outcome::Decoded) {
    return std::nullopt;
  }
  Thumbnail result = thumbnailOf(std::move(decoded), job.request);
  result.state = Thumbnail::State::Preview;
  result.photoSize = {};
  return result;
}

// There is nothing more to come than that picture, or none.
Thumbnail ThumbnailMaker::filmThumbnail(const ThumbnailJob& job, const StopSignal& stop) {
  Thumbnail film = devicePreview(job, stop).value_or(Thumbnail());
  film.state = Thumbnail::State::Ready;
  film.pixels = job.request.pixels;
  film.isFilm = true;
  film.filmLength = job.request.item->filmLength();
  return film;
}

std::optional<Thumbnail> ThumbnailMaker::make(ThumbnailJob& job, const StopSignal& stop) {
  if (job.request.kind == Kind::Shrink) {
    return shrunk(job.request);
  }
  using Content = ImageBrowserItem::Content;
  const ImageBrowserItem& item = *job.request.item;
  const bool isPreview = job.request.kind == Kind::Preview;
  if (item.isFilm() || (isPreview && item.isThumbnailFirst())) {
    const Content content = item.imageContent();
    if (content == Content::Missing || content == Content::Unreadable) {
      return brokenThumbnail(content);
    }
    std::optional<Thumbnail> result =
        item.isFilm() ? filmThumbnail(job, stop) : devicePreview(job, stop);
    if (result) {
      result->isDamaged = content == Content::Short;
      return result;
    }
  }
  const bool asksForFacts = job.request.kind == Kind::Facts;
  std::optional<Bytes> bytes = neededBytes(item, job.request.kind);
  if (!bytes) {
    return brokenThumbnail(item.imageContent());
  }
  DecodedPicture decoded = decode(job, *bytes, stop);
  if (asksForFacts && decoded.outcome == DecodedPicture::Outcome::NoPicture &&
      bytes->size() == exifReach) {
    // The size may stand behind more than what a preview needs.
    bytes = item.imageRepresentation();
    decoded = bytes ? decode(job, *bytes, stop) : DecodedPicture();
  }
  if (isPreview && decoded.outcome == DecodedPicture::Outcome::NoPreview) {
    if (auto result = devicePreview(job, stop)) {
      return result;
    }
  }
  if (decoded.outcome == DecodedPicture::Outcome::TooLarge && !job.isLarge &&
      m_limits.largeMemory > 0) {
    job.isLarge = true;
    return std::nullopt;
  }
  Thumbnail result = thumbnailOf(std::move(decoded), job.request);
  if (!isPreview && !asksForFacts) {
    result.byteCount = static_cast<std::int64_t>(bytes->size());
  }
  result.isDamaged = result.isDamaged || item.imageContent() == Content::Short;
  return result;
}

}  // namespace snaplift
