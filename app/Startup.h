#ifndef STARTUP_H
#define STARTUP_H

// The whole start-up: configuration, the terminal-password gate, the command line, the
// clean-up of stray password prompts, the scan of the stick, then the main window and its
// event loop. argc and argv are those of main(); the toolkit removes its own options from them.
// Returns the program's exit status.
int runUsbInstaller(int &argc, char **argv);

#endif
