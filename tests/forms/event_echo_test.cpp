#include "db/forms/event_echo.h"

#include <gtest/gtest.h>

#include "db/forms/server_browser.h"

namespace korvel::db {
namespace {

TEST(EventEcho, TextsStandToTheLetter) {
  EXPECT_EQ(eventEchoText({ServerEventKind::commandSent, "select 1"}), "CommandSent: \r\nselect 1");
  EXPECT_EQ(eventEchoText({ServerEventKind::connectionBroken, "gone"}), "ConnectionBroken: \r\ngone");
  EXPECT_EQ(eventEchoText({ServerEventKind::queryTimeout, "late"}), "QueryTimeout: \r\nlate");
  EXPECT_EQ(eventEchoText({ServerEventKind::remoteLoginFailed, "no", 14, 18456, 8}),
            "RemoteLoginFailed: \r\nSeverity: 14\r\nMessageNumber: 18456\r\nMessageState: 8\r\nMessage: no");
  EXPECT_EQ(eventEchoText({ServerEventKind::serverMessage, "hello", 0, 5701, 2}),
            "ServerMessage: \r\nSeverity: 0\r\nMessageNumber: 5701\r\nMessageState: 2\r\nMessage: hello");
}

TEST(ConnectionOptions, FollowTheirSwitch) {
  EXPECT_EQ(browserOptions(false), (BrowserOptions{true, true, false}));
  EXPECT_EQ(browserOptions(true), (BrowserOptions{true, false, false}));
  EXPECT_FALSE(BrowserSwitches().connectionOption);
}

}  // namespace
}  // namespace korvel::db
