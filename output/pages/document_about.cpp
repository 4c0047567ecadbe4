#include "output/pages/document_about.h"

#include <QString>
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include "output/terminal_text.h"

namespace korvel::output::pages {

namespace {

/// On one line, its control characters visible: XML cannot hold them.
QString shown(const std::string& text) {
  QString visible = QString::fromStdString(terminalText(text));
  visible.remove(QChar(0xFFFE));
  visible.remove(QChar(0xFFFF));
  return visible;
}

QString producer() {
  return QStringLiteral("Qt ") + QString::fromLatin1(qVersion());
}

/// A text string of the format: UTF-16 with its mark, as hexadecimal digits.
std::string pdfText(const QString& text) {
  std::string written = "<FEFF";
  for (const QChar c : text) {
    std::array<char, 8> digits{};
    static_cast<void>(std::snprintf(digits.data(), digits.size(), "%04X", static_cast<unsigned>(c.unicode())));
    written += digits.data();
  }
  return written + '>';
}

/// "2026-11-22T16:05:03+01:00" as "D:20261122160503+01'00'".
std::string pdfTime(const std::string& time) {
  std::string written = "(D:";
  bool isOffset = false;
  for (std::size_t i = 0; i < time.size(); ++i) {
    const char c = time[i];
    if (c >= '0' && c <= '9')
      written += c;
    else if (i > time.find('T') && (c == '+' || c == '-')) {
      written += c;
      isOffset = true;
    } else if (isOffset && c == ':')
      written += '\'';
    else if (c == 'Z')
      written += c;
  }
  return written + (isOffset ? "')" : ")");
}

std::string propertiesOf(const DocumentAbout& about) {
  std::string written = "<<\n";
  const auto add = [&](const char* name, const std::string& text) {
    if (!text.empty()) written += std::string(name) + ' ' + pdfText(shown(text)) + '\n';
  };
  add("/Title", about.title);
  add("/Author", about.author);
  add("/Subject", about.description);
  add("/Creator", about.creator);
  written += "/Producer " + pdfText(producer()) + '\n';
  written += "/CreationDate " + pdfTime(about.created) + '\n';
  return written + ">>\n";
}

/// The whole number behind `name` in `text`.
std::optional<std::uint64_t> numberBehind(std::string_view text, std::string_view name) {
  const std::size_t at = text.rfind(name);
  if (at == std::string_view::npos) return std::nullopt;
  text.remove_prefix(at + name.size());
  text.remove_prefix(std::min(text.find_first_not_of(" \r\n"), text.size()));
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{}) return std::nullopt;
  return number;
}

/// The dictionary of an object, from behind its "<<" to before the end of the object.
std::optional<std::string_view> dictionaryOf(std::string_view document, std::uint64_t object) {
  const std::string begin = '\n' + std::to_string(object) + " 0 obj\n<<";
  const std::size_t at = document.find(begin);
  if (at == std::string_view::npos) return std::nullopt;
  document.remove_prefix(at + begin.size());
  const std::size_t end = document.find("endobj");
  if (end == std::string_view::npos) return std::nullopt;
  return document.substr(0, end);
}

/// A line of the table of objects: 20 bytes.
std::string placeLine(std::uint64_t place) {
  std::array<char, 32> line{};
  static_cast<void>(std::snprintf(line.data(), line.size(), "%010llu 00000 n \n",
                                  static_cast<unsigned long long>(place)));  // NOLINT(google-runtime-int)
  return line.data();
}

}  // namespace

QByteArray archiveMetadata(const DocumentAbout& about) {
  const auto escaped = [](const std::string& text) { return shown(text).toHtmlEscaped(); };
  QString xmp = QStringLiteral(
      "<?xpacket begin=\"\uFEFF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
      "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
      "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
      "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
      "xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" xmlns:pdf=\"http://ns.adobe.com/pdf/1.3/\" "
      "xmlns:pdfaid=\"http://www.aiim.org/pdfa/ns/id/\" "
      "pdfaid:part=\"1\" pdfaid:conformance=\"B\" ");
  xmp += QStringLiteral("pdf:Producer=\"") + producer().toHtmlEscaped() + QStringLiteral("\" xmp:CreatorTool=\"") +
         escaped(about.creator) + QStringLiteral("\" xmp:CreateDate=\"") + escaped(about.created) +
         QStringLiteral("\">\n<dc:format>application/pdf</dc:format>\n");
  const auto add = [&](const char* element, const char* container, const char* language, const std::string& text) {
    if (text.empty()) return;
    const QString name = QStringLiteral("dc:") + QLatin1String(element);
    const QString list = QStringLiteral("rdf:") + QLatin1String(container);
    xmp += u'<' + name + QStringLiteral("><") + list + QStringLiteral("><rdf:li") + QLatin1String(language) + u'>' +
           escaped(text) + QStringLiteral("</rdf:li></") + list + QStringLiteral("></") + name + QStringLiteral(">\n");
  };
  constexpr const char* anyLanguage = " xml:lang=\"x-default\"";
  add("title", "Alt", anyLanguage, about.title);
  add("creator", "Seq", "", about.author);
  add("description", "Alt", anyLanguage, about.description);
  add("language", "Bag", "", about.language);
  xmp += QStringLiteral("</rdf:Description>\n</rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>");
  return xmp.toUtf8();
}

std::optional<std::string> propertiesUpdate(std::string_view beginning, std::string_view end, std::uint64_t size,
                                            const DocumentAbout& about) {
  const std::size_t trailerAt = end.rfind("trailer");
  if (trailerAt == std::string_view::npos) return std::nullopt;
  const std::string_view trailer = end.substr(trailerAt);
  const auto objects = numberBehind(trailer, "/Size");
  const auto root = numberBehind(trailer, "/Root");
  const auto properties = numberBehind(trailer, "/Info");
  const auto table = numberBehind(trailer, "startxref");
  if (!objects || !root || !properties || !table) return std::nullopt;
  const auto catalog = dictionaryOf(beginning, *root);
  if (!catalog) return std::nullopt;
  const std::size_t idAt = trailer.find("/ID");
  const std::size_t idEnd = trailer.find(']', std::min(idAt, trailer.size()));
  if (idAt == std::string_view::npos || idEnd == std::string_view::npos) return std::nullopt;

  std::string update;
  const std::uint64_t propertiesPlace = size;
  update += std::to_string(*properties) + " 0 obj\n" + propertiesOf(about) + "endobj\n";
  const std::uint64_t catalogPlace = size + update.size();
  update += std::to_string(*root) + " 0 obj\n<<";
  if (!about.language.empty()) update += "\n/Lang " + pdfText(shown(about.language));
  update.append(*catalog) += "endobj\n";
  const std::uint64_t newTable = size + update.size();
  update += "xref\n" + std::to_string(*properties) + " 1\n" + placeLine(propertiesPlace) + std::to_string(*root) +
            " 1\n" + placeLine(catalogPlace);
  update += "trailer\n<<\n/Size " + std::to_string(*objects) + "\n/Info " + std::to_string(*properties) +
            " 0 R\n/Root " + std::to_string(*root) + " 0 R\n/Prev " + std::to_string(*table) + '\n';
  update.append(trailer.substr(idAt, idEnd + 1 - idAt)) += "\n>>\nstartxref\n" + std::to_string(newTable) + "\n%%EOF\n";
  return update;
}

}  // namespace korvel::output::pages
