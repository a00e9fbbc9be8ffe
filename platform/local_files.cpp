#include "platform/local_files.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QThread>

#include "common/local_pages.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"

namespace quarrynet {

QString rewriteFile(const std::string& path, std::string_view bytes)
{
    // Another window that rewrites the same page may delete or create it between the two steps.
    constexpr int kAttempts = 50;
    constexpr unsigned long kPause = 1; // milliseconds
    QFile file(toPathText(path));
    for (int attempt = 1; (file.exists() && !file.remove()) || !file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
         ++attempt) {
        if (attempt == kAttempts)
            return file.errorString();
        QThread::msleep(kPause);
    }
    const auto size = static_cast<qint64>(bytes.size());
    if (file.write(bytes.data(), size) != size || !file.flush())
        return file.errorString();
    return {};
}

bool writePages(QWidget* owner, const std::string& folder,
                std::initializer_list<std::pair<std::string_view, std::string_view>> pages)
{
    for (const auto& [name, text] : pages) {
        const std::string path = pathInFolder(folder, name);
        if (const QString reason = rewriteFile(path, text); !reason.isEmpty()) {
            showFileError(owner, toPathText(path), reason);
            return false;
        }
    }
    return true;
}

QString replaceFileAtomically(const QString& path, std::string_view bytes)
{
    // A rename would replace a device by a file.
    if (const QFileInfo existing(path); existing.exists() && !existing.isFile())
        return QCoreApplication::translate("local_files", "There is something of this name that is not a file.");
    QSaveFile file(path);
    const auto size = static_cast<qint64>(bytes.size());
    // The flush is not left to commit(), which replaces the file even if the last of the bytes could not be written.
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes.data(), size) != size || !file.flush() || !file.commit())
        return file.errorString();
    return {};
}

std::optional<std::string> readSmallFile(const QString& path, std::size_t most)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.read(static_cast<qint64>(most) + 1);
    if (file.error() != QFileDevice::NoError || static_cast<std::size_t>(bytes.size()) > most)
        return std::nullopt;
    return bytes.toStdString();
}

} // namespace quarrynet
