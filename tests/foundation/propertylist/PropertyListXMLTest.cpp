#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "RawPropertyList.h"
#include "foundation/propertylist/PropertyList.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

std::string utf16(std::u16string_view text, bool isBigEndian) {
  std::string bytes;
  for (const char16_t unit : text) {
    const std::string pair = RawPropertyList::bigEndian(unit, 2);
    bytes += isBigEndian ? pair : std::string(pair.rbegin(), pair.rend());
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
    EXPECT_EQ(descriptionOf(xml), "string \u20AC") << testing::PrintToString(xml.substr(0, 8));
  }
  EXPECT_EQ(descriptionOf(std::string(
                "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><string>\xE9</string>")),
            "string \u00E9");
}

TEST(PropertyListXML, givesKeysWithoutValueAnAbsentOne) {
  EXPECT_EQ(
      descriptionOf(xmlDocument("<dict><key>a</key><key>b</key><new><dict><key>b</key></dict></new>"
                                "<key>c</key><string>x</string><key>d</key></dict>")),
      "dictionary(string a: absent, string b: absent, string c: string x, "
      "string d: absent, )");
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
  EXPECT_EQ(descriptionOf(external + "<plist><string>&amp;&#65;&#x42;</string></plist>"),
            "string &AB");

  for (const std::string& subset :
       {"<!ENTITY secret SYSTEM \"" + secret + "\">", std::string("<!ENTITY secret \"inside\">"),
        bomb + "<!ENTITY secret \"&c;&c;&c;\">",
        "<!ENTITY % outside SYSTEM \"" + declarations + "\"> %outside;",
        std::string("<!ATTLIST string padding CDATA \"aaaaaaaaaaaaaaaaaaaa\">")}) {
    EXPECT_FALSE(parsed("<!DOCTYPE plist [" + subset + "]>" + element)) << subset;
    EXPECT_FALSE(parsed("<!DOCTYPE plist [" + subset + "]><plist><true/></plist>")) << subset;
  }
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
    EXPECT_EQ(descriptionOf(document), descriptionOf(document + "<!-- -->")) << document;
  };
  EXPECT_EQ(descriptionOf(plain), descriptionOf(withoutReference));
  EXPECT_NE(descriptionOf(plain), "nothing");

  const std::string characters = "<>/&\"'x \t\r\n\x01\x7F\xE9";
  std::vector<std::string> pieces = {"",         "]]>",      "\xC3\xA9", "<true/>",
                                     "<array>",  "</array>", "<uid/>",   "<plist>",
                                     "</plist>", "<!-- -->", "<?pi?>",   "version=\"1.0\""};
  for (const char c : characters) {
    pieces.emplace_back(1, c);
  }
  for (std::size_t at = 0; at <= withoutReference.size(); ++at) {
    for (const std::string& piece : pieces) {
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
