#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What people type, made into what the index understands. Typed text reaches the full-text syntax only as quoted
/// strings, and SQL only as bound parameters.
namespace quarrynet::services {

/// The full-text expression for typed words: all of them must occur. Words between double quotes are a phrase, and a
/// word with a "-" before it must not occur. `typed` may be any bytes; what is not UTF-8 counts as Latin-1. Empty when
/// there is no word to look for; that finds nothing.
std::string wordExpression(std::string_view typed);

/// A search over words in which names count for more than other texts.
struct WordQuery
{
    /// Full-text expression for rows with all words and for those whose name begins with what was typed; may be empty.
    std::string expression;
    /// The name that was typed: the words with "-" between them, ASCII letters in lower case. Empty where it can be
    /// none, as of a phrase.
    std::string name;
    /// The text behind all names that begin with `name`; empty when that is.
    std::string nameEnd;
    bool companions = false; ///< the words ask for companion packages, see asksForCompanions()
};

/// The search for typed words, as wordExpression(), in a full-text table whose names are in the column `nameColumn`.
WordQuery wordQuery(std::string_view typed, std::string_view nameColumn);

/// How to find names that contain every one of the typed words anywhere.
struct NameQuery
{
    /// Full-text expression over the trigram index, for words of three characters or more; may be empty.
    std::string expression;
    /// LIKE patterns with "\" as the escape character, for the shorter words.
    std::vector<std::string> patterns;
    /// The first word, and the text behind all names that begin with it.
    std::string first;
    std::string firstEnd;
    /// LIKE patterns for all words but the first one.
    std::vector<std::string> otherPatterns;

    bool empty() const { return first.empty(); }
};
NameQuery nameQuery(std::string_view typed);

} // namespace quarrynet::services
