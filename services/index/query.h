#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Turns what people type into queries of the index. Typed text reaches the full-text syntax only as quoted strings,
/// and SQL only as bound parameters.
namespace quarrynet::services {

/// Returns the full-text expression for typed words, all of which must occur. Words between double quotes are a phrase,
/// and a word after a "-" must not occur. `typed` may be any bytes; text that is not UTF-8 is read as Latin-1. Returns
/// an empty text, which matches nothing, when there is no word to search for.
std::string wordExpression(std::string_view typed);

/// A search for words that weights names more than other texts.
struct WordQuery
{
    /// Full-text expression for rows with all words and for those whose name begins with the typed text; may be empty.
    std::string expression;
    /// The typed name: the words joined by "-", ASCII letters in lower case. Empty for text that cannot be a name, such
    /// as a phrase.
    std::string name;
    /// Upper bound of all names that begin with `name`; empty when `name` is.
    std::string nameEnd;
    bool companions = false; ///< the words ask for companion packages, see asksForCompanions()
};

/// Returns the search for typed words (see wordExpression()) in a full-text table whose names are in `nameColumn`.
WordQuery wordQuery(std::string_view typed, std::string_view nameColumn);

/// A search for names that contain every typed word anywhere.
struct NameQuery
{
    /// Full-text expression over the trigram index, for words of 3 or more characters; may be empty.
    std::string expression;
    /// LIKE patterns with "\" as the escape character, for the shorter words.
    std::vector<std::string> patterns;
    /// The first word, and the upper bound of all names that begin with it.
    std::string first;
    std::string firstEnd;
    /// LIKE patterns for all words except the first.
    std::vector<std::string> otherPatterns;
    /// All words, A to Z in lower case.
    std::vector<std::string> words;

    bool empty() const { return first.empty(); }
};
NameQuery nameQuery(std::string_view typed);

} // namespace quarrynet::services
