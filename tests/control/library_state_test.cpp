#include "control/library_state.h"

#include <gtest/gtest.h>

#include <QObject>
#include <utility>

namespace korvel::control {
namespace {

TEST(LibraryState, BeginsAnewWithTheNextApplicationObject) {
  LibraryState before = std::exchange(libraryState(), LibraryState());
  {
    QObject application;
    endStateWith(application);
    libraryState().connection.ConnectionString = "of the first";
    libraryState().helpFile = "AuditViewer.chm";
    libraryState().queryRunning = true;
  }
  EXPECT_EQ(libraryState().connection.ConnectionString, "");
  EXPECT_EQ(libraryState().helpFile, "");
  EXPECT_FALSE(libraryState().queryRunning);
  libraryState() = std::move(before);
}

}  // namespace
}  // namespace korvel::control
