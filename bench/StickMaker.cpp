#include "StickMaker.h"

#include <cstdio>

bool makeStick(const std::string &dir, int count)
{
    static const char *const prefixes[] = {"IMG_", "img-", "Scan ", "driver_", "Report "};
    static const char *const suffixes[] = {
        ".jpg", ".JPG", ".png",  ".jpeg", ".gif",  ".bmp", ".ppd", ".cer", ".crt", ".pem",
        ".tar", ".txt", ".html", ".rdp",  ".ovpn", ".pdf", ".doc", ".dat", ".log", ".xml",
    };
    constexpr int prefixCount = sizeof prefixes / sizeof prefixes[0];
    constexpr int suffixCount = sizeof suffixes / sizeof suffixes[0];
    for (int i = 0; i < count; ++i) {
        char name[64];
        std::snprintf(name, sizeof name, "%s%05d%s", prefixes[i % prefixCount], i,
                      suffixes[(i / prefixCount + i) % suffixCount]);
        FILE *file = std::fopen((dir + '/' + name).c_str(), "wx");
        if (!file || std::fclose(file) != 0)
            return false;
    }
    return true;
}
