#include "SecConfig.h"

#include "ClientPaths.h"
#include "DaxProperties.h"
#include "DaxSystem.h"

#include <QCryptographicHash>
#include <QDebug>
#include <QFile>

namespace {

const char *const storePath = "system/sec.cfg";
QString hashFile()
{
    return clientpaths::filesDir() + QStringLiteral("/.passwd");
}

} // namespace

bool SecConfig::Load()
{
    DaxProperties store(QString::fromLatin1(storePath), QString(), false);
    store.setPath(QString::fromLatin1(storePath));
    if (!store.Load()) {
        qDebug() << "SecConfig::Load -" << storePath << " does not exist";
        return false;
    }
    isProtected = store.GetBoolean(QStringLiteral("protected"), false);
    password = store.getEncryptedString(QStringLiteral("password"), QString());
    enableSSH = store.GetBoolean(QStringLiteral("enableSSH"), false);
    enableUSB = store.GetBoolean(QStringLiteral("enableUSB"), false);
    enableDisplay = store.GetBoolean(QStringLiteral("enableDisplay"), false);
    enableSound = store.GetBoolean(QStringLiteral("enableSound"), false);
    enableKeyboard = store.GetBoolean(QStringLiteral("enableKeyboard"), false);
    enableMouse = store.GetBoolean(QStringLiteral("enableMouse"), false);
    enableNetwork = store.GetBoolean(QStringLiteral("enableNetwork"), false);
    enablePower = store.GetBoolean(QStringLiteral("enablePower"), false);
    blockPort80 = store.GetBoolean(QStringLiteral("blockPort80"), false);
    return true;
}

// The store is not loaded first: only these keys end up in it.
bool SecConfig::Save()
{
    DaxProperties store(QString::fromLatin1(storePath), QString(), false);
    store.setPath(QString::fromLatin1(storePath));
    store.SetBoolean(QStringLiteral("protected"), isProtected);
    store.setEncryptedString(QStringLiteral("password"), password);
    store.SetBoolean(QStringLiteral("enableSSH"), enableSSH);
    store.SetBoolean(QStringLiteral("enableUSB"), enableUSB);
    store.SetBoolean(QStringLiteral("enableDisplay"), enableDisplay);
    store.SetBoolean(QStringLiteral("enableKeyboard"), enableKeyboard);
    store.SetBoolean(QStringLiteral("enableSound"), enableSound);
    store.SetBoolean(QStringLiteral("enableMouse"), enableMouse);
    store.SetBoolean(QStringLiteral("enableNetwork"), enableNetwork);
    store.SetBoolean(QStringLiteral("enablePower"), enablePower);
    store.SetBoolean(QStringLiteral("blockPort80"), blockPort80);
    store.Save();
    return true;
}

// Makes the terminal password the root password and keeps its SHA-1 in the hash file; an
// unprotected terminal gets the built-in default root password and no hash file.
bool SecConfig::setRootPassword(const QString &newPassword)
{
    if (!newPassword.isEmpty())
        isProtected = true;
    if (!isProtected) {
        DaxSystem::execShell(QStringLiteral("echo root:k9dwibblexo | chpasswd"));
        return QFile::remove(hashFile());
    }
    QFile file(hashFile());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        return false;
    if (!newPassword.isEmpty())
        password = newPassword;
    const QByteArray hash =
        QCryptographicHash::hash(password.toUtf8(), QCryptographicHash::Sha1).toHex();
    qDebug() << "hash :" << hash;
    file.write(hash);
    // Unquoted, as the client does it: the shell reads the password's metacharacters.
    DaxSystem::execShell(QStringLiteral("echo root:") + password + QStringLiteral("| chpasswd"));
    return true;
}
