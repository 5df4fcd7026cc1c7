#ifndef DAXREGINI_H
#define DAXREGINI_H

#include <QByteArray>
#include <QString>

// Registry emulation over an INI file, used by clients in legacy mode.
class DaxRegIni
{
public:
    DaxRegIni();
    ~DaxRegIni();
    DaxRegIni(const DaxRegIni &) = delete;
    DaxRegIni &operator=(const DaxRegIni &) = delete;

    void SetIniPath(const char *path);
    // Returns 0 on success; with write access a missing key is created.
    int OpenKey(const QString &root, const QString &key, unsigned int access);
    int SetSz(const QString &name, const QString &value);
    void CloseKey();

private:
    QByteArray m_iniPath;
    QString m_section;
    bool m_open = false;
    bool m_writable = false;
};

#endif
