#include "evidence/xml_reader.h"

#include <gmock/gmock.h>

#include "base/error.h"

namespace korvel::evidence {
namespace {

using testing::HasSubstr;

/// What is read, with the bytes coming in pieces of this size.
std::string readIn(std::string_view xml, std::size_t piece, std::string_view attribute = "r") {
  XmlReader reader([&, at = std::size_t{0}]() mutable {
    const std::string_view next = xml.substr(std::min(at, xml.size()), piece);
    at += next.size();
    return next;
  });
  std::string told;
  for (;;) {
    switch (reader.next()) {
      case XmlReader::Token::begin:
        told += "<" + std::string(reader.name());
        if (const auto value = reader.attribute(attribute)) told += ":" + *value;
        break;
      case XmlReader::Token::end:
        told += "/" + std::string(reader.name()) + ">";
        break;
      case XmlReader::Token::text:
        told += "[" + reader.text() + "]";
        break;
      case XmlReader::Token::done:
        return told;
    }
  }
}

std::string sentenceOf(std::string_view xml) {
  try {
    readIn(xml, 7);
  } catch (const Error& error) {
    return error.description();
  }
  return {};
}

TEST(XmlReader, GivesTagsAndTextsWhateverThePiecesAre) {
  const std::string_view xml =
      "<?xml version=\"1.0\"?>\n<x:a><!-- <b> --><c s=\"1\" r='A>1'/> t &lt;&amp;&#65;&#x142;<![CDATA[<&]]></x:a>";
  for (std::size_t piece = 1; piece < xml.size() + 1; ++piece)
    EXPECT_EQ(readIn(xml, piece), "[\n]<a<c:A>1/c>[ t <&Ał][<&]/a>") << piece;
  EXPECT_EQ(readIn("<s name=\"id\" r:id = \"x &quot;\"/>", 5, "id"), "<s:x \"/s>");
  EXPECT_EQ(readIn("", 1), "");
}

TEST(XmlReader, RefusesWhatNoWorkbookHas) {
  EXPECT_THAT(sentenceOf("<a"), HasSubstr("ends within a tag"));
  EXPECT_THAT(sentenceOf("<a b=\"c>"), HasSubstr("ends within a tag"));
  EXPECT_THAT(sentenceOf("<!-- a"), HasSubstr("ends within a tag"));
  EXPECT_THAT(sentenceOf("<>"), HasSubstr("a tag without a name"));
  EXPECT_THAT(sentenceOf("<!DOCTYPE a [<!ENTITY b \"c\">]><a/>"), HasSubstr("a document type"));
  for (const char* const entity : {"&b;", "&#;", "&#x;", "&#99999999999;", "&;", "&#1x;"})
    EXPECT_THAT(sentenceOf("<a>" + std::string(entity) + "</a>"), HasSubstr("the entity")) << entity;
  EXPECT_THAT(sentenceOf("<a>&amp</a>"), HasSubstr("an entity that does not end"));
  for (const char* const attribute : {"b", "=\"c\"", "b=c", "b=\"c"})
    EXPECT_NE(sentenceOf("<a " + std::string(attribute) + ">"), "") << attribute;
  EXPECT_THAT(sentenceOf("<a>" + std::string(2'000'000, 'x')), HasSubstr("too long"));
  EXPECT_THAT(sentenceOf("<" + std::string(2'000'000, 'x')), HasSubstr("too long"));
}

}  // namespace
}  // namespace korvel::evidence
