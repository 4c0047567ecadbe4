#include "demo/change_kinds.h"

#include <array>
#include <charconv>

namespace korvel::demo {

namespace {

using Texts = std::string_view;

constexpr std::array<Texts, 10> alarmTexts = {"Tank overfull",
                                              "Tank \"B201\" überfüllt; Ventil schließen, dann quittieren",
                                              "Niveau bas, vérifier l'alimentation",
                                              "Temperatura demasiado alta",
                                              "Pressione fuori limite",
                                              "Υπέρβαση θερμοκρασίας δεξαμενής",
                                              "Превышение давления в котле",
                                              "储罐液位过高",
                                              "タンク液位高",
                                              "ضغط مرتفع في الخزان"};
constexpr std::array<Texts, 4> alarmClasses = {"Alarm, high", "Alarm, low", "Warning", "Operating message"};
constexpr std::array<Texts, 3> acknowledgements = {"none", "single", "single, with group reset"};
constexpr std::array<Texts, 5> colours = {"#C62828", "#F9A825", "#2E7D32", "#1565C0", "#6A1B9A"};
constexpr std::array<Texts, 6> messageBlocks = {"Date", "Time", "Number", "Message text", "Point of error", "Duration"};
constexpr std::array<Texts, 6> cycles = {"500 ms", "1 s", "5 s", "10 s", "1 min", "1 h"};
constexpr std::array<Texts, 4> archivings = {"cyclic", "on change", "on demand", "disabled"};
constexpr std::array<Texts, 3> storages = {"main memory", "hard disk", "hard disk, signed off daily"};
constexpr std::array<Texts, 4> access = {"read", "read | write", "none", "write after sign-off"};
constexpr std::array<Texts, 3> valvePositions = {"closed", "open", "half open (45°)"};
constexpr std::array<Texts, 2> motorStates = {"stopped", "running"};
constexpr std::array<Texts, 3> modes = {"manual", "automatic", "local"};
constexpr std::array<Texts, 3> acknowledgedStates = {"incoming", "acknowledged", "outgoing"};
constexpr std::array<Texts, 5> recipeSteps = {"Fill", "Heat up", "Hold", "Cool down", "Drain"};
constexpr std::array<Texts, 5> recipeNotes = {"Vollmilch 3,5 % – homogenisieren", "Crème fraîche, lot d'essai",
                                              "Rühren 5 min\r\ndann 10 min ruhen lassen", "Йогурт «Полевой»",
                                              "低脂牛奶"};
constexpr std::array<Texts, 5> groups = {"Operators", "Shift leaders", "Quality", "Engineers", "Visitors"};
constexpr std::array<Texts, 4> addresses = {"DB10,W4", "DB10,W6", "DB112,D20", "M14.3"};
constexpr std::array<Texts, 4> pictureSizes = {"1280 x 1024", "1024 x 768", "1600 x 1200", "800 x 600"};
constexpr std::array<Texts, 3> scriptStates = {"compiled", "with errors", ""};
constexpr std::array<Texts, 3> serviceStates = {"stopped", "starting", "running"};
constexpr std::array<Texts, 4> backupStates = {"due", "D:\\AuditBackup\\full.bak", "\\\\FILESRV\\audit$\\weekly.bak",
                                               "failed: disk full"};
constexpr std::array<Texts, 2> importStates = {"imported", "rejected"};

constexpr ValueRange measure(int fromThousandth, int toThousandth) {
  return {ValueRange::Form::measure, fromThousandth, toThousandth, {}, {}};
}
constexpr ValueRange number(int lowest, int highest, Texts unit = {}) {
  return {ValueRange::Form::number, lowest, highest, unit, {}};
}
constexpr ValueRange choice(std::span<const Texts> choices) {
  return {ValueRange::Form::choice, 0, static_cast<int>(choices.size()) - 1, {}, choices};
}

constexpr Texts explorer = "Korvel Explorer";
constexpr Texts alarmEditor = "Alarm Editor";
constexpr Texts tagLogging = "Tag Logging";
constexpr Texts archiveEditor = "User Archive Editor";
constexpr Texts station = "Operator Station";
constexpr Texts archiveRuntime = "User Archive Runtime";
constexpr Texts auditTrail = "KorvelAudit";

using enum Work;
using enum ItemNames;

constexpr std::array kinds = {
    // Alarms: limits, texts, classes in the tables of the alarm logging, the rest in those of the message server.
    ChangeKind{engineering, "CS", alarmEditor, "vel_AlgLimits", "LimitHighHigh", measuringPoint, measure(850, 1000), 6},
    ChangeKind{engineering, "CS", alarmEditor, "vel_AlgLimits", "LimitHigh", measuringPoint, measure(700, 850), 11},
    ChangeKind{engineering, "CS", alarmEditor, "vel_AlgLimits", "LimitLow", measuringPoint, measure(150, 300), 8},
    ChangeKind{engineering, "CS", alarmEditor, "vel_AlgLimits", "Hysteresis", measuringPoint, number(1, 50, " %"), 3},
    ChangeKind{engineering, "CS", alarmEditor, "vel_AlgLimits", "Delay", measuringPoint, number(0, 600, " s"), 4},
    ChangeKind{engineering, "CS", alarmEditor, "vel_AlgMessages", "MessageText", message, choice(alarmTexts), 7},
    ChangeKind{engineering, "CS", alarmEditor, "vel_AlgMessages", "MessageClass", message, choice(alarmClasses), 4},
    ChangeKind{engineering, "CS", alarmEditor, "vel_AlgClasses", "Acknowledgement", message, choice(acknowledgements),
               3},
    ChangeKind{engineering, "CS", alarmEditor, "MSColours", "ForeColour", message, choice(colours), 5},
    ChangeKind{engineering, "CS", alarmEditor, "MSBlocks", "Block", message, choice(messageBlocks), 5},
    ChangeKind{engineering, "CS", alarmEditor, "MSBlocks", "Width", message, number(4, 80), 4},
    // Tag logging, configuration.
    ChangeKind{engineering, "CS", tagLogging, "PDETags", "UpperRange", measuringPoint, measure(800, 1000), 9},
    ChangeKind{engineering, "CS", tagLogging, "PDETags", "Archiving", measuringPoint, choice(archivings), 6},
    ChangeKind{engineering, "CS", tagLogging, "PDECycles", "AcquisitionCycle", measuringPoint, choice(cycles), 8},
    ChangeKind{engineering, "CS", tagLogging, "PDEArchives", "Storage", archive, choice(storages), 4},
    ChangeKind{engineering, "CS", tagLogging, "PDEArchives", "Size", archive, number(100, 20000, " MB"), 4},
    // User archives, configuration.
    ChangeKind{engineering, "CS", archiveEditor, "UAArchives", "MaxRecords", archive, number(100, 10000), 4},
    ChangeKind{engineering, "CS", archiveEditor, "UAArchives", "Access", archive, choice(access), 3},
    ChangeKind{engineering, "CS", archiveEditor, "UAFields", "DecimalPlaces", archive, number(0, 6), 3},
    ChangeKind{engineering, "CS", archiveEditor, "UAViews", "Columns", archive, number(1, 32), 2},
    // What the project explorer keeps itself.
    ChangeKind{engineering, "CS", explorer, "Tags", "Address", tag, choice(addresses), 7},
    ChangeKind{engineering, "CS", explorer, "Pictures", "Size", picture, choice(pictureSizes), 4},
    ChangeKind{engineering, "CS", explorer, "Scripts", "State", picture, choice(scriptStates), 3},
    ChangeKind{engineering, "CS", explorer, "Users", "Group", account, choice(groups), 3},
    ChangeKind{engineering, "CS", explorer, "Users", "AutoLogoff", account, number(0, 60, " min"), 1},
    // Operators at their stations.
    ChangeKind{operating, "OA", station, "Operation", "Setpoint", measuringPoint, measure(300, 700), 34},
    ChangeKind{operating, "OA", station, "Operation", "Position", valve, choice(valvePositions), 22},
    ChangeKind{operating, "OA", station, "Operation", "State", motor, choice(motorStates), 16},
    ChangeKind{operating, "OA", station, "Operation", "Mode", measuringPoint, choice(modes), 12},
    ChangeKind{operating, "OA", station, "Messages", "State", message, choice(acknowledgedStates), 16},
    // Recipes and batches in user archives.
    ChangeKind{recipes, "RT", archiveRuntime, "UA#Recipes", "Temperature", recipe, number(4, 142, " °C"), 22},
    ChangeKind{recipes, "RT", archiveRuntime, "UA#Recipes", "Amount", recipe, number(50, 25000, " kg"), 24},
    ChangeKind{recipes, "RT", archiveRuntime, "UA#Recipes", "Step", recipe, choice(recipeSteps), 12},
    ChangeKind{recipes, "RT", archiveRuntime, "UA#Recipes", "Note", recipe, choice(recipeNotes), 8},
    ChangeKind{recipes, "RT", archiveRuntime, "UA#Cleaning", "Duration", recipe, number(5, 90, " min"), 18},
    ChangeKind{recipes, "RT", archiveRuntime, "UA#Cleaning", "Concentration", recipe, number(1, 30, " ‰"), 10},
    // Values of the tag logging corrected by hand, and other changes at runtime.
    ChangeKind{corrections, "RT", tagLogging, "PDEValues", "Value", measuringPoint, measure(0, 1000), 60},
    ChangeKind{corrections, "RT", station, "Counters", "OperatingHours", motor, number(0, 90000, " h"), 40},
    // The audit trail about itself.
    ChangeKind{auditSystem, "AU", auditTrail, "Korvel_Audit_Service", "State", auditService, choice(serviceStates), 50},
    ChangeKind{auditSystem, "AU", auditTrail, "Korvel_Audit_Service", "Backup", auditService, choice(backupStates), 35},
    ChangeKind{auditSystem, "AU", auditTrail, "Korvel_Audit_Settings", "RetentionDays", auditService, number(30, 3650),
               15},
    // Taken over from the records kept before the audit trail: no audit type, or an unknown one.
    ChangeKind{unattributed, "", "Import", "History", "State", tag, choice(importStates), 70},
    ChangeKind{unattributed, "XX", "Import", "History", "Address", tag, choice(addresses), 30},
};

/// Numbers with so many digits at least, zeros in front.
void appendNumber(std::string& text, std::size_t value, std::size_t digits) {
  std::array<char, 20> buffer{};
  const auto [end, failure] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  const auto length = static_cast<std::size_t>(end - buffer.data());
  if (failure != std::errc{}) return;
  if (length < digits) text.append(digits - length, '0');
  text.append(buffer.data(), length);
}

const Quantity& quantityOf(std::size_t item) noexcept {
  return quantities()[item % quantities().size()];
}

void appendDecimal(std::string& text, int value, int decimals) {
  const auto magnitude = static_cast<std::size_t>(value < 0 ? -value : value);
  std::size_t scale = 1;
  for (int i = 0; i < decimals; ++i) scale *= 10;
  if (value < 0) text += '-';
  appendNumber(text, magnitude / scale, 1);
  if (decimals == 0) return;
  text += '.';
  appendNumber(text, magnitude % scale, static_cast<std::size_t>(decimals));
}

}  // namespace

std::span<const ChangeKind> changeKinds() noexcept {
  return kinds;
}

void writeItemName(ItemNames names, std::size_t project, std::size_t item, std::string& text) {
  const std::size_t area = project + 1;
  const auto named = [&](Texts before, std::size_t value, std::size_t digits, Texts after = {}) {
    text.assign(before);
    appendNumber(text, value, digits);
    text += after;
  };
  switch (names) {
    case measuringPoint:
      text.assign(quantityOf(item).tagLetters);
      text += '-';
      appendNumber(text, area * 1000 + item + 1, 4);
      break;
    case valve:  // reference designations begin with an equals sign in this plant, as the drawings have them
      named("=A", area, 1, "+R");
      appendNumber(text, 100 + item / 4, 3);
      text += "-Y";
      appendNumber(text, item % 4 + 1, 1);
      break;
    case motor:
      named("P", area * 100 + item + 1, 3);
      break;
    case message:
      named("MSG ", area * 10000 + 17 * item, 5);
      break;
    case archive:
      named("Archive_", area * 100 + item, 3);
      break;
    case recipe:
      named("Recipe ", area * 100 + item, 3);
      break;
    case picture:
      named("Übersicht_", area * 100 + item, 3, ".pic");
      break;
    case tag:
      named("Line", area, 1, "/Motor[");
      appendNumber(text, item, 1);
      text += "].Speed";
      break;
    case account:
      named("user", area * 100 + item, 3);
      break;
    case auditService:
      named("KorvelAudit@", area * 100 + item, 3);
      break;
  }
}

Bounds boundsOf(const ValueRange& values, std::size_t item) noexcept {
  if (values.form != ValueRange::Form::measure) return {values.lowest, values.highest};
  const Quantity& quantity = quantityOf(item);
  const int range = quantity.highest - quantity.lowest;
  return {quantity.lowest + range * values.lowest / 1000, quantity.lowest + range * values.highest / 1000};
}

void writeValueText(const ValueRange& values, std::size_t item, int value, std::string& text) {
  text.clear();
  switch (values.form) {
    case ValueRange::Form::choice:
      text.assign(values.choices[static_cast<std::size_t>(value)]);
      break;
    case ValueRange::Form::number:
      appendDecimal(text, value, 0);
      text += values.unit;
      break;
    case ValueRange::Form::measure:
      appendDecimal(text, value, quantityOf(item).decimals);
      text += ' ';
      text += quantityOf(item).unit;
      break;
  }
}

}  // namespace korvel::demo
