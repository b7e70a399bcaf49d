#pragma once

#include <QString>
#include <QStringList>

namespace TopLevelFolders {

struct Volume
{
    QString rootPath;
    QString device;
};

// The file tree's top level: the home folder, the root of the file system, then the
// volumes a person mounted (removable media, network shares under /media, /mnt or
// /run/media), each once and in the order given.
QStringList Choose(const QString& home, const QList<Volume>& volumes);
// The same for this machine.
QStringList ForThisMachine();

} // namespace TopLevelFolders
