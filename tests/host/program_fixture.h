#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QImage>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <string>

#include "base/paths.h"
#include "tests/support/temporary_folder.h"

namespace korvel::host {

/// The program as users start it, without a display.
class Program : public ::testing::Test {
 protected:
  struct Result {
    int status;
    QString output;
    QString errors;
  };

  Result run(const QStringList& arguments, const QMap<QString, QString>& variables = {}) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_SCALE_FACTOR"})
      environment.remove(name);
    environment.insert("KORVEL_REGISTRY", path("settings.reg"));
    environment.insert("XDG_CONFIG_HOME", path("config"));
    for (auto variable = variables.begin(); variable != variables.end(); ++variable)
      environment.insert(variable.key(), variable.value());
    process.setProcessEnvironment(environment);
    process.start(KORVEL_HOST, arguments);
    EXPECT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
  }
  QString path(const char* name) const { return QString::fromStdString((folder / name).string()); }

  void writeDatabase(int rows) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(utf8FromPath(folder / "Korvel_Audit.db").c_str(), &database), SQLITE_OK);
    std::string text =
        "create table Korvel_Audit_Trails (Nr integer, DateTime, ProjectGUID, DatabaseName, ApplicationName, "
        "TableName, "
        "FieldName, EventType, EventItem, OldValue, NewValue, PCName, OSUser, AppUser, UserName, AuditType, Comments, "
        "T1);";
    for (int i = 1; i <= rows; ++i)
      text += "insert into Korvel_Audit_Trails (Nr, AuditType) values (" + std::to_string(i) + ", 'CS');";
    EXPECT_EQ(sqlite3_exec(database, text.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    sqlite3_close(database);
  }
  QStringList shot(const QStringList& more = {}) const {
    return QStringList{"--shot", path("shot.png"), "--server", QString::fromStdString(folder.path().string())} + more;
  }

  test::TemporaryFolder folder;
};

/// Below the headers of a picture, the part of the first column that no line of the grid crosses.
inline const QRect firstColumn(265, 145, 60, 285);

/// The number of text lines in a part of a picture: runs of pixel rows that are not of one colour.
inline int linesOfText(const QImage& picture, const QRect& part) {
  int lines = 0;
  bool inLine = false;
  for (int y = part.top(); y <= part.bottom(); ++y) {
    bool ink = false;
    for (int x = part.left(); x <= part.right() && !ink; ++x)
      ink = picture.pixel(x, y) != picture.pixel(part.topLeft().x(), y);
    if (ink && !inLine) ++lines;
    inLine = ink;
  }
  return lines;
}

}  // namespace korvel::host
