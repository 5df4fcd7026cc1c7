#include "InstallOutcome.h"

#include <algorithm>

int InstallOutcome::failureCount() const
{
    return static_cast<int>(skipped.size() +
                            std::count_if(steps.begin(), steps.end(),
                                          [](const StepOutcome &step) { return step.failed(); }));
}

QString InstallOutcome::firstFailure() const
{
    // Files are left out before any of their commands run.
    if (!skipped.isEmpty())
        return QStringLiteral("%1 was left out: %2")
            .arg(skipped.first().file, skipped.first().reason);
    for (const StepOutcome &step : steps) {
        if (step.failed())
            return step.failure;
    }
    return {};
}
