#ifndef STICKMAKER_H
#define STICKMAKER_H

#include <cstddef>
#include <string>

// Fills a directory with count empty files named like those of a well-used stick: pictures,
// drivers, certificates, archives, documents, a quarter of them of no package type, with mixed
// case in names and suffixes. Returns false when a file cannot be created.
bool makeStick(const std::string &dir, int count);

// Writes a new file of pseudo-random bytes, never the same 1 MiB twice (so that no layer can
// compress or share them); false when it cannot.
bool writeNoise(const std::string &path, size_t mebibytes);

#endif
