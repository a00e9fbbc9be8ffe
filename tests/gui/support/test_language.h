#pragma once

#include <memory>

#include <QStringList>

#include "app/Language.h"

/// A language that only tests have: every own text is in Arabic letters, 40% longer than in English, and reads from
/// right to left.
inline std::unique_ptr<quarrynet::Language> rightToLeftLanguage()
{
    return std::make_unique<quarrynet::Language>(QStringList(QStringLiteral("ar")),
                                                 QStringLiteral(QUARRYNET_TEST_TRANSLATIONS));
}

/// Returns the language that QUARRYNET_TEST_LANGUAGE names: "ar" is that of the tests, the others are the program's.
inline std::unique_ptr<quarrynet::Language> languageOfEnvironment()
{
    const QString code = qEnvironmentVariable("QUARRYNET_TEST_LANGUAGE");
    return code == QStringLiteral("ar") ? rightToLeftLanguage()
                                        : std::make_unique<quarrynet::Language>(QStringList(code));
}
