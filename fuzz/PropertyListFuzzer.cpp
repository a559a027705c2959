#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "Require.h"
#include "foundation/Bytes.h"
#include "foundation/propertylist/PropertyList.h"
#include "foundation/propertylist/PropertyListBinary.h"

namespace snaplift {
namespace {

using fuzzing::require;
using Binary = BinaryPropertyList;
using Kind = PropertyListValue::Kind;

// Reads both ends of what a view promises.
void touch(std::string_view bytes) {
  volatile char end = bytes.empty() ? '\0' : bytes.front();
  end = bytes.empty() ? '\0' : bytes.back();
  static_cast<void>(end);
}

// Of all types, a value answers to its own alone.
void visitScalar(PropertyListValue value) {
  const Kind kind = value.kind();
  require((kind == Kind::String) == value.string().has_value());
  require((kind == Kind::Data) == value.data().has_value());
  require((kind == Kind::Date) == value.date().has_value());
  require((kind == Kind::Real) == value.real().has_value());
  require((kind == Kind::Boolean) == value.boolean().has_value());
  require((kind == Kind::Integer) == (value.integer() || value.unsignedInteger()));
  touch(value.string().value_or(""));
  touch(textOf(value.data().value_or(ByteView())));
}

// Visits the list from `value` down, as many values as the budget allows: a file may share one
// value among all, so that a whole walk would never end.
void visit(PropertyListValue value, std::size_t& valuesLeft, unsigned depth = 0) {
  if (valuesLeft == 0) {
    return;
  }
  --valuesLeft;
  visitScalar(value);
  const bool isDictionary = value.kind() == Kind::Dictionary;
  require(isDictionary || value.kind() == Kind::Array || value.count() == 0);
  require(value.count() == 0 || depth < PropertyList::maximumDepth);
  require(value.entries().size() == (isDictionary ? value.count() : 0));
  std::size_t index = 0;
  for (const auto& [key, member] : value.entries()) {
    const std::optional<std::string_view> text = key.string();
    require(text || key.kind() == Kind::Absent);
    if (text && text->size() <= 256) {
      require(key.equals(*text));
      const Kind found = value.valueForKey(*text).kind();
      require(index > 0 || found == member.kind());
    }
    if (++index > 64) {
      break;
    }
  }
  for (std::size_t i = 0; i < value.count() && valuesLeft > 0; ++i) {
    visit(value.at(i), valuesLeft, depth + 1);
  }
}

// Whatever overlaps or is shared: the containers that can be reached hold no more references than
// the file has bytes, all references that are followed lead down, and the texts that are converted
// add up to no more than the file's size allows.
void countWork(ByteView bytes) {
  const auto list = Binary::open(Bytes::copyOf(bytes));
  std::size_t references = 0;
  std::size_t convertedBytes = 0;
  std::set<std::uint32_t> ranks;
  std::set<std::uint32_t> texts;
  for (std::uint32_t object = 0; list && object < bytes.size(); ++object) {
    const std::optional<std::uint32_t> offset = list->offsetOf(object);
    if (!offset) {
      continue;
    }
    if (list->typeAt(*offset) == Binary::Utf16String && texts.insert(*offset).second) {
      convertedBytes += list->stringAt(*offset).value_or("").size();
    }
    const std::uint32_t rank = list->rankOf(object);
    const auto container = list->containerAt(*offset);
    if (container && rank != 0 && rank != Binary::refused) {
      require(ranks.insert(rank).second);
      references += container->isDictionary ? 2 * container->count : container->count;
    }
  }
  require(references <= bytes.size());
  require(convertedBytes <= 3 * bytes.size() / 2);
}

// Whether two values say the same, as far as the budget goes.
bool equal(PropertyListValue a, PropertyListValue b, std::size_t& valuesLeft) {
  if (valuesLeft == 0) {
    return true;
  }
  --valuesLeft;
  const auto isNotANumber = [](PropertyListValue v) { return v.real() && *v.real() != *v.real(); };
  const auto dataOf = [](PropertyListValue v) { return textOf(v.data().value_or(ByteView())); };
  if (a.kind() != b.kind() || a.count() != b.count() || a.string() != b.string() ||
      a.integer() != b.integer() || a.unsignedInteger() != b.unsignedInteger() ||
      a.boolean() != b.boolean() || a.date() != b.date() || dataOf(a) != dataOf(b) ||
      isNotANumber(a) != isNotANumber(b) || (!isNotANumber(a) && a.real() != b.real())) {
    return false;
  }
  auto entry = b.entries().begin();
  for (const auto& [key, value] : a.entries()) {
    if (key.string() != (*entry).key.string()) {
      return false;
    }
    ++entry;
  }
  for (std::size_t i = 0; i < a.count() && valuesLeft > 0; ++i) {
    if (!equal(a.at(i), b.at(i), valuesLeft)) {
      return false;
    }
  }
  return true;
}

// A comment after the root changes nothing, but sends a document to Expat that is plain enough to
// go without: both ways have to agree.
void compareWays(const std::optional<PropertyList>& list, std::string_view document) {
  const auto other =
      PropertyList::parse(Bytes::copyOf(bytesOf(std::string(document) + "<!-- -->")));
  require(list.has_value() == other.has_value());
  std::size_t valuesLeft = document.size() + 1;
  require(!list || equal(list->root(), other->root(), valuesLeft));
}

bool mayBePlain(std::string_view document) {
  return std::all_of(document.begin(), document.end(),
                     [](char c) { return c > '\0' && c < '\x7F'; });
}

}  // namespace
}  // namespace snaplift

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace snaplift;
  const ByteView bytes(data, size);
  const auto list = PropertyList::parse(Bytes::copyOf(bytes));
  std::size_t valuesLeft = size + 1;
  if (list) {
    visit(list->root(), valuesLeft);
  }
  countWork(bytes);
  if (mayBePlain(textOf(bytes))) {
    compareWays(list, textOf(bytes));
  }
  return 0;
}
