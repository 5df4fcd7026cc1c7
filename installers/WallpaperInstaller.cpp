#include "Installers.h"

#include "InstallJob.h"

namespace installers {

int installWallpaper(InstallJob * /*job*/)
{
    return 0;
}

} // namespace installers
