#include "Installers.h"

#include "InstallJob.h"

namespace installers {

int installIcon(InstallJob * /*job*/)
{
    return 0;
}

int installDisclaimer(InstallJob * /*job*/)
{
    return 0;
}

} // namespace installers
