// A window of plain toolkit widgets with about the viewer's content: menus, a tree with check boxes, a button, tabs,
// one list of eighteen columns. Its difference to an empty window is the cost of showing text.

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableView>
#include <QTreeWidget>

namespace {

QWidget* strip() {
  auto* frame = new QWidget;
  auto* column = new QVBoxLayout(frame);
  auto* tree = new QTreeWidget;
  tree->setHeaderHidden(true);
  for (const char* group : {"Configuration", "Runtime", "Document Control"}) {
    auto* root = new QTreeWidgetItem(tree, {QString::fromLatin1(group)});
    constexpr int entries = 4;
    for (int i = 0; i < entries; ++i)
      (new QTreeWidgetItem(root, {QStringLiteral("Entry")}))->setCheckState(0, Qt::Checked);
  }
  tree->expandAll();
  column->addWidget(tree);
  column->addWidget(new QPushButton(QStringLiteral("Query")));
  return frame;
}

QWidget* pages() {
  auto* tabs = new QTabWidget;
  constexpr int columns = 18;
  auto* model = new QStandardItemModel(0, columns, tabs);
  QStringList captions;
  for (int i = 0; i < columns; ++i) captions << QStringLiteral("Caption");
  model->setHorizontalHeaderLabels(captions);
  auto* list = new QTableView;
  list->setModel(model);
  QFont bold = list->font();
  bold.setBold(true);
  list->horizontalHeader()->setFont(bold);
  tabs->addTab(list, QStringLiteral("Page"));
  constexpr int otherPages = 5;
  for (int i = 0; i < otherPages; ++i) tabs->addTab(new QWidget, QStringLiteral("Page"));
  return tabs;
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QMainWindow window;
  window.resize(1280, 800);
  for (const char* caption : {"File", "Query", "Export", "View", "Help"})
    window.menuBar()->addMenu(QString::fromLatin1(caption));
  window.statusBar()->addWidget(new QLabel(QStringLiteral("0 Records")));
  auto* content = new QWidget;
  auto* row = new QHBoxLayout(content);
  row->addWidget(strip());
  row->addWidget(pages(), 1);
  window.setCentralWidget(content);
  window.show();
  return QApplication::exec();
}
