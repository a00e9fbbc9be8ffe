#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The parser asserts that a table's name begins with a letter before it reports that it does not, and optimised builds
// take its assertions for facts. A file must not end the program, so assertions do nothing.
#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(expression) static_assert(true)
#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")

namespace quarrynet::services {

/// The faults of a configuration file, each a line "FILE:LINE: message". Only the first kMostFaults are kept.
class FaultList
{
public:
    static constexpr std::size_t kMostFaults = 20;

    explicit FaultList(std::string file) : file_(std::move(file)) {}

    /// Adds a fault. `message` is an English sentence without a final full stop; line 0 stands for the whole file.
    void add(std::size_t line, const std::string& message);
    const std::vector<std::string>& faults() const { return faults_; }

private:
    std::string file_;
    std::vector<std::string> faults_;
};

/// Returns text from the file for a message: in quotes, on one line, and cut when it is long.
std::string quotedForMessage(std::string_view text);

/// Reads the keys of one table of the configuration file. Wrong values are added to the list of faults and read as
/// absent, so that one run names everything that is wrong. Every key that a function here is asked for is allowed;
/// finish() reports the others.
class TomlTable
{
public:
    /// `place` names the table in messages, such as "[web]"; empty for the top of the file.
    TomlTable(const toml::table& table, std::string place, FaultList& faults)
        : table_(table), place_(std::move(place)), faults_(faults)
    {}

    /// Each returns the key's value, or nothing when the key is absent or its value is wrong.
    std::optional<std::string> text(std::string_view key);
    std::optional<bool> flag(std::string_view key);
    std::optional<std::int64_t> number(std::string_view key, std::int64_t least, std::int64_t most);
    /// Returns the position of the value among the `allowed` texts.
    std::optional<std::size_t> choice(std::string_view key, std::initializer_list<std::string_view> allowed);
    const toml::table* table(std::string_view key);
    const toml::array* array(std::string_view key);
    /// Returns the tables of "[[KEY]]".
    std::vector<const toml::table*> tables(std::string_view key);

    /// Adds a fault at the line of `node`.
    void complain(const toml::node& node, const std::string& message);
    /// Reports each key that was not asked for, with the keys that are allowed here. Call it last.
    void finish();

    /// Returns the line of a node, counted from 1.
    static std::size_t lineOf(const toml::node& node) { return node.source().begin.line; }

private:
    const toml::node* find(std::string_view key);
    void complainAboutType(std::string_view key, const toml::node& node, const std::string& wanted);

    const toml::table& table_;
    std::string place_;
    FaultList& faults_;
    std::vector<std::string> known_;
};

} // namespace quarrynet::services
