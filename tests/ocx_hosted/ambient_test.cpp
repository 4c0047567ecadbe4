// The real viewer in a container that is stopped, and in one that speaks another language.
#include <olectl.h>

#include "tests/ocx_hosted/hosted_control.h"

namespace korvel::test {
namespace {

using HostedAmbient = HostedControl;

TEST_F(HostedAmbient, AStoppedContainerTakesTheFocusOutOfTheViewer) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  ASSERT_TRUE(::GetFocus() == viewerWindow() || ::IsChild(viewerWindow(), ::GetFocus()) != 0);
  VARIANT yes{};
  yes.vt = VT_BOOL;
  yes.boolVal = VARIANT_TRUE;
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_UIDEAD, yes, DISPID_AMBIENT_UIDEAD), S_OK);
  EXPECT_EQ(::GetFocus(), window_.handle());
  EXPECT_EQ(::IsWindowEnabled(ownWindow()), 0);
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_UIDEAD, VARIANT{}, DISPID_AMBIENT_UIDEAD), S_OK);
  ASSERT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  EXPECT_TRUE(::GetFocus() == viewerWindow() || ::IsChild(viewerWindow(), ::GetFocus()) != 0);
}

TEST_F(HostedAmbient, TheLanguageIsThatOfTheSettings) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  VARIANT german{};
  german.vt = VT_I4;
  german.lVal = 1031;
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_LOCALEID, german, DISPID_UNKNOWN), S_OK);
  ASSERT_EQ(container_.invoke(L"SwitchLanguage"), S_OK);
  ASSERT_EQ(container_.invoke(L"DisplayNoOfRecords"), S_OK);
  EXPECT_EQ(textOf(L"Records"), L"0 Records on current tab");
}

}  // namespace
}  // namespace korvel::test
