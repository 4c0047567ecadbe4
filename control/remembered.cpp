#include "control/remembered.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QSaveFile>
#include <algorithm>
#include <array>
#include <utility>

#include "db/connection_string.h"

namespace korvel::control {
namespace {

constexpr int formatVersion = 1;
const QString versionName = QStringLiteral("version");
const QString databasesName = QStringLiteral("databases");
const QString foldersName = QStringLiteral("folders");
const QString columnsName = QStringLiteral("columns");
const QString sizesName = QStringLiteral("windows");
const QString splittersName = QStringLiteral("splitters");

// A damaged file must not make a list endless or a column wider than any screen.
constexpr qint64 largestFile = qint64{4} << 20U;
constexpr qsizetype mostDatabases = 10;
constexpr qsizetype mostFolders = 50;
constexpr qsizetype mostColumns = 200;
constexpr qsizetype longestText = 10'000;
constexpr Twips leastColumn{150};
constexpr Twips widestColumn{30'000};
constexpr int leastSide = 100;
constexpr int longestSide = 20'000;
/// A change waits for another program's no longer than a person would notice.
constexpr int patienceMilliseconds = 200;

struct TextList {
  const char* name;
  qsizetype most;
};

/// By Remembered::Texts.
constexpr std::array<TextList, 3> textLists = {{{"findTexts", 10}, {"queries", 20}, {"queryFiles", 10}}};

const TextList& textList(Remembered::Texts which) {
  return textLists.at(static_cast<std::size_t>(which));
}

/// The content of the file; empty where there is none or it is damaged, nothing where it is another program's or a
/// newer version's.
std::optional<QJsonObject> contentOf(const QString& path) {
  QFile file(path);
  if (!QFileInfo(path).isFile() || file.size() > largestFile || !file.open(QIODevice::ReadOnly)) return QJsonObject();
  const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
  if (document.isNull()) return QJsonObject();
  if (document.object().value(versionName).toInt() != formatVersion) return std::nullopt;
  return document.object();
}

QStringList textsFrom(const QJsonValue& value, qsizetype most) {
  QStringList texts;
  const QJsonArray stored = value.toArray();
  for (const auto& each : stored) {
    const QString text = each.toString();
    if (!text.isEmpty() && text.size() <= longestText && !texts.contains(text)) texts.append(text);
    if (texts.size() == most) break;
  }
  return texts;
}

/// Whether the names are those of a database: a name that ends early in a connection string leads to another server.
bool isUsable(const RecentDatabase& database) {
  return !database.server.isEmpty() && !database.database.isEmpty() &&
         database.server.size() + database.database.size() <= longestText &&
         db::connectionStringRoundTrips(database.server.toStdString(), database.database.toStdString());
}

QList<RecentDatabase> databasesFrom(const QJsonValue& value) {
  QList<RecentDatabase> databases;
  const QJsonArray all = value.toArray();
  for (const auto& each : all) {
    const QJsonObject object = each.toObject();
    const RecentDatabase database{object.value(QLatin1String("server")).toString(),
                                  object.value(QLatin1String("database")).toString()};
    if (isUsable(database) && !databases.contains(database)) databases.append(database);
    if (databases.size() == mostDatabases) break;
  }
  return databases;
}

RememberedColumns columnsFrom(const QJsonValue& value) {
  const QJsonObject object = value.toObject();
  RememberedColumns found;
  const QJsonArray all = object.value(columnsName).toArray();
  for (const auto& each : all) {
    const QJsonObject stored = each.toObject();
    RememberedColumn column{stored.value(QLatin1String("name")).toString()};
    if (column.name.isEmpty()) continue;
    if (const QJsonValue width = stored.value(QLatin1String("width")); width.isDouble())
      column.width = std::clamp(Twips{width.toInt()}, leastColumn, widestColumn);
    if (const QJsonValue shown = stored.value(QLatin1String("shown")); shown.isBool()) column.shown = shown.toBool();
    found.columns.append(column);
    if (found.columns.size() == mostColumns) break;
  }
  found.order = textsFrom(object.value(QLatin1String("order")), mostColumns);
  return found;
}

QJsonValue storedColumns(const RememberedColumns& columns) {
  QJsonArray each;
  for (const RememberedColumn& column : columns.columns) {
    QJsonObject stored{{QStringLiteral("name"), column.name}};
    if (column.width) stored.insert(QStringLiteral("width"), column.width->value);
    if (column.shown) stored.insert(QStringLiteral("shown"), *column.shown);
    each.append(stored);
  }
  QJsonObject object{{columnsName, each}};
  if (!columns.order.isEmpty()) object.insert(QStringLiteral("order"), QJsonArray::fromStringList(columns.order));
  return object;
}

}  // namespace

RememberedColumn& RememberedColumns::column(const QString& name) {
  const auto found =
      std::find_if(columns.begin(), columns.end(), [&](const RememberedColumn& each) { return each.name == name; });
  // The column that was changed last comes first: the oldest ones go where there are too many.
  if (found != columns.end())
    std::rotate(columns.begin(), found, found + 1);
  else
    columns.prepend({name});
  while (columns.size() > mostColumns) columns.removeLast();
  return columns.front();
}

Remembered::Remembered(QString file, Extent extent) : file_(std::move(file)), extent_(extent) {}

bool Remembered::keeps(Kind kind) const noexcept {
  return kind == Kind::work ? keepsWork() : keepsLayout();
}

QJsonValue Remembered::entry(Kind kind, const QString& name) const {
  return keeps(kind) ? contentOf(file_).value_or(QJsonObject()).value(name) : QJsonValue();
}

void Remembered::change(Kind kind, const QString& name,
                        const std::function<QJsonValue(const QJsonValue&)>& changed) const {
  if (!keeps(kind) || !QDir().mkpath(QFileInfo(file_).absolutePath())) return;
  QLockFile lock(file_ + QStringLiteral(".lock"));
  if (!lock.tryLock(patienceMilliseconds)) return;
  std::optional<QJsonObject> content = contentOf(file_);
  if (!content) return;
  const QJsonValue before = content->value(name);
  const QJsonValue after = changed(before);
  if (after == before) return;
  content->insert(versionName, formatVersion);
  content->insert(name, after);
  QSaveFile file(file_);
  if (!file.open(QIODevice::WriteOnly)) return;
  // Queries and names of servers are nobody else's business.
  file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
  file.write(QJsonDocument(*content).toJson());
  file.commit();
}

QStringList Remembered::texts(Texts which) const {
  const TextList& list = textList(which);
  return textsFrom(entry(Kind::work, QLatin1String(list.name)), list.most);
}

void Remembered::addText(Texts which, const QString& text) const {
  if (text.isEmpty() || text.size() > longestText) return;
  const TextList& list = textList(which);
  change(Kind::work, QLatin1String(list.name), [&](const QJsonValue& before) {
    QStringList texts = textsFrom(before, list.most);
    texts.removeAll(text);
    texts.prepend(text);
    return QJsonArray::fromStringList(texts.mid(0, list.most));
  });
}

void Remembered::forgetTexts(Texts which) const {
  change(Kind::work, QLatin1String(textList(which).name), [](const QJsonValue& /*before*/) { return QJsonArray(); });
}

QList<RecentDatabase> Remembered::databases() const {
  return databasesFrom(entry(Kind::work, databasesName));
}

void Remembered::addDatabase(const RecentDatabase& database) const {
  if (!isUsable(database)) return;
  change(Kind::work, databasesName, [&](const QJsonValue& before) {
    QList<RecentDatabase> databases = databasesFrom(before);
    databases.removeAll(database);
    databases.prepend(database);
    QJsonArray stored;
    for (const RecentDatabase& each : databases.mid(0, mostDatabases))
      stored.append(QJsonObject{{QStringLiteral("server"), each.server}, {QStringLiteral("database"), each.database}});
    return stored;
  });
}

void Remembered::forgetDatabases() const {
  change(Kind::work, databasesName, [](const QJsonValue& /*before*/) { return QJsonArray(); });
}

QString Remembered::folder(const QString& purpose) const {
  return entry(Kind::work, foldersName).toObject().value(purpose).toString();
}

void Remembered::setFolder(const QString& purpose, const QString& folder) const {
  change(Kind::work, foldersName, [&](const QJsonValue& before) {
    QJsonObject folders = before.toObject();
    if (folders.size() >= mostFolders) folders = {};
    folders.insert(purpose, folder);
    return folders;
  });
}

RememberedColumns Remembered::columns(const QString& list) const {
  return columnsFrom(entry(Kind::layout, columnsName).toObject().value(list));
}

void Remembered::changeColumns(const QString& list, const std::function<void(RememberedColumns&)>& changed) const {
  change(Kind::layout, columnsName, [&](const QJsonValue& before) {
    QJsonObject lists = before.toObject();
    RememberedColumns columns = columnsFrom(lists.value(list));
    changed(columns);
    lists.insert(list, storedColumns(columns));
    return lists;
  });
}

void Remembered::forgetColumns(const QString& list) const {
  change(Kind::layout, columnsName, [&](const QJsonValue& before) {
    QJsonObject lists = before.toObject();
    lists.remove(list);
    return lists;
  });
}

QSize Remembered::size(const QString& window) const {
  const QJsonArray sides = entry(Kind::layout, sizesName).toObject().value(window).toArray();
  if (sides.size() != 2) return {};
  const QSize size(sides.at(0).toInt(), sides.at(1).toInt());
  const auto isSide = [](int length) { return length >= leastSide && length <= longestSide; };
  return isSide(size.width()) && isSide(size.height()) ? size : QSize();
}

void Remembered::setSize(const QString& window, const QSize& size) const {
  change(Kind::layout, sizesName, [&](const QJsonValue& before) {
    QJsonObject windows = before.toObject();
    windows.insert(window, QJsonArray{size.width(), size.height()});
    return windows;
  });
}

std::optional<Twips> Remembered::splitter(const QString& window) const {
  const QJsonValue place = entry(Kind::layout, splittersName).toObject().value(window);
  return place.isDouble() ? std::optional(std::clamp(Twips{place.toInt()}, leastColumn, widestColumn)) : std::nullopt;
}

void Remembered::setSplitter(const QString& window, Twips place) const {
  change(Kind::layout, splittersName, [&](const QJsonValue& before) {
    QJsonObject windows = before.toObject();
    windows.insert(window, place.value);
    return windows;
  });
}

}  // namespace korvel::control
