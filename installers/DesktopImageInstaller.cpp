#include "Installers.h"

#include "InstallJob.h"

namespace installers {

int installDesktop(InstallJob * /*job*/)
{
    return 0;
}

} // namespace installers
