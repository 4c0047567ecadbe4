#include "settings/registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/error.h"
#include "tests/support/temporary_folder.h"

namespace korvel::settings {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The answers of the scripted store, and the requests to it.
struct Script {
  Win32Error open = Win32Error::success;
  Win32Error create = Win32Error::success;
  Win32Error querySize = Win32Error::success;
  Win32Error queryData = Win32Error::success;
  Win32Error set = Win32Error::success;
  std::uint32_t type = static_cast<std::uint32_t>(ValueType::string);
  std::string bytes{"10000\0", 6};
  std::vector<std::string> calls;
};

class ScriptedKey : public SettingsKey {
 public:
  explicit ScriptedKey(Script& script) : script_(script) {}
  ~ScriptedKey() override { script_.calls.emplace_back("close"); }

  Win32Error querySize(const std::string& name, std::uint32_t& type, std::uint32_t& size) override {
    script_.calls.push_back("size of <" + name + ">");
    type = script_.type;
    size = static_cast<std::uint32_t>(script_.bytes.size());
    return script_.querySize;
  }
  Win32Error queryData(const std::string& name, std::vector<char>& buffer) override {
    const bool empty = std::all_of(buffer.begin(), buffer.end(), [](char c) { return c == '\0'; });
    script_.calls.push_back("data of <" + name + "> into " + std::to_string(buffer.size()) +
                            (empty ? " NULs" : " used bytes"));
    std::copy(script_.bytes.begin(), script_.bytes.end(), buffer.begin());
    return script_.queryData;
  }
  Win32Error setString(const std::string& name, const std::string& value) override {
    script_.calls.push_back("set <" + name + "> to <" + value + ">");
    return script_.set;
  }

 private:
  Script& script_;
};

class ScriptedBackend : public SettingsBackend {
 public:
  explicit ScriptedBackend(Script& script) : script_(script) {}
  Win32Error openForReading(const std::string& path, std::unique_ptr<SettingsKey>& key) override {
    return answer("open " + path, script_.open, key);
  }
  Win32Error createOrOpen(const std::string& path, std::unique_ptr<SettingsKey>& key) override {
    return answer("create " + path, script_.create, key);
  }

 private:
  Win32Error answer(const std::string& call, Win32Error failure, std::unique_ptr<SettingsKey>& key) {
    script_.calls.push_back(call);
    if (failure == Win32Error::success) key = std::make_unique<ScriptedKey>(script_);
    return failure;
  }

  Script& script_;
};

std::string get(Script& script, const std::string& key = "Language", const std::string& section = "AuditViewer",
                const std::string& appName = "Molvane") {
  ScriptedBackend backend(script);
  return Registry(backend).GetSetting(appName, section, key, "default");
}

void save(Script& script, const std::string& key = "Language", const std::string& section = "AuditViewer",
          const std::string& appName = "Molvane") {
  ScriptedBackend backend(script);
  Registry(backend).SaveSetting(appName, section, key, "20000");
}

struct Raised {
  std::int64_t number = 0;
  std::string description;
  bool operator==(const Raised&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Raised& raised) {
  return out << std::hex << raised.number << ": " << raised.description;
}

Raised raisedBy(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const Error& error) {
    return {static_cast<std::uint32_t>(error.number()), error.description()};
  }
  return {};
}

TEST(Registry, ReadsTypeAndSizeThenTheData) {
  Script script;
  EXPECT_EQ(get(script), "10000");
  EXPECT_THAT(script.calls, ElementsAre("open SOFTWARE\\Molvane\\AuditViewer", "size of <Language>",
                                        "data of <Language> into 6 NULs", "close"));
}

TEST(Registry, WritesAndClosesTheSection) {
  Script script;
  save(script);
  EXPECT_THAT(script.calls, ElementsAre("create SOFTWARE\\Molvane\\AuditViewer", "set <Language> to <20000>", "close"));
}

TEST(Registry, TrimsApplicationAndSectionButNotTheKey) {
  Script script;
  get(script, "  Language ", " AuditViewer  ", "  Molvane ");
  EXPECT_EQ(script.calls.at(0), "open SOFTWARE\\Molvane\\AuditViewer");
  EXPECT_EQ(script.calls.at(1), "size of <  Language >");
  script.calls.clear();
  save(script, "  Language ", " AuditViewer  ", "  Molvane ");
  EXPECT_EQ(script.calls.at(0), "create SOFTWARE\\Molvane\\AuditViewer");
  EXPECT_EQ(script.calls.at(1), "set <  Language > to <20000>");
}

TEST(Registry, TrimsBlanksAndNothingElse) {
  Script script;
  get(script, "\t", "\tAuditViewer", "Molvane\t");
  EXPECT_EQ(script.calls.at(0), "open SOFTWARE\\Molvane\t\\\tAuditViewer");
  EXPECT_EQ(script.calls.at(1), "size of <\t>");
}

TEST(Registry, RefusesBlankNamesBeforeTouchingTheStore) {
  const auto checks = [](const std::function<void(Script&, std::string, std::string, std::string)>& operation) {
    Script script;
    const auto with = [&](const std::string& appName, const std::string& section, const std::string& key) {
      return raisedBy([&] { operation(script, key, section, appName); });
    };
    // The first of several blank names is reported.
    EXPECT_EQ(with("", "", ""), (Raised{0x800403E8, "AppName may not be empty"}));
    EXPECT_EQ(with("  ", "S", "K"), (Raised{0x800403E8, "AppName may not be empty"}));
    EXPECT_EQ(with("A", " ", ""), (Raised{0x800403E9, "Section may not be empty"}));
    EXPECT_EQ(with("A", "S", ""), (Raised{0x800403EA, "Key may not be empty"}));
    EXPECT_EQ(with("A", "S", "   "), (Raised{0x800403EA, "Key may not be empty"}));
    EXPECT_THAT(script.calls, IsEmpty());
  };
  checks([](Script& script, const auto& key, const auto& section, const auto& app) { get(script, key, section, app); });
  checks(
      [](Script& script, const auto& key, const auto& section, const auto& app) { save(script, key, section, app); });
}

TEST(Registry, NumbersAreThoseThatManualsPrint) {
  Script script;
  try {
    save(script, "K", "S", "");
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), -2147220504);
    EXPECT_FALSE(error.line().has_value());
  }
}

TEST(Registry, MissingSectionOrValueGivesTheDefault) {
  Script missingSection;
  missingSection.open = Win32Error::fileNotFound;
  EXPECT_EQ(get(missingSection), "default");
  EXPECT_THAT(missingSection.calls, ElementsAre("open SOFTWARE\\Molvane\\AuditViewer"));

  for (const Win32Error failure : {Win32Error::fileNotFound, Win32Error::accessDenied, Win32Error::moreData}) {
    Script noSize;
    noSize.querySize = failure;
    EXPECT_EQ(get(noSize), "default") << numberOf(failure);
    EXPECT_EQ(noSize.calls.back(), "close");

    Script noData;
    noData.queryData = failure;
    EXPECT_EQ(get(noData), "default") << numberOf(failure);
    EXPECT_EQ(noData.calls.back(), "close");
  }
}

TEST(Registry, EmptyStringIsNotTheDefault) {
  Script sizeZero;
  sizeZero.bytes.clear();
  EXPECT_EQ(get(sizeZero), "");
  EXPECT_THAT(sizeZero.calls, ElementsAre("open SOFTWARE\\Molvane\\AuditViewer", "size of <Language>", "close"));

  Script sizeOne;
  sizeOne.bytes.assign(1, '\0');
  EXPECT_EQ(get(sizeOne), "");
}

TEST(Registry, DropsOneCharacterOnly) {
  Script script;
  script.bytes.assign("a\0b\0\0", 5);
  EXPECT_EQ(get(script), std::string("a\0b\0", 4));
}

TEST(Registry, OpeningFailsWithTheSystemsNumber) {
  const auto opening = [](std::uint32_t failure) {
    Script script;
    script.open = static_cast<Win32Error>(failure);
    return raisedBy([&] { get(script); });
  };
  EXPECT_EQ(opening(5), (Raised{0x800407D5, "Could not open registry section"}));
  EXPECT_EQ(opening(1009), (Raised{0x80040BC1, "Could not open registry section"}));
  EXPECT_EQ(opening(1), (Raised{0x800407D1, "Could not open registry section"}));
}

TEST(Registry, OtherTypesFailWithTheirType) {
  for (const std::uint32_t type : {0U, 2U, 3U, 4U, 7U, 11U}) {
    Script script;
    script.type = type;
    EXPECT_EQ(raisedBy([&] { get(script); }), (Raised{0x800407D0 + type, "Registry data not a string"}));
    EXPECT_THAT(script.calls, ElementsAre("open SOFTWARE\\Molvane\\AuditViewer", "size of <Language>", "close"));
  }
}

TEST(Registry, AnEmptyValueOfAnotherTypeIsStillNoString) {
  Script script;
  script.type = static_cast<std::uint32_t>(ValueType::binary);
  script.bytes.clear();
  EXPECT_EQ(raisedBy([&] { get(script); }).number, 0x800407D3);
}

TEST(Registry, CreatingFailsWithTheSystemsNumber) {
  for (const Win32Error failure : {Win32Error::fileNotFound, Win32Error::accessDenied, Win32Error::diskFull}) {
    Script script;
    script.create = failure;
    EXPECT_EQ(raisedBy([&] { save(script); }),
              (Raised{0x800407D0 + numberOf(failure), "Could not open/create registry section"}));
    EXPECT_THAT(script.calls, ElementsAre("create SOFTWARE\\Molvane\\AuditViewer"));
  }
}

TEST(Registry, SettingFailsWithTheSystemsNumberAndCloses) {
  Script script;
  script.set = Win32Error::diskFull;
  EXPECT_EQ(raisedBy([&] { save(script); }), (Raised{0x80040840, "Could not set key value"}));
  EXPECT_EQ(script.calls.back(), "close");
}

/// A store that violates its contract by throwing.
class ThrowingBackend : public SettingsBackend {
 public:
  explicit ThrowingBackend(Script& script) : script_(script) {}
  Win32Error openForReading(const std::string& path, std::unique_ptr<SettingsKey>& key) override {
    return createOrOpen(path, key);
  }
  Win32Error createOrOpen(const std::string& /*path*/, std::unique_ptr<SettingsKey>& key) override {
    key = std::make_unique<ScriptedKey>(script_);
    if (own) throw Error(42, "gone");
    throw std::runtime_error("broken");
  }
  bool own = true;

 private:
  Script& script_;
};

TEST(Registry, WhateverArisesPassesTheTrap) {
  Script script;
  ThrowingBackend backend(script);
  const Registry registry(backend);
  EXPECT_EQ(raisedBy([&] { registry.SaveSetting("A", "S", "K", "v"); }), (Raised{42, "gone"}));
  EXPECT_THAT(script.calls, ElementsAre("close"));
  backend.own = false;
  EXPECT_EQ(raisedBy([&] { static_cast<void>(registry.GetSetting("A", "S", "K", "v")); }),
            (Raised{0x80004005, "broken"}));
  EXPECT_THAT(script.calls, ElementsAre("close", "close"));
}

TEST(Environment, VariableOrNothing) {
  const test::EnvironmentVariable folder("windir", "C:\\Windows");
  EXPECT_EQ(GetEnvironment("windir") + "\\report.htm", "C:\\Windows\\report.htm");
  const test::EnvironmentVariable missing("KORVEL_TEST_MISSING");
  EXPECT_EQ(GetEnvironment("KORVEL_TEST_MISSING"), "");
  EXPECT_EQ(GetEnvironment(""), "");
  const test::EnvironmentVariable empty("KORVEL_TEST_EMPTY", "");
  EXPECT_EQ(GetEnvironment("KORVEL_TEST_EMPTY"), "");
}

}  // namespace
}  // namespace korvel::settings
