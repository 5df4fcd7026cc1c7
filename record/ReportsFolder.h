#ifndef REPORTSFOLDER_H
#define REPORTSFOLDER_H

#include <QString>

namespace record {

// The folder at the top of a stick that asks each installation for a report.
inline constexpr char reportsFolderName[] = "usb-installer-reports";

// Whether the stick mounted at mountDir asks for reports: its top holds a real folder (not a
// link) of that name.
bool collectsReports(const QString &mountDir);

} // namespace record

#endif
