#include "tests/control/viewer_fixture.h"

#include <QTreeWidgetItemIterator>
#include <cstring>

namespace korvel::test {
namespace {

class MemoryKey final : public settings::SettingsKey {
 public:
  explicit MemoryKey(MemorySettings::Content& content) : content_(content), values_(content.values) {}
  Win32Error querySize(const std::string& valueName, std::uint32_t& type, std::uint32_t& size) override {
    const auto found = values_.find(valueName);
    if (found == values_.end()) return Win32Error::fileNotFound;
    type = static_cast<std::uint32_t>(settings::ValueType::string);
    size = static_cast<std::uint32_t>(found->second.size()) + 1;
    return Win32Error::success;
  }
  Win32Error queryData(const std::string& valueName, std::vector<char>& buffer) override {
    const std::string& value = values_.at(valueName);
    std::memcpy(buffer.data(), value.data(), value.size());
    return Win32Error::success;
  }
  Win32Error setString(const std::string& valueName, const std::string& value) override {
    values_[valueName] = content_.storesInstead.value_or(value);
    return Win32Error::success;
  }

 private:
  MemorySettings::Content& content_;
  std::map<std::string, std::string>& values_;
};

}  // namespace

Win32Error MemorySettings::openForReading(const std::string& keyPath, std::unique_ptr<settings::SettingsKey>& key) {
  EXPECT_EQ(keyPath, "SOFTWARE\\Molvane\\AuditViewer");
  if (content_.openFailure != Win32Error::success) return content_.openFailure;
  key = std::make_unique<MemoryKey>(content_);
  return Win32Error::success;
}

ViewerTest::ViewerTest() : realPlatform_(control::platform()) {
  control::platform().services = recorder;
  control::platform().openSettings = [this] { return std::make_unique<MemorySettings>(settings); };
  control::platform().connect = [this](std::string_view text, const std::stop_token&) { return server.connect(text); };
  control::libraryState() = control::LibraryState();
}

ViewerTest::~ViewerTest() {
  control::platform() = realPlatform_;
  control::libraryState() = control::LibraryState();
}

void ViewerTest::answerWithOneRow() {
  server.answer = [](db::ResultSink& sink) {
    const std::vector<db::Field> fields{{"a"}, {"b"}};
    sink.beginResult(fields);
    sink.row(std::vector<db::Cell>{{"1"}, {"2"}});
    sink.endResult();
  };
}

std::unique_ptr<AuditViewer> ViewerTest::newViewer() {
  auto viewer = std::make_unique<AuditViewer>();
  viewer->InitProperties();
  return viewer;
}

std::unique_ptr<AuditViewer> ViewerTest::shownViewer() {
  auto viewer = newViewer();
  viewer->setDefaultSQLServer(QStringLiteral("S"));
  viewer->resize(1200, 800);
  viewer->show();
  return viewer;
}

QString ViewerTest::treeText(const AuditViewer& viewer) {
  QString text;
  for (QTreeWidgetItemIterator it(element<QTreeWidget>(viewer, "tvTreeView")); *it != nullptr; ++it) {
    const QTreeWidgetItem& item = **it;
    if (item.parent() != nullptr) text += QLatin1String("  ");
    text += QLatin1String(item.checkState(0) == Qt::Checked ? "[x] " : "[ ] ") + item.text(0) + QLatin1Char('\n');
  }
  return text;
}

QString ViewerTest::column(const AuditViewer& viewer, int listIndex, int columnIndex) {
  const QAbstractItemModel& model = *list(viewer, listIndex)->model();
  QStringList texts;
  for (int row = 0; row < model.rowCount(); ++row) texts.append(model.index(row, columnIndex).data().toString());
  return texts.join(QLatin1Char(' '));
}

QTreeWidgetItem* ViewerTest::node(const AuditViewer& viewer, const QString& path) {
  const QStringList names = path.split(QLatin1Char('/'));
  for (QTreeWidgetItemIterator it(element<QTreeWidget>(viewer, "tvTreeView")); *it != nullptr; ++it) {
    const QTreeWidgetItem* parent = (*it)->parent();
    const QString root = parent == nullptr ? QString() : parent->text(0);
    if ((*it)->text(0) == names.last() && root == (names.size() > 1 ? names.first() : QString())) return *it;
  }
  ADD_FAILURE() << "no node " << path.toStdString();
  return nullptr;
}

}  // namespace korvel::test
