#include "Installers.h"

#include "InstallJob.h"

namespace installers {

int installScreensaver(InstallJob * /*job*/)
{
    return 0;
}

} // namespace installers
