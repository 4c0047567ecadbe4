#include "cli/offscreen_drawing.h"

#include "cli/platform.h"

namespace korvel::cli {

namespace {

/// Qt's warnings about desktops and their folders do not matter here.
void silent(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/) {}

}  // namespace

OffscreenDrawing::OffscreenDrawing()
    : before_(qInstallMessageHandler(silent)),
      platform_(drawingPlatform()),
      arguments_{program_.data(), option_.data(), platform_.data(), nullptr} {
  if (QCoreApplication::instance() == nullptr)
    application_ = std::make_unique<QGuiApplication>(count_, arguments_.data());
}

OffscreenDrawing::~OffscreenDrawing() {
  application_.reset();
  qInstallMessageHandler(before_);
}

}  // namespace korvel::cli
