#include "DaxProperties.h"

#include "HostLog.h"
#include "HostPaths.h"
#include "SecretBox.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

// A store is <root>/<path>/config.xml:
//   <?xml version="1.0" encoding="UTF-8"?>
//   <config>
//       <entry key="NAME">value</entry>
//       <entry key="NAME" encrypted="true">sealed value</entry>
//   </config>

namespace {

const QString configTag = QStringLiteral("config");
const QString entryTag = QStringLiteral("entry");
const QString keyAttribute = QStringLiteral("key");
const QString encryptedAttribute = QStringLiteral("encrypted");
const QString trueText = QStringLiteral("true");

struct Entry
{
    QString text;
    bool encrypted;
};

// Reads a whole store; false with a reason when it is not one.
bool parseStore(QIODevice *device, QMap<QString, Entry> *entries, QString *reason)
{
    QXmlStreamReader reader(device);
    bool inConfig = false;
    bool configDone = false;
    while (!reader.atEnd() && !reader.hasError()) {
        reader.readNext();
        if (reader.isStartElement()) {
            if (!inConfig && !configDone && reader.name() == configTag) {
                inConfig = true;
            } else if (inConfig && reader.name() == entryTag) {
                const QXmlStreamAttributes attributes = reader.attributes();
                if (!attributes.hasAttribute(keyAttribute)) {
                    reader.raiseError(QStringLiteral("entry without a key"));
                    break;
                }
                const QString key = attributes.value(keyAttribute).toString();
                const bool encrypted = attributes.value(encryptedAttribute) == trueText;
                const QString text =
                    reader.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
                entries->insert(key, {text, encrypted});
            } else {
                reader.raiseError(
                    QStringLiteral("unexpected element <%1>").arg(reader.name().toString()));
            }
        } else if (reader.isEndElement()) {
            inConfig = false;
            configDone = true;
        } else if (reader.isCharacters() && !reader.isWhitespace()) {
            reader.raiseError(QStringLiteral("unexpected text"));
        }
    }
    if (!reader.hasError() && !configDone)
        reader.raiseError(QStringLiteral("no <config> element"));
    if (reader.hasError()) {
        *reason = QStringLiteral("line %1: %2").arg(reader.lineNumber()).arg(reader.errorString());
        return false;
    }
    return true;
}

// XML 1.0 cannot carry most control characters, U+FFFE, U+FFFF or unpaired surrogates.
bool isXmlText(const QString &text)
{
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const ushort u = c.unicode();
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            ++i;
            continue;
        }
        if (c.isSurrogate() || u == 0xFFFE || u == 0xFFFF)
            return false;
        if (u < 0x20 && u != 0x9 && u != 0xA && u != 0xD)
            return false;
    }
    return true;
}

// A parser turns a literal carriage return into a line feed, so it is written as a character
// reference.
void writeText(QXmlStreamWriter &writer, const QString &text)
{
    const QStringList pieces = text.split(QLatin1Char('\r'));
    for (int i = 0; i < pieces.size(); ++i) {
        if (i > 0)
            writer.writeEntityReference(QStringLiteral("#13"));
        if (!pieces.at(i).isEmpty())
            writer.writeCharacters(pieces.at(i));
    }
}

} // namespace

// The second text and the flag are accepted for the client library's sake; the host
// implementation does not need them (a store is created by its first Save()).
DaxProperties::DaxProperties(const QString &path, const QString & /*section*/, bool /*create*/)
{
    setPath(path);
}

DaxProperties::~DaxProperties() = default;

bool DaxProperties::Load()
{
    const QString fileName = hostpaths::storeFile(path());
    if (fileName.isEmpty()) {
        qCDebug(lcHostPlatform) << "not a configuration path:" << path();
        return false;
    }
    QFile file(fileName);
    if (!file.exists()) {
        m_unreadableStore = false;
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        qCDebug(lcHostPlatform) << "cannot read configuration store" << fileName << ":"
                                << file.errorString();
        m_unreadableStore = true;
        return false;
    }
    QMap<QString, Entry> entries;
    QString reason;
    // An empty file is a store without keys, not a damaged one.
    if (file.size() > 0 && !parseStore(&file, &entries, &reason)) {
        qCDebug(lcHostPlatform) << "malformed configuration store" << fileName << ":" << reason;
        m_unreadableStore = true;
        return false;
    }
    m_values.clear();
    for (auto it = entries.cbegin(); it != entries.cend(); ++it)
        m_values.insert(it.key(), {it->text, it->encrypted});
    m_unreadableStore = false;
    return true;
}

// Save() replaces the whole store with this object's values. After a Load() that found the
// store but could not read it (malformed, or not readable), Save() refuses and returns false:
// the file may hold settings this object never saw, and only a person should decide to
// replace it. A store that was never loaded is written as it is (that is how a store is reset).
bool DaxProperties::Save()
{
    const QString fileName = hostpaths::storeFile(path());
    if (fileName.isEmpty()) {
        qCDebug(lcHostPlatform) << "not a configuration path:" << path();
        return false;
    }
    if (m_unreadableStore) {
        qCDebug(lcHostPlatform) << "not replacing unreadable configuration store" << fileName;
        return false;
    }
    for (auto it = m_values.cbegin(); it != m_values.cend(); ++it) {
        if (!isXmlText(it.key()) || !isXmlText(it->text)) {
            qCDebug(lcHostPlatform) << "cannot store key" << it.key() << "in" << fileName
                                    << ": it holds a control character";
            return false;
        }
    }
    const QString dir = QFileInfo(fileName).absolutePath();
    if (!QDir().mkpath(dir)) {
        qCDebug(lcHostPlatform) << "cannot create" << dir;
        return false;
    }
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        qCDebug(lcHostPlatform) << "cannot write configuration store" << fileName << ":"
                                << file.errorString();
        return false;
    }
    QXmlStreamWriter writer(&file);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(configTag);
    for (auto it = m_values.cbegin(); it != m_values.cend(); ++it) {
        writer.writeStartElement(entryTag);
        writer.writeAttribute(keyAttribute, it.key());
        if (it->encrypted)
            writer.writeAttribute(encryptedAttribute, trueText);
        writeText(writer, it->text);
        writer.writeEndElement();
    }
    writer.writeEndElement();
    writer.writeEndDocument();
    file.write("\n", 1);
    if (writer.hasError() || !file.commit()) {
        qCDebug(lcHostPlatform) << "cannot write configuration store" << fileName << ":"
                                << file.errorString();
        return false;
    }
    return true;
}

bool DaxProperties::GetBoolean(const QString &key, bool defaultValue)
{
    const auto it = m_values.constFind(key);
    if (it == m_values.constEnd())
        return defaultValue;
    return it->text == trueText || it->text == QLatin1String("1");
}

void DaxProperties::SetBoolean(const QString &key, bool value)
{
    m_values.insert(key, {value ? trueText : QStringLiteral("false"), false});
}

QString DaxProperties::GetString(const QString &key, const QString &defaultValue)
{
    const auto it = m_values.constFind(key);
    return it == m_values.constEnd() ? defaultValue : it->text;
}

void DaxProperties::SetString(const QString &key, const QString &value)
{
    m_values.insert(key, {value, false});
}

// A value that was stored in clear (by SetString) is returned as it is.
QString DaxProperties::getEncryptedString(const QString &key, const QString &defaultValue)
{
    const auto it = m_values.constFind(key);
    if (it == m_values.constEnd())
        return defaultValue;
    if (!it->encrypted)
        return it->text;
    QString clearText;
    if (!secretbox::open(it->text, &clearText)) {
        qCDebug(lcHostPlatform) << "cannot decrypt key" << key << "of configuration path" << path();
        return defaultValue;
    }
    return clearText;
}

// When the value cannot be sealed (no usable key) the key keeps its old value: a secret is
// never stored in clear.
void DaxProperties::setEncryptedString(const QString &key, const QString &value)
{
    QString sealedText;
    if (!secretbox::seal(value, &sealedText)) {
        qCDebug(lcHostPlatform) << "key" << key << "of configuration path" << path()
                                << "not changed";
        return;
    }
    m_values.insert(key, {sealedText, true});
}
