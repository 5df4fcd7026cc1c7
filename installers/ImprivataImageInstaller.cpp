#include "Installers.h"

#include "InstallJob.h"

namespace installers {

int installImprivataImage(InstallJob * /*job*/, int /*kind*/)
{
    return 0;
}

} // namespace installers
