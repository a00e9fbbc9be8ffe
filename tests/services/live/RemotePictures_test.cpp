#include <gtest/gtest.h>

#include "live/RemotePictures.h"

using namespace quarrynet::services;

TEST(RemotePictures, PicturesAreFoundByTheirTokens)
{
    RemotePictures pictures;
    const std::string a = pictures.tokenOf({"https://a.example/1.jpg", "https://t.example/1.png"});
    const std::string b = pictures.tokenOf({"https://a.example/1.jpg", ""});
    EXPECT_NE(a, b);
    EXPECT_EQ(a.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_EQ(pictures.tokenOf({"https://a.example/1.jpg", "https://t.example/1.png"}), a);
    ASSERT_TRUE(pictures.find(a));
    EXPECT_EQ(pictures.find(a)->address, "https://a.example/1.jpg");
    EXPECT_EQ(pictures.find(a)->thumbnail, "https://t.example/1.png");
    EXPECT_EQ(pictures.find(b)->thumbnail, "");
}

TEST(RemotePictures, OthersAreNot)
{
    RemotePictures pictures;
    const std::string token = pictures.tokenOf({"https://a.example/1.jpg", ""});
    for (const std::string& text :
         {std::string(), std::string("0"), token + "0", token.substr(1), std::string(9, '\0')})
        EXPECT_FALSE(pictures.find(text)) << text;
}

TEST(RemotePictures, OldestTokenGoesFirst)
{
    RemotePictures pictures;
    const std::string first = pictures.tokenOf({"https://a.example/first", ""});
    std::string second;
    for (std::size_t i = 1; i < RemotePictures::kMost; ++i)
        second = pictures.tokenOf({"https://a.example/" + std::to_string(i), ""});
    EXPECT_TRUE(pictures.find(first));
    pictures.tokenOf({"https://a.example/last", ""});
    EXPECT_FALSE(pictures.find(first));
    EXPECT_TRUE(pictures.find(second));
    EXPECT_NE(pictures.tokenOf({"https://a.example/first", ""}), first);
}
