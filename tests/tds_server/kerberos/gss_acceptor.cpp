#include "tests/tds_server/kerberos/gss_acceptor.h"

#include <gssapi/gssapi.h>
#include <gssapi/gssapi_ext.h>

#include <array>

namespace korvel::test::tds {
namespace {

std::string take(gss_buffer_desc& buffer) {
  std::string text(static_cast<const char*>(buffer.value), buffer.length);
  OM_uint32 ignored = 0;
  gss_release_buffer(&ignored, &buffer);
  return text;
}

std::string statusText(OM_uint32 status, int kind) {
  OM_uint32 minor = 0;
  OM_uint32 next = 0;
  gss_buffer_desc text = GSS_C_EMPTY_BUFFER;
  if (GSS_ERROR(gss_display_status(&minor, status, kind, GSS_C_NO_OID, &next, &text))) return "?";
  return take(text);
}

void require(OM_uint32 major, OM_uint32 minor) {
  if (GSS_ERROR(major))
    throw TicketRefused(statusText(major, GSS_C_GSS_CODE) + " " + statusText(minor, GSS_C_MECH_CODE));
}

}  // namespace

struct GssAcceptor::State {
  gss_cred_id_t keys = GSS_C_NO_CREDENTIAL;
  gss_ctx_id_t context = GSS_C_NO_CONTEXT;
  std::string principal;
  bool done = false;

  ~State() {
    OM_uint32 ignored = 0;
    gss_delete_sec_context(&ignored, &context, GSS_C_NO_BUFFER);
    gss_release_cred(&ignored, &keys);
  }
};

GssAcceptor::GssAcceptor(const std::filesystem::path& keytab) : state_(std::make_unique<State>()) {
  const std::string file = "FILE:" + keytab.string();
  // No replay cache: it would be a file outside the test's own folder.
  std::array<gss_key_value_element_desc, 2> places{gss_key_value_element_desc{"keytab", file.c_str()},
                                                   gss_key_value_element_desc{"rcache", "none:"}};
  const gss_key_value_set_desc store{static_cast<OM_uint32>(places.size()), places.data()};
  OM_uint32 minor = 0;
  const OM_uint32 major = gss_acquire_cred_from(&minor, GSS_C_NO_NAME, GSS_C_INDEFINITE, GSS_C_NO_OID_SET, GSS_C_ACCEPT,
                                                &store, &state_->keys, nullptr, nullptr);
  require(major, minor);
}

GssAcceptor::~GssAcceptor() = default;

std::string GssAcceptor::accept(std::string_view token) {
  std::string input(token);
  gss_buffer_desc in{input.size(), input.data()};
  gss_buffer_desc out = GSS_C_EMPTY_BUFFER;
  gss_name_t client = GSS_C_NO_NAME;
  OM_uint32 minor = 0;
  const OM_uint32 major = gss_accept_sec_context(&minor, &state_->context, state_->keys, &in, GSS_C_NO_CHANNEL_BINDINGS,
                                                 &client, nullptr, &out, nullptr, nullptr, nullptr);
  std::string reply = take(out);
  require(major, minor);
  state_->done = (major & GSS_S_CONTINUE_NEEDED) == 0;
  if (client != GSS_C_NO_NAME) {
    gss_buffer_desc name = GSS_C_EMPTY_BUFFER;
    if (!GSS_ERROR(gss_display_name(&minor, client, &name, nullptr))) state_->principal = take(name);
    gss_release_name(&minor, &client);
  }
  return reply;
}

bool GssAcceptor::done() const {
  return state_->done;
}

std::string GssAcceptor::principal() const {
  return state_->principal;
}

}  // namespace korvel::test::tds
