#ifndef SECCONFIG_H
#define SECCONFIG_H

#include <QString>

// The terminal's security settings, stored in "system/sec.cfg", and the root password.
class SecConfig
{
public:
    bool Load();
    bool Save();
    bool setRootPassword(const QString &newPassword);

    bool isProtected = false;
    QString password;
    bool enableSSH = false;
    bool enableUSB = false;
    bool enableDisplay = false;
    bool enableKeyboard = false;
    bool enableMouse = false;
    bool enableSound = false;
    bool enableNetwork = false;
    bool enablePower = false;
    bool blockPort80 = false;
};

#endif
