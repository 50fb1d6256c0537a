#pragma once

#include <QString>
#include <QTemporaryDir>

// A small file system of its own (tmpfs) for tests that need a full or read-only disk. Mounting
// needs root; without it, or when the mount fails, isMounted() is false and whyNot() says why,
// for a QSKIP. Unmounted when the object goes.
class ScratchDisk
{
public:
    explicit ScratchDisk(qint64 bytes);
    ~ScratchDisk();
    ScratchDisk(const ScratchDisk &) = delete;
    ScratchDisk &operator=(const ScratchDisk &) = delete;

    bool isMounted() const { return m_mounted; }
    QString whyNot() const { return m_whyNot; }
    QString path() const { return m_dir.path(); }
    QString filePath(const QString &name) const { return m_dir.filePath(name); }

    qint64 bytesFree() const;
    // Writes a filler file until at most `leave` bytes are free (whole pages).
    bool fill(qint64 leave = 0);
    bool remountReadOnly();

private:
    QTemporaryDir m_dir;
    bool m_mounted = false;
    QString m_whyNot;
};
