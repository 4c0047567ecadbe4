#include "host/window_placement.h"

#include <gtest/gtest.h>

#include "base/atomic_file.h"
#include "host/form_file.h"
#include "tests/support/temporary_folder.h"

namespace korvel::host {
namespace {

constexpr int titleBar = 20;
const QRect laptop(0, 0, 1366, 740);
const QRect desk(1366, -200, 2560, 1400);

TEST(WindowPlacement, IsWrittenInPlainNumbers) {
  EXPECT_EQ(placementText({QRect(120, 80, 1280, 800), false}), "normal 120 80 1280 800");
  EXPECT_EQ(placementText({QRect(-1900, -12, 640, 480), true}), "maximized -1900 -12 640 480");
}

TEST(WindowPlacement, IsReadAsItWasWritten) {
  for (const WindowPlacement& placement :
       {WindowPlacement{QRect(120, 80, 1280, 800), false}, WindowPlacement{QRect(-99999, 99999, 1, 99999), true}})
    EXPECT_EQ(placementFrom(placementText(placement)), placement);
}

TEST(WindowPlacement, AnyOtherTextIsNone) {
  for (const char* text : {"", "normal", "normal 1 2 3", "normal 1 2 3 4 5", "normal 1 2 0 4", "normal 1 2 3 0",
                           "normal 1 2 -3 4", "normal 1 2 3 999999", "normal 100000 2 3 4", "normal 1 2 3 4 ",
                           "normal 1 2 3 4\n", "Normal 1 2 3 4", "minimized 1 2 3 4", "normal 1,2,3,4"})
    EXPECT_EQ(placementFrom(text), std::nullopt) << text;
}

TEST(WindowPlacement, AWindowThatIsWhollySeenStays) {
  for (const QRect& window : {QRect(0, 20, 1366, 720), QRect(100, 100, 800, 500), QRect(1400, -150, 2000, 1000)})
    EXPECT_EQ(placedOn({laptop, desk}, window, titleBar), window);
  // Over the edge between two screens.
  const QRect across(1000, 100, 900, 500);
  EXPECT_EQ(placedOn({laptop, desk}, across, titleBar), across);
}

TEST(WindowPlacement, AWindowOfAMissingScreenMovesToTheNearest) {
  EXPECT_EQ(placedOn({laptop}, QRect(2000, 100, 800, 500), titleBar), QRect(566, 100, 800, 500));
  EXPECT_EQ(placedOn({laptop}, QRect(-3000, -3000, 800, 500), titleBar), QRect(0, titleBar, 800, 500));
  EXPECT_EQ(placedOn({laptop, desk}, QRect(9000, 100, 800, 500), titleBar), QRect(3126, 100, 800, 500));
}

TEST(WindowPlacement, AWindowThatIsLargerThanTheScreenBecomesAsLarge) {
  EXPECT_EQ(placedOn({laptop}, QRect(1400, -100, 2560, 1300), titleBar), QRect(0, titleBar, 1366, 720));
  EXPECT_EQ(placedOn({laptop}, QRect(10, 30, 1500, 400), titleBar), QRect(0, 30, 1366, 400));
}

TEST(WindowPlacement, TheTitleBarStaysWithinReach) {
  EXPECT_EQ(placedOn({laptop}, QRect(100, 0, 800, 500), titleBar), QRect(100, titleBar, 800, 500));
  EXPECT_EQ(placedOn({laptop}, QRect(100, 700, 800, 500), titleBar), QRect(100, 240, 800, 500));
}

TEST(WindowPlacement, AWindowGoesWhereMostOfItIs) {
  EXPECT_EQ(placedOn({laptop, desk}, QRect(1200, 900, 800, 500), titleBar), QRect(1366, 700, 800, 500));
}

TEST(WindowPlacement, ScreensThatShareTheirPixelsCountOnce) {
  const QRect halfGone(966, 100, 800, 500);
  const QRect projector(0, 0, 1024, 740);
  for (const QList<QRect>& screens : {QList{laptop, laptop}, QList{laptop, projector, laptop}}) {
    EXPECT_EQ(placedOn(screens, halfGone, titleBar), QRect(566, 100, 800, 500));
    EXPECT_EQ(placedOn(screens, QRect(500, 100, 800, 500), titleBar), QRect(500, 100, 800, 500));
  }
}

TEST(WindowPlacement, NoScreenAndNoRoomLeaveItAlone) {
  const QRect window(1, 2, 300, 400);
  EXPECT_EQ(placedOn({}, window, titleBar), window);
  EXPECT_EQ(placedOn({QRect()}, window, titleBar), window);
  EXPECT_EQ(placedOn({QRect(0, 0, 100, 10)}, window, titleBar), window);
}

class StoredPlacement : public ::testing::Test {
 protected:
  FormFile form() {
    FormFile file(QString::fromStdString(path.string()));
    EXPECT_EQ(file.load(ViewerLanguage()), "");
    return file;
  }
  void keep(const WindowPlacement& placement) {
    FormFile file = form();
    storePlacement(file, placement);
  }

  test::TemporaryFolder folder;
  const std::filesystem::path path = folder / "form.json";
};

const WindowPlacement kept{QRect(120, 80, 1280, 800), true};

TEST_F(StoredPlacement, StandsInTheFormAmongTheProperties) {
  writeFileAtomically(path, R"({"DatabaseType": 1})");
  EXPECT_EQ(storedPlacement(form()), std::nullopt);
  keep(kept);
  EXPECT_EQ(storedPlacement(form()), kept);
  EXPECT_EQ(form().properties(), (QVariantMap{{"DatabaseType", 1}, {"WindowPlacement", "maximized 120 80 1280 800"}}));
}

TEST_F(StoredPlacement, StaysWhenThePropertiesAreSaved) {
  writeFileAtomically(path, R"({"DatabaseType": 1})");
  FormFile file = form();
  storePlacement(file, kept);
  EXPECT_EQ(file.save({{"DatabaseType", 0}}), "");
  EXPECT_EQ(storedPlacement(form()), kept);
}

TEST_F(StoredPlacement, ThatIsTheSameIsNotWrittenAgain) {
  const std::string asTyped = R"({ "WindowPlacement" : "maximized 120 80 1280 800" })";
  writeFileAtomically(path, asTyped);
  keep(kept);
  EXPECT_EQ(readFile(path), asTyped);
}

TEST_F(StoredPlacement, LeavesWhatAnotherWindowSavedMeanwhile) {
  writeFileAtomically(path, R"({"DatabaseType": 1})");
  FormFile file = form();
  writeFileAtomically(path, R"({"DatabaseType": 0, "ViewSideTools": false})");
  storePlacement(file, kept);
  EXPECT_EQ(form().properties().value("DatabaseType"), QVariant(0));
  EXPECT_EQ(form().properties().value("ViewSideTools"), QVariant(false));
  EXPECT_EQ(storedPlacement(form()), kept);
}

TEST_F(StoredPlacement, ThatIsDamagedIsNone) {
  for (const char* value : {"\"somewhere\"", "1", "null", "{}"}) {
    writeFileAtomically(path, "{\"WindowPlacement\": " + std::string(value) + "}");
    EXPECT_EQ(storedPlacement(form()), std::nullopt) << value;
  }
}

TEST_F(StoredPlacement, MakesNoFormWhereThereIsNone) {
  keep(kept);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(StoredPlacement, AFileThatIsNoFormStaysAsItIs) {
  FormFile file = form();
  writeFileAtomically(path, "no form at all");
  storePlacement(file, kept);
  EXPECT_EQ(readFile(path), "no form at all");
}

TEST_F(StoredPlacement, AFormThatIsToBeLeftStaysAsItIs) {
  writeFileAtomically(path, "{}");
  FormFile file = form();
  file.leaveAsItIs();
  storePlacement(file, kept);
  EXPECT_EQ(readFile(path), "{}");
}

}  // namespace
}  // namespace korvel::host
