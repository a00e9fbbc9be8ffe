#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "common/CDS_CIni.h"
#include "faults.h"

/// Each call that the settings store makes fails once. Then the file has the complete old or new content, and a failure
/// has a description.

using namespace quarrynet;
namespace fs = std::filesystem;

namespace {

constexpr int kKinds = QuarrynetFileFaults | QuarrynetMemoryFaults;

const std::string kHost = "ProxyHost";
const std::string kKey = "Value";
const std::string kOld = "; a comment\n[ProxySwitch]\nValue=off\n[ProxyHost]\nValue=old.example\n";

class SettingsFaults : public testing::Test
{
protected:
    SettingsFaults()
    {
        std::string pattern = (fs::temp_directory_path() / ("quarrynet-faults-" + std::string(6, 'X'))).string();
        folder_ = ::mkdtemp(pattern.data());
        path_ = folder_ / "Quarrynet.ini";
    }
    ~SettingsFaults() override
    {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    void putOld()
    {
        std::ofstream(path_, std::ios::binary) << kOld;
        store_ = CDS_CIni();
        store_.setFileName(path_.string());
        result_ = false;
        threw_ = false;
    }

    std::string content() const
    {
        std::ostringstream text;
        text << std::ifstream(path_, std::ios::binary).rdbuf();
        return text.str();
    }

    /// Returns a function that runs the operation and records its result, or that it threw, which it must not.
    template <class Operation>
    auto attempt(Operation operation)
    {
        return [this, operation] {
            try {
                result_ = operation();
            } catch (const std::exception&) {
                threw_ = true;
            }
        };
    }

    auto judgeWrite(const std::string& written, std::ptrdiff_t files)
    {
        return [this, written, files](long number, bool failed) {
            EXPECT_FALSE(threw_) << number;
            EXPECT_EQ(content(), result_ ? written : kOld) << number;
            EXPECT_EQ(store_.LastErrorDescription().empty(), result_) << number;
            EXPECT_TRUE(failed || result_) << number;
            EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), files) << number;
        };
    }

    fs::path folder_;
    fs::path path_;
    CDS_CIni store_;
    bool result_ = false;
    bool threw_ = false;
};

} // namespace

TEST_F(SettingsFaults, WritingAValue)
{
    const std::string value =
        "a-new-and-longer-host.example"; // allocated outside of the store, which runs out of memory
    const long calls = failEveryCall(
        kKinds, [this] { putOld(); }, attempt([&] { return store_.WriteValue(kHost, kKey, value); }),
        judgeWrite("; a comment\n[ProxySwitch]\nValue=off\n[ProxyHost]\nValue=" + value + "\n", 1));
    EXPECT_GT(calls, 15); // open, fstat, read, close; open, chmod, chown, write, fsync, close, rename; memory between
}

TEST_F(SettingsFaults, WritingThroughALink)
{
    const fs::path link = folder_ / "link.ini";
    fs::create_symlink("Quarrynet.ini", link);
    const std::string value = "new.example";
    const auto judge = judgeWrite("; a comment\n[ProxySwitch]\nValue=off\n[ProxyHost]\nValue=" + value + "\n", 2);
    const long calls = failEveryCall(
        kKinds,
        [&] {
            putOld();
            store_.setFileName(link.string());
        },
        attempt([&] { return store_.WriteValue(kHost, kKey, value); }),
        [&](long number, bool failed) {
            judge(number, failed);
            EXPECT_TRUE(fs::is_symlink(link)) << number;
        });
    EXPECT_GT(calls, 15);
}

TEST_F(SettingsFaults, WritingASection)
{
    const std::vector<std::string> keys = {"Value", "Other"};
    const std::vector<std::string> values = {"a-new-and-longer-host.example", "2"};
    const long calls = failEveryCall(
        kKinds, [this] { putOld(); }, attempt([&] { return store_.WriteSection(kHost, keys, values); }),
        judgeWrite("; a comment\n[ProxySwitch]\nValue=off\n[ProxyHost]\nValue=a-new-and-longer-host.example\nOther=2\n",
                   1));
    EXPECT_GT(calls, 15);
}

TEST_F(SettingsFaults, ReadingAValue)
{
    std::string value;
    const long calls = failEveryCall(
        kKinds,
        [this, &value] {
            putOld();
            value = "kept";
        },
        attempt([this, &value] { return store_.ReadValue(kHost, kKey, value); }),
        [this, &value](long number, bool failed) {
            EXPECT_FALSE(threw_) << number;
            EXPECT_EQ(value, result_ ? "old.example" : "kept") << number;
            EXPECT_EQ(store_.LastErrorDescription().empty(), result_) << number;
            EXPECT_TRUE(failed || result_) << number;
            EXPECT_EQ(content(), kOld) << number;
        });
    EXPECT_GT(calls, 3);
}

TEST_F(SettingsFaults, AFailureIsNotAMissingValue)
{
    std::string value;
    std::vector<std::string> entries;
    const auto put = [&] { putOld(); };
    const auto judge = [&](long number, bool) { EXPECT_TRUE(result_ || !store_.foundNothing()) << number; };
    EXPECT_GT(failEveryCall(kKinds, put, attempt([&] { return store_.ReadValue(kHost, kKey, value); }), judge), 3);
    EXPECT_GT(failEveryCall(kKinds, put, attempt([&] { return store_.ReadSection(kHost, entries, entries); }), judge),
              3);
}

TEST_F(SettingsFaults, ReadingASectionAndTheNames)
{
    std::vector<std::string> keys;
    std::vector<std::string> values;
    const auto prepare = [&] {
        putOld();
        keys = {"kept"};
        values = {"kept"};
    };
    EXPECT_GT(failEveryCall(kKinds, prepare, attempt([&] { return store_.ReadSection(kHost, keys, values); }),
                            [&](long number, bool) {
                                EXPECT_FALSE(threw_) << number;
                                EXPECT_EQ(keys, std::vector<std::string>{result_ ? "Value" : "kept"}) << number;
                                EXPECT_EQ(values, std::vector<std::string>{result_ ? "old.example" : "kept"}) << number;
                                EXPECT_EQ(store_.LastErrorDescription().empty(), result_) << number;
                            }),
              3);
    const std::vector<std::string> names = {"ProxySwitch", "ProxyHost"};
    EXPECT_GT(failEveryCall(kKinds, prepare, attempt([&] { return store_.Enum_SectionNames(keys); }),
                            [&](long number, bool) {
                                EXPECT_FALSE(threw_) << number;
                                EXPECT_EQ(keys, result_ ? names : std::vector<std::string>{"kept"}) << number;
                                EXPECT_EQ(store_.LastErrorDescription().empty(), result_) << number;
                            }),
              3);
}
