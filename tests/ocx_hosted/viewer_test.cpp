// The real viewer in a container's window, on the container's loop.
#include <gmock/gmock.h>

#include <algorithm>

#include "tests/ocx_hosted/hosted_control.h"

namespace korvel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

using HostedViewer = HostedControl;

SIZE sizeInside(HWND window) {
  RECT place{};
  ::GetClientRect(window, &place);
  return {place.right, place.bottom};
}

TEST_F(HostedViewer, FillsItsPlaceAndFollowsIt) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_INPLACEACTIVATE), S_OK);
  ASSERT_NE(viewerWindow(), nullptr);
  EXPECT_NE(::IsWindowVisible(viewerWindow()), 0);
  const SIZE whole = sizeInside(window_.handle());
  EXPECT_EQ(sizeInside(viewerWindow()).cx, whole.cx);
  EXPECT_EQ(sizeInside(viewerWindow()).cy, whole.cy);
  ASSERT_EQ(container_.move({10, 20, 1210, 820}), S_OK);
  EXPECT_EQ(sizeInside(viewerWindow()).cx, 1200);
  EXPECT_EQ(sizeInside(viewerWindow()).cy, 800);
  // The toolkit hears of it on the container's loop.
  const auto sizeOf = look<SizeOf>("sizeOf");
  EXPECT_TRUE(deliverMessages([&] { return sizeOf(viewerWindow()).cx == 1200 && sizeOf(viewerWindow()).cy == 800; }))
      << sizeOf(viewerWindow()).cx << 'x' << sizeOf(viewerWindow()).cy;
}

TEST_F(HostedViewer, QueriesATrailAndTellsOfTheDatabase) {
  ASSERT_EQ(container_.put(L"DefaultSQLServer", trail()), S_OK);
  ASSERT_EQ(container_.connect(), S_OK);
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  EXPECT_THAT(container_.told(), Contains(L"event 1 " + trail() + L" - [Korvel_Audit]"));
  EXPECT_EQ(textOf(L"Records"), L"0 Records on current tab");
  ASSERT_EQ(container_.invoke(L"TriggerQuery"), S_OK);
  ASSERT_EQ(container_.invoke(L"DisplayNoOfRecords"), S_OK);
  EXPECT_EQ(textOf(L"Records"), std::to_wstring(records) + L" Records on current tab");
  const std::wstring numbers = textOf(L"lvListView0");
  EXPECT_EQ(std::count(numbers.begin(), numbers.end(), L' '), records - 1);
}

TEST_F(HostedViewer, AnnouncesChangesAndThatAPersonLeaves) {
  ASSERT_EQ(container_.connect(), S_OK);
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  container_.forget();
  ASSERT_EQ(container_.put(L"DefaultSQLServer", L"PLANT1"), S_OK);
  EXPECT_THAT(container_.told(), Contains(testing::StartsWith(L"OnChanged ")));
  container_.forget();
  ASSERT_TRUE(look<Trigger>("trigger")(viewerWindow(), L"EXIT"));
  EXPECT_THAT(container_.told(), ElementsAre(L"event 2"));
}

TEST_F(HostedViewer, LivesOnTheContainersLoop) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  bool done = false;
  look<CallLater>("callLater")(&done);
  EXPECT_FALSE(done);
  EXPECT_TRUE(deliverMessages([&] { return done; }));
}

/// Closes the container from within the loop of a query that runs.
RecordedContainer* closedInQuery = nullptr;
void CALLBACK closeContainer(HWND window, UINT, UINT_PTR timer, DWORD) {
  ::KillTimer(window, timer);
  closedInQuery->close();
}

TEST_F(HostedViewer, CanBeClosedWhileAQueryRuns) {
  ASSERT_EQ(container_.put(L"DefaultSQLServer", trail()), S_OK);
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  const auto members = ocx::ComPointer<IDispatch>::of(control_.get(), IID_IDispatch);
  // Only the call itself holds the control when it is closed.
  control_ = {};
  IDispatch* const lent = members.get();
  closedInQuery = &container_;
  ::SetTimer(nullptr, 0, 0, &closeContainer);
  // It ends only if it is stopped.
  VARIANT endless;
  endless.vt = VT_BSTR;
  endless.bstrVal = ::SysAllocString(
      L"with recursive numbers(n) as (select 1 union all select n + 1 from numbers) "
      L"select count(*) from numbers");
  DISPPARAMS parameters{&endless, nullptr, 1, 0};
  // TriggerAdvancedQuery
  EXPECT_EQ(lent->Invoke(23, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr),
            S_OK);
  ::VariantClear(&endless);
  EXPECT_THAT(container_.told(), Contains(L"OnInPlaceDeactivate"));
}

TEST_F(HostedViewer, SecondOneIsUndisturbedByTheEndOfTheFirst) {
  const ContainerWindow otherWindow;
  ::ShowWindow(otherWindow.handle(), SW_SHOWNA);
  const ocx::ComPointer<IUnknown> other = file_.make();
  RecordedContainer otherContainer(otherWindow.handle(), other.get());
  ASSERT_EQ(container_.put(L"DefaultSQLServer", trail()), S_OK);
  ASSERT_EQ(otherContainer.doVerb(OLEIVERB_SHOW), S_OK);
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  otherContainer.close();
  ASSERT_EQ(container_.invoke(L"TriggerQuery"), S_OK);
  ASSERT_EQ(container_.invoke(L"DisplayNoOfRecords"), S_OK);
  EXPECT_EQ(textOf(L"Records"), std::to_wstring(records) + L" Records on current tab");
}

}  // namespace
}  // namespace korvel::test
