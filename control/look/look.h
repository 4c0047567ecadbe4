#pragma once

class QWidget;

namespace korvel::look {

/// Gives `root` and everything below it, now and later (dialogs and menus that are its children included), the
/// viewer's style. Nothing outside of the subtree changes. Call it once, first thing in the constructor of the root;
/// also for a dialog without a parent. It follows changes of palette, font and screen by itself,
/// and steps aside for the application's style while the system has a scheme of strong contrast on.
void applyLook(QWidget& root);

}  // namespace korvel::look
