#include "Verification.h"

#include "DaxProperties.h"
#include "InstallOutcome.h"
#include "InstallerSupport.h"
#include "RealClient.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <glob.h>
#include <unistd.h>

#include <utility>

namespace installers {

namespace {

// What an effect changes: a path, a key of a store or a value of the registry. The last effect
// on each is the one verified.
QString target(const Effect &effect)
{
    switch (effect.kind) {
    case Effect::Kind::SetsKey:
        return QStringLiteral("key:") + effect.path + QLatin1Char('\n') + effect.key;
    case Effect::Kind::SetsRegistry:
        return QStringLiteral("registry:") + effect.path + QLatin1Char('\n') + effect.key;
    case Effect::Kind::Copies:
    case Effect::Kind::MakesFolder:
    case Effect::Kind::Removes:
    case Effect::Kind::Links:
        break;
    }
    return QStringLiteral("path:") + QDir::cleanPath(effect.path);
}

// The first path a shell pattern (or plain path) matches, links included; empty when none.
QString firstMatch(const QString &pattern)
{
    glob_t found{};
    const QByteArray encoded = QFile::encodeName(pattern);
    QString match;
    if (glob(encoded.constData(), GLOB_NOSORT, nullptr, &found) == 0 && found.gl_pathc > 0)
        match = QFile::decodeName(found.gl_pathv[0]);
    globfree(&found);
    return match;
}

// The store's value of key; std::nullopt when it is not set or the store cannot be read.
std::optional<QString> storedValue(const QString &store, const QString &key)
{
    DaxProperties properties(store, QString(), false);
    if (!properties.Load())
        return std::nullopt;
    // Two different defaults tell a value that is not set from any value that is.
    const QString value = properties.GetString(key, QStringLiteral("a"));
    if (value == QLatin1String("a") &&
        properties.GetString(key, QStringLiteral("b")) == QLatin1String("b"))
        return std::nullopt;
    return value;
}

QString quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

// "the copy of beach.jpg in /tmp/config/files/wallpapers/"
QString copyName(const Effect &effect)
{
    const QFileInfo copy(effect.path);
    return QStringLiteral("the copy of %1 in %2/").arg(copy.fileName(), copy.path());
}

struct Check
{
    Verification verification;
    QString failure; // empty unless Failed
};

Check failed(const QString &failure)
{
    return {Verification::Failed, failure};
}

// Whether the copy holds its source's bytes: an earlier comparison while neither file has
// changed since, else a new one.
SameBytes compareCopy(const Effect &effect, const EarlierComparisons &earlier)
{
    const auto found = earlier.constFind(QDir::cleanPath(effect.path));
    if (found != earlier.constEnd() && found->same != SameBytes::Unreadable && found->copy &&
        found->source && found->copy == stampOf(effect.path) &&
        found->source == stampOf(effect.source))
        return found->same;
    return compareFiles(effect.source, effect.path);
}

Check checkCopy(const Effect &effect, const EarlierComparisons &earlier)
{
    const QFileInfo copy(effect.path);
    if (!copy.exists() && !copy.isSymLink())
        return failed(copyName(effect) + QStringLiteral(" is missing"));
    if (copy.isSymLink() || !copy.isFile())
        return failed(copyName(effect) + QStringLiteral(" is not a regular file"));
    switch (compareCopy(effect, earlier)) {
    case SameBytes::Yes:
        return {Verification::Verified, {}};
    case SameBytes::No:
        // The toolkit's copy leaves a file of that name as it was, on purpose.
        if (effect.keepsExisting)
            return {Verification::KeptExisting, {}};
        return failed(copyName(effect) + QStringLiteral(" differs from ") + effect.source);
    case SameBytes::Unreadable:
        break;
    }
    return failed(copyName(effect) + QStringLiteral(" cannot be compared with ") + effect.source +
                  QStringLiteral(", which cannot be read"));
}

Check checkLink(const Effect &effect)
{
    const QFileInfo link(effect.path);
    if (!link.isSymLink())
        return failed(QStringLiteral("the link %1 is missing").arg(effect.path));
    const QByteArray encoded = QFile::encodeName(effect.path);
    QByteArray target(4096, Qt::Uninitialized);
    const ssize_t length = readlink(encoded.constData(), target.data(), target.size());
    const QString leadsTo = QFile::decodeName(target.left(length < 0 ? 0 : int(length)));
    if (leadsTo != effect.source)
        return failed(QStringLiteral("the link %1 leads to %2, not %3")
                          .arg(effect.path, leadsTo, effect.source));
    return {Verification::Verified, {}};
}

Check checkKey(const Effect &effect)
{
    QString expected = effect.value;
    if (!effect.source.isEmpty()) {
        // The tool set the key to the file's whole content, read as UTF-8.
        QFile file;
        if (!openRegularFile(file, effect.source, true))
            return failed(QStringLiteral("the key %1 in %2 cannot be compared with %3")
                              .arg(effect.key, effect.path, effect.source));
        expected = QString::fromUtf8(file.readAll());
    }
    const std::optional<QString> value = storedValue(effect.path, effect.key);
    if (!value)
        return failed(QStringLiteral("the key %1 in %2 is not set").arg(effect.key, effect.path));
    // A file's content may be long: the sentence names the file instead.
    if (*value != expected && !effect.source.isEmpty())
        return failed(QStringLiteral("the key %1 in %2 does not hold the content of %3")
                          .arg(effect.key, effect.path, effect.source));
    if (*value != expected)
        return failed(QStringLiteral("the key %1 in %2 holds %3, not %4")
                          .arg(effect.key, effect.path, quoted(*value), quoted(expected)));
    return {Verification::Verified, {}};
}

Check check(const Effect &effect, const StepOutcome &step, const EarlierComparisons &earlier)
{
    switch (effect.kind) {
    case Effect::Kind::Copies:
        return checkCopy(effect, earlier);
    case Effect::Kind::MakesFolder:
        if (QFileInfo(effect.path).isDir())
            return {Verification::Verified, {}};
        return failed(QStringLiteral("the folder %1 is missing").arg(effect.path));
    case Effect::Kind::Removes: {
        const QString left = firstMatch(effect.path);
        if (left.isEmpty())
            return {Verification::Verified, {}};
        return failed(QStringLiteral("%1 is still there").arg(left));
    }
    case Effect::Kind::Links:
        return checkLink(effect);
    case Effect::Kind::SetsKey:
        return checkKey(effect);
    case Effect::Kind::SetsRegistry:
        // The platform's registry cannot be read back: the write's own result is all there is.
        if (step.done)
            return {Verification::Verified, {}};
        return failed(QStringLiteral("the registry value %1 under %2 was not set")
                          .arg(effect.key, effect.path));
    }
    return failed(QStringLiteral("an effect of %1 cannot be checked").arg(step.step.command));
}

QString statusFailure(const StepOutcome &step)
{
    if (!step.step.statusCounts() || !step.status || *step.status == 0)
        return {};
    if (*step.status < 0)
        return step.step.command + QStringLiteral(" could not be started");
    if (!RealClient::statusesAreExact())
        return step.step.command + QStringLiteral(" ended with a non-zero status");
    return step.step.command + QStringLiteral(" ended with status %1").arg(*step.status);
}

} // namespace

void verify(InstallOutcome &outcome, const EarlierComparisons &earlier)
{
    QHash<QString, std::pair<int, int>> last;
    for (int i = 0; i < outcome.steps.size(); ++i) {
        for (int j = 0; j < outcome.steps.at(i).effects.size(); ++j)
            last.insert(target(outcome.steps.at(i).effects.at(j).effect), {i, j});
    }
    for (int i = 0; i < outcome.steps.size(); ++i) {
        StepOutcome &step = outcome.steps[i];
        // What is missing on the client says more than the status of the command that failed.
        for (int j = 0; j < step.effects.size(); ++j) {
            EffectOutcome &effect = step.effects[j];
            if (last.value(target(effect.effect)) != std::make_pair(i, j)) {
                effect.verification = Verification::Superseded;
                continue;
            }
            const Check found = check(effect.effect, step, earlier);
            effect.verification = found.verification;
            if (step.failure.isEmpty())
                step.failure = found.failure;
        }
        if (step.failure.isEmpty())
            step.failure = statusFailure(step);
    }
}

} // namespace installers
