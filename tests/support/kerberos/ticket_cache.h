#pragma once

#include <string>

namespace korvel::test {

/// Rewrites a cache of tickets so that all in it ended a minute ago. Throws std::runtime_error.
void expireTicketsIn(const std::string& cacheName);

}  // namespace korvel::test
