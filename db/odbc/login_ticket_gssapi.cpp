#include <gssapi/gssapi.h>
#include <gssapi/gssapi_krb5.h>
#include <krb5.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <future>
#include <string_view>

#include "db/net/detached_thread.h"
#include "db/odbc/login_ticket.h"
#include "settings/string_table.h"

namespace korvel::db::odbc {

namespace {

constexpr std::int32_t loginFailed = 18452;  // the server's own number for a login that cannot be trusted

struct Reason {
  std::int32_t minor;
  std::string_view textKey;
};
/// Reasons that users can act on, by the numbers of the login library.
constexpr std::array<Reason, 7> reasons = {{{KRB5_FCC_NOFILE, "failure.noTicket"},
                                            {KRB5_CC_NOTFOUND, "failure.noTicket"},
                                            {KRB5KRB_AP_ERR_TKT_EXPIRED, "failure.ticketExpired"},
                                            {KRB5KDC_ERR_S_PRINCIPAL_UNKNOWN, "failure.unknownService"},
                                            {KRB5KDC_ERR_C_PRINCIPAL_UNKNOWN, "failure.unknownUser"},
                                            {KRB5_KDC_UNREACH, "failure.loginServiceSilent"},
                                            {KRB5_REALM_UNKNOWN, "failure.loginServiceSilent"}}};

std::string messageOf(OM_uint32 code, int type) {
  std::string text;
  OM_uint32 context = 0;
  do {
    OM_uint32 minor = 0;
    gss_buffer_desc message = GSS_C_EMPTY_BUFFER;
    if (gss_display_status(&minor, code, type, GSS_C_NO_OID, &context, &message) != GSS_S_COMPLETE) break;
    if (!text.empty()) text += ". ";
    text.append(static_cast<const char*>(message.value), message.length);
    gss_release_buffer(&minor, &message);
  } while (context != 0);
  return text;
}

[[noreturn]] void refuse(OM_uint32 major, OM_uint32 minor, const std::string& servicePrincipal) {
  const auto number = static_cast<std::int32_t>(minor);
  const auto* const reason =
      std::find_if(reasons.begin(), reasons.end(), [&](const Reason& entry) { return entry.minor == number; });
  if (GSS_ROUTINE_ERROR(major) == GSS_S_CREDENTIALS_EXPIRED)
    throw settings::localizedError(loginFailed, "failure.ticketExpired", {servicePrincipal});
  if (reason != reasons.end())
    throw settings::localizedError(loginFailed, std::string(reason->textKey), {servicePrincipal});
  if (GSS_ROUTINE_ERROR(major) == GSS_S_NO_CRED)
    throw settings::localizedError(loginFailed, "failure.noTicket", {servicePrincipal});
  const std::string detail = number != 0 ? messageOf(minor, GSS_C_MECH_CODE) : messageOf(major, GSS_C_GSS_CODE);
  throw settings::localizedError(loginFailed, "failure.loginService", {servicePrincipal, detail});
}

/// The names and buffers that the login library hands out, given back by destruction.
struct PrincipalName {
  gss_name_t name = GSS_C_NO_NAME;
  PrincipalName() = default;
  ~PrincipalName() {
    OM_uint32 minor = 0;
    gss_release_name(&minor, &name);
  }
  PrincipalName(const PrincipalName&) = delete;
  PrincipalName& operator=(const PrincipalName&) = delete;
};
struct Credentials {
  gss_cred_id_t id = GSS_C_NO_CREDENTIAL;
  Credentials() = default;
  ~Credentials() {
    OM_uint32 minor = 0;
    gss_release_cred(&minor, &id);
  }
  Credentials(const Credentials&) = delete;
  Credentials& operator=(const Credentials&) = delete;
};
struct FirstToken {
  gss_ctx_id_t context = GSS_C_NO_CONTEXT;
  gss_buffer_desc token = GSS_C_EMPTY_BUFFER;
  FirstToken() = default;
  ~FirstToken() {
    OM_uint32 minor = 0;
    gss_release_buffer(&minor, &token);
    gss_delete_sec_context(&minor, &context, GSS_C_NO_BUFFER);
  }
  FirstToken(const FirstToken&) = delete;
  FirstToken& operator=(const FirstToken&) = delete;
};

/// Whose credentials they are; empty where the library does not tell.
std::string holderOf(gss_cred_id_t credentials) {
  OM_uint32 minor = 0;
  PrincipalName holder;
  if (GSS_ERROR(gss_inquire_cred(&minor, credentials, &holder.name, nullptr, nullptr, nullptr))) return {};
  gss_buffer_desc text = GSS_C_EMPTY_BUFFER;
  if (GSS_ERROR(gss_display_name(&minor, holder.name, &text, nullptr))) return {};
  std::string name(static_cast<const char*>(text.value), text.length);
  gss_release_buffer(&minor, &text);
  return name;
}

/// Gives the ticket's holder.
std::string getTicket(const std::string& servicePrincipal) {
  OM_uint32 minor = 0;
  Credentials credentials;
  OM_uint32 lifetime = 0;
  OM_uint32 major = gss_acquire_cred(&minor, GSS_C_NO_NAME, GSS_C_INDEFINITE, GSS_C_NO_OID_SET, GSS_C_INITIATE,
                                     &credentials.id, nullptr, &lifetime);
  if (GSS_ERROR(major)) refuse(major, minor, servicePrincipal);
  if (lifetime == 0) throw settings::localizedError(loginFailed, "failure.ticketExpired", {servicePrincipal});

  PrincipalName service;
  std::string text = servicePrincipal;
  gss_buffer_desc buffer{text.size(), text.data()};
  major = gss_import_name(&minor, &buffer, GSS_KRB5_NT_PRINCIPAL_NAME, &service.name);
  if (GSS_ERROR(major)) refuse(major, minor, servicePrincipal);

  FirstToken first;
  major = gss_init_sec_context(&minor, credentials.id, &first.context, service.name, GSS_C_NO_OID, GSS_C_MUTUAL_FLAG, 0,
                               GSS_C_NO_CHANNEL_BINDINGS, GSS_C_NO_BUFFER, nullptr, &first.token, nullptr, nullptr);
  if (GSS_ERROR(major)) refuse(major, minor, servicePrincipal);
  return holderOf(credentials.id);
}

}  // namespace

Ticket acquireTicket(const std::string& servicePrincipal, const net::Deadline& deadline) {
  // The Kerberos library has no timeout for KDCs that do not answer.
  std::future<std::string> answer = net::runDetached([servicePrincipal] { return getTicket(servicePrincipal); });
  if (answer.wait_for(deadline.left()) != std::future_status::ready)
    throw settings::localizedError(loginFailed, "failure.loginServiceSilent", {servicePrincipal});
  return {TicketState::valid, answer.get()};
}

}  // namespace korvel::db::odbc
