// What presentations make of the window they are shown in. A presented screen is modal, as on a
// phone: everything beneath the top presentation is inert (pointer, keyboard focus, Tab,
// shortcuts and mnemonics; the host's content and its title bar included), the keyboard focus is
// inside the top presentation, and when a presentation leaves, the focus returns to where it was
// before that presentation came.
//
// The tool is GTK's sensitivity: the one switch that takes pointer, focus, shortcuts and
// mnemonics away together (the theme dims insensitive content a little; beneath a full-screen
// presentation it is hidden, beneath a sheet the backdrop dims it anyway). What the host had set
// is kept on each widget and given back when the last presentation leaves.
//
// One record per window, made by its first presentation and destroyed with the window. Main
// thread only.
#pragma once

#include <functional>
#include <memory>
#include <vector>

using GtkWidget = struct _GtkWidget;
using GtkWindow = struct _GtkWindow;

namespace vemba::linux_platform {

class WindowModality {
 public:
  // The record of `window`, made on first use.
  static WindowModality& of(GtkWindow* window);
  ~WindowModality();
  WindowModality(const WindowModality&) = delete;
  WindowModality& operator=(const WindowModality&) = delete;

  // `presentation` (a widget in the window) is now the top presentation. `focus` names the widget
  // that should take the keyboard whenever focus is placed in it (null, or a widget that cannot
  // take it: the presentation's first focusable widget).
  void push(GtkWidget* presentation, std::function<GtkWidget*()> focus);
  // `presentation` has left the window (wherever it was in the stack).
  void remove(GtkWidget* presentation);
  // Inerts (or gives back) the window's content again: the host replaced it.
  void apply();
  // The widget leaves the window's content: what the host had set on it is given back.
  static void release(GtkWidget* content);

 private:
  struct Entry;
  explicit WindowModality(GtkWindow* window);
  void placeFocus();
  void focusChanged();

  GtkWindow* window_;                            // the record dies with it
  std::vector<std::unique_ptr<Entry>> entries_;  // bottom first
  unsigned refocusSource_ = 0;
};

}  // namespace vemba::linux_platform
