#include "platform/local_files.h"

#include <QFile>

#include "platform/text_border.h"

namespace quarrynet {

QString rewriteFile(const std::string& path, std::string_view bytes)
{
    QFile file(toText(path));
    if (file.exists() && !file.remove())
        return file.errorString();
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return file.errorString();
    const auto size = static_cast<qint64>(bytes.size());
    if (file.write(bytes.data(), size) != size || !file.flush())
        return file.errorString();
    return {};
}

} // namespace quarrynet
