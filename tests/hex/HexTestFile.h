#pragma once

#include "TestSupport.h"

#include <QDir>

// Writes `bytes` as `name` into a fresh folder and returns its path.
inline QString MakeFile(const QByteArray& bytes, const QString& name = QStringLiteral("data.bin"))
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(name);
    TestSupport::WriteFile(path, bytes);
    return path;
}
