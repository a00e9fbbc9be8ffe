#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QStringList>

/// A test program that another program starts, to see what was started and with which arguments. The test calls
/// recordNextStarts(), and its main() calls recordStart() first.
namespace start_record {

inline constexpr const char* kVariable = "QUARRYNET_TEST_RECORD"; // names the file of the record

/// Makes this test program, when it is started again, only append a line to `file`.
inline void recordNextStarts(const QString& file)
{
    qputenv(kVariable, file.toUtf8());
}

/// Returns whether this start is one to record. Then it has appended a line to the record: the number of arguments, and
/// each argument after a "|". To be called before the application object is made; a start needs no display.
inline bool recordStart(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet(kVariable))
        return false;
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    QByteArray line = QByteArray::number(arguments.size());
    for (const QString& argument : arguments)
        line += '|' + argument.toUtf8();
    QFile file(qEnvironmentVariable(kVariable));
    if (file.open(QIODevice::WriteOnly | QIODevice::Append))
        file.write(line + '\n');
    return true;
}

} // namespace start_record
