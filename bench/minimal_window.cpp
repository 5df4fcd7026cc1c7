// The baseline for start-up and memory: the least a Qt widgets program does to show a window of
// the same title and size as the main window.
#include <QApplication>
#include <QWidget>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QWidget window;
    window.setWindowTitle(QStringLiteral("USB Installer"));
    window.setFixedSize(653, 351);
    window.show();
    return app.exec();
}
