#include "CertificateReader.h"

#include <QSslCertificate>
#include <QSslCertificateExtension>
#include <QSslKey>
#include <QStringList>

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/objects.h>
#include <openssl/pkcs12.h>
#include <openssl/x509.h>

#include <memory>

namespace {

const int expiringDays = 30;
const int minimumRsaBits = 2048;

QString date(const QDateTime &when)
{
    return when.toUTC().toString(Qt::ISODate);
}

QString nameOf(const QSslCertificate &certificate, QSslCertificate::SubjectInfo info, bool issuer)
{
    const QStringList parts = issuer ? certificate.issuerInfo(info) : certificate.subjectInfo(info);
    return parts.join(QStringLiteral(", "));
}

// "CN=Example Root, O=Example" from the common name and organisation, else the whole DN.
QString displayName(const QSslCertificate &certificate, bool issuer = false)
{
    QStringList parts;
    const QString cn = nameOf(certificate, QSslCertificate::CommonName, issuer);
    const QString o = nameOf(certificate, QSslCertificate::Organization, issuer);
    if (!cn.isEmpty())
        parts.append(QStringLiteral("CN=") + cn);
    if (!o.isEmpty())
        parts.append(QStringLiteral("O=") + o);
    if (parts.isEmpty())
        return issuer ? certificate.issuerDisplayName() : certificate.subjectDisplayName();
    return parts.join(QStringLiteral(", "));
}

bool isCa(const QSslCertificate &certificate)
{
    for (const QSslCertificateExtension &extension : certificate.extensions()) {
        if (extension.name() == QLatin1String("basicConstraints"))
            return extension.value().toMap().value(QStringLiteral("ca")).toBool();
    }
    return false;
}

// The digest of the certificate's signature, from libcrypto: the toolkit does not tell it.
int signatureDigest(const QSslCertificate &certificate)
{
    const QByteArray der = certificate.toDer();
    const auto *bytes = reinterpret_cast<const unsigned char *>(der.constData());
    std::unique_ptr<X509, decltype(&X509_free)> x509(d2i_X509(nullptr, &bytes, der.size()),
                                                     &X509_free);
    int digest = NID_undef;
    if (x509)
        OBJ_find_sigid_algs(X509_get_signature_nid(x509.get()), &digest, nullptr);
    return digest;
}

void describe(ContentReport &report, const QSslCertificate &certificate, const QDateTime &now)
{
    const QString subject = displayName(certificate);
    QStringList facts;
    facts.append(subject);
    facts.append(certificate.isSelfSigned()
                     ? QStringLiteral("self-signed")
                     : QStringLiteral("issued by ") + displayName(certificate, true));
    if (isCa(certificate))
        facts.append(QStringLiteral("a CA"));
    facts.append(QStringLiteral("valid from %1 until %2")
                     .arg(date(certificate.effectiveDate()), date(certificate.expiryDate())));
    facts.append(
        QStringLiteral("SHA-256 ") +
        QString::fromLatin1(certificate.digest(QCryptographicHash::Sha256).toHex(':').toUpper()));
    report.info(QStringLiteral("cert-certificate"), facts.join(QStringLiteral("; ")));

    if (certificate.expiryDate() < now)
        report.error(
            QStringLiteral("cert-expired"),
            QStringLiteral("%1 expired on %2.").arg(subject, date(certificate.expiryDate())));
    else if (certificate.effectiveDate() > now)
        report.error(QStringLiteral("cert-not-yet-valid"),
                     QStringLiteral("%1 is not valid before %2.")
                         .arg(subject, date(certificate.effectiveDate())));
    else if (now.daysTo(certificate.expiryDate()) < expiringDays)
        report.warning(QStringLiteral("cert-expiring"),
                       QStringLiteral("%1 expires within %2 days, on %3.")
                           .arg(subject)
                           .arg(expiringDays)
                           .arg(date(certificate.expiryDate())));
    const int digest = signatureDigest(certificate);
    if (digest == NID_sha1 || digest == NID_md5)
        report.warning(QStringLiteral("cert-weak-signature"),
                       QStringLiteral("%1 is signed with %2, which clients are dropping.")
                           .arg(subject, QString::fromLatin1(OBJ_nid2sn(digest))));
    const QSslKey key = certificate.publicKey();
    if (key.algorithm() == QSsl::Rsa && key.length() > 0 && key.length() < minimumRsaBits)
        report.warning(QStringLiteral("cert-weak-key"),
                       QStringLiteral("%1 has an RSA key of %2 bits, under %3.")
                           .arg(subject)
                           .arg(key.length())
                           .arg(minimumRsaBits));
}

QString count(int n)
{
    return n == 1 ? QStringLiteral("1 certificate") : QStringLiteral("%1 certificates").arg(n);
}

QList<QSslCertificate> fromX509(X509 *x509)
{
    unsigned char *der = nullptr;
    const int length = i2d_X509(x509, &der);
    if (length <= 0)
        return {};
    const QByteArray bytes(reinterpret_cast<const char *>(der), length);
    OPENSSL_free(der);
    return QSslCertificate::fromData(bytes, QSsl::Der);
}

// The toolkit's import gives one "no" for a wrong password, a bundle without a key and a cipher
// that OpenSSL 3 no longer reads; libcrypto tells them apart.
void readPkcs12(ContentReport &report, const QByteArray &data, const QDateTime &now)
{
    report.kind = QStringLiteral("certificate");
    const auto *bytes = reinterpret_cast<const unsigned char *>(data.constData());
    std::unique_ptr<PKCS12, decltype(&PKCS12_free)> bundle(d2i_PKCS12(nullptr, &bytes, data.size()),
                                                           &PKCS12_free);
    if (!bundle) {
        report.summary = QStringLiteral("not a PKCS #12 bundle");
        report.error(QStringLiteral("cert-not-pkcs12"),
                     QStringLiteral("The file is not a PKCS #12 bundle."));
        return;
    }
    const char *password = nullptr;
    if (PKCS12_mac_present(bundle.get())) {
        if (PKCS12_verify_mac(bundle.get(), nullptr, 0) == 1)
            password = nullptr;
        else if (PKCS12_verify_mac(bundle.get(), "", 0) == 1)
            password = "";
        else {
            report.summary = QStringLiteral("PKCS #12 bundle protected by a password");
            report.info(QStringLiteral("cert-pkcs12-password"),
                        QStringLiteral("Protected by a password: its content cannot be checked."));
            return;
        }
    }
    EVP_PKEY *key = nullptr;
    X509 *certificate = nullptr;
    STACK_OF(X509) *chain = nullptr;
    if (PKCS12_parse(bundle.get(), password, &key, &certificate, &chain) != 1) {
        ERR_clear_error();
        report.summary = QStringLiteral("PKCS #12 bundle that cannot be decrypted");
        report.warning(
            QStringLiteral("cert-pkcs12-cipher"),
            QStringLiteral("Its content is encrypted with a cipher this system no longer "
                           "reads (such as RC2); the client may not read it either."));
        return;
    }
    QList<QSslCertificate> certificates;
    if (certificate)
        certificates += fromX509(certificate);
    for (int i = 0; chain && i < sk_X509_num(chain); ++i)
        certificates += fromX509(sk_X509_value(chain, i));
    report.summary = QStringLiteral("PKCS #12 bundle: %1, %2")
                         .arg(count(static_cast<int>(certificates.size())),
                              key ? QStringLiteral("a private key") : QStringLiteral("no key"));
    if (!key)
        report.warning(QStringLiteral("cert-pkcs12-no-key"),
                       QStringLiteral("The bundle holds no private key."));
    for (const QSslCertificate &one : qAsConst(certificates))
        describe(report, one, now);
    EVP_PKEY_free(key);
    X509_free(certificate);
    sk_X509_pop_free(chain, X509_free);
}

} // namespace

ContentReport readCertificates(const QByteArray &data, bool pkcs12Name, const QDateTime &now)
{
    ContentReport report;
    if (pkcs12Name) {
        readPkcs12(report, data, now);
        return report;
    }
    report.kind = QStringLiteral("certificate");
    QString encoding = QStringLiteral("PEM");
    QList<QSslCertificate> certificates = QSslCertificate::fromData(data, QSsl::Pem);
    if (certificates.isEmpty() && !data.contains("-----BEGIN")) {
        certificates = QSslCertificate::fromData(data, QSsl::Der);
        encoding = QStringLiteral("DER");
    }
    if (certificates.isEmpty()) {
        report.summary = QStringLiteral("not a certificate");
        report.error(QStringLiteral("cert-not-certificate"),
                     QStringLiteral("The file is neither a PEM nor a DER certificate."));
        return report;
    }
    report.summary = QStringLiteral("%1 file with %2")
                         .arg(encoding, count(static_cast<int>(certificates.size())));
    if (encoding == QLatin1String("DER"))
        report.info(QStringLiteral("cert-der"),
                    QStringLiteral("DER encoded: whether the client's store takes DER is not "
                                   "known; PEM is safe."));
    if (data.contains("PRIVATE KEY-----"))
        report.warning(QStringLiteral("cert-private-key"),
                       QStringLiteral("The file also holds a private key, which the client's "
                                      "certificate store does not need."));
    for (const QSslCertificate &certificate : qAsConst(certificates))
        describe(report, certificate, now);
    return report;
}
