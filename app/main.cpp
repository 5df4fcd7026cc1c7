#include <cstdio>

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::printf("usage : %s mount_dir\n", argv[0]);
        return 1;
    }
    return 0;
}
