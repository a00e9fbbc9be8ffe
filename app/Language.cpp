#include "app/Language.h"

#include <algorithm>

#include <QGuiApplication>
#include <QLibraryInfo>
#include <QLocale>

namespace quarrynet {

namespace {

// A code comes from the environment or the command line, and becomes part of a file's name.
QString languageOf(const QString& wanted)
{
    const QString code = wanted.section(QLatin1Char('-'), 0, 0).section(QLatin1Char('_'), 0, 0).toLower();
    const bool isCode = code.size() >= 2 && code.size() <= 3 &&
                        std::all_of(code.begin(), code.end(), [](QChar c) { return c >= u'a' && c <= u'z'; });
    return isCode ? code : QString();
}

} // namespace

Language::Language(const QStringList& wanted, const QString& folder) : code_(QStringLiteral("en"))
{
    for (const QString& name : wanted) {
        // English ends the search although it has no file: who wants English before German gets English.
        const QString code = languageOf(name);
        if (code == QStringLiteral("en") || (!code.isEmpty() && load(code, folder)))
            break;
    }
}

Language::~Language()
{
    if (own_)
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

bool Language::load(const QString& code, const QString& folder)
{
    auto own = std::make_unique<QTranslator>();
    if (!own->load(QStringLiteral("quarrynet_") + code, folder, QString()))
        return false;
    auto toolkit = std::make_unique<QTranslator>();
    if (toolkit->load(QStringLiteral("qtbase_") + code, QLibraryInfo::path(QLibraryInfo::TranslationsPath),
                      QString())) {
        toolkit_ = std::move(toolkit);
        QCoreApplication::installTranslator(toolkit_.get());
    }
    own_ = std::move(own);
    QCoreApplication::installTranslator(own_.get());
    code_ = code;
    QGuiApplication::setLayoutDirection(QLocale(code).textDirection());
    return true;
}

} // namespace quarrynet
