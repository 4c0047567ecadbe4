#include "tests/support/own_settings.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {

struct OwnSettings::Store {
  EnvironmentVariable registry;
};

OwnSettings::OwnSettings(const std::filesystem::path& folder)
    : store_(new Store{EnvironmentVariable("KORVEL_REGISTRY", (folder / "settings.reg").string())}) {}
OwnSettings::~OwnSettings() = default;

}  // namespace korvel::test
