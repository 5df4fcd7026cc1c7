#include "Installers.h"

#include "InstallJob.h"

namespace installers {

int installOpenVpn(InstallJob * /*job*/)
{
    return 0;
}

} // namespace installers
