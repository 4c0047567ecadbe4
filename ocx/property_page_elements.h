// The elements of the property page's dialog, for C++ and for the compiler of resources.
#pragma once

// NOLINTBEGIN(cppcoreguidelines-macro-usage): the compiler of resources knows no other constants
#define KORVEL_PAGE 100
#define KORVEL_PAGE_SIDE_TOOLS 101
#define KORVEL_PAGE_TOOL_BAR 102
#define KORVEL_PAGE_SERVER_LABEL 103
#define KORVEL_PAGE_SERVER 104
#define KORVEL_PAGE_TYPE_LABEL 105
#define KORVEL_PAGE_TYPE 106
#define KORVEL_PAGE_FAILURE 107
// NOLINTEND(cppcoreguidelines-macro-usage)
