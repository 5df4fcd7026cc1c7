#ifndef WINDOWSETUP_H
#define WINDOWSETUP_H

#include <QPixmap>
#include <QString>

class QWidget;

// What the main window and the progress dialog share when they are built.
namespace windowsetup {

// Turns on the toolkit's scaling for high-resolution screens: geometry, fonts and images follow
// the screen's scale factor (Xft.dpi 192 gives 2, as does QT_SCALE_FACTOR=2), rounded to a whole
// factor. Called before the application object is made; at a factor of 1 nothing changes.
void enableHighDpi();

// Registers the compiled-in icons; both windows call it before building their forms.
void loadIcons();

// The client's shared style sheet: the bytes of /tmp/.config/default.css up to the first zero
// byte, as Latin-1. Empty (the toolkit's default look) when the file cannot be read.
QString styleSheet();

// Moves window so that its centre lies on the centre of the first screen's available area.
void centre(QWidget *window);

// The PNG image at path (the compiled-in bundle, or one the platform supplies), read with the
// toolkit's built-in PNG reader; a null pixmap when there is no such image. On a screen scaled
// by two or more, the image drawn at twice the size ("name@2x.png") when there is one, so that
// it stays sharp. Naming the format
// keeps the toolkit from loading every image-format plugin to ask each whether it reads the
// file, which a plain QPixmap or QIcon of a path does.
QPixmap pngPixmap(const QString &path);

// Window icon and title of both windows.
void setIconAndTitle(QWidget *window);

// The title-row image of both windows. The windows set it rather than their forms, whose
// generated code would read it as a plain QPixmap of a path.
QPixmap titleImage();

} // namespace windowsetup

#endif
