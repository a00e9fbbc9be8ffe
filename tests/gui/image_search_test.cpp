#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextBrowser>

#include "WindowFixture.h"
#include "platform/ListView.h"
#include "platform/PagingSlider.h"
#include "search/image/gallery.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

// A results page in the engine's layout: `pictures` thumbnails of a `count` in all.
QByteArray resultsPage(int pictures, const QByteArray& count)
{
    QByteArray page = "<html>Results <b>1</b> - <b>10</b> of about <b>" + count + "</b> (<b>0.07</b> seconds)<table>";
    for (int i = 1; i <= pictures; ++i) {
        const QByteArray number = QByteArray::number(i);
        page += "<a href=x><img src=/images?q=tbn:id" + number + ":pics.example/p" + number + ".jpg width=90></a>\n";
    }
    return page + "</table></html>";
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

} // namespace

class ImageSearchTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        window_->chooseTab(3);
    }

    void theSizeThatAPageStatesIsInTheTip()
    {
        QByteArray page = resultsPage(2, "2");
        page.replace("</table>", "p2<br>640 x 480 - 23k</table>");
        window_->service.answerWith(page);
        search(u"pear"_s);
        QTRY_VERIFY(button()->isEnabled());
        const auto tips = [this] {
            QStringList shown;
            const auto* view = window_->control<QWidget>("IMGViewer")->findChild<QTextBrowser*>();
            for (QTextBlock block = view->document()->begin(); block.isValid(); block = block.next())
                shown.append(block.begin().fragment().charFormat().toolTip());
            return shown;
        };
        QTRY_COMPARE(tips().size(), 2);
        QVERIFY(!tips()[0].contains(u"pixels"_s));
        QVERIFY2(tips()[1].contains(u"<br>640 x 480 pixels"_s), qPrintable(tips()[1]));
        window_->service.answerWith(resultsPage(2, "2"));
        search(u"plum"_s);
        QTRY_VERIFY(!tips()[1].contains(u"pixels"_s));
    }

    void searchWritesAndShowsTheGallery()
    {
        window_->service.answerWith(resultsPage(12, "1,234"));
        search(u"  red  car "_s);
        QVERIFY(!button()->isEnabled());
        QTRY_VERIFY(button()->isEnabled());

        QCOMPARE(window_->service.requests()[0],
                 QByteArray("GET /images?num=10&hl=en&filter=0&safe=off&q=red++car HTTP/1.1\r\n"
                            "HOST: 127.0.0.1\r\n"
                            "Connection: close\r\n"
                            "User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\n"
                            "ACCEPT: */*\r\n\r\n"));
        QCOMPARE(items("List6").size(), std::size_t(10));
        QCOMPARE(items("List7").size(), std::size_t(10));
        QCOMPARE(items("List7")[0], std::string("pics.example/p1.jpg"));
        QCOMPARE(items("List8")[9], std::string("http://127.0.0.1/images?q=tbn:id10:pics.example/p10.jpg"));
        QVERIFY(items("List9").empty());
        QCOMPARE(window_->text("Label11"), u"1,234"_s);
        QCOMPARE(window_->text("Label12"), u"0.07 Second/s"_s);
        QCOMPARE(window_->hidden("Text8"), std::string("124"));
        QVERIFY(slider()->isEnabled());
        QCOMPARE(slider()->maximum(), 10);
        QCOMPARE(contentOf(file("images.html")),
                 QByteArray::fromStdString(galleryPage(items("List7"), items("List8"))));
        QCOMPARE(contentOf(file("new.html")), QByteArray::fromStdString(galleryFramePage()));
        QCOMPARE(shownPage(), u"new.html"_s);
        QVERIFY(!window_->control<QTimer>("IMGTimer")->isActive());
        QCOMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
    }

    void bytesOfThePageReachTheGalleryUnchanged()
    {
        QByteArray page = resultsPage(1, "1");
        page.replace("p1.jpg", "p\xE9\xFF\"<script>.jpg");
        window_->service.answerWith(page);
        search();
        QTRY_VERIFY(contentOf(file("images.html")).contains("http://pics.example/p\xE9\xFF\"<script>.jpg\" target="));
    }

    void anOlderAndLongerGalleryLeavesNoBytes()
    {
        QFile old(file("images.html"));
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write(QByteArray(200'000, 'x'));
        old.close();
        window_->service.answerWith(resultsPage(2, "2"));
        search();
        QTRY_COMPARE(shownPage(), u"new.html"_s);
        QVERIFY(!contentOf(file("images.html")).contains("xxx"));
    }

    void nothingFoundLeavesEverythingAsItWas()
    {
        window_->service.answerWith("<html>nothing</html>");
        search();
        QTRY_COMPARE(window_->boxes.texts(), QStringList{u"No Images Found"_s});
        QTRY_VERIFY(button()->isEnabled());
        QCOMPARE(shownPage(), u"blank.html"_s);
        QCOMPARE(window_->hidden("Text8"), std::string());
        QVERIFY(!QFile::exists(file("images.html")));
    }

    void everyLaterSearchTakesThePagedForm()
    {
        window_->service.answerWith(resultsPage(10, "95"));
        search();
        QTRY_COMPARE(window_->hidden("Text8"), std::string("10"));
        QTRY_VERIFY(button()->isEnabled());
        search(u"pear"_s);
        QTRY_COMPARE(window_->service.lastRequestLine(),
                     QByteArray("GET /images?num=10&svnum=10&hl=en&filter=0&start=0&safe=off&q=pear&sa=N HTTP/1.1"));
        QCOMPARE(shownPage(), u"new.html"_s); // the last gallery stands until the next is there
        QTRY_VERIFY(button()->isEnabled());
    }

    void sliderAsksForItsPageAndShowsTheBlankOneMeanwhile()
    {
        window_->service.answerWith(resultsPage(10, "1,234"));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        window_->service.stall();
        QTest::keyClick(slider(), Qt::Key_Right);
        QTest::keyClick(slider(), Qt::Key_Right);
        QCOMPARE(shownPage(), u"blank.html"_s);
        QVERIFY(items("List8").empty());
        QCOMPARE(window_->text("Label11"), u"0"_s);
        QVERIFY(button()->isEnabled());
        QTRY_COMPARE(window_->service.lastRequestLine(),
                     QByteArray("GET /images?num=10&svnum=10&hl=en&filter=0&start=20&safe=off&q=apple&sa=N HTTP/1.1"));
    }

    void theSamePageFetchedTwiceIsParsedTwice()
    {
        window_->service.answerWith(resultsPage(10, "1,234"));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        QTest::keyClick(slider(), Qt::Key_Right);
        QTRY_COMPARE(shownPage(), u"new.html"_s);
        QCOMPARE(items("List8").size(), std::size_t(10));
    }

    void twoPagesLowerTheMaximum()
    {
        window_->service.answerWith(resultsPage(10, "16"));
        search();
        QTRY_COMPARE(window_->hidden("Text8"), std::string("2"));
        QVERIFY(slider()->isEnabled());
        QCOMPARE(slider()->maximum(), 2);
    }

    void searchEmptiesThePageChecksList()
    {
        window_->control<ListView>("ListView2")->setRows({{"word", "Found"}});
        window_->service.stall();
        search();
        QVERIFY(window_->rows("ListView2").isEmpty());
    }

    void throughAProxyThePageIsTheWebSliders()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->useServiceAsProxy();
        window_->start();
        window_->chooseTab(3);
        window_->service.answerWith(resultsPage(10, "1,234"));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        QVERIFY(window_->service.requests()[0].startsWith(
            "GET http://img.example/images?num=10&hl=en&filter=0&safe=off&q=apple HTTP/1.1\r\nHOST: img.example\r\n"
            "Proxy-Connection: close\r\n"));
        window_->control<PagingSlider>("Slider1")->setWindow({1, 10, 4});
        QTest::keyClick(slider(), Qt::Key_Right);
        const QByteArray paged =
            "GET http://img.example/images?num=10&hl=en&filter=0&start=30&safe=off&q=apple HTTP/1.1";
        QTRY_VERIFY(window_->service.requestLines().contains(paged));
    }

    void thumbnailsAreShownWithTheirAddresses()
    {
        window_->service.answerWith(resultsPage(2, "2"));
        search();
        QTRY_COMPARE(shownPage(), u"new.html"_s);
        const auto* plain = window_->control<HtmlView>("IMGViewer")->findChild<QTextBrowser*>();
        QVERIFY(plain);
        QTRY_VERIFY(plain->toPlainText().contains(u"http://pics.example/p1.jpg"_s));
        QVERIFY(plain->toPlainText().endsWith(u"http://pics.example/p2.jpg"_s));
    }

    void thumbnailsComeOverHttpAsTheSearchDid()
    {
        // Through the proxy, because a thumbnail's address has no port of its own.
        window_ = std::make_unique<WindowFixture>();
        window_->useServiceAsProxy();
        window_->start();
        window_->chooseTab(3);
        window_->service.answerWith(resultsPage(3, "3"));
        search();
        for (const char* number : {"1", "2", "3"}) {
            const QByteArray line = QByteArray("GET http://img.example/images?q=tbn:id") + number + ":pics.example/p" +
                                    number + ".jpg HTTP/1.1";
            QTRY_VERIFY2(window_->service.requestLines().contains(line), line.constData());
        }
    }

    void aGalleryThatCannotBeWrittenEndsTheProgram()
    {
        QVERIFY(QDir(window_->folder()).mkpath(u"images.html/inside"_s));
        QSignalSpy ended(&window_->main(), &Main::cannotGoOn);
        window_->service.answerWith(resultsPage(1, "1"));
        search();
        QTRY_COMPARE(ended.count(), 1);
        QCOMPARE(window_->boxes.boxes().size(), 1);
        QVERIFY(window_->boxes.texts()[0].startsWith(u"Run-time error '75':"_s));
        QVERIFY(window_->boxes.texts()[0].contains(file("images.html")));
    }

private:
    void search(const QString& keywords = u"apple"_s)
    {
        window_->type("Text7", keywords);
        QTest::mouseClick(button(), Qt::LeftButton);
    }

    const std::vector<std::string>& items(const char* list) { return window_->control<HiddenListBox>(list)->items(); }
    QString file(const char* name) { return window_->folder() + QDir::separator() + QLatin1String(name); }
    QString shownPage() { return window_->control<HtmlView>("IMGViewer")->url().fileName(); }
    QPushButton* button() { return window_->control<QPushButton>("Command3"); }
    QSlider* slider() { return window_->control<QSlider>("Slider2"); }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(ImageSearchTest)
#include "image_search_test.moc"
