#pragma once

#include <windows.h>
// after windows.h
#include <oleidl.h>

namespace korvel::ocx {

/// What a container may expect, in the registry and of the control itself: it redraws when it is resized, cannot be
/// linked to, is active as soon as it is visible, and wants its site first.
inline constexpr DWORD miscStatus = OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE | OLEMISC_INSIDEOUT |
                                    OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_SETCLIENTSITEFIRST;
/// The verb that containers offer in menus; it does what OLEIVERB_PROPERTIES does.
inline constexpr LONG propertiesVerbNumber = 1;
inline constexpr const wchar_t* controlName = L"Korvel Audit Viewer";

}  // namespace korvel::ocx
