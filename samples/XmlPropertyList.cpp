#include <charconv>
#include <stdexcept>

#include "samples/PropertyListWriter.h"

namespace snaplift::samples {
namespace {

class XmlWriter {
public:
  std::string take() { return std::move(m_out); }

  void append(const PlistValue& value) {
    std::visit([this](const auto& v) { write(v); }, value.value());
  }

  void line(std::string_view text) { m_out.append(m_depth, '\t').append(text).append("\n"); }

private:
  void element(std::string_view name, std::string_view text) {
    std::string content;
    content.append("<").append(name).append(">");
    appendEscaped(content, text);
    content.append("</").append(name).append(">");
    line(content);
  }

  static void appendEscaped(std::string& out, std::string_view text) {
    for (const char c : text) {
      switch (c) {
        case '&':
          out += "&amp;";
          break;
        case '<':
          out += "&lt;";
          break;
        case '>':
          out += "&gt;";
          break;
        default:
          if (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n') {
            throw std::runtime_error("XML holds no control characters");
          }
          out += c;
      }
    }
  }

  void write(bool value) { line(value ? "<true/>" : "<false/>"); }
  void write(std::int64_t value) { element("integer", std::to_string(value)); }
  void write(std::uint64_t value) { element("integer", std::to_string(value)); }

  void write(double value) {
    char digits[32];
    const auto result = std::to_chars(std::begin(digits), std::end(digits), value);
    element("real", std::string_view(digits, static_cast<std::size_t>(result.ptr - digits)));
  }

  void write(const std::string& value) { element("string", value); }
  void write(Instant value) { element("date", rfc3339Text(value)); }

  void write(const PlistValue::Data& value) {
    constexpr std::size_t bytesPerLine = 51;  // 68 characters
    line("<data>");
    const std::string_view bytes = value.bytes;
    for (std::size_t start = 0; start < bytes.size(); start += bytesPerLine) {
      line(base64(bytes.substr(start, bytesPerLine)));
    }
    line("</data>");
  }

  static std::string base64(std::string_view bytes) {
    constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t start = 0; start < bytes.size(); start += 3) {
      const std::string_view group = bytes.substr(start, 3);
      unsigned bits = 0;
      for (std::size_t i = 0; i < 3; ++i) {
        bits = bits << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
      }
      for (std::size_t i = 0; i < 4; ++i) {
        text.push_back(i <= group.size() ? digits[bits >> (18 - 6 * i) & 63] : '=');
      }
    }
    return text;
  }

  // XML has no references; archives say them like this.
  void write(PlistValue::Uid value) { write(PlistValue::Dictionary{{"CF$UID", value.number}}); }

  void write(const PlistValue::Array& value) {
    if (value.empty()) {
      return line("<array/>");
    }
    line("<array>");
    ++m_depth;
    for (const PlistValue& element : value) {
      append(element);
    }
    --m_depth;
    line("</array>");
  }

  void write(const PlistValue::Dictionary& value) {
    if (value.empty()) {
      return line("<dict/>");
    }
    line("<dict>");
    ++m_depth;
    for (const auto& [key, member] : value) {
      element("key", key);
      append(member);
    }
    --m_depth;
    line("</dict>");
  }

  std::string m_out;
  std::size_t m_depth = 0;
};

}  // namespace

std::string xmlPropertyList(const PlistValue& root) {
  XmlWriter writer;
  writer.line("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
  writer.line("<!DOCTYPE plist SYSTEM \"PropertyList-1.0.dtd\">");
  writer.line("<plist version=\"1.0\">");
  writer.append(root);
  writer.line("</plist>");
  return writer.take();
}

}  // namespace snaplift::samples
