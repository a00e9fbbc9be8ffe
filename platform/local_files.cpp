#include "platform/local_files.h"

#include <QFile>

#include "common/local_pages.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"

namespace quarrynet {

QString rewriteFile(const std::string& path, std::string_view bytes)
{
    QFile file(toPathText(path));
    if (file.exists() && !file.remove())
        return file.errorString();
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return file.errorString();
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

} // namespace quarrynet
