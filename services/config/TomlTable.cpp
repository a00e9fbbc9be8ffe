#include "config/TomlTable.h"

#include <algorithm>

#include "ground/ascii.h"
#include "ground/utf8.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kMostQuoted = 80;

std::string inQuotes(std::string_view text)
{
    std::string quoted = "\"";
    return quoted.append(text).append("\"");
}

const char* nameOf(toml::node_type type)
{
    switch (type) {
    case toml::node_type::table:
        return "a table";
    case toml::node_type::array:
        return "a list";
    case toml::node_type::string:
        return "a text";
    case toml::node_type::integer:
        return "a whole number";
    case toml::node_type::floating_point:
        return "a number with a decimal point";
    case toml::node_type::boolean:
        return "true or false";
    default:
        return "a date or time";
    }
}

} // namespace

std::string quotedForMessage(std::string_view text)
{
    std::string shown = "\"";
    for (const char c : clipUtf8(text, kMostQuoted))
        shown.push_back(isAsciiControl(c) ? ' ' : c);
    return shown + (text.size() > kMostQuoted ? "...\"" : "\"");
}

void FaultList::add(std::size_t line, const std::string& message)
{
    if (faults_.size() >= kMostFaults)
        return;
    std::string place = file_;
    if (line > 0)
        place.append(":").append(std::to_string(line));
    place.append(": ");
    // The parser quotes what it did not expect.
    for (const char c : message)
        place.push_back(isAsciiControl(c) ? ' ' : c);
    faults_.push_back(std::move(place));
}

const toml::node* TomlTable::find(std::string_view key)
{
    known_.emplace_back(key);
    return table_.get(key);
}

void TomlTable::complain(const toml::node& node, const std::string& message)
{
    faults_.add(lineOf(node), message);
}

void TomlTable::complainAboutType(std::string_view key, const toml::node& node, const std::string& wanted)
{
    complain(node, inQuotes(key) + " takes " + wanted + ", not " + nameOf(node.type()));
}

std::optional<std::string> TomlTable::text(std::string_view key)
{
    const toml::node* node = find(key);
    if (node == nullptr)
        return std::nullopt;
    std::optional<std::string> value = node->value_exact<std::string>();
    if (!value)
        complainAboutType(key, *node, "a text in quotes");
    return value;
}

std::optional<bool> TomlTable::flag(std::string_view key)
{
    const toml::node* node = find(key);
    if (node == nullptr)
        return std::nullopt;
    const std::optional<bool> value = node->value_exact<bool>();
    if (!value)
        complainAboutType(key, *node, "true or false");
    return value;
}

std::optional<std::int64_t> TomlTable::number(std::string_view key, std::int64_t least, std::int64_t most)
{
    const toml::node* node = find(key);
    if (node == nullptr)
        return std::nullopt;
    const std::string wanted = "a whole number from " + std::to_string(least) + " to " + std::to_string(most);
    const std::optional<std::int64_t> value = node->value_exact<std::int64_t>();
    if (!value)
        complainAboutType(key, *node, wanted);
    else if (*value < least || *value > most)
        complain(*node, inQuotes(key) + " takes " + wanted + ", not " + std::to_string(*value));
    else
        return value;
    return std::nullopt;
}

std::optional<std::size_t> TomlTable::choice(std::string_view key, std::initializer_list<std::string_view> allowed)
{
    const std::optional<std::string> value = text(key);
    if (!value)
        return std::nullopt;
    const auto* const found = std::find(allowed.begin(), allowed.end(), *value);
    if (found != allowed.end())
        return static_cast<std::size_t>(found - allowed.begin());
    std::string names;
    for (const std::string_view name : allowed)
        names.append(names.empty() ? "" : ", ").append(inQuotes(name));
    complain(*table_.get(key), inQuotes(key) + " takes one of " + names + ", not " + quotedForMessage(*value));
    return std::nullopt;
}

const toml::table* TomlTable::table(std::string_view key)
{
    const toml::node* node = find(key);
    if (node != nullptr && !node->is_table())
        complainAboutType(key, *node, std::string("a table: [").append(key).append("]"));
    return node == nullptr ? nullptr : node->as_table();
}

const toml::array* TomlTable::array(std::string_view key)
{
    const toml::node* node = find(key);
    if (node != nullptr && !node->is_array())
        complainAboutType(key, *node, "a list in square brackets");
    return node == nullptr ? nullptr : node->as_array();
}

std::vector<const toml::table*> TomlTable::tables(std::string_view key)
{
    std::vector<const toml::table*> found;
    const toml::node* node = find(key);
    if (node == nullptr)
        return found;
    const toml::array* list = node->as_array();
    if (list == nullptr || !list->is_homogeneous(toml::node_type::table)) {
        complainAboutType(key, *node, std::string("tables: [[").append(key).append("]]"));
        return found;
    }
    for (const toml::node& entry : *list)
        found.push_back(entry.as_table());
    return found;
}

void TomlTable::finish()
{
    std::string names;
    for (const std::string& name : known_)
        names.append(names.empty() ? "" : ", ").append(name);
    for (const auto& [key, node] : table_) {
        if (std::find(known_.begin(), known_.end(), key.str()) == known_.end())
            faults_.add(key.source().begin.line, "unknown key " + quotedForMessage(key.str()) +
                                                     (place_.empty() ? "" : " in " + place_) +
                                                     "; allowed here: " + names);
    }
}

} // namespace quarrynet::services
