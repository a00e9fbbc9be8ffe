#pragma once

#include <memory>

#include <QString>
#include <QStringList>
#include <QTranslator>

namespace quarrynet {

/// The language of the program's own texts, with the layout direction that belongs to it. Some texts are English in
/// every language: translations/fixed_texts.txt lists them, and they are never passed to tr().
class Language final
{
    Q_DISABLE_COPY_MOVE(Language)

public:
    /// Chooses the first of the languages `wanted` (such as "de-AT", most wanted first) that the program has: English,
    /// which needs no file, or one with a file quarrynet_CODE.qm in `folder`. English if it has none of them. Applies
    /// to texts that are made later, so this comes before the window.
    explicit Language(const QStringList& wanted, const QString& folder = QStringLiteral(":/translations"));

    /// Returns to English.
    ~Language();

    /// Returns the code of the language without a country, such as "de".
    const QString& code() const { return code_; }

private:
    bool load(const QString& code, const QString& folder);

    QString code_;
    std::unique_ptr<QTranslator> own_;
    std::unique_ptr<QTranslator> toolkit_; // standard buttons, file dialogs and menus of fields, where installed
};

} // namespace quarrynet
