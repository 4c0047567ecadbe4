#include "cli/pdf_output.h"

#include <QDateTime>
#include <QGuiApplication>
#include <array>
#include <memory>
#include <string>

#include "cli/platform.h"
#include "output/pages/pdf.h"
#include "output/report_source.h"

namespace korvel::cli {

namespace {

/// Qt needs an application to draw text; it must not need a display, whatever the environment says.
class TextDrawing {
 public:
  TextDrawing() : before_(qInstallMessageHandler(silent)) {
    if (QCoreApplication::instance() == nullptr)
      application_ = std::make_unique<QGuiApplication>(count_, arguments_.data());
  }
  ~TextDrawing() {
    application_.reset();
    qInstallMessageHandler(before_);
  }
  TextDrawing(const TextDrawing&) = delete;
  TextDrawing& operator=(const TextDrawing&) = delete;

 private:
  /// Qt's warnings about desktops and their folders do not matter here.
  static void silent(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/) {}

  QtMessageHandler before_;
  std::string program_ = "korvel-audit";
  std::string option_ = "-platform";
  std::string platform_ = drawingPlatform();
  int count_ = 3;
  std::array<char*, 4> arguments_{program_.data(), option_.data(), platform_.data(), nullptr};
  std::unique_ptr<QGuiApplication> application_;
};

}  // namespace

QString printedAt(const QDateTime& time) {
  return QStringLiteral("Printed ") + time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

void writePdf(const CaptionedList& list, const output::ByteSink& sink, std::ostream& /*err*/) {
  const TextDrawing drawing;
  const output::ReportList reported{list.caption, &list.list};
  output::ListSource source({&reported, 1}, {});
  output::pages::PageTexts texts;
  texts.printedAt = printedAt(QDateTime::currentDateTime());
  texts.note = QStringLiteral("KorvelAudit Report");
  texts.remark = QString::fromStdString(list.remark);
  output::pages::writePdf(source, texts, sink);
}

}  // namespace korvel::cli
