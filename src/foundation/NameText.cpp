#include "foundation/NameText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include <unicode/bytestream.h>
#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>
#include <unicode/unistr.h>

#include "foundation/UserLocale.h"

namespace snaplift {
namespace {

bool isAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<signed char>(c) >= 0; });
}

std::string lowered(std::string_view ascii) {
  std::string text(ascii);
  for (char& c : text) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
  }
  return text;
}

icu::StringPiece pieceOf(std::string_view text) {
  return {text.data(), static_cast<std::int32_t>(text.size())};
}

}  // namespace

std::string searchableText(std::string_view text) {
  if (isAscii(text)) {
    return lowered(text);  // nearly every name, at a tenth of the cost
  }
  UErrorCode error = U_ZERO_ERROR;
  std::string folded;
  if (const icu::Normalizer2* fold = icu::Normalizer2::getNFKCCasefoldInstance(error)) {
    icu::StringByteSink<std::string> sink(&folded);
    fold->normalizeUTF8(0, pieceOf(text), sink, nullptr, error);
  }
  return U_SUCCESS(error) ? folded : std::string(text);
}

struct NameOrder::Collator {
  std::unique_ptr<icu::Collator> collator;
};

NameOrder::NameOrder() : m_collator(std::make_unique<Collator>()) {
  UErrorCode error = U_ZERO_ERROR;
  m_collator->collator.reset(icu::Collator::createInstance(userLocale("LC_COLLATE"), error));
  if (m_collator->collator) {
    m_collator->collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, error);
  }
}

NameOrder::~NameOrder() = default;

std::string NameOrder::keyOf(std::string_view name) const {
  if (!m_collator->collator) {
    return searchableText(name);
  }
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(pieceOf(name));
  std::array<std::uint8_t, 128> usual;
  std::vector<std::uint8_t> longer;
  std::uint8_t* key = usual.data();
  std::int32_t length =
      m_collator->collator->getSortKey(text, key, static_cast<std::int32_t>(usual.size()));
  if (length > static_cast<std::int32_t>(usual.size())) {
    longer.resize(static_cast<std::size_t>(length));
    key = longer.data();
    length = m_collator->collator->getSortKey(text, key, length);
  }
  return {key, key + std::max(length - 1, 0)};  // it ends with a zero
}

}  // namespace snaplift
