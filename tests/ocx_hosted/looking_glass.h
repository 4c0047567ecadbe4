#pragma once

#include <windows.h>
// after windows.h
#include <oleauto.h>

/// A library in the folder of the control's files that looks into the real viewer for the tests, which know no toolkit
/// themselves. The names are exported; `viewer` is the viewer's own window.
namespace korvel::test {

/// What an element shows: a label's text, or the first column of a list, joined by blanks. The caller frees it.
using TextOf = BSTR (*)(HWND viewer, const wchar_t* element);
/// The viewer's size as the toolkit knows it, in pixels.
using SizeOf = SIZE (*)(HWND viewer);
/// Triggers the command of this name, as a person does in the menu. False for no such command.
using Trigger = bool (*)(HWND viewer, const wchar_t* command);
/// The folders in which plug-ins are looked for, one line each. The caller frees it.
using PluginFolders = BSTR (*)();
/// The name of the viewer's element that has the toolkit's focus, or of the nearest one around it that has a name. The
/// caller frees it.
using FocusOf = BSTR (*)(HWND viewer);
/// The viewer as it is on the screen: `width` by `height` pixels of 32 bits, the upper row first.
using PictureOf = bool (*)(HWND viewer, int width, int height, void* pixels);
/// Leaves a call to the toolkit's events, which sets `done`.
using CallLater = void (*)(bool* done);
/// Empties the cache of drawn pictures, which the toolkit keeps up to 10 MB of.
using ForgetPictures = void (*)();

}  // namespace korvel::test
