#include "Startup.h"

int main(int argc, char *argv[])
{
    return runUsbInstaller(argc, argv);
}
