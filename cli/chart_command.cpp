#include "cli/chart_command.h"

#include <CLI/CLI.hpp>
#include <QGuiApplication>
#include <array>
#include <ostream>
#include <string_view>
#include <utility>
#include <variant>

#include "base/paths.h"
#include "base/text.h"
#include "cli/common_options.h"
#include "cli/messages.h"
#include "cli/offscreen_drawing.h"
#include "cli/output_target.h"
#include "output/pictures/activity_picture.h"
#include "query/audit_record.h"

namespace korvel::cli {

namespace {

using output::pictures::ActivityColors;
using query::ActivityStep;

constexpr const char* footer =
    "A bar is a period, from the first that has records to the last. Its parts are the kinds of\n"
    "records, the most frequent at the bottom: events, or what another column says (--stack). Records\n"
    "without a date are counted beside the picture. A picture holds the list as query writes it, so\n"
    "--complete matters here, too.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit chart --complete --output activity.svg\n"
    "  korvel-audit chart --by hour --from 2004-03-07 --to 2004-03-09 --output days.png\n"
    "  korvel-audit chart --by month --stack \"Audit Type\" --look black --output types.svg\n";

constexpr std::string_view stackedFirst = "Event";
constexpr std::array<std::string_view, 4> stepNames = {"hour", "day", "week", "month"};
constexpr std::array<std::string_view, 3> lookNames = {"light", "dark", "black"};

/// The place of a name among some, in any case of letters.
template <typename Value, std::size_t count>
std::optional<Value> valueNamed(std::string_view text, const std::array<std::string_view, count>& names) {
  for (std::size_t i = 0; i < names.size(); ++i)
    if (equalsIgnoringAsciiCase(text, names.at(i))) return static_cast<Value>(i);
  return std::nullopt;
}

enum class PictureFormat { svg, png };

/// By the ending of the file's name.
std::optional<PictureFormat> formatOf(std::string_view file) {
  constexpr std::size_t ending = 4;
  if (file.size() <= ending) return std::nullopt;
  return valueNamed<PictureFormat>(file.substr(file.size() - ending), std::array<std::string_view, 2>{".svg", ".png"});
}

std::string_view nameOf(ActivityStep step) {
  return stepNames.at(static_cast<std::size_t>(step));
}

ActivityColors colorsOf(ChartLook look) {
  switch (look) {
    case ChartLook::dark:
      return ActivityColors::dark();
    case ChartLook::black:
      return ActivityColors::black();
    case ChartLook::light:
      break;
  }
  return ActivityColors::light();
}

output::pictures::Picture pictureOf(const ChartOptions& options, const query::Activity& activity,
                                    const std::string& remark) {
  constexpr QSizeF size(1200, 400);
  constexpr int textSize = 13;
  const std::string title =
      std::string(query::pageCaptions[options.list]) + ", records by " + std::string(nameOf(activity.step));
  output::pictures::ActivityWords words;
  words.title = QString::fromStdString(title);
  words.remark = QString::fromStdString(remark);
  words.others = QStringLiteral("others");
  words.isNull = QStringLiteral("(null)");
  words.isEmpty = QStringLiteral("(empty)");
  words.undated = QStringLiteral("Records without a date, not shown: %1");
  words.highest = QStringLiteral("Each line is the highest of several bars");
  QFont font = QGuiApplication::font();
  font.setPixelSize(textSize);
  return output::pictures::activityPicture(activity, size, words, colorsOf(options.look), font);
}

std::optional<int> writePicture(const ChartOptions& options, const results::ResultList& list, const std::string& remark,
                                const output::ByteSink& sink, std::ostream& err) {
  const auto time = query::auditColumnOf(list, "DateTime").value();
  const query::Activity activity = query::activityOf(list, time, options.stack, options.step);
  if (activity.bars.empty()) {
    say(err, "no record has a date; nothing was written");
    return exitNoRecords;
  }
  if (activity.step != options.step)
    err << "note: there are too many bars by " << nameOf(options.step) << "; they are drawn by "
        << nameOf(activity.step) << ".\n";
  if (activity.undated > 0)
    err << "note: " << groupedNumber(activity.undated)
        << (activity.undated == 1 ? " record has no date and is" : " records have no date and are") << " not shown.\n";
  const OffscreenDrawing drawing;
  const output::pictures::Picture picture = pictureOf(options, activity, remark);
  constexpr qreal dotsPerPixel = 2;
  if (formatOf(options.output) == PictureFormat::png)
    output::pictures::writePng(picture, dotsPerPixel, sink);
  else
    output::pictures::writeSvg(picture, sink);
  return std::nullopt;
}

}  // namespace

CLI::App* addChartCommand(CLI::App& app, ChartOptions& options) {
  CLI::App* command = app.add_subcommand("chart", "Draw how many records there are by hour, day, week or month");
  options.stack = columnNamed(stackedFirst).value();
  addQuestion(*command, options);
  addComplete(*command, options);
  addList(*command, options);
  addFind(*command, options.choice);
  addWhere(*command, options.choice);
  addReadOption(
      *command, {"--by", "PERIOD", "hour, day, week or month (default: day)"},
      [](const std::string& text) { return valueNamed<ActivityStep>(text, stepNames); },
      "no period; there are hour, day, week and month", [&options](ActivityStep step) { options.step = step; });
  addReadOption(*command,
                {"--stack", "COLUMN",
                 "Column whose values bars are made of: caption, column\nname, or "
                 "number counted from 1 (default: Event)"},
                columnNamed, "no column", [&options](results::ColumnIndex column) { options.stack = column; });
  addReadOption(
      *command, {"--look", "LOOK", "light, dark, or black for print (default: light)"},
      [](const std::string& text) { return valueNamed<ChartLook>(text, lookNames); },
      "no look; there are light, dark and black", [&options](ChartLook look) { options.look = look; });
  command->add_option("--output", options.output, "Picture to write, whole or not at all: FILE.svg or\nFILE.png")
      ->option_text("FILE")
      ->required()
      ->check(readableBy(&formatOf, "no name of a picture; it has to end in .svg or .png"));
  addQuiet(*command, options);
  command->footer(footer);
  return command;
}

int runChart(const ChartOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (const auto problem = questionProblem(options)) return refused(err, *problem);
  if (isDatabaseFile(pathFromUtf8(options.output)))
    return refused(err, options.output + " is a database; the tool does not replace it");

  if (const auto problem = choiceProblem(options.choice, query::makeResultLists()[options.list]))
    return refused(err, *problem);
  return writeAnswer(options, connect, options.output, out, err,
                     [&](results::ResultList& list, Answered& answer, const output::ByteSink& sink) {
                       const auto ended = applyRowChoice(options.choice, list, answer.remark, err);
                       return ended ? ended : writePicture(options, wholeRecords(list), answer.remark, sink, err);
                     });
}

}  // namespace korvel::cli
