// The real viewer, again and again in one process.
#include <gtest/gtest.h>

#include <string>

#include "tests/ocx/holdings.h"
#include "tests/ocx_hosted/hosted_control.h"

namespace korvel::test {
namespace {

using HostedRounds = HostedControl;

TEST_F(HostedRounds, AHundredViewersLeaveNoHandleThreadOrWindow) {
  const auto round = [&] {
    const ContainerWindow window;
    ::ShowWindow(window.handle(), SW_SHOWNA);
    const ocx::ComPointer<IUnknown> control = file_.make();
    RecordedContainer container(window.handle(), control.get());
    ASSERT_EQ(container.put(L"DefaultSQLServer", trail()), S_OK);
    ASSERT_EQ(container.connect(), S_OK);
    ASSERT_EQ(container.doVerb(OLEIVERB_UIACTIVATE), S_OK);
    ASSERT_EQ(container.invoke(L"TriggerQuery"), S_OK);
  };
  // The toolkit's own caches fill first.
  for (int warm = 0; warm < 10; ++warm) round();
  const Holdings before = holdings();
  for (int count = 0; count < 100; ++count) round();
  const Holdings after = holdings();
  ASSERT_GT(before.nextHandle, 0U);
  ASSERT_GT(before.threads, 0);
  EXPECT_LE(after.nextHandle, before.nextHandle);
  EXPECT_LE(after.threads, before.threads);
  EXPECT_LE(after.windows, before.windows);
  RecordProperty("bytes", std::to_string(before.bytes) + " -> " + std::to_string(after.bytes));
}

}  // namespace
}  // namespace korvel::test
