#include "DaxRegIni.h"

#include "HostLog.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QSaveFile>

namespace {

// Results as the client's registry functions give them.
enum Result : int {
    Success = 0,
    FileNotFound = 2,
    AccessDenied = 5,
    InvalidHandle = 6,
    InvalidParameter = 87,
};

constexpr unsigned int writeAccess = 0x0002 | 0x0004; // KEY_SET_VALUE | KEY_CREATE_SUB_KEY

// The file as raw lines, so that whatever is not changed is written back exactly.
class IniLines
{
public:
    bool read(const QString &fileName)
    {
        QFile file(fileName);
        if (!file.exists())
            return true;
        if (!file.open(QIODevice::ReadOnly)) {
            qCDebug(lcHostPlatform) << "cannot read" << fileName << ":" << file.errorString();
            return false;
        }
        QByteArray data = file.readAll();
        if (data.endsWith('\n'))
            data.chop(1);
        if (!data.isEmpty())
            m_lines = data.split('\n');
        m_crlf = !m_lines.isEmpty() && m_lines.first().endsWith('\r');
        return true;
    }

    bool write(const QString &fileName) const
    {
        QSaveFile file(fileName);
        if (!file.open(QIODevice::WriteOnly)) {
            qCDebug(lcHostPlatform) << "cannot write" << fileName << ":" << file.errorString();
            return false;
        }
        for (const QByteArray &line : m_lines) {
            file.write(line);
            file.write("\n", 1);
        }
        if (!file.commit()) {
            qCDebug(lcHostPlatform) << "cannot write" << fileName << ":" << file.errorString();
            return false;
        }
        return true;
    }

    // Index of the section's header line, or -1.
    int findSection(const QString &section) const
    {
        for (int i = 0; i < m_lines.size(); ++i) {
            const QString text = lineText(i);
            if (text.startsWith(QLatin1Char('[')) && text.endsWith(QLatin1Char(']')) &&
                text.mid(1, text.size() - 2).compare(section, Qt::CaseInsensitive) == 0)
                return i;
        }
        return -1;
    }

    int appendSection(const QString &section)
    {
        if (!m_lines.isEmpty() && !lineText(m_lines.size() - 1).isEmpty())
            m_lines.append(newLine(QString()));
        m_lines.append(newLine(QLatin1Char('[') + section + QLatin1Char(']')));
        return m_lines.size() - 1;
    }

    // Replaces the value's line in the section starting at header, or adds one after the
    // section's last non-blank line. Names compare without case, as registry names do.
    void setValue(int header, const QString &name, const QString &value)
    {
        const QByteArray line = newLine(name + QLatin1Char('=') + value);
        int insertAt = header + 1;
        for (int i = header + 1; i < m_lines.size(); ++i) {
            const QString text = lineText(i);
            if (text.startsWith(QLatin1Char('[')))
                break;
            if (text.isEmpty())
                continue;
            insertAt = i + 1;
            const int equals = text.indexOf(QLatin1Char('='));
            if (equals > 0 && !text.startsWith(QLatin1Char(';')) &&
                !text.startsWith(QLatin1Char('#')) &&
                text.left(equals).trimmed().compare(name, Qt::CaseInsensitive) == 0) {
                m_lines[i] = line;
                return;
            }
        }
        m_lines.insert(insertAt, line);
    }

private:
    QString lineText(int i) const { return QString::fromUtf8(m_lines.at(i)).trimmed(); }

    QByteArray newLine(const QString &text) const
    {
        return m_crlf ? text.toUtf8() + '\r' : text.toUtf8();
    }

    QList<QByteArray> m_lines;
    bool m_crlf = false;
};

// QSaveFile replaces the file through a temporary one next to it; opening and cancelling one
// tells whether a later change can be written, without touching the file.
bool canReplace(const QString &fileName)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        qCDebug(lcHostPlatform) << "cannot write" << fileName << ":" << file.errorString();
        return false;
    }
    file.cancelWriting();
    return true;
}

bool holdsLineBreak(const QString &text)
{
    return text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'));
}

} // namespace

DaxRegIni::DaxRegIni() = default;
DaxRegIni::~DaxRegIni() = default;

void DaxRegIni::SetIniPath(const char *path)
{
    m_iniPath = QString::fromLatin1(path);
}

int DaxRegIni::OpenKey(const QString &root, const QString &key, unsigned int access)
{
    CloseKey();
    if (m_iniPath.isEmpty() || root.isEmpty() || holdsLineBreak(root) || holdsLineBreak(key))
        return InvalidParameter;
    m_section = key.isEmpty() ? root : root + QLatin1Char('\\') + key;
    m_writable = (access & writeAccess) != 0;
    IniLines ini;
    if (!ini.read(m_iniPath))
        return AccessDenied;
    if (ini.findSection(m_section) < 0) {
        if (!m_writable)
            return FileNotFound;
        ini.appendSection(m_section);
        if (!ini.write(m_iniPath))
            return AccessDenied;
    } else if (m_writable && !canReplace(m_iniPath)) {
        return AccessDenied;
    }
    m_open = true;
    return Success;
}

int DaxRegIni::SetSz(const QString &name, const QString &value)
{
    if (!m_open)
        return InvalidHandle;
    if (!m_writable)
        return AccessDenied;
    // One value is one line "Name=value": a line break, or a name that is blank, holds "=" or
    // would read as a section or a comment, cannot be read back as the same value.
    const QString trimmedName = name.trimmed();
    if (trimmedName.isEmpty() || name.contains(QLatin1Char('=')) || holdsLineBreak(name) ||
        holdsLineBreak(value) || QStringLiteral("[;#").contains(trimmedName.at(0)))
        return InvalidParameter;
    IniLines ini;
    if (!ini.read(m_iniPath))
        return AccessDenied;
    int header = ini.findSection(m_section);
    if (header < 0)
        header = ini.appendSection(m_section);
    ini.setValue(header, name, value);
    return ini.write(m_iniPath) ? Success : AccessDenied;
}

void DaxRegIni::CloseKey()
{
    m_open = false;
}
