// The real viewer, again and again in one process.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/ocx/holdings.h"
#include "tests/ocx_hosted/hosted_control.h"

namespace korvel::test {
namespace {

class HostedRounds : public HostedControl {
 protected:
  /// A hundred viewers, one after the other, each shown with a database and given to `use`: what the process had before
  /// them and after them.
  template <typename Use>
  [[nodiscard]] std::pair<Holdings, Holdings> hundredViewers(const Use& use) {
    const auto round = [&] {
      {
        const ContainerWindow window;
        ::ShowWindow(window.handle(), SW_SHOWNA);
        const ocx::ComPointer<IUnknown> control = file_.make();
        RecordedContainer container(window.handle(), control.get());
        EXPECT_EQ(container.put(L"DefaultSQLServer", trail()), S_OK);
        EXPECT_EQ(container.connect(), S_OK);
        EXPECT_EQ(container.doVerb(OLEIVERB_UIACTIVATE), S_OK);
        use(container);
      }
      // The toolkit destroys some of it on the program's loop.
      bool done = false;
      look<CallLater>("callLater")(&done);
      EXPECT_TRUE(deliverMessages([&] { return done; }));
    };
    // Its own caches fill first.
    for (int warm = 0; warm < 10; ++warm) round();
    const auto counted = [this] {
      look<ForgetPictures>("forgetPictures")();
      return holdings();
    };
    const Holdings before = counted();
    for (int count = 0; count < 100; ++count) round();
    return {before, counted()};
  }
};

/// Less than half a handle and a kilobyte for each viewer, and no thread or window. The number of the next handle is
/// the lowest that is free: threads that end meanwhile leave gaps below it.
void expectNoMoreForAHundredViewers(const Holdings& before, const Holdings& after) {
  constexpr std::uintptr_t halfOfAHundredHandles = 50 * 4;
  constexpr std::size_t aHundredKilobytes = std::size_t{100} * 1024;
  ASSERT_GT(before.nextHandle, 0U);
  ASSERT_GT(before.threads, 0);
  EXPECT_LT(after.nextHandle, before.nextHandle + halfOfAHundredHandles);
  EXPECT_LE(after.threads, before.threads);
  EXPECT_LE(after.windows, before.windows);
  EXPECT_LT(after.bytes, before.bytes + aHundredKilobytes);
}

TEST_F(HostedRounds, AHundredViewersLeaveNothingBehind) {
  const auto [before, after] = hundredViewers([](RecordedContainer&) {});
  expectNoMoreForAHundredViewers(before, after);
}

TEST_F(HostedRounds, AHundredQueriesInAsManyViewersLeaveNothingBehind) {
  const auto [before, after] =
      hundredViewers([](RecordedContainer& container) { EXPECT_EQ(container.invoke(L"TriggerQuery"), S_OK); });
  expectNoMoreForAHundredViewers(before, after);
}

TEST(PackageRounds, AHundredLoadingsLeaveNothingBehind) {
  const auto round = [] {
    const LoadedControl file(KORVEL_PACKAGE_FOLDER);
    const ContainerWindow window;
    const ocx::ComPointer<IUnknown> control = file.make();
    RecordedContainer container(window.handle(), control.get());
    EXPECT_EQ(container.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  };
  for (int warm = 0; warm < 10; ++warm) round();
  const Holdings before = holdings();
  for (int count = 0; count < 100; ++count) round();
  expectNothingMore(before, holdings());
  EXPECT_EQ(::GetModuleHandleW(L"KorvelAuditViewerOCX.ocx"), nullptr);
}

}  // namespace
}  // namespace korvel::test
