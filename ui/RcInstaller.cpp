#include "RcInstaller.h"

#include "RealClient.h"

#include <utility>

RcInstaller::RcInstaller(InstallJob *job, installers::Routine routine, QObject *parent)
    : QThread(parent), job(job), routine(std::move(routine))
{
}

RcInstaller::~RcInstaller()
{
    wait();
}

void RcInstaller::run()
{
    // Failures look like success: the installer's result is not reported.
    RealClient client;
    routine(job, client);
    emit completed();
}
