#include "StickMaker.h"

#include <cstdint>
#include <cstdio>
#include <vector>

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

bool writeNoise(const std::string &path, size_t mebibytes)
{
    FILE *file = std::fopen(path.c_str(), "wx");
    if (!file)
        return false;
    std::vector<uint64_t> block(1 << 17); // 1 MiB of pseudo-random bytes, never the same twice
    uint64_t state = 0x9E3779B97F4A7C15u;
    for (size_t m = 0; m < mebibytes; ++m) {
        for (uint64_t &word : block) {
            state ^= state << 13;
            state ^= state >> 7;
            state ^= state << 17;
            word = state;
        }
        if (std::fwrite(block.data(), 8, block.size(), file) != block.size())
            return false;
    }
    return std::fclose(file) == 0;
}
