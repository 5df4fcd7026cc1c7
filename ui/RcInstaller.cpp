#include "RcInstaller.h"

#include "Dispatch.h"

RcInstaller::RcInstaller(QObject *parent) : QThread(parent) {}

void RcInstaller::run()
{
    // Failures look like success: the installer's result is not reported.
    installers::dispatch(job);
    emit completed();
}
