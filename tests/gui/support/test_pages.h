#pragma once

#include <string>

#include <QByteArray>
#include <QFile>

/// Data and timeouts for the tests of several windows.

inline constexpr int kPatience = 60'000; // milliseconds, for operations that take long under the sanitizers
inline constexpr int kHuge = 10'000'000; // size of a hostile page, in bytes

inline QByteArray bytes(const std::string& text)
{
    return QByteArray::fromStdString(text);
}

/// Returns a file below tests/data. A missing file ends the test.
inline QByteArray dataFile(const char* name)
{
    QFile file(QString::fromUtf8(QUARRYNET_TEST_DATA "/") + QLatin1String(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no test data %s", name);
    return file.readAll();
}
