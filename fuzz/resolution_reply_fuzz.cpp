// For any datagram from the network, the parser reads nothing beyond it and accepts no harmful name.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "base/text.h"
#include "db/discovery/resolution_protocol.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto reply = std::as_bytes(std::span(data, size));
  for (const std::size_t limit : {std::size_t{1024}, korvel::db::listReplyLimit}) {
    for (const korvel::db::InstanceInfo& instance : korvel::db::parseResolutionReply(reply, limit)) {
      const bool named = !instance.serverName.empty() && !instance.instanceName.empty();
      const bool harmless = instance.serverName.find_first_of(";={}'\"\\/, \t\r\n") == std::string::npos;
      const bool ported = !instance.tcpPort || *instance.tcpPort != 0;
      if (!named || !harmless || !ported || !korvel::isValidUtf8(instance.displayName())) std::abort();
      // An accepted name can be requested.
      (void)korvel::db::instanceRequest(instance.instanceName);
    }
  }
  return 0;
}
