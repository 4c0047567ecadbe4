#include "results/memory_watch_linux.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <string_view>

#include "base/atomic_file.h"
#include "base/error.h"

namespace korvel::results {

namespace fs = std::filesystem;

namespace {

std::string contentOf(const fs::path& file) {
  try {
    return readFile(file);
  } catch (const Error&) {
    return {};  // no such file, no such limit
  }
}

/// The number that `text` begins with, after any blanks.
std::optional<std::uint64_t> numberAt(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  std::uint64_t number = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc{}) return std::nullopt;
  return number;
}

/// The number behind `name` at the beginning of a line.
std::optional<std::uint64_t> numberOf(std::string_view name, std::string_view lines) {
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    if (line.starts_with(name)) return numberAt(line.substr(name.size()));
    lines.remove_prefix(std::min(line.size() + 1, lines.size()));
  }
  return std::nullopt;
}

/// One version of control groups: where its files are, how they are called, and what names its line in the list of the
/// groups that a process belongs to.
struct GroupVersion {
  std::string_view folder;
  std::string_view mark;
  std::string_view limit;
  std::string_view usage;
  std::string_view reclaimable;
};
constexpr std::array groupVersions = {
    GroupVersion{"sys/fs/cgroup", "0::", "memory.max", "memory.current", "inactive_file "},
    GroupVersion{"sys/fs/cgroup/memory", ":memory:", "memory.limit_in_bytes", "memory.usage_in_bytes",
                 "total_inactive_file "},
};

/// The path of the group on the line that `mark` is part of; the root where there is none.
fs::path groupPath(std::string_view groups, std::string_view mark) {
  const auto at = groups.find(mark);
  if (at == std::string_view::npos) return "/";
  const std::string_view path = groups.substr(at + mark.size());
  return fs::path(path.substr(0, path.find('\n')));
}

void limitBy(const fs::path& group, const GroupVersion& version, MemoryState& state) {
  const auto limit = numberAt(contentOf(group / version.limit));
  const auto usage = numberAt(contentOf(group / version.usage));
  if (!limit || !usage || *limit >= state.wholeBytes) return;
  // Files that were read count as used, and are given back when there is need.
  const auto reclaimable = numberOf(version.reclaimable, contentOf(group / "memory.stat")).value_or(0);
  const std::uint64_t used = *usage - std::min(*usage, reclaimable);
  state.wholeBytes = *limit;
  state.freeBytes = std::min(state.freeBytes, *limit - std::min(*limit, used));
}

}  // namespace

std::optional<MemoryState> memoryStateBelow(const fs::path& root) {
  constexpr std::uint64_t kilobyte = 1024;
  const std::string machine = contentOf(root / "proc/meminfo");
  const auto whole = numberOf("MemTotal:", machine);
  const auto available = numberOf("MemAvailable:", machine);
  if (!whole || !available) return std::nullopt;
  MemoryState state{*available * kilobyte, *whole * kilobyte};

  const std::string groups = contentOf(root / "proc/self/cgroup");
  for (const GroupVersion& version : groupVersions) {
    // A group is also bound by the limits of those it stands in. In a container its path may lead nowhere, and the root
    // is the container's own group.
    for (fs::path path = groupPath(groups, version.mark);; path = path.parent_path()) {
      limitBy(root / version.folder / path.relative_path(), version, state);
      if (!path.has_relative_path()) break;
    }
  }
  return state;
}

std::optional<MemoryState> memoryState() {
  return memoryStateBelow("/");
}

}  // namespace korvel::results
