#include "tests/tds_server/kerberos/kerberos_realm.h"

#include <krb5.h>
#include <sys/socket.h>

#include <ctime>
#include <fstream>
#include <stdexcept>

#include "tests/tds_server/socket.h"

namespace korvel::test {
namespace {

// Another process may take the free port before the KDC does.
constexpr int attempts = 5;

/// An open ticket cache and all that it holds.
class TicketCache {
 public:
  explicit TicketCache(const std::string& cacheName) {
    require(krb5_init_context(&context_), "context");
    require(krb5_cc_resolve(context_, cacheName.c_str(), &cache_), "cache");
    require(krb5_cc_get_principal(context_, cache_, &owner_), "principal");
    krb5_cc_cursor cursor{};
    require(krb5_cc_start_seq_get(context_, cache_, &cursor), "tickets");
    for (krb5_creds ticket{}; krb5_cc_next_cred(context_, cache_, &cursor, &ticket) == 0; ticket = {})
      tickets_.push_back(ticket);
    krb5_cc_end_seq_get(context_, cache_, &cursor);
  }
  ~TicketCache() {
    for (krb5_creds& ticket : tickets_) krb5_free_cred_contents(context_, &ticket);
    krb5_free_principal(context_, owner_);
    if (cache_ != nullptr) krb5_cc_close(context_, cache_);
    krb5_free_context(context_);
  }
  TicketCache(const TicketCache&) = delete;
  TicketCache& operator=(const TicketCache&) = delete;

  void rewriteAsExpired() {
    const auto end = static_cast<krb5_timestamp>(std::time(nullptr) - 60);
    require(krb5_cc_initialize(context_, cache_, owner_), "cache");
    for (krb5_creds& ticket : tickets_) {
      // Configuration entries of the library among the tickets have no times.
      if (!krb5_is_config_principal(context_, ticket.server)) {
        ticket.times.authtime = ticket.times.starttime = end - 3600;
        ticket.times.endtime = ticket.times.renew_till = end;
      }
      require(krb5_cc_store_cred(context_, cache_, &ticket), "ticket");
    }
  }

 private:
  static void require(krb5_error_code error, const char* what) {
    if (error != 0) throw std::runtime_error(std::string("tickets: ") + what);
  }

  krb5_context context_ = nullptr;
  krb5_ccache cache_ = nullptr;
  krb5_principal owner_ = nullptr;
  std::vector<krb5_creds> tickets_;
};

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
  // No DNS lookups: they would leave this machine.
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
  TicketCache("FILE:" + ticketCache().string()).rewriteAsExpired();
}

void KerberosRealm::run(const std::string& program, const std::vector<std::string>& arguments) const {
  const auto file = findProgram(program);
  if (!file) throw std::runtime_error(program + " is not installed");
  ChildProcess process(*file, arguments);
  if (process.wait() != 0) throw std::runtime_error(program + ": " + process.output());
  // kadmin.local exits with 0 even when it failed.
  if (process.output().find("while ") != std::string::npos) throw std::runtime_error(program + ": " + process.output());
}

}  // namespace korvel::test
