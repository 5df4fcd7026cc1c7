#include "Installers.h"

#include "InstallJob.h"

namespace installers {

int installRdpFile(InstallJob * /*job*/)
{
    return 0;
}

} // namespace installers
