// A server of the tests' own as a program: for programs of another system, which cannot run it in their own process.
// usage: test_server FOLDER
// Once it can be talked to, FOLDER/surroundings holds shell assignments with all that a client needs: the server's name
// (KORVEL_TEST_SERVER), a ticket, its certificate. It ends when its input does.
#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

#include "base/whole_file.h"
#include "tests/support/kerberos/kerberos_realm.h"
#include "tests/support/tds/peer.h"

namespace korvel::test {
namespace {

using tds::Answer;

constexpr int rows = 500;

/// An audit trail with what is easily spoilt on the way: other scripts, signs beyond the basic plane, nothing at all.
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

/// What `check` and `query` ask.
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
  tds::TdsPeer peer;
  const std::string port = std::to_string(peer.port());
  realm.addService("MSSQLSvc/localhost:" + port);
  peer.checkTickets(realm.serviceKeytab());
  realm.signIn("auditor");
  peer.answerOthers(answerTo);

  const std::string authorities = (folder / "authorities.pem").string();
  writeWholeFile(authorities, peer.certificatePem());
  writeWholeFile(folder / "surroundings", "export KORVEL_TEST_SERVER=localhost," + port + "\nexport KRB5_CONFIG='" +
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
