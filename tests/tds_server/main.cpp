// The TDS server as a program, for clients that cannot link it: the Windows tool under Wine.
// usage: tds_server FOLDER
// When it accepts connections, FOLDER/environment holds shell assignments for clients (KORVEL_TEST_SERVER, KRB5_CONFIG,
// KRB5CCNAME) and FOLDER/authorities.pem its certificate. It ends when its standard input ends.
#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

#include "base/atomic_file.h"
#include "tests/tds_server/kerberos/kerberos_realm.h"
#include "tests/tds_server/server.h"

namespace korvel::test {
namespace {

using tds::Answer;

constexpr int rows = 500;

/// An audit trail with texts in several scripts and beyond the basic plane.
Answer auditTrail() {
  std::vector<tds::Column> columns{{"Nr", "int"}};
  constexpr int columnCount = 18;
  constexpr int typeColumn = 15;
  for (int i = 1; i < columnCount; ++i)
    columns.emplace_back(i == typeColumn ? "AuditType" : "c" + std::to_string(i), "nvarchar(60)");
  Answer answer;
  answer.procedure().result(columns);
  const std::array<std::string, 4> texts = {"pump", "Prüfstand Größe", "журнал ΩΔ", "valve \xF0\x9F\x94\xA7 x"};
  for (int n = 0; n < rows; ++n) {
    std::vector<tds::Value> row{n};
    for (int i = 1; i < columnCount; ++i)
      row.emplace_back(i == typeColumn ? "CS" : texts.at(static_cast<std::size_t>(n + i) % texts.size()));
    answer.row(row);
  }
  return answer;
}

/// Answers the commands of `check` and `query`.
Answer answerTo(const tds::Command& command) {
  if (command.text.find("QueryAudits") != std::string::npos) return auditTrail();
  return Answer().result({{"n", "int"}}).row({rows});
}

int serve(const std::filesystem::path& folder) {
  if (const auto missing = KerberosRealm::missing()) {
    std::cerr << *missing << '\n';
    return 2;
  }
  KerberosRealm realm;
  realm.addUser("auditor");
  tds::TdsServer server;
  const std::string port = std::to_string(server.port());
  realm.addService("MSSQLSvc/localhost:" + port);
  server.checkTickets(realm.serviceKeytab());
  realm.signIn("auditor");
  server.answerOthers(answerTo);

  const std::string authorities = (folder / "authorities.pem").string();
  writeFileAtomically(authorities, server.certificatePem());
  writeFileAtomically(folder / "environment", "export KORVEL_TEST_SERVER=localhost," + port + "\nexport KRB5_CONFIG='" +
                                                  (realm.ticketCache().parent_path() / "krb5.conf").string() +
                                                  "'\nexport KRB5CCNAME='FILE:" + realm.ticketCache().string() + "'\n");
  while (std::getchar() != EOF) {
  }
  return 0;
}

}  // namespace
}  // namespace korvel::test

int main(int count, char** arguments) {
  try {
    if (count != 2) return 2;
    return korvel::test::serve(arguments[1]);
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
