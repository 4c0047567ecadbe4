#include "tests/support/kerberos/kerberos_realm.h"

#include <sys/socket.h>

#include <fstream>
#include <stdexcept>

#include "tests/support/kerberos/ticket_cache.h"
#include "tests/support/tds/loopback.h"

namespace korvel::test {
namespace {

// Another process may take the free port before the KDC does.
constexpr int attempts = 5;

}  // namespace

std::optional<std::string> KerberosRealm::missing() {
  for (const char* const program : {"krb5kdc", "kdb5_util", "kadmin.local", "kinit"})
    if (!findProgram(program)) return std::string(program) + " is not installed";
  return std::nullopt;
}

KerberosRealm::KerberosRealm()
    : configuration_("KRB5_CONFIG", (folder_ / "krb5.conf").string()),
      profile_("KRB5_KDC_PROFILE", (folder_ / "kdc.conf").string()),
      cache_("KRB5CCNAME", "FILE:" + ticketCache().string()) {
  writeConfiguration(0);
  run("kdb5_util", {"create", "-s", "-r", name, "-P", "master"});
  startKdc();
}

KerberosRealm::~KerberosRealm() = default;

void KerberosRealm::startKdc() {
  const auto program = findProgram("krb5kdc");
  for (int attempt = 0; attempt < attempts; ++attempt) {
    writeConfiguration(bindLoopback(SOCK_STREAM).port);
    kdc_ = std::make_unique<ChildProcess>(*program, std::vector<std::string>{"-n", "-r", name});
    if (kdc_->waitForOutput("commencing operation")) return;
  }
  throw std::runtime_error("the KDC does not start: " + kdc_->output());
}

void KerberosRealm::writeConfiguration(unsigned port) const {
  const std::string address = "127.0.0.1:" + std::to_string(port);
  // Names are taken as they are: a lookup would leave this machine.
  std::ofstream(folder_ / "krb5.conf") << "[libdefaults]\n"
                                       << " default_realm = " << name << "\n"
                                       << " dns_lookup_kdc = false\n dns_lookup_realm = false\n"
                                       << " dns_uri_lookup = false\n dns_canonicalize_hostname = false\n"
                                       << " rdns = false\n qualify_shortname = \"\"\n udp_preference_limit = 1\n"
                                       << "[realms]\n " << name << " = {\n  kdc = " << address << "\n }\n"
                                       << "[domain_realm]\n localhost = " << name << "\n"
                                       << "[logging]\n kdc = STDERR\n";
  std::ofstream(folder_ / "kdc.conf") << "[kdcdefaults]\n kdc_listen = \"\"\n kdc_tcp_listen = " << address << "\n"
                                      << "[realms]\n " << name << " = {\n"
                                      << "  database_name = " << (folder_ / "principal").string() << "\n"
                                      << "  key_stash_file = " << (folder_ / "stash").string() << "\n"
                                      << "  acl_file = " << (folder_ / "acl").string() << "\n"
                                      << "  supported_enctypes = aes256-cts:normal\n }\n";
}

void KerberosRealm::addUser(const std::string& user) {
  run("kadmin.local", {"-r", name, "addprinc", "-randkey", user});
  run("kadmin.local", {"-r", name, "ktadd", "-norandkey", "-k", (folder_ / "users.keytab").string(), user});
}

void KerberosRealm::addService(const std::string& service) {
  run("kadmin.local", {"-r", name, "addprinc", "-randkey", service});
  run("kadmin.local", {"-r", name, "ktadd", "-norandkey", "-k", serviceKeytab().string(), service});
}

void KerberosRealm::signIn(const std::string& user) {
  run("kinit", {"-k", "-t", (folder_ / "users.keytab").string(), user});
}

void KerberosRealm::signOut() const {
  std::filesystem::remove(ticketCache());
}

void KerberosRealm::expireTickets() const {
  expireTicketsIn("FILE:" + ticketCache().string());
}

void KerberosRealm::run(const std::string& program, const std::vector<std::string>& arguments) const {
  const auto file = findProgram(program);
  if (!file) throw std::runtime_error(program + " is not installed");
  ChildProcess process(*file, arguments);
  if (process.wait() != 0) throw std::runtime_error(program + ": " + process.output());
  // kadmin.local ends well whatever happened.
  if (process.output().find("while ") != std::string::npos) throw std::runtime_error(program + ": " + process.output());
}

}  // namespace korvel::test
