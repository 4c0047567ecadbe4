#include "settings/registry_document.h"

#include <gtest/gtest.h>

#include <string>

namespace korvel::settings {
namespace {

const std::string header = "Windows Registry Editor Version 5.00\n";
const std::string section = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Molvane\\AuditViewer";
const std::string sectionLine = "[" + section + "]\n";

RegistryDocument parsed(const std::string& text) {
  auto document = RegistryDocument::parse(text);
  EXPECT_TRUE(document.has_value()) << text;
  return document ? *std::move(document) : RegistryDocument{};
}

/// A document with the one line in the viewer's section.
RegistryDocument withLine(const std::string& line) {
  return parsed(header + sectionLine + line);
}

std::string bytesOf(const RegistryDocument& document, const std::string& name) {
  const RegistryValue* value = document.find(section, name);
  return value == nullptr ? "(none)" : value->bytes;
}

std::uint32_t typeOf(const RegistryDocument& document, const std::string& name) {
  const RegistryValue* value = document.find(section, name);
  return value == nullptr ? 0xFFFFFFFFU : value->type;
}

std::string terminated(std::string text) {
  text.push_back('\0');
  return text;
}

TEST(RegistryDocument, WritesAReadableExport) {
  RegistryDocument document;
  document.setString(section, "Language", "10000");
  document.setString(section, "ViewerAppPath", "C:\\Program Files\\\"Plant\"\\KorvelAuditViewer.exe");
  document.setString("HKEY_LOCAL_MACHINE\\SOFTWARE\\Other", "Größe", "füßig 日本 😀");
  EXPECT_EQ(document.text(),
            "Windows Registry Editor Version 5.00\n"
            "\n"
            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Molvane\\AuditViewer]\n"
            "\"Language\"=\"10000\"\n"
            "\"ViewerAppPath\"=\"C:\\\\Program Files\\\\\\\"Plant\\\"\\\\KorvelAuditViewer.exe\"\n"
            "\n"
            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Other]\n"
            "\"Größe\"=\"füßig 日本 😀\"\n");
}

TEST(RegistryDocument, ReadsEveryTypeOfValue) {
  const RegistryDocument document = parsed(header + sectionLine +
                                           "@=\"unnamed\"\n"
                                           "\"S\"=\"text\"\n"
                                           "\"N\"=dword:0000002a\n"
                                           "\"Short\"=dword:A\n"
                                           "\"B\"=hex:01,02,ff\n"
                                           "\"Nothing\"=hex:\n"
                                           "\"Long\"=hex:01,02,\\\n  03,04,\\\n  05\n"
                                           "\"Opens\"=hex:\\\n  01,02\n"
                                           "\"OpensTyped\"=hex(2):\\ \n25,00,\\\n  00,00\n"
                                           "\"X\"=hex(2):25,00,00,00\n"
                                           "\"Q\"=hex(b):01,00,00,00,00,00,00,80\n");
  EXPECT_EQ(bytesOf(document, ""), terminated("unnamed"));
  EXPECT_EQ(typeOf(document, "S"), 1U);
  EXPECT_EQ(bytesOf(document, "S"), terminated("text"));
  EXPECT_EQ(typeOf(document, "N"), 4U);
  EXPECT_EQ(bytesOf(document, "N"), std::string("\x2A\0\0\0", 4));
  EXPECT_EQ(bytesOf(document, "Short"), std::string("\x0A\0\0\0", 4));
  EXPECT_EQ(typeOf(document, "B"), 3U);
  EXPECT_EQ(bytesOf(document, "B"), "\x01\x02\xFF");
  EXPECT_EQ(bytesOf(document, "Nothing"), "");
  EXPECT_EQ(bytesOf(document, "Long"), "\x01\x02\x03\x04\x05");
  EXPECT_EQ(bytesOf(document, "Opens"), "\x01\x02");
  EXPECT_EQ(typeOf(document, "OpensTyped"), 2U);
  EXPECT_EQ(bytesOf(document, "OpensTyped"), std::string("%\0\0\0", 4));
  EXPECT_EQ(typeOf(document, "X"), 2U);
  EXPECT_EQ(bytesOf(document, "X"), std::string("%\0\0\0", 4));
  EXPECT_EQ(typeOf(document, "Q"), 11U);
}

TEST(RegistryDocument, ReportsStringsWithOneTerminator) {
  EXPECT_EQ(bytesOf(withLine("\"S\"=\"\"\n"), "S"), terminated(""));
  EXPECT_EQ(bytesOf(withLine("\"S\"=hex(1):\n"), "S"), "");
  EXPECT_EQ(bytesOf(withLine("\"S\"=hex(1):00,00\n"), "S"), terminated(""));
  EXPECT_EQ(bytesOf(withLine("\"S\"=hex(1):31,00,00,00\n"), "S"), terminated("1"));
  EXPECT_EQ(bytesOf(withLine("\"S\"=hex(1):31,00\n"), "S"), terminated("1"));
  EXPECT_EQ(bytesOf(withLine("\"S\"=hex(1):fc,00,3d,d8,00,de\n"), "S"), terminated("ü😀"));
  // A lone surrogate and half a character: shown as far as they can be.
  EXPECT_EQ(bytesOf(withLine("\"S\"=hex(1):3d,d8,31,00,32\n"), "S"), terminated("\uFFFD1"));
  EXPECT_EQ(bytesOf(withLine("\"S\"=hex(1):00,de,3d,d8\n"), "S"), terminated("\uFFFD\uFFFD"));
}

TEST(RegistryDocument, EveryStringReturnsAsItWas) {
  const std::string all[] = {"",
                             " ",
                             "10000",
                             "\\",
                             "\"",
                             "\\\"\\\\",
                             "ends with \\",
                             "[section]",
                             "; no comment",
                             "\"A\"=\"B\"",
                             "tab\there",
                             "two\nlines",
                             "two\r\nlines\n",
                             std::string("a\0b\0", 4),
                             "\x01\x7F",
                             "ÄÖÜ ß é ñ",
                             "Привет 日本語 😀 \uFFFD\n",
                             std::string(500, 'x') + "\n"};
  for (const std::string& value : all) {
    RegistryDocument document;
    document.setString(section, "Before", "1");
    document.setString(section, "V", value);
    document.setString(section, "After", "2");
    const RegistryDocument again = parsed(document.text());
    EXPECT_EQ(bytesOf(again, "V"), terminated(value));
    EXPECT_EQ(typeOf(again, "V"), 1U);
    EXPECT_EQ(bytesOf(again, "Before"), terminated("1"));
    EXPECT_EQ(bytesOf(again, "After"), terminated("2"));
  }
}

TEST(RegistryDocument, ControlCharactersAreWrittenAsALongExportWritesThem) {
  RegistryDocument document;
  document.setString(section, "V", "two\nlines here");
  EXPECT_EQ(document.text(), header + "\n" + sectionLine +
                                 "\"V\"=hex(1):74,00,77,00,6f,00,0a,00,6c,00,69,00,6e,00,65,00,73,00,20,00,\\\n"
                                 "  68,00,65,00,72,00,65,00,00,00\n");
}

TEST(RegistryDocument, AChangeTouchesNothingElse) {
  const std::string before = "; our plant's settings\n\n" + sectionLine +
                             "\"N\"=dword:0000002A ; the answer\n"
                             "\"language\" = \"0\" ; chosen by hand\n"
                             "\"Unknown\"=hex(8a):01,\\\n  02\n"
                             "\n"
                             "; the next one is not ours\n"
                             "[HKEY_CURRENT_USER\\Else]\n"
                             "\"Language\"=\"other\"";
  RegistryDocument document = parsed(header + before);
  document.setString("hkey_local_machine\\software\\MOLVANE\\auditviewer", "LANGUAGE", "30000");
  std::string after = before;
  after.replace(after.find("\"0\""), 3, "\"30000\"");
  EXPECT_EQ(document.text(), header + after);

  document.setString(section, "New", "1");
  after.insert(after.find("\n; the next"), "\"New\"=\"1\"\n");
  EXPECT_EQ(document.text(), header + after);

  document.setString("HKEY_CURRENT_USER\\Else", "Last", "x");
  EXPECT_EQ(document.text(), header + after + "\n\"Last\"=\"x\"\n");
}

TEST(RegistryDocument, AStringReplacesAValueOfAnyType) {
  for (const std::string data : {"dword:00000001", "hex:01,\\\n  02", "hex:\\\n  01", "hex(7):", "\"two\nlines\""}) {
    RegistryDocument document = withLine("\"V\"=" + data + "\n\"W\"=\"w\"\n");
    document.setString(section, "V", "s");
    EXPECT_EQ(document.text(), header + sectionLine + "\"V\"=\"s\"\n\"W\"=\"w\"\n");
  }
}

TEST(RegistryDocument, KeepsTheLineEndsOfTheFile) {
  const std::string before =
      "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\A]\r\n\"V\"=hex:01,\\\r\n  02\r\n"
      "\"Opens\"=hex(2):\\\r\n  25,00\r\n";
  RegistryDocument document = parsed(before);
  const RegistryValue* const value = document.find("HKEY_LOCAL_MACHINE\\A", "V");
  const RegistryValue* const opens = document.find("HKEY_LOCAL_MACHINE\\A", "Opens");
  ASSERT_NE(value, nullptr);
  ASSERT_NE(opens, nullptr);
  EXPECT_EQ(value->bytes, "\x01\x02");
  EXPECT_EQ(opens->bytes, std::string("%\0", 2));
  document.setString("HKEY_LOCAL_MACHINE\\A", "W", "1");
  document.addKey("HKEY_LOCAL_MACHINE\\B");
  EXPECT_EQ(document.text(), before + "\"W\"=\"1\"\r\n\r\n[HKEY_LOCAL_MACHINE\\B]\r\n");
}

TEST(RegistryDocument, ComparesNamesAsARegistryDoes) {
  const RegistryDocument document = withLine("\"ÄrgerLich\"=\"1\"\n\"Maß\"=\"2\"\n\" K \"=\"3\"\n");
  EXPECT_EQ(bytesOf(document, "äRGERlICH"), terminated("1"));
  EXPECT_EQ(bytesOf(document, "MAß"), terminated("2"));
  EXPECT_EQ(bytesOf(document, "Mass"), "(none)");
  EXPECT_EQ(bytesOf(document, " k "), terminated("3"));
  EXPECT_EQ(bytesOf(document, "K"), "(none)");
}

TEST(RegistryDocument, ASectionBringsThoseAboveIt) {
  RegistryDocument document = parsed(header + sectionLine);
  EXPECT_TRUE(document.hasKey(section));
  EXPECT_TRUE(document.hasKey("HKEY_LOCAL_MACHINE\\SOFTWARE\\molvane"));
  EXPECT_FALSE(document.hasKey("HKEY_LOCAL_MACHINE\\SOFTWARE\\Mol"));
  EXPECT_FALSE(document.hasKey(section + "\\Below"));
  document.setString("HKEY_LOCAL_MACHINE\\SOFTWARE\\Molvane", "V", "1");
  EXPECT_EQ(document.text(), header + sectionLine + "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Molvane]\n\"V\"=\"1\"\n");
}

TEST(RegistryDocument, OfRepeatedValuesTheLastCounts) {
  RegistryDocument document = parsed(header + sectionLine + "\"V\"=\"1\"\n" + sectionLine + "\"v\"=\"2\"\n");
  EXPECT_EQ(bytesOf(document, "V"), terminated("2"));
  document.setString(section, "V", "3");
  EXPECT_EQ(document.text(), header + sectionLine + "\"V\"=\"1\"\n" + sectionLine + "\"v\"=\"3\"\n");
}

TEST(RegistryDocument, ReadsByteOrderMarks) {
  RegistryDocument marked = parsed("\xEF\xBB\xBF" + header + sectionLine + "\"V\"=\"ü\"\n");
  EXPECT_EQ(bytesOf(marked, "V"), terminated("ü"));
  marked.setString(section, "V", "1");
  EXPECT_EQ(marked.text(), "\xEF\xBB\xBF" + header + sectionLine + "\"V\"=\"1\"\n");

  std::string wide = "\xFF\xFE";
  for (const char c : header + sectionLine + "\"V\"=\"1\"\n") wide.append({c, '\0'});
  EXPECT_EQ(bytesOf(parsed(wide), "V"), terminated("1"));
  wide.pop_back();
  EXPECT_FALSE(RegistryDocument::parse(wide).has_value());
}

TEST(RegistryDocument, RefusesWhatItDoesNotUnderstand) {
  const std::string wrongFiles[] = {"",
                                    "\n",
                                    std::string(64, '\0'),
                                    "REGEDIT4\n",
                                    "windows registry editor\n",
                                    "Windows Registry Editor Version 5.00 and more\n",
                                    header + "\"V\"=\"value before any section\"\n",
                                    header + "[unclosed\n",
                                    header + "[]\n",
                                    header + "[-" + section + "]\n",
                                    header + "[" + section + "] x\n"};
  for (const std::string& file : wrongFiles) EXPECT_FALSE(RegistryDocument::parse(file).has_value()) << file;

  const std::string wrongLines[] = {"garbage",
                                    "V=\"1\"",
                                    "\"V\"",
                                    "\"V\"=",
                                    "\"V\"=1",
                                    "\"V\"=-",
                                    "\"V\"=\"unclosed",
                                    "\"V\"=\"1\" more",
                                    "\"V=\"1\"",
                                    "\"V\"=\"C:\\Program Files\"",
                                    "\"V\"=\"C:\\new\"",
                                    "\"V\"=\"ends\\",
                                    "\"V\"=dword:",
                                    "\"V\"=dword:xyz",
                                    "\"V\"=dword:123456789",
                                    "\"V\"=hex:1g",
                                    "\"V\"=hex:123",
                                    "\"V\"=hex:01,",
                                    "\"V\"=hex:01,\\",
                                    "\"V\"=hex:01,\\x\n  02",
                                    "\"V\"=hex:\\",
                                    "\"V\"=hex:\\\n",
                                    "\"V\"=hex:\\\n  ,01",
                                    "\"V\"=hex:\\01",
                                    "\"V\"=hex(:01",
                                    "\"V\"=hex(1:01",
                                    "\"V\"=hex(1)01",
                                    "\"V\"=\"latin \xFC\""};
  for (const std::string& line : wrongLines) {
    EXPECT_FALSE(RegistryDocument::parse(header + sectionLine + line).has_value()) << line;
    EXPECT_FALSE(RegistryDocument::parse(header + sectionLine + line + "\n").has_value()) << line;
  }
}

}  // namespace
}  // namespace korvel::settings
