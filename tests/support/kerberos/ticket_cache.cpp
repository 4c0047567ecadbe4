#include "tests/support/kerberos/ticket_cache.h"

#include <krb5.h>

#include <ctime>
#include <stdexcept>
#include <vector>

namespace korvel::test {
namespace {

/// One cache, open, with all that it holds.
class TicketCache {
 public:
  explicit TicketCache(const std::string& cacheName) {
    need(krb5_init_context(&context_), "context");
    need(krb5_cc_resolve(context_, cacheName.c_str(), &cache_), "cache");
    need(krb5_cc_get_principal(context_, cache_, &owner_), "principal");
    krb5_cc_cursor cursor{};
    need(krb5_cc_start_seq_get(context_, cache_, &cursor), "tickets");
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
    need(krb5_cc_initialize(context_, cache_, owner_), "cache");
    for (krb5_creds& ticket : tickets_) {
      // Notes that the library keeps to itself among the tickets have no times.
      if (!krb5_is_config_principal(context_, ticket.server)) {
        ticket.times.authtime = ticket.times.starttime = end - 3600;
        ticket.times.endtime = ticket.times.renew_till = end;
      }
      need(krb5_cc_store_cred(context_, cache_, &ticket), "ticket");
    }
  }

 private:
  static void need(krb5_error_code error, const char* what) {
    if (error != 0) throw std::runtime_error(std::string("tickets: ") + what);
  }

  krb5_context context_ = nullptr;
  krb5_ccache cache_ = nullptr;
  krb5_principal owner_ = nullptr;
  std::vector<krb5_creds> tickets_;
};

}  // namespace

void expireTicketsIn(const std::string& cacheName) {
  TicketCache(cacheName).rewriteAsExpired();
}

}  // namespace korvel::test
