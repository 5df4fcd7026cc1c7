// The baseline for start-up and memory: the least a Qt widgets program does to show a window of
// the same title and size as the main window. With the argument "text" the window also shows
// one line of text, a reference for what drawing text costs (fonts, shaping) on its own.
#include <QApplication>
#include <QLabel>
#include <QWidget>

#include <cstring>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QWidget window;
    window.setWindowTitle(QStringLiteral("USB Installer"));
    window.setFixedSize(653, 351);
    if (argc > 1 && std::strcmp(argv[1], "text") == 0)
        new QLabel(QStringLiteral("Select the package type"), &window);
    window.show();
    return app.exec();
}
