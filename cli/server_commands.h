#pragma once

#include <iosfwd>
#include <string>

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

/// Options of the commands about servers.
struct ServerOptions {
  std::string server;
  std::string database;
  bool all = false;    ///< servers of the network too
  bool print = false;  ///< show the procedure's script instead of running it
};

/// One command about servers: adds itself to the command line, and runs. Its options must outlive the command line.
struct ServerCommand {
  CLI::App* (*add)(CLI::App& app, ServerOptions& options);
  int (*run)(const ServerOptions& options, std::ostream& out, std::ostream& err);
};

/// `servers`: names of servers, one a line.
extern const ServerCommand serversCommand;
/// `databases`: the databases of a server.
extern const ServerCommand databasesCommand;
/// `install-procedure`: the one command that writes to a server, and only the procedure.
extern const ServerCommand installCommand;
/// `check`: every step between a server's name and its rows, with the reason and the remedy where one fails.
extern const ServerCommand checkCommand;

}  // namespace korvel::cli
