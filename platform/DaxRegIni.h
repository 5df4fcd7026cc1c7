#ifndef DAXREGINI_H
#define DAXREGINI_H

#include <QString>

// Registry emulation over an INI file, used by clients in legacy mode. Each key is a section
// named by its full path ("[HKEY_LOCAL_MACHINE\Software\Kelto\Imprivata]") holding lines
// "Name=value". Every change is written to the file at once; lines it does not change are
// kept byte for byte.
class DaxRegIni
{
public:
    DaxRegIni();
    ~DaxRegIni();
    DaxRegIni(const DaxRegIni &) = delete;
    DaxRegIni &operator=(const DaxRegIni &) = delete;

    // The INI file, as 8-bit Latin-1 text.
    void SetIniPath(const char *path);
    // Returns 0 on success. With write access (KEY_SET_VALUE or KEY_CREATE_SUB_KEY in the mask,
    // as in 0x20006) a missing key is created, and the result is non-zero when the file cannot
    // be written; otherwise it is non-zero when the key does not exist.
    int OpenKey(const QString &root, const QString &key, unsigned int access);
    // Sets a text value of the open key; 0 on success.
    int SetSz(const QString &name, const QString &value);
    void CloseKey();

private:
    QString m_iniPath;
    QString m_section;
    bool m_open = false;
    bool m_writable = false;
};

#endif
