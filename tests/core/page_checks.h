#pragma once

#include <string_view>

#include <gtest/gtest.h>

#include "search/download/redirect.h"
#include "search/download/results.h"
#include "search/file/results.h"
#include "search/image/results.h"
#include "search/web/results.h"

/// Checks invariants of the parsers' results that hold for every page. Used by the mutation test.
namespace quarrynet::checks {

inline void checkPaging(const PagingOffer& paging)
{
    if (paging.sliderMaximum) {
        EXPECT_GE(*paging.sliderMaximum, 1);
        EXPECT_LE(*paging.sliderMaximum, 9);
    }
    EXPECT_TRUE(paging.pageTotal || (!paging.enableSlider && !paging.sliderMaximum));
}

inline void checkWeb(std::string_view page)
{
    const WebResults results = parseWebResults(page);
    EXPECT_EQ(results.nothingFound, results.positions.empty());
    EXPECT_LE(results.lists.titles.size(), results.lists.addresses.size());
    EXPECT_LE(results.lists.addresses.size(), results.positions.size());
    EXPECT_TRUE(results.rows == 0 || results.rows == results.positions.size());
    EXPECT_EQ(results.lists.cleanedTitles.size(), results.rows);
    EXPECT_TRUE(results.fault || results.nothingFound || results.paging.pageTotal);
    for (const std::string& title : results.lists.cleanedTitles)
        EXPECT_EQ(title.find("</b>"), std::string::npos);
    checkPaging(results.paging);
}

inline void checkImage(std::string_view page)
{
    const ImageResults results = parseImageResults(page, "engine.example");
    EXPECT_EQ(results.nothingFound, results.lists.positions.empty());
    EXPECT_LE(results.lists.positions.size(), 10u);
    EXPECT_LE(results.lists.thumbnails.size(), results.lists.addresses.size());
    EXPECT_EQ(results.gallery.has_value(), results.timeCaption.has_value());
    EXPECT_TRUE(results.fault || results.nothingFound || results.paging.pageTotal);
    checkPaging(results.paging);
}

inline void checkDownload(std::string_view page)
{
    const DownloadResults results = parseDownloadResults(page);
    EXPECT_EQ(results.nothingFound, page.find("main loop") == std::string_view::npos);
    EXPECT_EQ(results.nothingFound, !results.countCaption);
    EXPECT_EQ(results.rows.size(), results.links.size());
    EXPECT_LE(results.rows.size(), page.size() / 36 + 10020);
    checkPaging(results.paging);
    for (const std::string& link : results.links) {
        if (results.links.size() > 100)
            break; // the same few links repeat
        EXPECT_TRUE(link.empty() || link.starts_with("/redir")) << link;
        const Result<std::string> path = redirectPath(link);
        EXPECT_TRUE(path);
        EXPECT_EQ(linkRequest(*path, "d.example", Route::Direct).find("\r\nHOST: d.example\r\n"),
                  linkRequest(*path, "d.example", Route::Direct).find("\r\n"));
    }
}

inline void checkFile(std::string_view page)
{
    const FileResults results = parseFileResults(page, {3});
    EXPECT_LE(results.rows.size(), 20u);
    EXPECT_EQ(results.sliderAvailable.has_value(), !results.fault);
    EXPECT_EQ(results.sliderAvailable.value_or(false), !results.fault && results.rows.size() == 20);
    EXPECT_GE(results.linkPositions.size(), 1u);
}

inline void checkLink(std::string_view page)
{
    const Result<std::optional<std::string>> address = downloadAddress(page);
    if (!address) {
        EXPECT_EQ(address.error(), RuntimeError::InvalidProcedureCall);
        return;
    }
    EXPECT_EQ(address->has_value(), page.find("newlocation = ") != std::string_view::npos);
    EXPECT_EQ(address->value_or("").find("%3A"), std::string::npos);
}

} // namespace quarrynet::checks
