#include "CHexFileSource.h"

#include "MappedMemoryGuard.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <cstring>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

CHexFileSource::~CHexFileSource()
{
    Close();
}

bool CHexFileSource::Open(const QString& path, QString* error)
{
    Close();
    const QFileInfo info(path);
    if (!info.exists()) {
        if (error)
            *error = QCoreApplication::translate("CHexFileSource", "The file does not exist.");
        return false;
    }
    // Pipes, sockets and devices have no fixed size to map or to page through.
    if (!info.isFile()) {
        if (error)
            *error = QCoreApplication::translate("CHexFileSource",
                                                 "It is not a regular file (a pipe or a device "
                                                 "cannot be opened in the hex editor).");
        return false;
    }
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = m_file.errorString();
        return false;
    }
    m_path = path;
    m_size = CurrentSize();
    if (m_size < 0) {
        if (error)
            *error = m_file.errorString();
        Close();
        return false;
    }
    m_broken = false;
    // An empty file has nothing to map; a file the system will not map (some network
    // and FUSE file systems) is read through the handle.
    if (m_size > 0)
        m_map = m_file.map(0, m_size);
    return true;
}

void CHexFileSource::Close()
{
    if (m_map) {
        m_file.unmap(m_map);
        m_map = nullptr;
    }
    if (m_file.isOpen())
        m_file.close();
    m_path.clear();
    m_size = 0;
    m_broken = false;
}

qint64 CHexFileSource::CurrentSize() const
{
#ifdef Q_OS_UNIX
    struct stat st;
    if (::fstat(m_file.handle(), &st) != 0)
        return -1;
    return st.st_size;
#else
    return m_file.size();
#endif
}

bool CHexFileSource::IsIntact() const
{
    if (!m_file.isOpen())
        return false;
    if (m_broken)
        return false;
    if (CurrentSize() < m_size)
        m_broken = true;
    return !m_broken;
}

const uchar* CHexFileSource::Data(qint64 offset, qint64 length) const
{
    if (!m_map || offset < 0 || length < 0 || offset > m_size || length > m_size - offset)
        return nullptr;
    if (!IsIntact())
        return nullptr;
    return m_map + offset;
}

void CHexFileSource::MarkBroken() const
{
    m_broken = true;
}

bool CHexFileSource::Read(qint64 offset, qint64 length, uchar* dest) const
{
    if (offset < 0 || length < 0 || offset > m_size || length > m_size - offset)
        return false;
    if (length == 0)
        return true;
    if (m_map) {
        const uchar* data = Data(offset, length);
        if (!data)
            return false;
        if (!MappedMemoryGuard::Run([&] { std::memcpy(dest, data, size_t(length)); })) {
            m_broken = true; // shrunk while we copied
            return false;
        }
        return true;
    }
    if (!IsIntact() || !m_file.seek(offset))
        return false;
    qint64 done = 0;
    while (done < length) {
        const qint64 got = m_file.read(reinterpret_cast<char*>(dest) + done, length - done);
        if (got <= 0)
            return false;
        done += got;
    }
    return true;
}
