#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The languages of the services' pages. The build makes the table of translations from translations/services_*.ts.
namespace quarrynet::services {

/// English, or the number of another language in the table.
enum class Language : std::uint8_t
{
    English = 0,
};

/// The rest of a longer Accept-Language field is ignored, and so are ranges after this number of them.
inline constexpr std::size_t kMaxAcceptLanguage = 4 * 1024;
inline constexpr std::size_t kMaxLanguageRanges = 64;

/// Returns the language that the Accept-Language field `field` gives the highest weight (RFC 9110, section 12.5.4), the
/// first one of several. A range with subtags, such as "de-AT", also stands for its language. Malformed ranges count as
/// absent. Returns English for an empty field, and where the table has none of the languages.
Language preferredLanguage(std::string_view field);

/// Returns the language's code, such as "de".
std::string_view codeOf(Language language);

/// Returns `english`, a text of these pages, in `language`; unchanged if it has no translation there.
std::string_view translated(std::string_view english, Language language);

/// Does the same, and replaces "%1" with `argument`.
std::string translated(std::string_view english, Language language, std::string_view argument);

/// Marks a text in a table for translators. Returns it unchanged; translated() does the work where it is shown.
constexpr std::string_view ownText(std::string_view english)
{
    return english;
}

} // namespace quarrynet::services
