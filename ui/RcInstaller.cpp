#include "RcInstaller.h"

#include "Installation.h"

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
    m_outcome = installers::install(job, routine);
    emit completed();
}
