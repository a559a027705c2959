#include "foundation/propertylist/PropertyListBinary.h"

#include <algorithm>
#include <limits>

#include "foundation/Digest.h"
#include "foundation/propertylist/Utf16.h"

namespace snaplift {
namespace {

constexpr std::size_t trailerSize = 32;

// A dictionary of up to this many entries is searched from front to back; a bigger one gets an
// index with the first look-up.
constexpr std::size_t maximumScannedEntries = 32;
// A key of more bytes than this is not in the index: keys that overlap or are shared could make
// digesting them cost more than the file's size allows. Nobody looks one up.
constexpr std::size_t maximumIndexedKeyLength = 256;

}  // namespace

BinaryPropertyList::BinaryPropertyList(Bytes bytes, std::size_t table, unsigned offsetSize,
                                       unsigned referenceSize, std::uint32_t objects,
                                       std::uint32_t root)
    : m_bytes(std::move(bytes)),
      m_table(table),
      m_offsetSize(offsetSize),
      m_referenceSize(referenceSize),
      m_objects(objects),
      m_root(root),
      m_memoryOfRanks(m_spaceForRanks.data(), m_spaceForRanks.size()),
      m_ranks(objects, 0, &m_memoryOfRanks),
      m_textUnitsLeft(table / 2) {
  rankContainers();
}

std::unique_ptr<const BinaryPropertyList> BinaryPropertyList::open(Bytes bytes) {
  const std::size_t size = bytes.size();
  if (size < headerSize + trailerSize || size > std::numeric_limits<std::uint32_t>::max() ||
      !textOf(bytes).starts_with(magic)) {
    return nullptr;
  }
  const std::uint8_t* trailer = bytes.data() + size - trailerSize;
  const unsigned offsetSize = trailer[6];
  const unsigned referenceSize = trailer[7];
  const std::uint64_t objects = bigEndian(trailer + 8, 8);
  const std::uint64_t root = bigEndian(trailer + 16, 8);
  const std::uint64_t table = bigEndian(trailer + 24, 8);
  if (offsetSize < 1 || offsetSize > 8 || referenceSize < 1 || referenceSize > 8 ||
      table < headerSize || table > size - trailerSize ||
      objects > (size - trailerSize - table) / offsetSize || root >= objects) {
    return nullptr;
  }
  return std::unique_ptr<const BinaryPropertyList>(new BinaryPropertyList(
      std::move(bytes), static_cast<std::size_t>(table), offsetSize, referenceSize,
      static_cast<std::uint32_t>(objects), static_cast<std::uint32_t>(root)));
}

void BinaryPropertyList::rankContainers() {
  struct Visit {
    std::uint32_t object;
    const std::uint8_t* next;
    const std::uint8_t* end;
  };
  std::array<std::byte, 512> space;
  std::pmr::monotonic_buffer_resource memory(space.data(), space.size());
  std::pmr::vector<Visit> visits(&memory);
  std::size_t bytesLeft = m_table;
  const auto enter = [&](std::uint64_t object) {
    const std::optional<std::uint32_t> offset = offsetOf(object);
    if (!offset || !isContainer(typeAt(*offset)) || m_ranks[object] != 0) {
      return;
    }
    m_ranks[object] = refused;
    const std::optional<Container> container = containerAt(*offset);
    if (!container) {
      return;
    }
    const std::size_t width = container->count * m_referenceSize;
    const std::size_t charge = container->isDictionary ? 2 * width : width;
    if (charge > bytesLeft) {
      return;
    }
    bytesLeft -= charge;
    const std::uint8_t* end = container->references + charge;
    visits.push_back({static_cast<std::uint32_t>(object), end - width, end});
  };

  std::uint32_t rank = 0;
  enter(m_root);
  while (!visits.empty()) {
    Visit& visit = visits.back();
    if (visit.next == visit.end) {
      m_ranks[visit.object] = ++rank;
      visits.pop_back();
    } else {
      const std::uint64_t object = bigEndian(visit.next, m_referenceSize);
      visit.next += m_referenceSize;
      enter(object);
    }
  }
}

std::optional<ByteView> BinaryPropertyList::numberAt(std::size_t offset) const {
  const unsigned exponent = markerAt(offset) & 0x0F;
  if (exponent > 4 || m_table - offset - 1 < std::size_t{1} << exponent) {
    return std::nullopt;
  }
  return m_bytes.view().subspan(offset + 1, std::size_t{1} << exponent);
}

std::optional<ByteView> BinaryPropertyList::uidAt(std::size_t offset) const {
  const std::size_t width = (markerAt(offset) & 0x0FU) + 1;
  return m_table - offset - 1 < width ? std::nullopt
                                      : std::optional(m_bytes.view().subspan(offset + 1, width));
}

std::optional<BinaryPropertyList::Run> BinaryPropertyList::runAt(std::size_t offset,
                                                                 std::size_t unitSize) const {
  std::uint64_t count = markerAt(offset) & 0x0F;
  ++offset;
  if (count == 0x0F) {
    if (offset >= m_table || typeAt(offset) != Integer) {
      return std::nullopt;
    }
    const std::optional<ByteView> number = numberAt(offset);
    if (!number || number->size() > 8) {
      return std::nullopt;
    }
    count = bigEndian(number->data(), static_cast<unsigned>(number->size()));
    offset += 1 + number->size();
  }
  if (count > (m_table - offset) / unitSize) {
    return std::nullopt;
  }
  return Run{m_bytes.data() + offset, static_cast<std::size_t>(count)};
}

std::optional<BinaryPropertyList::Container> BinaryPropertyList::containerAt(
    std::size_t offset) const {
  const Type type = typeAt(offset);
  if (!isContainer(type)) {
    return std::nullopt;
  }
  const bool isDictionary = type == Dictionary;
  const auto run = runAt(offset, isDictionary ? 2 * m_referenceSize : m_referenceSize);
  if (!run) {
    return std::nullopt;
  }
  return Container{run->bytes, run->count, isDictionary};
}

std::uint64_t BinaryPropertyList::digestOf(std::string_view key) {
  const Sha1Digest digest = sha1({bytesOf(key)});
  return bigEndian(digest.data(), 8);
}

bool BinaryPropertyList::isString(std::size_t offset, std::string_view text) const {
  const Type type = typeAt(offset);
  if (!isString(type)) {
    return false;
  }
  const bool isUtf16 = type == Utf16String;
  const unsigned size = markerAt(offset) & 0x0F;
  if (!isUtf16 && size != 0x0F && size != text.size()) {
    return false;  // most keys that are not the right one end here
  }
  const std::optional<Run> run = runAt(offset, isUtf16 ? 2 : 1);
  if (!run) {
    return false;
  }
  return isUtf16 ? equalsUtf16BigEndian({run->bytes, 2 * run->count}, text)
                 : textOf({run->bytes, run->count}) == text;
}

std::optional<std::string_view> BinaryPropertyList::stringAt(std::size_t offset) const {
  const Type type = typeAt(offset);
  if (!isString(type)) {
    return std::nullopt;
  }
  const std::optional<Run> run = runAt(offset, type == Utf16String ? 2 : 1);
  if (!run) {
    return std::nullopt;
  }
  if (type != Utf16String) {
    return textOf({run->bytes, run->count});
  }
  const std::lock_guard lock(m_mutex);
  const auto known = m_texts.find(offset);
  if (known != m_texts.end()) {
    return known->second;
  }
  // Strings that overlap would add up to more than the file.
  if (run->count > m_textUnitsLeft) {
    return std::nullopt;
  }
  m_textUnitsLeft -= run->count;
  return m_texts.emplace(offset, utf8FromUtf16BigEndian({run->bytes, 2 * run->count}))
      .first->second;
}

std::optional<std::size_t> BinaryPropertyList::entryWithKey(std::size_t offset,
                                                            const Container& dictionary,
                                                            std::string_view key) const {
  if (dictionary.count <= maximumScannedEntries || key.size() > maximumIndexedKeyLength) {
    return scanForKey(dictionary, key);
  }
  const std::uint64_t digest = digestOf(key);
  const std::lock_guard lock(m_mutex);
  const auto [known, isNew] = m_keyIndexes.try_emplace(offset);
  KeyIndex& index = known->second;
  if (isNew) {
    index = indexOf(dictionary);
  }
  for (auto row = std::lower_bound(index.begin(), index.end(), std::pair{digest, 0U});
       row != index.end() && row->first == digest; ++row) {
    const auto keyOffset = offsetOf(reference(dictionary.references, row->second));
    if (keyOffset && isString(*keyOffset, key)) {
      return row->second;
    }
  }
  return std::nullopt;
}

std::optional<std::size_t> BinaryPropertyList::scanForKey(const Container& dictionary,
                                                          std::string_view key) const {
  for (std::size_t i = 0; i < dictionary.count; ++i) {
    const auto keyOffset = offsetOf(reference(dictionary.references, i));
    if (keyOffset && isString(*keyOffset, key)) {
      return i;
    }
  }
  return std::nullopt;
}

BinaryPropertyList::KeyIndex BinaryPropertyList::indexOf(const Container& dictionary) const {
  KeyIndex index;
  index.reserve(dictionary.count);
  std::string converted;
  for (std::size_t i = 0; i < dictionary.count; ++i) {
    const auto offset = offsetOf(reference(dictionary.references, i));
    const Type type = offset ? typeAt(*offset) : Singleton;
    const bool isUtf16 = type == Utf16String;
    if (!isString(type)) {
      continue;
    }
    const std::optional<Run> run = runAt(*offset, isUtf16 ? 2 : 1);
    if (!run || run->count > maximumIndexedKeyLength) {
      continue;
    }
    if (isUtf16) {
      converted = utf8FromUtf16BigEndian({run->bytes, 2 * run->count});
    }
    const std::string_view text = isUtf16 ? converted : textOf({run->bytes, run->count});
    index.emplace_back(digestOf(text), static_cast<std::uint32_t>(i));
  }
  std::sort(index.begin(), index.end());
  return index;
}

}  // namespace snaplift
