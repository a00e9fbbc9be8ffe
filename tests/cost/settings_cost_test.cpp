#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "common/CDS_CIni.h"
#include "tests/cost/step_counter.h"

/// Compares the cost of reading and writing settings files of single and double length, file access included.
using namespace quarrynet;
using namespace quarrynet::cost;

namespace {

class SettingsCost : public ::testing::Test
{
protected:
    SettingsCost()
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / ("quarrynet-cost-" + std::string(6, 'X'))).string();
        folder_ = ::mkdtemp(pattern.data());
        store_.setFileName((folder_ / "Quarrynet.ini").string());
    }
    ~SettingsCost() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    /// Expects that an operation costs in proportion to the file's length, for files of every shape.
    void expectProportionalFiles(const std::string& what, const std::function<void()>& operation)
    {
        const std::vector<std::pair<std::string, std::function<std::string(std::size_t)>>> files = {
            {"entries", [](std::size_t length) { return "[s]\n" + filled("k=v\n", length); }},
            {"entries without a value", [](std::size_t length) { return "[s]\n" + filled("k\n", length); }},
            {"one long value", [](std::size_t length) { return "[s]\nkey=" + std::string(length, 'x'); }},
            {"one long key", [](std::size_t length) { return "[s]\n" + std::string(length, 'k') + "=v"; }},
            {"sections", [](std::size_t length) { return filled("[t]\nkey=v\n", length) + "[s]\nkey=v\n"; }},
            {"sections of one name", [](std::size_t length) { return filled("[s]\nkey=v\n", length); }},
            {"openings of sections", [](std::size_t length) { return filled("[", length); }},
            {"blank lines", [](std::size_t length) { return "[s]\n" + filled(" \r\n", length) + "key=v\n"; }},
            {"comments", [](std::size_t length) { return "[s]\n" + filled("; c\n", length) + "key=v\n"; }},
            {"NUL bytes", [](std::size_t length) { return "[s]\nkey=v" + std::string(length, '\0'); }},
        };
        for (const auto& [name, make] : files) {
            expectProportional(what + ", " + name, [&, &makeFile = make](std::size_t length) {
                std::ofstream(store_.FileName(), std::ios::binary | std::ios::trunc) << makeFile(length);
                return stepsOf(operation);
            });
        }
    }

    std::filesystem::path folder_;
    CDS_CIni store_;
};

} // namespace

TEST_F(SettingsCost, Reading)
{
    std::string value;
    std::vector<std::string> keys;
    std::vector<std::string> values;
    expectProportionalFiles("value", [&] { store_.ReadValue("s", "key", value); });
    expectProportionalFiles("value that is not there", [&] { store_.ReadValue("none", "key", value); });
    expectProportionalFiles("section", [&] { store_.ReadSection("s", keys, values); });
    expectProportionalFiles("names of sections", [&] { store_.Enum_SectionNames(keys); });
}

TEST_F(SettingsCost, Writing)
{
    expectProportionalFiles("written value", [&] { ASSERT_TRUE(store_.WriteValue("s", "key", "other")); });
    expectProportionalFiles("written section", [&] {
        ASSERT_TRUE(store_.WriteSection("s", {"key", "new"}, {"value", "value"}));
    });
    expectProportional("long written value", [&](std::size_t length) {
        std::filesystem::remove(store_.FileName());
        const std::string value(length, 'x');
        return stepsOf([&] { ASSERT_TRUE(store_.WriteValue("s", "key", value)); });
    });
    expectProportional("many written entries", [&](std::size_t length) {
        std::ofstream(store_.FileName(), std::ios::binary | std::ios::trunc) << "[s]\n" << filled("k=v\n", length);
        const std::vector<std::string> keys(length / 16, "key");
        return stepsOf([&] { ASSERT_TRUE(store_.WriteSection("s", keys, keys)); });
    });
}
