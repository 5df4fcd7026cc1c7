#include "Step.h"

#include <QDir>

namespace {

// Which exit statuses count. A status that does not count says nothing about the installation:
// the program may fail harmlessly, or has not done anything yet when the shell returns. Where
// such a step has an effect, the effect is verified instead.
struct StatusRule
{
    StepKind kind;
    bool counts;
    const char *why;
};

const StatusRule statusRules[] = {
    {StepKind::ConfigCopy, true, "a copy the client keeps"},
    {StepKind::ClientTool, true, "one of the client's tools"},
    {StepKind::StopDesktop, false, "the desktop need not be running"},
    {StepKind::Housekeeping, false, "fails harmlessly; its effect is verified instead"},
    {StepKind::Background, false, "runs on in the background"},
    {StepKind::VpnLink, false, "fails harmlessly when the link is already there"},
    {StepKind::ReloadSignal, false, "the client need not have the folder"},
    {StepKind::StickCopy, false, "a read-only stick is an ordinary case"},
    {StepKind::Toolkit, false, "done by the program; its effects are verified"},
};

const StatusRule &ruleOf(StepKind kind)
{
    for (const StatusRule &rule : statusRules) {
        if (rule.kind == kind)
            return rule;
    }
    return statusRules[0];
}

} // namespace

Step Step::shell(StepKind kind, const QString &command, const QList<Effect> &effects)
{
    return {kind, command, effects};
}

Step Step::toolkit(const QList<Effect> &effects)
{
    return {StepKind::Toolkit, QString(), effects};
}

bool Step::statusCounts() const
{
    return ruleOf(kind).counts;
}

const char *Step::statusRule() const
{
    return ruleOf(kind).why;
}

const Effect *copyBehind(const QList<const Step *> &steps, QString path)
{
    for (int hop = 0; hop <= steps.size(); ++hop) {
        const Effect *last = nullptr;
        for (const Step *step : steps) {
            for (const Effect &effect : step->effects) {
                if ((effect.kind == Effect::Kind::Copies || effect.kind == Effect::Kind::Links) &&
                    QDir::cleanPath(effect.path) == QDir::cleanPath(path))
                    last = &effect;
            }
        }
        if (!last || last->kind == Effect::Kind::Copies)
            return last;
        path = last->source;
    }
    return nullptr;
}
