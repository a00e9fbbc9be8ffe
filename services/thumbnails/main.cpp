#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sys/resource.h>
#include <unistd.h>

#include <QByteArray>
#include <QGuiApplication>
#include <QImageReader>

#include "thumbnails/confinement.h"
#include "thumbnails/thumbnail.h"

/// quarrynet-thumbnails: reads pictures from standard input and writes thumbnails to standard output until the input
/// ends. quarrynet-services starts it; see Thumbnailer for the messages.

using namespace quarrynet::services;

namespace {

constexpr quint32 kMaxPicture = 64 * 1024 * 1024;
constexpr int kMaxImageMegabytes = 256;

/// Returns false at the end of the input.
bool readAll(char* to, std::size_t size)
{
    while (size > 0) {
        const ssize_t count = ::read(STDIN_FILENO, to, size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        to += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool writeAll(const char* from, std::size_t size)
{
    while (size > 0) {
        const ssize_t count = ::write(STDOUT_FILENO, from, size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        from += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

/// Extends the processor time limit, which ends this process if the services are killed while it reads a picture.
void allowMoreTime()
{
    constexpr rlim_t kSeconds = 30;
    rusage used{};
    rlimit time{};
    if (::getrusage(RUSAGE_SELF, &used) != 0 || ::getrlimit(RLIMIT_CPU, &time) != 0)
        return;
    time.rlim_cur = static_cast<rlim_t>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) + kSeconds;
    ::setrlimit(RLIMIT_CPU, &time);
}

QByteArray answerTo(PictureFormat format, const QByteArray& picture)
{
    try {
        return makeThumbnail(format, picture);
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

int main(int argc, char** argv)
{
    constexpr int kMaxInherited = 1024;
    for (int descriptor = STDERR_FILENO + 1; descriptor < kMaxInherited; ++descriptor)
        ::close(descriptor);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("QT_NO_GLIB", "1", 1); // GLib's event loops need more system calls
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtCriticalMsg || type == QtFatalMsg)
            std::fprintf(stderr, "quarrynet-thumbnails: %s\n", qUtf8Printable(text));
    });
    const QGuiApplication application(argc, argv);
    // Readers' messages about broken pictures are of no use on the terminal of the services.
    if (std::freopen("/dev/null", "w", stderr) == nullptr)
        return 1;
    QImageReader::setAllocationLimit(kMaxImageMegabytes);
    loadPictureReaders();
    if (!confineProcess())
        return 1;
    for (;;) {
        std::array<char, 5> head{};
        if (!readAll(head.data(), head.size()))
            return 0;
        quint32 length = 0;
        for (std::size_t i = 1; i < head.size(); ++i)
            length = length << 8U | static_cast<unsigned char>(head[i]);
        if (length > kMaxPicture)
            return 1;
        QByteArray picture(static_cast<qsizetype>(length), '\0');
        if (!readAll(picture.data(), length))
            return 0;
        allowMoreTime();
        const QByteArray thumbnail = answerTo(static_cast<PictureFormat>(head[0]), picture);
        const auto size = static_cast<quint32>(thumbnail.size());
        std::array<char, 4> answer{};
        for (std::size_t i = 0; i < answer.size(); ++i)
            answer[i] = static_cast<char>(static_cast<unsigned char>(size >> (24U - 8U * static_cast<unsigned>(i))));
        if (!writeAll(answer.data(), answer.size()) || !writeAll(thumbnail.constData(), size))
            return 0;
    }
}
