#include "foundation/propertylist/PropertyList.h"

#include <bit>
#include <cmath>
#include <utility>

#include "foundation/propertylist/PropertyListBinary.h"
#include "foundation/propertylist/PropertyListXML.h"

namespace snaplift {
namespace {

using Binary = BinaryPropertyList;

// 2001-01-01, from which dates count their seconds.
constexpr Instant referenceDate = std::chrono::sys_days{std::chrono::year{2001} / 1 / 1};

std::uint64_t bitsOf(ByteView number) {
  std::uint64_t bits = 0;
  for (const std::uint8_t byte : number) {
    bits = bits << 8 | byte;
  }
  return bits;
}

std::optional<double> realOf(std::optional<ByteView> number) {
  if (number && number->size() == 4) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(bitsOf(*number)));
  }
  if (number && number->size() == 8) {
    return std::bit_cast<double>(bitsOf(*number));
  }
  return std::nullopt;
}

// A number of the integer type: its 64 bits, and whether they mean a negative number. Integers of
// up to four bytes have no sign; one of 16 bytes holds what an unsigned 64-bit number needs.
struct Integer {
  std::uint64_t bits;
  bool isNegative;
};

std::optional<Integer> integerOf(std::optional<ByteView> number) {
  if (!number) {
    return std::nullopt;
  }
  if (number->size() == 16) {
    const bool fits = bitsOf(number->first(8)) == 0;
    return fits ? std::optional(Integer{bitsOf(number->last(8)), false}) : std::nullopt;
  }
  const std::uint64_t bits = bitsOf(*number);
  return Integer{bits, bits >> 63 != 0};
}

}  // namespace

PropertyListValue::Kind PropertyListValue::kind() const {
  if (m_list == nullptr) {
    return Kind::Absent;
  }
  const auto kindIf = [](bool holds, Kind kind) { return holds ? kind : Kind::Absent; };
  switch (m_list->typeAt(m_offset)) {
    case Binary::Singleton:
      return kindIf(boolean().has_value(), Kind::Boolean);
    case Binary::Integer:
      return kindIf(integer() || unsignedInteger(), Kind::Integer);
    case Binary::Real:
      return kindIf(real().has_value(), Kind::Real);
    case Binary::Date:
      return kindIf(date().has_value(), Kind::Date);
    case Binary::Data:
      return kindIf(data().has_value(), Kind::Data);
    case Binary::AsciiString:
    case Binary::Utf8String:
    case Binary::Utf16String:
      return kindIf(string().has_value(), Kind::String);
    case Binary::Uid:
      return kindIf(uid().has_value(), Kind::Uid);
    case Binary::Array:
    case Binary::OrderedSet:
    case Binary::Set:
      return Kind::Array;
    case Binary::Dictionary:
      return Kind::Dictionary;
  }
  return Kind::Absent;
}

std::optional<std::string_view> PropertyListValue::string() const {
  return m_list != nullptr ? m_list->stringAt(m_offset) : std::nullopt;
}

bool PropertyListValue::equals(std::string_view text) const {
  return m_list != nullptr && m_list->isString(m_offset, text);
}

std::optional<std::int64_t> PropertyListValue::integer() const {
  if (m_list == nullptr || m_list->typeAt(m_offset) != Binary::Integer) {
    return std::nullopt;
  }
  const std::optional<Integer> value = integerOf(m_list->numberAt(m_offset));
  if (!value || (!value->isNegative && value->bits >> 63 != 0)) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(value->bits);
}

std::optional<std::uint64_t> PropertyListValue::unsignedInteger() const {
  if (m_list == nullptr || m_list->typeAt(m_offset) != Binary::Integer) {
    return std::nullopt;
  }
  const std::optional<Integer> value = integerOf(m_list->numberAt(m_offset));
  return value && !value->isNegative ? std::optional(value->bits) : std::nullopt;
}

std::optional<std::uint64_t> PropertyListValue::uid() const {
  if (m_list == nullptr || m_list->typeAt(m_offset) != Binary::Uid) {
    return std::nullopt;
  }
  const std::optional<ByteView> number = m_list->uidAt(m_offset);
  return number && number->size() <= 8 ? std::optional(bitsOf(*number)) : std::nullopt;
}

std::optional<double> PropertyListValue::real() const {
  if (m_list == nullptr || m_list->typeAt(m_offset) != Binary::Real) {
    return std::nullopt;
  }
  return realOf(m_list->numberAt(m_offset));
}

std::optional<bool> PropertyListValue::boolean() const {
  const std::uint8_t marker = m_list != nullptr ? m_list->markerAt(m_offset) : std::uint8_t{0};
  if (marker != Binary::trueMarker && marker != Binary::falseMarker) {
    return std::nullopt;
  }
  return marker == Binary::trueMarker;
}

std::optional<Instant> PropertyListValue::date() const {
  if (m_list == nullptr || m_list->typeAt(m_offset) != Binary::Date) {
    return std::nullopt;
  }
  // The range leaves room for the distance of the two epochs; NaN is in no range.
  constexpr double limit = 9.2e18;
  const std::optional<double> seconds = realOf(m_list->numberAt(m_offset));
  const double microseconds = seconds ? *seconds * 1e6 : limit;
  if (!(std::abs(microseconds) < limit)) {
    return std::nullopt;
  }
  return referenceDate + std::chrono::microseconds(std::llround(microseconds));
}

std::optional<ByteView> PropertyListValue::data() const {
  if (m_list == nullptr || m_list->typeAt(m_offset) != Binary::Data) {
    return std::nullopt;
  }
  const auto run = m_list->runAt(m_offset, 1);
  return run ? std::optional(ByteView(run->bytes, run->count)) : std::nullopt;
}

bool PropertyListValue::boolValue() const {
  return boolean().value_or(false) || integer().value_or(0) != 0 ||
         unsignedInteger().value_or(0) != 0 || real().value_or(0) != 0;
}

std::size_t PropertyListValue::count() const {
  const auto container = m_list != nullptr ? m_list->containerAt(m_offset) : std::nullopt;
  return container ? container->count : 0;
}

PropertyListValue PropertyListValue::at(std::size_t index) const {
  const auto container = m_list != nullptr ? m_list->containerAt(m_offset) : std::nullopt;
  if (!container || index >= container->count) {
    return {};
  }
  const std::size_t keys = container->isDictionary ? container->count : 0;
  return referredTo(m_list->reference(container->references, keys + index));
}

PropertyListValue PropertyListValue::valueForKey(std::string_view key) const {
  const auto container = m_list != nullptr ? m_list->containerAt(m_offset) : std::nullopt;
  if (!container || !container->isDictionary) {
    return {};
  }
  const std::optional<std::size_t> entry = m_list->entryWithKey(m_offset, *container, key);
  return entry ? referredTo(m_list->reference(container->references, container->count + *entry))
               : PropertyListValue();
}

PropertyListEntries PropertyListValue::entries() const {
  const auto container = m_list != nullptr ? m_list->containerAt(m_offset) : std::nullopt;
  return container && container->isDictionary
             ? PropertyListEntries(*this, container->references, container->count)
             : PropertyListEntries();
}

PropertyListValue PropertyListValue::referredTo(std::uint64_t object) const {
  const std::optional<std::uint32_t> offset = m_list->offsetOf(object);
  if (!offset) {
    return {};
  }
  const auto number = static_cast<std::uint32_t>(object);
  if (!Binary::isContainer(m_list->typeAt(*offset))) {
    return {m_list, number, *offset, m_depth};
  }
  const bool isBelow = m_list->rankOf(number) < m_list->rankOf(m_object);
  return isBelow && m_depth < PropertyList::maximumDepth
             ? PropertyListValue(m_list, number, *offset, m_depth + 1)
             : PropertyListValue();
}

PropertyListEntry PropertyListEntries::Iterator::operator*() const {
  const BinaryPropertyList& list = *m_dictionary.m_list;
  PropertyListValue key = m_dictionary.referredTo(list.reference(m_references, m_index));
  if (key.m_list != nullptr && !Binary::isString(list.typeAt(key.m_offset))) {
    key = {};
  }
  return {key, m_dictionary.referredTo(list.reference(m_references, m_count + m_index))};
}

PropertyList::PropertyList(std::unique_ptr<const BinaryPropertyList> list)
    : m_list(std::move(list)) {}
PropertyList::PropertyList(PropertyList&&) noexcept = default;
PropertyList& PropertyList::operator=(PropertyList&&) noexcept = default;
PropertyList::~PropertyList() = default;

std::optional<PropertyList> PropertyList::parse(Bytes bytes) {
  if (!textOf(bytes).starts_with(Binary::magic)) {
    std::optional<Bytes> converted = binaryFromXML(bytes);
    if (!converted) {
      return std::nullopt;
    }
    bytes = std::move(*converted);
  }
  PropertyList list(Binary::open(std::move(bytes)));
  if (!list.m_list || list.root().kind() == PropertyListValue::Kind::Absent) {
    return std::nullopt;
  }
  return list;
}

PropertyListValue PropertyList::root() const {
  const std::optional<std::uint32_t> offset = m_list->offsetOf(m_list->root());
  if (!offset || m_list->rankOf(m_list->root()) == Binary::refused) {
    return {};
  }
  const bool isContainer = Binary::isContainer(m_list->typeAt(*offset));
  return {m_list.get(), m_list->root(), *offset, isContainer ? 1U : 0U};
}

}  // namespace snaplift
