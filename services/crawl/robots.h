#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quarrynet::services {

/// The rest of a longer file is ignored (RFC 9309, section 2.5), and so is the line that this bound cuts: less of an
/// "Allow: /open/" would allow more.
inline constexpr std::size_t kMaxRobots = 512 * 1024;
/// Longer rules are ignored, and so are further ones.
inline constexpr std::size_t kMaxRobotsRule = 1024;
inline constexpr std::size_t kMaxRobotsRules = 2000;
inline constexpr std::size_t kMaxRobotsStars = 16;

/// What a server's robots.txt allows a program to fetch (RFC 9309).
class RobotsRules
{
public:
    /// Parses the file for the program with this product token, or if it has no group for that, the group for all.
    /// Letters in tokens and field names are case-insensitive. No rules are made of what is not of this form.
    RobotsRules(std::string_view text, std::string_view product);

    /// Rules that allow everything.
    RobotsRules() = default;

    /// Returns whether a path may be fetched, which is escaped and begins with "/": the longest rule that matches it
    /// decides, and of equally long ones the one that allows. Characters match their escapes, except "/" and "?".
    bool allows(std::string_view path) const;

private:
    struct Rule
    {
        std::string pattern; ///< in which "*" stands for any text, and "$" at the end for the end of the path
        bool allow = false;
    };
    std::vector<Rule> rules_;
};

} // namespace quarrynet::services
