#ifndef SECRETBOX_H
#define SECRETBOX_H

#include <QString>

// Seals the configuration stores' encrypted values with libsodium's secretbox
// (XSalsa20-Poly1305) under the key in hostpaths::keyFile(), which is created with mode 0600
// on first use. A sealed value is the base64 text of nonce + ciphertext.
namespace secretbox {

// False (with a debug line) when the key cannot be read or created.
bool seal(const QString &clearText, QString *sealedText);
// False when the key is unavailable or the sealed text was not made with it or was altered.
bool open(const QString &sealedText, QString *clearText);

} // namespace secretbox

#endif
