#ifndef CERTIFICATEREADER_H
#define CERTIFICATEREADER_H

#include "Finding.h"

#include <QByteArray>
#include <QDateTime>

// A certificate file: PEM or DER certificates, or a PKCS #12 bundle (.p12, .pfx). Validity is
// judged on now.
ContentReport readCertificates(const QByteArray &data, bool pkcs12Name, const QDateTime &now);

#endif
