// The simulated client's getxmlconfig: reads and writes the configuration stores.
//   getxmlconfig -w PATH KEY VALUE    set KEY of store PATH to VALUE (the store is created)
//   getxmlconfig -wff PATH KEY FILE   set KEY to the whole content of FILE, read as UTF-8
//   getxmlconfig -r PATH KEY          print the value of KEY and a line break
// Exit status 0 on success, 1 when the value cannot be read or written, 2 for a usage error.

#include "DaxProperties.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>

#include <cstdio>

namespace {

int usage()
{
    std::fputs("usage: getxmlconfig -w PATH KEY VALUE\n"
               "       getxmlconfig -wff PATH KEY FILE\n"
               "       getxmlconfig -r PATH KEY\n",
               stderr);
    return 2;
}

void fail(const QString &message)
{
    std::fprintf(stderr, "getxmlconfig: %s\n", qPrintable(message));
}

int write(const QString &storePath, const QString &key, const QString &value)
{
    DaxProperties store(storePath, QString(), true);
    store.Load(); // a missing store is created by Save()
    store.SetString(key, value);
    if (!store.Save()) {
        fail(QStringLiteral("cannot write %1 of %2").arg(key, storePath));
        return 1;
    }
    return 0;
}

int read(const QString &storePath, const QString &key)
{
    DaxProperties store(storePath, QString(), false);
    if (!store.Load()) {
        fail(QStringLiteral("no configuration store %1").arg(storePath));
        return 1;
    }
    // The store tells a missing key only by returning the default: ask with two.
    const QString value = store.GetString(key, QStringLiteral("a"));
    if (value != store.GetString(key, QStringLiteral("b"))) {
        fail(QStringLiteral("%1 has no key %2").arg(storePath, key));
        return 1;
    }
    const QByteArray line = value.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    const QString option = args.value(0);
    if (option == QLatin1String("-w") && args.size() == 4)
        return write(args.at(1), args.at(2), args.at(3));
    if (option == QLatin1String("-wff") && args.size() == 4) {
        QFile file(args.at(3));
        if (!file.open(QIODevice::ReadOnly)) {
            fail(QStringLiteral("cannot read %1: %2").arg(file.fileName(), file.errorString()));
            return 1;
        }
        return write(args.at(1), args.at(2), QString::fromUtf8(file.readAll()));
    }
    if (option == QLatin1String("-r") && args.size() == 3)
        return read(args.at(1), args.at(2));
    return usage();
}
