#ifndef STICKMAKER_H
#define STICKMAKER_H

#include <string>

// Fills a directory with count empty files named like those of a well-used stick: pictures,
// drivers, certificates, archives, documents, a quarter of them of no package type, with mixed
// case in names and suffixes. Returns false when a file cannot be created.
bool makeStick(const std::string &dir, int count);

#endif
