#include "export/Csv.h"

#include <algorithm>

namespace snaplift {
namespace {

// Takes the first field off `text`; nothing where its quotes are wrong.
std::optional<std::string> takeField(std::string_view& text) {
  if (!text.starts_with('"')) {
    const std::size_t end = std::min(text.find_first_of(",\r\n"), text.size());
    std::string field(text.substr(0, end));
    text.remove_prefix(end);
    return field;
  }
  std::string field;
  do {
    text.remove_prefix(1);
    const std::size_t quote = text.find('"');
    if (quote == std::string_view::npos) {
      return std::nullopt;
    }
    field += text.substr(0, quote);
    text.remove_prefix(quote + 1);
    if (text.starts_with('"')) {
      field += '"';
    }
  } while (text.starts_with('"'));
  return field;
}

bool takeLineEnd(std::string_view& text) {
  for (const std::string_view end : {"\r\n", "\n"}) {
    if (text.starts_with(end)) {
      text.remove_prefix(end.size());
      return true;
    }
  }
  return text.empty();
}

}  // namespace

std::string csvLine(const std::vector<std::string_view>& fields) {
  std::string line;
  for (const std::string_view field : fields) {
    if (field.find_first_of("\",\r\n") == std::string_view::npos) {
      line += field;
    } else {
      line += '"';
      for (const char c : field) {
        line.append(c == '"' ? 2 : 1, c);
      }
      line += '"';
    }
    line += ',';
  }
  line.pop_back();
  return line + "\r\n";
}

std::optional<std::vector<std::string>> takeCsvLine(std::string_view& text) {
  std::vector<std::string> fields;
  for (;;) {
    std::optional<std::string> field = takeField(text);
    if (!field) {
      return std::nullopt;
    }
    fields.push_back(std::move(*field));
    if (takeLineEnd(text)) {
      return fields;
    }
    if (!text.starts_with(',')) {
      return std::nullopt;
    }
    text.remove_prefix(1);
  }
}

}  // namespace snaplift
