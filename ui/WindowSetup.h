#ifndef WINDOWSETUP_H
#define WINDOWSETUP_H

#include <QString>

class QWidget;

// What the main window and the progress dialog share when they are built.
namespace windowsetup {

// Registers the compiled-in icons; both windows call it before building their forms.
void loadIcons();

// The client's shared style sheet: the bytes of /tmp/.config/default.css up to the first zero
// byte, as Latin-1. Empty (the toolkit's default look) when the file cannot be read.
QString styleSheet();

// Moves window so that its centre lies on the centre of the first screen's available area.
void centre(QWidget *window);

// Window icon and title of both windows.
void setIconAndTitle(QWidget *window);

} // namespace windowsetup

#endif
