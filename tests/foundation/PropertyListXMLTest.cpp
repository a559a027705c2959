#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "RawPropertyList.h"
#include "foundation/PropertyList.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using Kind = PropertyListValue::Kind;

std::string utf16(std::u16string_view text, bool isBigEndian) {
  std::string bytes;
  for (const char16_t unit : text) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit);
    bytes += isBigEndian ? std::string{high, low} : std::string{low, high};
  }
  return bytes;
}

TEST(PropertyListXML, readsEveryEncodingOfXML) {
  const std::u16string document =
      u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist><string>\u20AC</string></plist>";
  const std::u16string bare = u"<plist><string>\u20AC</string></plist>";
  for (const std::string& xml :
       {utf16(u"\uFEFF" + document, true), utf16(u"\uFEFF" + document, false), utf16(bare, true),
        utf16(bare, false), std::string("\xEF\xBB\xBF<string>\u20AC</string>"),
        std::string("<string>\u20AC</string>")}) {
    const auto list = parsed(xml);
    ASSERT_TRUE(list) << testing::PrintToString(xml.substr(0, 8));
    EXPECT_EQ(list->root().string(), "\u20AC");
  }
  const auto latin = parsed("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><string>\xE9</string>");
  ASSERT_TRUE(latin);
  EXPECT_EQ(latin->root().string(), "\u00E9");
}

TEST(PropertyListXML, givesKeysWithoutValueAnAbsentOne) {
  const auto list =
      parsed(xmlDocument("<dict><key>a</key><key>b</key><new><dict><key>b</key></dict></new>"
                         "<key>c</key><string>x</string><key>d</key></dict>"));
  ASSERT_TRUE(list);
  EXPECT_EQ(list->root().count(), 4U);
  EXPECT_EQ(list->root().valueForKey("a").kind(), Kind::Absent);
  EXPECT_EQ(list->root().valueForKey("b").kind(), Kind::Absent);
  EXPECT_EQ(list->root().valueForKey("c").string(), "x");
  EXPECT_EQ(list->root().valueForKey("d").kind(), Kind::Absent);
}

TEST(PropertyListXML, refusesWhatIsNoPropertyList) {
  for (const std::string& bytes :
       {std::string(), std::string("{ a = b; }"), std::string("{\"a\": 1}"), std::string("\0", 1),
        xmlDocument(""), xmlDocument("<null/>"), xmlDocument("<array><string></array>"),
        xmlDocument("<array>"), xmlDocument("<string>&entity;</string>"),
        xmlDocument("<string>\xFF</string>"), xmlDocument("<array/>") + "<array/>",
        "\n" + xmlDocument("<array/>"), std::string("bplist00"), "bplist00" + std::string(32, 0),
        std::string("bplist15") + std::string(64, '\1'), xmlDocument("<array/>").substr(0, 150)}) {
    EXPECT_FALSE(parsed(bytes)) << bytes;
  }
}

TEST(PropertyListXML, expandsNoEntityAndOpensNoFile) {
  const TemporaryTree tree;
  const std::string declarations = tree.write("list.dtd", "<!ENTITY secret \"declared\">");
  const std::string secret = tree.write("secret", "text of the file");
  const std::string external = "<!DOCTYPE plist SYSTEM \"" + declarations + "\">";
  const std::string bomb =
      "<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
      "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">";
  const std::string element = "<plist><string>&secret;</string></plist>";

  // Had the file been opened, the entity would be known.
  EXPECT_FALSE(parsed(external + element));
  EXPECT_FALSE(parsed("<!DOCTYPE plist SYSTEM \"file://" + declarations + "\">" + element));
  const auto list = parsed(external + "<plist><string>&amp;&#65;&#x42;</string></plist>");
  ASSERT_TRUE(list);
  EXPECT_EQ(list->root().string(), "&AB");

  for (const std::string& subset :
       {"<!ENTITY secret SYSTEM \"" + secret + "\">", std::string("<!ENTITY secret \"inside\">"),
        bomb + "<!ENTITY secret \"&c;&c;&c;\">",
        "<!ENTITY % outside SYSTEM \"" + declarations + "\"> %outside;",
        std::string("<!ATTLIST string padding CDATA \"aaaaaaaaaaaaaaaaaaaa\">")}) {
    EXPECT_FALSE(parsed("<!DOCTYPE plist [" + subset + "]>" + element)) << subset;
    EXPECT_FALSE(parsed("<!DOCTYPE plist [" + subset + "]><plist><true/></plist>")) << subset;
  }
}

// Everything that can be asked of a value, as text.
std::string description(PropertyListValue value) {
  switch (value.kind()) {
    case Kind::Absent:
      return "absent";
    case Kind::String:
      return "\"" + std::string(value.string().value()) + "\"";
    case Kind::Integer:
      return value.integer() ? std::to_string(*value.integer())
                             : std::to_string(value.unsignedInteger().value());
    case Kind::Real:
      return "real " + std::to_string(value.real().value());
    case Kind::Boolean:
      return value.boolean().value() ? "true" : "false";
    case Kind::Date:
      return rfc3339Text(value.date().value());
    case Kind::Data:
      return "<" + std::string(textOf(value.data().value())) + ">";
    case Kind::Array:
    case Kind::Dictionary:
      break;
  }
  const PropertyListEntries entries = value.entries();
  std::string text = value.kind() == Kind::Array ? "(" : "{";
  for (const auto& [key, member] : entries) {
    text += description(key) + ": " + description(member) + ", ";
  }
  for (std::size_t i = entries.size(); i < value.count(); ++i) {
    text += description(value.at(i)) + ", ";
  }
  return text + ".";
}

std::string description(std::string_view document) {
  const auto list = parsed(document);
  return list ? description(list->root()) : "nothing";
}

// Plain documents go a short way of their own. A comment at the end sends the same document to
// Expat, which then has to agree, letter for letter and change for change.
TEST(PropertyListXML, readsPlainDocumentsAsExpatReadsThem) {
  const std::string plain = xmlDocument(
      "\n<dict>\n\t<key>a</key><array><integer>-5</integer><real>1.5</real><string>x]</string>\n"
      "<dict/><data>\nAAEC\n</data><date>2011-10-12T08:30:00Z</date><string/></array>\n"
      "<key>b</key><true/><key>c</key><false></false><key>d</key><dict><key>]]</key>"
      "<string> &gt; </string></dict></dict>\n");
  std::string withoutReference = plain;
  withoutReference.replace(plain.find("&gt;"), 4, ">");
  const auto expectAgreement = [](const std::string& document) {
    EXPECT_EQ(description(document), description(document + "<!-- -->")) << document;
  };
  EXPECT_EQ(description(plain), description(withoutReference));
  EXPECT_NE(description(plain), "nothing");

  constexpr std::string_view pieces[] = {"",         "<",
                                         ">",        "/",
                                         "&",        "]]>",
                                         "\"",       "'",
                                         "x",        " ",
                                         "\t",       "\r",
                                         "\n",       "\x01",
                                         "\x7F",     "\xE9",
                                         "\xC3\xA9", "<true/>",
                                         "<array>",  "</array>",
                                         "<uid/>",   "<plist>",
                                         "</plist>", "<!-- -->",
                                         "<?pi?>",   "version=\"1.0\""};
  for (std::size_t at = 0; at <= withoutReference.size(); ++at) {
    for (const std::string_view piece : pieces) {
      std::string document = withoutReference;
      expectAgreement(document.insert(at, piece));
      document = withoutReference;
      expectAgreement(document.replace(at, 1, piece));
    }
    expectAgreement(withoutReference.substr(0, at));
  }
}

}  // namespace
}  // namespace snaplift
