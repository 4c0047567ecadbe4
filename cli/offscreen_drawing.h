#pragma once

#include <QGuiApplication>
#include <array>
#include <memory>
#include <string>

namespace korvel::cli {

/// While it exists, pages and pictures can be drawn. Qt needs an application to draw text; it must not need a display,
/// whatever the environment says.
class OffscreenDrawing {
 public:
  OffscreenDrawing();
  ~OffscreenDrawing();
  OffscreenDrawing(const OffscreenDrawing&) = delete;
  OffscreenDrawing& operator=(const OffscreenDrawing&) = delete;

 private:
  QtMessageHandler before_;
  std::string program_ = "korvel-audit";
  std::string option_ = "-platform";
  std::string platform_;
  int count_ = 3;
  std::array<char*, 4> arguments_;
  std::unique_ptr<QGuiApplication> application_;
};

}  // namespace korvel::cli
