#include "Installers.h"

#include "InstallJob.h"

namespace installers {

int installCertificates(InstallJob * /*job*/)
{
    return 0;
}

} // namespace installers
