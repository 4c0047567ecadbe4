#include "demo/trail.h"

#include <algorithm>
#include <array>

namespace korvel::demo {

namespace {

constexpr std::uint64_t rowsPerStoryRow = 20;
constexpr std::size_t documentsPerProject = 24;
constexpr int firstVersion = 10;  // tenths: 1.0

/// How one kind of work goes on.
struct WorkHabit {
  std::uint32_t weightInOfficeTime;
  std::uint32_t weightOtherwise;
  int mostChanges;  ///< of one burst
  int slowestSeconds;
  std::uint32_t commentOutOf100;
};

// In the order of Work.
constexpr std::array<WorkHabit, workCount> habits = {{
    {.weightInOfficeTime = 460, .weightOtherwise = 36, .mostChanges = 11, .slowestSeconds = 90, .commentOutOf100 = 55},
    {.weightInOfficeTime = 520, .weightOtherwise = 640, .mostChanges = 5, .slowestSeconds = 25, .commentOutOf100 = 5},
    {.weightInOfficeTime = 240, .weightOtherwise = 250, .mostChanges = 7, .slowestSeconds = 40, .commentOutOf100 = 15},
    {.weightInOfficeTime = 110, .weightOtherwise = 40, .mostChanges = 4, .slowestSeconds = 60, .commentOutOf100 = 70},
    {.weightInOfficeTime = 80, .weightOtherwise = 70, .mostChanges = 3, .slowestSeconds = 8, .commentOutOf100 = 4},
    {.weightInOfficeTime = 8, .weightOtherwise = 3, .mostChanges = 3, .slowestSeconds = 2, .commentOutOf100 = 0},
}};

const WorkHabit& habitOf(Work work) {
  return habits.at(static_cast<std::size_t>(work));
}

int otherValue(const Bounds& bounds, int value, ValueRange::Form form, Random& random) {
  const int range = bounds.highest - bounds.lowest;
  if (range <= 0) return value;
  if (form == ValueRange::Form::choice) {
    const int other = bounds.lowest + random.between(0, range - 1);
    return other < value ? other : other + 1;
  }
  // Settings move by a little, up or down, and turn round at the ends of their range.
  const int move = std::min(std::max(1, range / 40) * random.between(1, 8), range);
  const int moved = random.chance(1, 2) ? value + move : value - move;
  if (moved >= bounds.lowest && moved <= bounds.highest) return moved;
  return value + move <= bounds.highest ? value + move : std::max(bounds.lowest, value - move);
}

void writeVersion(int version, std::string& text) {
  text = std::to_string(version / 10);
  text += '.';
  text += std::to_string(version % 10);
}

}  // namespace

Trail::Trail(const Plant& plant, std::uint64_t rows, std::uint64_t seed, std::span<const StoryRow> story)
    : plant_(plant),
      random_(Random(seed).next() ^ plant.seedMark),
      story_(rows < rowsPerStoryRow * story.size() ? std::span<const StoryRow>{} : story),
      drawnRows_(rows - story_.size()),
      kindWeights_(workCount) {
  const auto kinds = changeKinds();
  subjects_.reserve(kinds.size() * plant.projects.size() * itemsPerKind);
  for (const ChangeKind& kind : kinds) {
    for (std::size_t work = 0; work < workCount; ++work)
      kindWeights_[work].push_back(static_cast<std::size_t>(kind.work) == work ? kind.weight : 0);
    for (std::size_t project = 0; project < plant.projects.size(); ++project) {
      for (std::size_t item = 0; item < itemsPerKind; ++item) {
        const Bounds bounds = boundsOf(kind.values, item);
        subjects_.push_back({random_.between(bounds.lowest, bounds.highest), !random_.chance(8, 100)});
      }
    }
  }
  for (std::size_t i = 0; i < plant.projects.size() * documentsPerProject; ++i)
    documentVersions_.push_back(firstVersion + random_.between(0, 30));
}

Trail::Subject& Trail::subjectOf(std::size_t kind, std::size_t project, std::size_t item) {
  return subjects_[(kind * plant_.projects.size() + project) * itemsPerKind + item];
}

const AuditRow* Trail::next() {
  if (!rowWaits_ && drawn_ < drawnRows_) {
    if (burst_.changesLeft == 0 && !burst_.checkInLast) startBurst();
    advanceClock();
    signRow();
    if (burst_.checkOutFirst) {
      burst_.checkOutFirst = false;
      makeDocumentRow("CHECK_OUT", documentVersions_[burst_.document]);
    } else if (burst_.changesLeft > 0) {
      --burst_.changesLeft;
      makeChangeRow();
    } else {
      burst_.checkInLast = false;
      const int version = documentVersions_[burst_.document];
      const std::uint32_t ending = random_.below(100);
      if (ending < 8 && version > firstVersion)
        makeDocumentRow("ROLLBACK", version - 1);
      else if (ending < 16 && version > firstVersion + 5)
        makeDocumentRow("RESTORE", version - random_.between(2, 5));
      else
        makeDocumentRow("CHECK_IN", version + 1);
    }
    ++drawn_;
    rowWaits_ = true;
  }
  if (!story_.empty() && (!rowWaits_ || story_.front().moment <= now_)) {
    storyRow_ = story_.front().row;
    const Moment moment = story_.front().moment;
    story_ = story_.subspan(1);
    return stamped(storyRow_, moment);
  }
  if (!rowWaits_) return nullptr;
  rowWaits_ = false;
  return stamped(row_, now_);
}

const AuditRow* Trail::stamped(AuditRow& row, Moment moment) {
  const WallTime wall = wallTimeOf(moment);
  writeTimeText(wall, timeText_);
  row.number = ++number_;
  row.dateTime = timeText_;
  row.summerTime = wall.summer;
  return &row;
}

void Trail::startBurst() {
  now_ = activity_.momentOf(drawn_, drawnRows_);
  const WallTime wall = wallTimeOf(now_);
  std::array<std::uint32_t, workCount> weights{};
  for (std::size_t work = 0; work < workCount; ++work)
    weights.at(work) = isOfficeTime(wall) ? habits.at(work).weightInOfficeTime : habits.at(work).weightOtherwise;
  burst_.work = static_cast<Work>(random_.pickWeighted(weights));
  burst_.project = random_.indexOf(plant_.projects.size());
  burst_.document = burst_.project * documentsPerProject + random_.indexOf(documentsPerProject);
  burst_.changesLeft = static_cast<std::uint32_t>(random_.between(1, habitOf(burst_.work).mostChanges));
  burst_.checkOutFirst = burst_.work == Work::engineering && random_.chance(plant_.checkedOutOf100, 100);
  burst_.checkInLast = burst_.checkOutFirst;
  rowsOfBurstLeft_ = burst_.changesLeft + (burst_.checkOutFirst ? 2 : 0);
  burst_.limit = activity_.momentOf(std::min(drawn_ + rowsOfBurstLeft_, drawnRows_), drawnRows_);
  choosePerson(wall);
}

void Trail::advanceClock() {
  // A burst keeps to its own pace, but never runs into the next one, however many rows share the two years.
  const auto room = (burst_.limit - now_).count() / static_cast<std::int64_t>(rowsOfBurstLeft_);
  const auto pace = random_.between(600, habitOf(burst_.work).slowestSeconds * 1000);
  now_ += std::chrono::milliseconds{std::min<std::int64_t>(room, pace)};
  --rowsOfBurstLeft_;
}

void Trail::choosePerson(const WallTime& wall) {
  pc_ = plant_.serverPc;
  osUser_ = "SYSTEM";
  appUser_.reset();
  userName_.reset();
  comment_.reset();
  if (burst_.work == Work::unattributed) {
    pc_.reset();
    osUser_ = "";
    return;
  }
  if (burst_.work == Work::auditSystem && !random_.chance(1, 4)) return;

  Role role = Role::operatorOnShift;
  if (burst_.work == Work::engineering) role = random_.chance(1, 10) ? Role::administrator : Role::engineer;
  if (burst_.work == Work::corrections && random_.chance(1, 2)) role = Role::quality;
  if (burst_.work == Work::auditSystem) role = Role::administrator;
  const std::size_t crew = crewOnDuty(wall);
  present_.clear();
  for (const Person& person : plant_.people)
    if (person.role == role && (role != Role::operatorOnShift || person.crew == crew)) present_.push_back(&person);
  const Person& person = *random_.pick(present_);

  osUserText_ = plant_.domain;
  osUserText_ += '\\';
  if (role == Role::operatorOnShift) {
    osUserText_ += "operator";  // stations run under one account; who works there is the application's user
    pc_ = random_.pick(plant_.operatorPcs);
  } else {
    osUserText_ += person.login;
    pc_ = plant_.engineeringPcs[person.login.size() % plant_.engineeringPcs.size()];
  }
  osUser_ = osUserText_;
  if (random_.chance(4, 100)) {
    appUser_ = "";  // no operator signed on
  } else {
    appUser_ = person.login;
    userName_ = person.fullName;
  }
  if (random_.chance(habitOf(burst_.work).commentOutOf100, 100))
    comment_ = random_.pick(commentsIn(random_.chance(1, 4) ? Tongue::english : person.tongue));
  else if (random_.chance(1, 10))
    comment_ = "";
}

void Trail::signRow() {
  row_.pcName = pc_;
  row_.osUser = osUser_;
  row_.appUser = appUser_;
  row_.userName = userName_;
  row_.comments = comment_;
  row_.projectGuid = plant_.projects[burst_.project].guid;
}

void Trail::makeDocumentRow(std::string_view event, int newVersion) {
  int& version = documentVersions_[burst_.document];
  writeVersion(version, oldText_);
  writeVersion(newVersion, newText_);
  version = newVersion;
  writeItemName(ItemNames::picture, burst_.project, burst_.document % documentsPerProject, itemText_);
  row_.databaseName = plant_.projects[burst_.project].engineeringDatabase;
  row_.applicationName = "Document Control";
  row_.tableName = "Documents";
  row_.fieldName = "Version";
  row_.eventType = event;
  row_.eventItem = itemText_;
  row_.oldValue = oldText_;
  row_.newValue = newText_;
  row_.auditType = "DC";
}

void Trail::makeChangeRow() {
  const std::size_t index = random_.pickWeighted(kindWeights_[static_cast<std::size_t>(burst_.work)]);
  const ChangeKind& kind = changeKinds()[index];
  const std::size_t item = random_.indexOf(itemsPerKind);
  Subject& subject = subjectOf(index, burst_.project, item);
  const Project& project = plant_.projects[burst_.project];
  const bool engineered = burst_.work == Work::engineering;

  row_.databaseName = engineered ? project.engineeringDatabase : project.runtimeDatabase;
  row_.applicationName = kind.application;
  row_.tableName = kind.table;
  row_.fieldName = kind.field;
  row_.auditType = kind.auditType;
  writeItemName(kind.items, burst_.project, item, itemText_);
  row_.eventItem = itemText_;

  writeValueText(kind.values, item, subject.value, oldText_);
  if (burst_.work == Work::operating) {
    subject.exists = true;
    row_.eventType = "OPERATOR";
  } else if (!subject.exists) {
    subject.exists = true;
    row_.eventType = "INSERT";
    row_.oldValue.reset();
    row_.newValue = oldText_;
    return;
  } else if ((engineered || burst_.work == Work::recipes) && random_.chance(3, 100)) {
    subject.exists = false;
    row_.eventType = "DELETE";
    row_.oldValue = oldText_;
    row_.newValue.reset();
    return;
  } else {
    row_.eventType = "UPDATE";
  }
  subject.value = otherValue(boundsOf(kind.values, item), subject.value, kind.values.form, random_);
  writeValueText(kind.values, item, subject.value, newText_);
  row_.oldValue = oldText_;
  row_.newValue = newText_;
}

}  // namespace korvel::demo
