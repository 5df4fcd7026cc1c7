// libFuzzer targets for the content readers that parse bytes themselves: the OpenVPN profile
// reader (fuzz_openvpn) and the PPD header reader (fuzz_ppd), chosen at compile time. Besides
// the sanitizers' checks, every report must be whole: a kind, a summary, and findings whose
// code and text are set and stay on one line of the report, quoting at most a bounded piece of
// the file.

#include "OpenVpnReader.h"
#include "PpdReader.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<int>(size));
#ifdef FUZZ_OPENVPN
    const ContentReport report = readOpenVpnProfile(bytes);
#else
    const ContentReport report = readPpd(bytes);
#endif
    require(!report.kind.isEmpty() && !report.summary.isEmpty());
    require(!report.summary.contains(QLatin1Char('\n')));
    for (const Finding &finding : report.findings) {
        require(!finding.code.isEmpty() && !finding.text.isEmpty());
        require(!finding.text.contains(QLatin1Char('\n')) &&
                !finding.text.contains(QLatin1Char('\r')));
        require(finding.text.size() < 600);
    }
    return 0;
}
