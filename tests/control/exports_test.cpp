#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "base/atomic_file.h"
#include "db/procedure/audit_conditions.h"
#include "db/procedure/query_audits_script.h"

namespace korvel {
namespace {

std::string outputOf(const std::string& command) {
  struct Close {
    void operator()(std::FILE* pipe) const { ::pclose(pipe); }
  };
  const std::unique_ptr<std::FILE, Close> pipe(::popen(command.c_str(), "r"));
  std::string output;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe.get()))
    output.append(buffer.data(), count);
  return output;
}

/// Whether the public headers declare a symbol.
bool isPublic(const std::string& symbol) {
  const std::array names{"korvel::AuditViewer",
                         "korvel::FailureBar",
                         "korvel::ViewerLanguage",
                         "korvel::applyViewerStyle(",
                         "korvel::applyPreferredPalette(",
                         "korvel::viewerIcon()",
                         "korvel::showWarning(",
                         "korvel::provideDemoTrail()",
                         "korvel::provideViewerPath(",
                         "korvel::rememberIn(",
                         "korvel::recentDatabases()",
                         "korvel::useDesignMode()"};
  return std::any_of(names.begin(), names.end(),
                     [&](const char* name) { return symbol.find(name) != std::string::npos; });
}

TEST(ComponentLibrary, ExportsWhatThePublicHeadersDeclareAndNothingElse) {
  const std::string symbols =
      outputOf("nm --dynamic --defined-only --demangle --format=just-symbols '" KORVEL_LIBRARY "'");
  ASSERT_NE(symbols.find("korvel::AuditViewer::AuditViewer(QWidget*)"), std::string::npos) << symbols;
  std::size_t begin = 0;
  while (begin < symbols.size()) {
    const std::size_t end = symbols.find('\n', begin);
    const std::string symbol = symbols.substr(begin, end - begin);
    EXPECT_TRUE(isPublic(symbol)) << symbol;
    EXPECT_EQ(symbol.find("::Members"), std::string::npos) << symbol;
    EXPECT_EQ(symbol.find("::Parts"), std::string::npos) << symbol;
    begin = end + 1;
  }
}

TEST(ComponentLibrary, CarriesTheInstallationTextOfTheProcedureWhole) {
  EXPECT_NE(readFile(KORVEL_LIBRARY).find(db::queryAuditsScript()), std::string::npos);
}

}  // namespace
}  // namespace korvel
