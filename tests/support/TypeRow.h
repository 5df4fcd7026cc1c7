#ifndef TYPEROW_H
#define TYPEROW_H

#include <QString>

struct PackageType;

// The package type table's row for a type key, as the window hands it to a job. Ends the test
// executable at once for a key the table does not have.
const PackageType &typeRow(const QString &key);

#endif
