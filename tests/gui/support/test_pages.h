#pragma once

#include <cstddef>
#include <string>

#include <QByteArray>
#include <QFile>

/// What the tests of several windows answer with, and how long they wait for it.

inline constexpr int kPatience = 60'000;         // milliseconds; what takes long under the sanitizers
inline constexpr std::size_t kHuge = 10'000'000; // bytes of a hostile page

inline QByteArray bytes(const std::string& text)
{
    return QByteArray::fromStdString(text);
}

/// Returns a file below tests/data. A missing file ends the test.
inline QByteArray dataFile(const char* name)
{
    QFile file(QStringLiteral(QUARRYNET_TEST_DATA "/") + QLatin1String(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no test data %s", name);
    return file.readAll();
}
