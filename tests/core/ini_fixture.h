#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#ifndef _WIN32
#include <unistd.h>
#endif

#include "common/CDS_CIni.h"

namespace quarrynet {

/// A store whose file, which does not exist yet, is in a folder of the test.
class Ini : public testing::Test
{
protected:
    Ini()
    {
        const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
        folder_ = std::filesystem::temp_directory_path() / (std::string("quarrynet-ini-") + test->name() + suffix());
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        path_ = folder_ / "Quarrynet.ini";
        store_.setFileName(bytesOf(path_));
    }

    /// Returns a path as the store takes it.
    static std::string bytesOf(const std::filesystem::path& path)
    {
#ifdef _WIN32
        const std::u8string bytes = path.u8string();
        return {bytes.begin(), bytes.end()};
#else
        return path.string();
#endif
    }

    ~Ini() override
    {
        std::error_code ignored;
        std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(folder_, ignored);
    }

    static std::string suffix()
    {
#ifdef _WIN32
        return "-windows";
#else
        return std::string("-").append(std::to_string(::getpid()));
#endif
    }

    void put(const std::string& content) const
    {
        std::ofstream(path_, std::ios::binary) << content;
    }

    std::string content() const
    {
        std::ostringstream text;
        text << std::ifstream(path_, std::ios::binary).rdbuf();
        return text.str();
    }

    std::size_t filesInFolder() const
    {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder_))
            ++count;
        return count;
    }

    std::filesystem::path folder_;
    std::filesystem::path path_;
    CDS_CIni store_;
};

} // namespace quarrynet
