#pragma once

#include <map>
#include <optional>

#include "base/error.h"
#include "db/server_directory.h"

namespace korvel::test {

/// The servers of a network, and actions during requests.
struct CannedNetwork {
  std::vector<std::string> local;
  std::vector<std::string> all;
  std::map<std::string, std::vector<db::DatabaseInfo>> databases;
  std::map<std::string, Error> failures;
  std::optional<Error> listingFailure;
  std::vector<db::ServerEvent> events;
  std::vector<std::string> asked;           ///< "local", "all" and names of servers
  std::vector<db::BrowserOptions> options;  ///< those of the databases asked for
  int open = 0;                             ///< directories that live
  int opened = 0;                           ///< directories that ever lived
  std::function<void()> whileListing;
  std::stop_token stop;  ///< that of the last listing
};

class CannedDirectory final : public db::ServerDirectory {
 public:
  explicit CannedDirectory(CannedNetwork& network) : network_(network) {
    ++network_.open;
    ++network_.opened;
  }
  ~CannedDirectory() override { --network_.open; }
  CannedDirectory(const CannedDirectory&) = delete;
  CannedDirectory& operator=(const CannedDirectory&) = delete;

  std::vector<std::string> networkServers() override { return list("all", network_.all); }
  std::vector<std::string> localServers() override { return list("local", network_.local); }
  std::vector<db::DatabaseInfo> databases(const std::string& server, const db::BrowserOptions& options) override {
    network_.options.push_back(options);
    ask(server);
    if (onEvent)
      for (const db::ServerEvent& event : network_.events) onEvent(event);
    const auto failure = network_.failures.find(server);
    if (failure != network_.failures.end()) throw failure->second;
    return network_.databases[server];
  }

 private:
  void ask(const std::string& what) {
    network_.asked.push_back(what);
    network_.stop = stop;
    if (network_.whileListing) network_.whileListing();
  }
  std::vector<std::string> list(const std::string& what, const std::vector<std::string>& names) {
    ask(what);
    if (network_.listingFailure) throw *network_.listingFailure;
    return names;
  }

  CannedNetwork& network_;
};

}  // namespace korvel::test
