#include "Installers.h"

#include "InstallJob.h"

namespace installers {

int installPrinterDrivers(InstallJob * /*job*/)
{
    return 0;
}

} // namespace installers
