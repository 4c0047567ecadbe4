#include "tests/ocx_hosted/looking_glass.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QMetaObject>
#include <QPixmapCache>
#include <QStringList>
#include <QWidget>

namespace {

BSTR given(const QString& text) {
  return ::SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.utf16()), static_cast<UINT>(text.size()));
}

QWidget* viewerOf(HWND window) {
  return QWidget::find(reinterpret_cast<WId>(window));
}

}  // namespace

extern "C" {

__declspec(dllexport) BSTR textOf(HWND viewer, const wchar_t* element) {
  const QWidget* const widget = viewerOf(viewer);
  if (widget == nullptr) return given(QStringLiteral("no viewer"));
  const QString name = QString::fromWCharArray(element);
  if (const auto* const label = widget->findChild<QLabel*>(name)) return given(label->text());
  if (const auto* const list = widget->findChild<QAbstractItemView*>(name)) {
    QStringList texts;
    for (int row = 0; row < list->model()->rowCount(); ++row)
      texts.append(list->model()->index(row, 0).data().toString());
    return given(texts.join(QLatin1Char(' ')));
  }
  return given(QStringLiteral("no element"));
}

__declspec(dllexport) SIZE sizeOf(HWND viewer) {
  const QWidget* const widget = viewerOf(viewer);
  if (widget == nullptr) return {};
  const QSize size = (QSizeF(widget->size()) * widget->devicePixelRatioF()).toSize();
  return {size.width(), size.height()};
}

__declspec(dllexport) bool trigger(HWND viewer, const wchar_t* command) {
  const QWidget* const widget = viewerOf(viewer);
  auto* const action = widget != nullptr ? widget->findChild<QAction*>(QString::fromWCharArray(command)) : nullptr;
  if (action != nullptr) action->trigger();
  return action != nullptr;
}

__declspec(dllexport) BSTR pluginFolders() {
  return given(QCoreApplication::libraryPaths().join(QLatin1Char('\n')));
}

__declspec(dllexport) BSTR focusOf(HWND viewer) {
  const QWidget* const widget = viewerOf(viewer);
  const QWidget* focused = QApplication::focusWidget();
  if (widget == nullptr || focused == nullptr || !widget->isAncestorOf(focused)) return given(QString());
  while (focused->objectName().isEmpty()) focused = focused->parentWidget();
  return given(focused->objectName());
}

__declspec(dllexport) bool pictureOf(HWND viewer, int width, int height, void* pixels) {
  QWidget* const widget = viewerOf(viewer);
  if (widget == nullptr) return false;
  QImage picture(static_cast<uchar*>(pixels), width, height, QImage::Format_RGB32);
  picture.fill(widget->palette().color(QPalette::Window));
  widget->render(&picture);
  return true;
}

__declspec(dllexport) void callLater(bool* done) {
  QMetaObject::invokeMethod(
      QCoreApplication::instance(), [done] { *done = true; }, Qt::QueuedConnection);
}

__declspec(dllexport) void forgetPictures() {
  QPixmapCache::clear();
}

}  // extern "C"
