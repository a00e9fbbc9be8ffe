#include "app/manual_page.h"

#include <QDir>
#include <QFile>

#include "platform/text_border.h"

namespace quarrynet {

std::string manualPage(const QStringList& folders, const QString& language)
{
    for (const QString& folder : folders) {
        for (const QString& name : {language + QStringLiteral("/index.html"), QStringLiteral("index.html")}) {
            const QString page = QDir::cleanPath(QDir(folder).filePath(name));
            if (QFile::exists(page))
                return toPathBytes(page);
        }
    }
    return {};
}

} // namespace quarrynet
