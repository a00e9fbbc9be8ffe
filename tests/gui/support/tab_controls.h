#pragma once

#include <array>

#include "WindowFixture.h"
#include "test_pages.h"

/// The names of a tab's controls, and texts to type for a search on it.
struct TabControls
{
    struct Typed
    {
        const char* field;
        const char* text;
    };

    int tag;
    const char* frame;
    std::array<Typed, 2> typed; // Enter in the last field starts the search; only the page check has two
    const char* button;
    const char* socket;
    const char* timer;
    const char* buffer;
    const char* list;        // the view that shows the results
    const char* slider;      // null if the tab has no pages
    const char* page;        // a results page of the tests' data
    const char* requestLine; // the beginning of the request for the typed text
};

inline const std::array<TabControls, 5> kTabs = {{
    {1,
     "STI",
     {{{"Text1", "apple"}, {}}},
     "Command1",
     "NetSock",
     "STITimer",
     "Text2",
     "ListView1",
     "Slider1",
     "web_results.html",
     "GET /search?num=30&hl=en&filter=0&safe=off&q=apple HTTP/1.1"},
    {2,
     "SPS",
     {{{"Text4", "127.0.0.1/orchard"}, {"Text5", "green pear"}}},
     "Command2",
     "PageSock",
     "SPSTimer",
     "Text6",
     "ListView2",
     nullptr,
     "image_results.html",
     "GET /orchard HTTP/1.1"},
    {3,
     "IMG",
     {{{"Text7", "pear"}, {}}},
     "Command3",
     "ImgSock",
     "IMGTimer",
     "Text9",
     "IMGViewer",
     "Slider2",
     "image_results.html",
     "GET /images?num=10&hl=en&filter=0&safe=off&q=pear HTTP/1.1"},
    {4,
     "SFD",
     {{{"Text10", "editor"}, {}}},
     "Command4",
     "SFDSock",
     "SFDTimer",
     "Text12",
     "ListView3",
     "Slider3",
     "download_results.html",
     "GET /3120-20-0-"},
    {5,
     "SFS",
     {{{"Text11", "readme"}, {}}},
     "Command5",
     "SFSSock",
     "SFSTimer",
     "Text16",
     "ListView4",
     "Slider4",
     "file_results.html",
     "GET /cgi-bin/s?t=f&d=&l=en&m=20&q=readme HTTP/1.1"},
}};

/// Adds a test row for each tab, named by its frame.
inline void addTabRows()
{
    QTest::addColumn<int>("tag");
    for (const TabControls& tab : kTabs)
        QTest::newRow(tab.frame) << tab.tag;
}

inline const TabControls& tabOf(int tag)
{
    return kTabs[static_cast<std::size_t>(tag) - 1];
}

/// Brings the tab to the front and types into its fields. Returns the name of the last field.
inline const char* fillIn(WindowFixture& window, const TabControls& tab)
{
    window.chooseTab(tab.tag);
    const char* last = nullptr;
    for (const TabControls::Typed& typed : tab.typed) {
        if (!typed.field)
            break;
        window.type(typed.field, QLatin1String(typed.text));
        last = typed.field;
    }
    return last;
}

/// Returns the tab's results page from the tests' data.
inline QByteArray pageOf(const TabControls& tab)
{
    return dataFile(tab.page);
}

/// Verifies that the tab is idle: button enabled, timer off, socket closed, panels reset.
inline void verifyIdle(WindowFixture& window, const TabControls& tab)
{
    QVERIFY(window.control<QPushButton>(tab.button)->isEnabled());
    QVERIFY(!window.control<QTimer>(tab.timer)->isActive());
    QCOMPARE(window.socketState(tab.socket), 0);
    QCOMPARE(window.text("ConnectionPanel"), QString::fromLatin1("Closed"));
    QCOMPARE(window.text("ActivityPanel"), QString());
}
