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

/// How to find names that contain every one of the typed words anywhere.
struct NameQuery
{
    /// Full-text expression over the trigram index, for words of three characters or more; may be empty.
    std::string expression;
    /// LIKE patterns with "\" as the escape character, for the shorter words.
    std::vector<std::string> patterns;

    bool empty() const { return expression.empty() && patterns.empty(); }
};
NameQuery nameQuery(std::string_view typed);

} // namespace quarrynet::services
