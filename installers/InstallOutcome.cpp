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
    // In the order they happened: a file is left out just before its own commands.
    int skip = 0;
    for (int step = 0; step <= steps.size(); ++step) {
        if (skip < skipped.size() && skipped.at(skip).beforeStep <= step)
            return QStringLiteral("%1 was left out: %2")
                .arg(skipped.at(skip).file, skipped.at(skip).reason);
        if (step < steps.size() && steps.at(step).failed())
            return steps.at(step).failure;
    }
    return {};
}
