#include "ocx/qt/hosted_audit_viewer.h"

#include <QApplication>
#include <QFont>
#include <QImage>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <memory>
#include <new>

#include "ocx/qt/automation_values.h"
#include "ocx/qt/still_picture.h"
#include "ocx/qt/tab_stops.h"

namespace korvel::ocx {
namespace {

const wchar_t* wide(const QString& text) {
  return reinterpret_cast<const wchar_t*>(text.utf16());
}

/// Members of the control throw nothing themselves; the toolkit may run out of memory.
template <typename Action>
HRESULT guarded(const Action& action) noexcept {
  try {
    action();
    return S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

HRESULT giveText(BSTR* place, const QString& text) {
  if (place == nullptr) return E_POINTER;
  *place = toBstr(text);
  return *place != nullptr ? S_OK : E_OUTOFMEMORY;
}

HRESULT giveBoolean(VARIANT_BOOL* place, bool value) {
  if (place == nullptr) return E_POINTER;
  *place = value ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

}  // namespace

HostedAuditViewer::HostedAuditViewer(ViewerOwner& owner) : owner_(owner), viewer_(std::make_unique<AuditViewer>()) {
  viewer_->setWindowFlag(Qt::FramelessWindowHint);
  qApp->installEventFilter(this);
  // The owner may discard this object in any of these.
  connect(viewer_.get(), &AuditViewer::DatabaseSelected, this,
          [this](const QString& database) { owner_.databaseSelected(wide(database)); });
  connect(viewer_.get(), &AuditViewer::ExitApp, this, [this] { owner_.exitApp(); });
  connect(viewer_.get(), &AuditViewer::PropertyChanged, this,
          [this](const QString& name) { owner_.propertyChanged(wide(name)); });
  connect(qApp, &QApplication::focusChanged, this, [this](const QWidget* old, const QWidget* now) {
    const auto inside = [this](const QWidget* element) { return element != nullptr && viewer_->isAncestorOf(element); };
    if (inside(now) && !inside(old)) owner_.focusEntered();
  });
}

HostedAuditViewer::~HostedAuditViewer() = default;

bool HostedAuditViewer::eventFilter(QObject* watched, QEvent* event) {
  if (watched == viewer_.get()) {
    if (event->type() == QEvent::WindowBlocked) owner_.dialogOpen(true);
    if (event->type() == QEvent::WindowUnblocked) owner_.dialogOpen(false);
  } else if (event->type() == QEvent::Show && watched->isWidgetType()) {
    takeWindow(static_cast<QWidget&>(*watched));
  }
  return false;
}

// For the toolkit the viewer's own windows have no owner, because it is a child of a window that the toolkit does not
// know. They could be covered by the container's.
void HostedAuditViewer::takeWindow(QWidget& window) const {
  const Qt::WindowType type = window.windowType();
  if (!container_ || !window.isWindow() || type == Qt::Popup || type == Qt::ToolTip) return;
  if (window.parentWidget() == nullptr || window.parentWidget()->window() != viewer_.get()) return;
  // While it is being shown, the toolkit takes an owner away again.
  QMetaObject::invokeMethod(
      &window,
      [&window, around = ::GetAncestor(reinterpret_cast<HWND>(container_->winId()), GA_ROOT)] {
        ::SetWindowLongPtrW(reinterpret_cast<HWND>(window.winId()), GWLP_HWNDPARENT,
                            reinterpret_cast<LONG_PTR>(around));
      },
      Qt::QueuedConnection);
}

HRESULT HostedAuditViewer::get_DatabaseType(LONG* value) noexcept {
  if (value == nullptr) return E_POINTER;
  *value = viewer_->DatabaseType();
  return S_OK;
}
HRESULT HostedAuditViewer::put_DatabaseType(LONG value) noexcept {
  return guarded([&] { viewer_->setDatabaseType(static_cast<int>(value)); });
}
HRESULT HostedAuditViewer::SelectALL() noexcept {
  return guarded([&] { viewer_->SelectALL(); });
}
HRESULT HostedAuditViewer::UnselectALL() noexcept {
  return guarded([&] { viewer_->UnselectALL(); });
}
HRESULT HostedAuditViewer::ExportNotepad() noexcept {
  return guarded([&] { viewer_->ExportNotepad(); });
}
HRESULT HostedAuditViewer::ExportExcel() noexcept {
  return guarded([&] { viewer_->ExportExcel(); });
}
HRESULT HostedAuditViewer::GetExportPath(BSTR dialogtext, short files, BSTR* result) noexcept {
  QString path;
  const HRESULT called = guarded([&] { path = viewer_->GetExportPath(toText(dialogtext), files); });
  return FAILED(called) ? called : giveText(result, path);
}
HRESULT HostedAuditViewer::ChangeFont() noexcept {
  return guarded([&] { viewer_->ChangeFont(); });
}
HRESULT HostedAuditViewer::DisplayNoOfRecords() noexcept {
  return guarded([&] { viewer_->DisplayNoOfRecords(); });
}
HRESULT HostedAuditViewer::TriggerQuery() noexcept {
  return guarded([&] { viewer_->TriggerQuery(); });
}
HRESULT HostedAuditViewer::ExpandAll() noexcept {
  return guarded([&] { viewer_->ExpandAll(); });
}
HRESULT HostedAuditViewer::SelectDatabase() noexcept {
  return guarded([&] { viewer_->SelectDatabase(); });
}
HRESULT HostedAuditViewer::UnlockControls() noexcept {
  return guarded([&] { viewer_->UnlockControls(); });
}
HRESULT HostedAuditViewer::LockControls() noexcept {
  return guarded([&] { viewer_->LockControls(); });
}
HRESULT HostedAuditViewer::ViewTools(VARIANT_BOOL visable) noexcept {
  return guarded([&] { viewer_->ViewTools(visable != VARIANT_FALSE); });
}
HRESULT HostedAuditViewer::get_ViewSideTools(VARIANT_BOOL* value) noexcept {
  return giveBoolean(value, viewer_->ViewSideTools());
}
HRESULT HostedAuditViewer::put_ViewSideTools(VARIANT_BOOL value) noexcept {
  return guarded([&] { viewer_->setViewSideTools(value != VARIANT_FALSE); });
}
HRESULT HostedAuditViewer::get_ViewToolBar(VARIANT_BOOL* value) noexcept {
  return giveBoolean(value, viewer_->ViewToolBar());
}
HRESULT HostedAuditViewer::put_ViewToolBar(VARIANT_BOOL value) noexcept {
  return guarded([&] { viewer_->setViewToolBar(value != VARIANT_FALSE); });
}
HRESULT HostedAuditViewer::get_DefaultSQLServer(BSTR* value) noexcept {
  return giveText(value, viewer_->DefaultSQLServer());
}
HRESULT HostedAuditViewer::put_DefaultSQLServer(BSTR value) noexcept {
  return guarded([&] { viewer_->setDefaultSQLServer(toText(value)); });
}
HRESULT HostedAuditViewer::BuildMenu() noexcept {
  return guarded([&] { viewer_->BuildMenu(); });
}
HRESULT HostedAuditViewer::BuildToolbar() noexcept {
  return guarded([&] { viewer_->BuildToolbar(); });
}
HRESULT HostedAuditViewer::ShowKeyField(VARIANT_BOOL vis) noexcept {
  return guarded([&] { viewer_->ShowKeyField(vis != VARIANT_FALSE); });
}
HRESULT HostedAuditViewer::ListViewColSetup() noexcept {
  return guarded([&] { viewer_->ListViewColSetup(); });
}
HRESULT HostedAuditViewer::BuildPopup(BSTR PopupItem) noexcept {
  return guarded([&] { viewer_->BuildPopup(toText(PopupItem)); });
}
HRESULT HostedAuditViewer::TriggerAdvancedQuery(BSTR QueryString) noexcept {
  return guarded([&] { viewer_->TriggerAdvancedQuery(toText(QueryString)); });
}
HRESULT HostedAuditViewer::SwitchLanguage() noexcept {
  return guarded([&] { viewer_->SwitchLanguage(); });
}
HRESULT HostedAuditViewer::BuildMisc() noexcept {
  return guarded([&] { viewer_->BuildMisc(); });
}
HRESULT HostedAuditViewer::OpenDefaultSQLServer() noexcept {
  return guarded([&] { viewer_->OpenDefaultSQLServer(); });
}

void HostedAuditViewer::initProperties() noexcept {
  viewer_->InitProperties();
}

HRESULT HostedAuditViewer::readProperties(const StoredValue* values, unsigned count, BSTR* failure) noexcept {
  QString wrong;
  const HRESULT called = guarded([&] {
    QVariantMap bag;
    for (const StoredValue* each = values; each != values + count; ++each)
      if (const QVariant value = toVariant(*each->value); value.isValid())
        bag.insert(QString::fromWCharArray(each->name), value);
    wrong = viewer_->ReadProperties(bag);
  });
  if (FAILED(called) || wrong.isEmpty()) return called;
  *failure = toBstr(wrong);
  return E_FAIL;
}

HRESULT HostedAuditViewer::writeProperties(const StoredValue* values, unsigned count) noexcept {
  HRESULT result = S_OK;
  const HRESULT called = guarded([&] {
    const QVariantMap bag = viewer_->WriteProperties().toMap();
    for (const StoredValue* each = values; each != values + count && SUCCEEDED(result); ++each)
      result = setVariant(*each->value, bag.value(QString::fromWCharArray(each->name)));
  });
  return FAILED(called) ? called : result;
}

HRESULT HostedAuditViewer::place(HWND parent, SIZE size) noexcept {
  HRESULT result = S_OK;
  const HRESULT called = guarded([&] {
    container_.reset(QWindow::fromWinId(reinterpret_cast<WId>(parent)));
    if (!container_ || viewer_->winId() == 0 || viewer_->windowHandle() == nullptr) {
      container_.reset();
      result = E_FAIL;
      return;
    }
    // The system activates what gets a parent without being a child, and so would take the focus from the form.
    const HWND own = reinterpret_cast<HWND>(viewer_->winId());
    const auto style = static_cast<DWORD>(::GetWindowLongPtrW(own, GWL_STYLE));
    ::SetWindowLongPtrW(own, GWL_STYLE, static_cast<LONG_PTR>((style & ~DWORD{WS_POPUP}) | WS_CHILD));
    viewer_->windowHandle()->setParent(container_.get());
    // A widget that was never resized would take the size that it likes best. The exact size follows, in pixels.
    viewer_->resize((QSizeF(size.cx, size.cy) / viewer_->devicePixelRatioF()).toSize());
    viewer_->show();
    resize(size);
  });
  return FAILED(called) ? called : result;
}

// In pixels of the container, whatever density the toolkit sees.
void HostedAuditViewer::resize(SIZE size) noexcept {
  if (!container_) return;
  ::SetWindowPos(reinterpret_cast<HWND>(viewer_->winId()), nullptr, 0, 0, size.cx, size.cy,
                 SWP_NOACTIVATE | SWP_NOZORDER);
}

void HostedAuditViewer::remove() noexcept {
  if (!container_) return;
  viewer_->hide();
  if (QWindow* const own = viewer_->windowHandle()) own->setParent(nullptr);
  container_.reset();
}

// As Show would, without a database, and without announcing anything.
void HostedAuditViewer::applyProperties() {
  const QSignalBlocker silent(*viewer_);
  viewer_->setViewSideTools(viewer_->ViewSideTools());
  viewer_->setViewToolBar(viewer_->ViewToolBar());
}

HRESULT HostedAuditViewer::paint(SIZE size, void* pixels) noexcept {
  return guarded([&] {
    QImage picture(static_cast<uchar*>(pixels), static_cast<int>(size.cx), static_cast<int>(size.cy),
                   QImage::Format_RGB32);
    if (!container_) applyProperties();
    paintStill(*viewer_, picture);
  });
}

void HostedAuditViewer::takeFocus(bool last) noexcept {
  if (!container_) return;
  ::SetFocus(reinterpret_cast<HWND>(viewer_->winId()));
  focusEnd(*viewer_, last);
}

bool HostedAuditViewer::isAtEnd(bool backwards) noexcept {
  return tabLeaves(*viewer_, backwards);
}

void HostedAuditViewer::setFont(const wchar_t* family, double points, bool bold, bool italic) noexcept {
  QFont font(QString::fromWCharArray(family));
  font.setPointSizeF(points);
  font.setBold(bold);
  font.setItalic(italic);
  viewer_->setFont(font);
}

void HostedAuditViewer::stopWaiting() noexcept {
  // The key goes to whatever waits; without one it changes nothing. It is not left in the queue, where the next query
  // would find it.
  static_cast<void>(guarded([&] {
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(viewer_.get(), &escape);
  }));
}

void HostedAuditViewer::discard() noexcept {
  remove();
  viewer_.reset();
  delete this;
}

}  // namespace korvel::ocx
