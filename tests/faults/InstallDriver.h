#ifndef INSTALLDRIVER_H
#define INSTALLDRIVER_H

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <functional>

class RcList;
class QWidget;

// Drives one installation the way the administrator does: opens the main window on a scanned
// stick, picks the type and the files, presses Install, and watches the progress dialog
// while its modal loop runs.
class InstallDriver : public QObject
{
    Q_OBJECT

public:
    // What was seen of one installation.
    struct Outcome
    {
        int dialogsShown = 0;
        QString firstText;        // the dialog's label when it appeared
        QString lastText;         // the dialog's label when it went away
        QString dialogStyleSheet; // the dialog's style sheet when it appeared
        bool windowHiddenWhileDialogShown = false;
        bool windowVisibleAfter = false;
        QString windowStyleSheet;
    };

    // Watches every widget of the application from now on.
    InstallDriver();
    ~InstallDriver() override;

    // Installs files (one name for the single-selection page) of the type from the scanned
    // list. beforeInstall runs once the choice is made, just before Install is pressed. Uses
    // QtTest checks: look at QTest::currentTestFailed() afterwards.
    Outcome install(RcList &list, const QString &type, const QStringList &files,
                    const std::function<void()> &beforeInstall = {});

    // The files the main window offers for each type it lists (type key -> names in the
    // order shown).
    static QMap<QString, QStringList> offered(RcList &list);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QWidget> window;
    Outcome seen;
};

#endif
