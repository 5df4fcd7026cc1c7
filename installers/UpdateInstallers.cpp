#include "Installers.h"

#include "InstallJob.h"

namespace installers {

int installUpdate(InstallJob * /*job*/)
{
    return 0;
}

int installScreenConnect(InstallJob * /*job*/)
{
    return 0;
}

} // namespace installers
