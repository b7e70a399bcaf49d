#include "TextFile.h"

#include "DiskSync.h"
#include "ReadableFile.h"
#include "ReplacedFileHold.h"
#ifdef Q_OS_LINUX
#include "UncachedWriter.h"
#endif

#include <QFileInfo>

#ifndef Q_OS_LINUX
// Only Linux has the uncached writes; elsewhere the writer is never made.
class UncachedWriter
{
};
#endif

TextFile::TextFile(qint64 uncachedFrom)
    : m_uncachedFrom(uncachedFrom)
{
}

TextFile::~TextFile()
{
    Close();
}

bool TextFile::OpenRead(const QString& path)
{
    Close();
    return ReadableFile::Open(m_read, path, &m_error);
}

qint64 TextFile::ReadChunk(char* buffer, qint64 maximum)
{
    if (!m_read.isOpen())
        return 0;
    const qint64 position = m_read.pos();
    const qint64 n = m_read.read(buffer, maximum);
    if (n <= 0) {
        if (n < 0)
            m_error = m_read.errorString();
        return 0;
    }
    // Cut at the last blank or line end, never at index 0, so that every read moves on.
    // At the end of the file the whole rest is taken: nothing can follow it.
    if (n == maximum) {
        for (qint64 i = n - 1; i >= 1; --i) {
            const char c = buffer[i];
            if (c == ' ' || c == '\r' || c == '\n') {
                buffer[i] = 0;
                m_read.seek(position + i);
                return i;
            }
        }
    }
    buffer[n] = 0;
    return n;
}

bool TextFile::IsReadOnly() const
{
    const QFileInfo info(m_read.fileName());
    return info.exists() && !info.isWritable();
}

qint64 TextFile::Size() const
{
    return m_read.isOpen() ? m_read.size() : QFileInfo(m_read.fileName()).size();
}

QString TextFile::ErrorString() const
{
    return m_error;
}

bool TextFile::OpenWrite(const QString& path, qint64 expectedSize)
{
    Close();
    m_writeFailed = false;
    const QFileInfo info(path);
    if (info.exists() && !info.isFile() && !info.isDir()) {
        m_direct = std::make_unique<QFile>(path);
        if (!m_direct->open(QIODevice::WriteOnly)) {
            m_error = m_direct->errorString();
            m_direct.reset();
            return false;
        }
        return true;
    }
    m_owner.Remember(path);
    m_write = std::make_unique<QSaveFile>(path);
    // Where the folder refuses a new file, write the file in place rather than fail.
    m_write->setDirectWriteFallback(true);
    if (!m_write->open(QIODevice::WriteOnly)) {
        m_error = m_write->errorString();
        m_write.reset();
        return false;
    }
#ifdef Q_OS_LINUX
    // Written through its descriptor, bypassing the save file's own buffer; the save
    // file still syncs, renames or discards it.
    if (expectedSize >= m_uncachedFrom)
        m_uncached = std::make_unique<UncachedWriter>(m_write->handle());
#else
    Q_UNUSED(expectedSize);
#endif
    return true;
}

bool TextFile::Write(const char* data, qint64 length)
{
    QFileDevice* device = m_write ? static_cast<QFileDevice*>(m_write.get()) : m_direct.get();
    if (!device || m_writeFailed)
        return false;
#ifdef Q_OS_LINUX
    if (m_uncached) {
        if (m_uncached->Write(data, std::size_t(length)))
            return true;
        FailUncached();
        return false;
    }
#endif
    qint64 done = 0;
    while (done < length) {
        const qint64 n = device->write(data + done, length - done);
        if (n <= 0) {
            m_writeFailed = true;
            m_error = device->errorString();
            if (m_write)
                m_write->cancelWriting();
            return false;
        }
        done += n;
    }
    return true;
}

bool TextFile::Commit()
{
    if (m_direct) {
        bool ok = !m_writeFailed && m_direct->flush();
        if (!ok && m_error.isEmpty())
            m_error = m_direct->errorString();
        ok = ok && SyncToDisk(m_direct->handle(), &m_error);
        m_direct->close();
        m_direct.reset();
        return ok;
    }
    if (!m_write)
        return false;
    bool ok = !m_writeFailed;
#ifdef Q_OS_LINUX
    if (ok && m_uncached && !m_uncached->Finish()) {
        FailUncached();
        ok = false;
    }
    m_uncached.reset();
#endif
    if (ok) {
        m_owner.Apply(m_write->handle());
        if (!m_write->flush()) {
            ok = false;
            m_error = m_write->errorString();
        } else if (!SyncToDisk(m_write->handle(), &m_error)) {
            ok = false;
        }
    }
    if (ok) {
        // A large old file is freed on a thread of its own once the new one has its name.
        const ReplacedFileHold replaced(m_write->fileName());
        ok = m_write->commit();
        if (!ok)
            m_error = m_write->errorString();
    } else {
        m_write->cancelWriting();
    }
    m_write.reset();
    return ok;
}

void TextFile::Close()
{
    if (m_read.isOpen())
        m_read.close();
    m_uncached.reset();
    if (m_write) {
        m_write->cancelWriting();
        m_write.reset();
    }
    m_direct.reset();
}

#ifdef Q_OS_LINUX
void TextFile::FailUncached()
{
    m_writeFailed = true;
    m_error = m_uncached->ErrorString();
    m_uncached.reset();
    m_write->cancelWriting();
}
#endif
