// Windows only: compares what profile_text reads and writes with the system's private-profile functions.
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/profile_file.h"
#include "common/profile_text.h"

using namespace quarrynet;
namespace fs = std::filesystem;

namespace {

constexpr std::size_t kCapacity = 32767;

class Alike : public testing::Test
{
protected:
    Alike()
    {
        const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
        folder_ = fs::temp_directory_path() / (std::string("quarrynet-alike-") + test->name());
        fs::remove_all(folder_);
        fs::create_directories(folder_);
    }

    ~Alike() override
    {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    // Uses a new name each time, because the system may cache the content of a file.
    std::string put(const std::string& content)
    {
        const fs::path path = folder_ / (std::to_string(++files_) + ".ini");
        std::ofstream(path, std::ios::binary) << content;
        return path.string();
    }

    static std::string get(const std::string& file)
    {
        std::ostringstream text;
        text << std::ifstream(file, std::ios::binary).rdbuf();
        return text.str();
    }

    void expectReadAlike(const std::string& text)
    {
        const std::string file = put(text);
        EXPECT_EQ(readProfileSectionNames(file, kCapacity).text, packedProfileSectionNames(text, kCapacity)) << text;
        for (const char* section : {"A", "b", "C c"}) {
            EXPECT_EQ(readProfileSection(file, section, kCapacity).text, packedProfileSection(text, section, kCapacity))
                << text;
            for (const char* key : {"k", "J", "l l"}) {
                const auto own = profileValue(text, section, key);
                EXPECT_EQ(readProfileValue(file, section, key, kCapacity).text, std::string(own.value_or("")))
                    << text << "|" << section << "|" << key;
            }
        }
    }

    fs::path folder_;
    int files_ = 0;
};

} // namespace

TEST_F(Alike, HandWrittenFilesReadAlike)
{
    for (const char* text : {
             "",
             "[A]\r\nk=1\r\n",
             "[A]\nk=1\nJ = 2\n\n[B]\nk=3\n",
             "; top\n[a]\n;k=0\nK= \" x \" \n",
             "[A]\nk='x'\nj=\"\"\n[b]\nk=\"x\nj=\"\n",
             "[A]\nk=x=y\nj==\n",
             "[ A ]\n k = 1 \n",
             "[A]\nk=1\nk=2\n[A]\nj=3\n",
             "[A]\nk=1 ; no comment\n",
             "k=0\n[A]\nk=1",
             "[A]\n[B]\n",
             "[A]\nk\nj=\n",
             "[C c]\nl l=1 2\n",
             "[A]\nk=\xe4\xf6\n",
             "[A]\n\tk\t=\t1\t\n",
             "[A]\rk=1\r[B]\rJ=2\r",
             "[A]\rk=1\n\r\n[B]\r\r\nJ=2\r\r\r\nk=3\r",
             "[A]\rk=1\r;k=2\n[b]\rJ= 2 \rl l",
         })
        expectReadAlike(text);
}

TEST_F(Alike, RandomFilesReadAlike)
{
    std::mt19937 random(4);
    const std::vector<std::string> lines = {"[A]",     "[b]",   "[C c]", "[a]",       "k=1",  "k = 2 ",
                                            "J=\"x\"", "j='y'", "j=",    "l l=z",     ";k=5", " ; note",
                                            "",        "  ",    "k=x=y", "J=\" q \"", "m=\"n"};
    for (int i = 0; i < 300; ++i) {
        std::string text;
        const std::size_t count = random() % 12;
        for (std::size_t line = 0; line < count; ++line)
            text.append(lines[random() % lines.size()])
                .append(std::vector<const char*>{"\r\n", "\n", "\n", "\r", "\r\r\n"}[random() % 5]);
        expectReadAlike(text);
    }
}

TEST_F(Alike, ListsAreCutAlike)
{
    const std::string text = "[A]\nk=1\nlonger=22\nlast=333\n[Second]\n[Third]\n";
    const std::string file = put(text);
    const std::size_t exactSection = packedProfileSection(text, "A", kCapacity).size() + 1;
    const std::size_t exactNames = packedProfileSectionNames(text, kCapacity).size() + 1;
    for (std::size_t capacity = 4; capacity < 40; ++capacity) {
        // Wine treats a buffer that fits exactly as too small, so these two sizes are not compared.
        if (capacity != exactSection) {
            EXPECT_EQ(readProfileSection(file, "A", capacity).text, packedProfileSection(text, "A", capacity))
                << capacity;
        }
        if (capacity != exactNames) {
            EXPECT_EQ(readProfileSectionNames(file, capacity).text, packedProfileSectionNames(text, capacity))
                << capacity;
        }
    }
    EXPECT_EQ(readProfileValue(file, "A", "last", 3).text, "33");
}

TEST_F(Alike, WhatIsWrittenReadsAlike)
{
    std::mt19937 random(6);
    const std::vector<std::string> names = {"A", "b", "C c"};
    const std::vector<std::string> values = {"1", "", "x y", "a=b", "\"q\"", ";s", "[t]"};
    for (int i = 0; i < 60; ++i) {
        std::string text = i % 2 == 0 ? "" : "; top\r\n[B]\r\nk=0\r\n\r\n[a]\r\nj=1\r\n";
        const std::string file = put(text);
        for (int step = 0; step < 6; ++step) {
            const std::string& section = names[random() % names.size()];
            const std::string& value = values[random() % values.size()];
            if (random() % 4 == 0) {
                ASSERT_TRUE(writeProfileSection(file, section, {{"k", value}, {"J", "9"}}).done);
                text = withProfileEntries(text, section, {{"k", value}, {"J", "9"}});
            } else {
                const char* const key = random() % 2 == 0 ? "k" : "l l";
                ASSERT_TRUE(writeProfileValue(file, section, key, value).done);
                text = withProfileValue(text, section, key, value);
            }
        }
        const std::string written = get(file);
        EXPECT_EQ(packedProfileSectionNames(written, kCapacity), packedProfileSectionNames(text, kCapacity)) << written;
        EXPECT_EQ(readProfileSectionNames(file, kCapacity).text, packedProfileSectionNames(text, kCapacity)) << written;
        for (const std::string& section : names)
            EXPECT_EQ(readProfileSection(file, section, kCapacity).text, packedProfileSection(text, section, kCapacity))
                << written;
    }
}
