#include <QDialog>
#include <QDropEvent>
#include <QMimeData>
#include <QTemporaryDir>
#include <QWindow>

#include "filled_lists.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

/// Counts how often it is asked for its content, which another program would have to send each time.
class CountingData final : public QMimeData
{
public:
    int asked() const { return asked_; }

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override
    {
        ++asked_;
        return QMimeData::retrieveData(format, type);
    }

private:
    mutable int asked_ = 0;
};

} // namespace

/// Tests what the window takes when the user drops it: addresses and link files.
class AddressDropTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
    }
    void cleanup() { window_.reset(); }

    void aDroppedAddressGoesIntoThePageCheck_data() { addTabRows(); }
    void aDroppedAddressGoesIntoThePageCheck()
    {
        QFETCH(int, tag);
        window_->chooseTab(tag);
        window_->control<QLineEdit>("Text4")->setText(u"http://old.example/"_s);
        window_->control<QLineEdit>("Text5")->setText(u"pear"_s);
        QMimeData data;
        data.setUrls({QUrl(u"HTTP://Host.example/a b#part"_s)});
        QVERIFY(drop(data, bar()));
        QTRY_COMPARE(field("Text4"), u"http://host.example/a%20b"_s);
        QCOMPARE(window_->control<QTabBar>("TabStrip1")->currentIndex(), 1);
        QVERIFY(window_->control<QWidget>("SPS")->isVisible());
        QVERIFY(window_->control<QLineEdit>("Text5")->hasFocus());
        QCOMPARE(window_->control<QLineEdit>("Text5")->selectedText(), u"pear"_s);
        // Whoever drops an address has not asked for a connection yet.
        QCOMPARE(window_->socketState("PageSock"), 0);
        QVERIFY(window_->service.requests().isEmpty());
    }

    void droppedTextIsTakenWhereItIsAnAddress()
    {
        QMimeData data;
        data.setText(u" https://host.example/ \n"_s);
        QVERIFY(drop(data, bar()));
        QTRY_COMPARE(field("Text4"), u"https://host.example/"_s);
        for (const QString& text : {u"apple pie"_s, u"ftp://host/"_s, u"file:///etc/passwd"_s, u"javascript:x"_s,
                                    u"http://a.example/\nhttp://b.example/"_s, QString()}) {
            data.setText(text);
            QVERIFY2(!drop(data, bar()), qPrintable(text));
        }
        QCOMPARE(field("Text4"), u"https://host.example/"_s);
    }

    void aTextThatIsTooLongIsNoAddress()
    {
        constexpr qsizetype kMost = 64 * 1024; // bytes, with the blanks around the address
        QMimeData data;
        data.setText(u"http://host/"_s.leftJustified(kMost));
        QVERIFY(drop(data, bar()));
        QTRY_COMPARE(field("Text4"), u"http://host/"_s);
        window_->control<QLineEdit>("Text4")->clear();
        const QString mostLetters = QString(kMost / 2, QChar(u'\u00e9')); // of two bytes
        for (const QString& text : {u"http://host/"_s.leftJustified(kMost + 1), u"http://"_s + mostLetters}) {
            data.setText(text);
            QVERIFY(!drop(data, bar()));
        }
        data.clear();
        data.setData(u"text/plain;charset=utf-8"_s, QByteArray("http://host/").leftJustified(kMost + 1));
        QVERIFY(!drop(data, bar()));
    }

    void theFirstAddressesOfAListAreLookedAt_data()
    {
        QTest::addColumn<QByteArray>("list");
        QTest::addColumn<QString>("taken");
        const QByteArray address = "http://host/\r\n";
        const QByteArray other = "mailto:a@host\r\n";
        QTest::newRow("the sixteenth") << other.repeated(15) + address << u"http://host/"_s;
        QTest::newRow("the seventeenth") << other.repeated(16) + address << QString();
        QTest::newRow("very many") << other.repeated(1'000'000) + address << QString();
        QTest::newRow("after a long one")
            << "http://" + QByteArray(65'537, 'x') + "\r\n" + address << u"http://host/"_s;
        QTest::newRow("line feeds") << QByteArray("\n\n# a comment\nhttp://host/\nhttp://other/") << u"http://host/"_s;
        QTest::newRow("empty lines") << QByteArray(1'000'000, '\n') + address << u"http://host/"_s;
        QTest::newRow("no line end") << address.trimmed() << u"http://host/"_s;
        QTest::newRow("a zero at the end") << address.trimmed() + '\0' << u"http://host/"_s;
        QTest::newRow("bytes") << QByteArray("\xff\xfe\0\n", 4) << QString();
        QTest::newRow("empty") << QByteArray() << QString();
    }
    void theFirstAddressesOfAListAreLookedAt()
    {
        QFETCH(QByteArray, list);
        QFETCH(QString, taken);
        QMimeData data;
        data.setData(u"text/uri-list"_s, list);
        QCOMPARE(drop(data, bar()), !taken.isEmpty());
        QTRY_COMPARE(field("Text4"), taken);
    }

    // Each movement of the mouse used to fetch and read the data anew.
    void theDataAreReadOnceWhileTheMouseMoves()
    {
        for (const bool list : {false, true}) {
            CountingData data;
            if (list)
                data.setUrls({QUrl(u"http://host/"_s)});
            else
                data.setText(u"http://host/"_s);
            const Qt::DropActions actions = Qt::CopyAction;
            QWindow* window = window_->main().windowHandle();
            QDragEnterEvent enter(bar(), actions, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(window, &enter);
            QVERIFY(enter.isAccepted());
            const int asked = data.asked();
            QVERIFY(asked > 0);
            for (int x = 0; x < 20; ++x) {
                QDragMoveEvent move(bar() + QPoint(x, 0), actions, &data, Qt::LeftButton, Qt::NoModifier);
                QApplication::sendEvent(window, &move);
                QVERIFY(move.isAccepted());
            }
            QCOMPARE(data.asked(), asked);
            QDragLeaveEvent leave;
            QApplication::sendEvent(window, &leave);

            QMimeData other; // the next drag has an answer of its own
            other.setText(u"no address"_s);
            QVERIFY(!drop(other, bar()));
        }
        QCOMPARE(field("Text4"), QString());
    }

    void aRowOfAListCanBeDroppedOnTheWindow()
    {
        ListView* list = fillList(*window_, tabOf(1));
        const std::unique_ptr<QMimeData> data(list->model()->mimeData({list->model()->index(1, 0)}));
        QVERIFY(drop(*data, bar()));
        QTRY_COMPARE(field("Text4"), QString::fromStdString(list->rows()[1][0]));
    }

    void theAddressFieldTakesAnAddressAsAWhole()
    {
        window_->chooseTab(2);
        window_->type("Text4", u"http://old.example/"_s);
        QMimeData data;
        data.setText(u"http://new.example/"_s);
        QVERIFY(drop(data, middleOf("Text4")));
        QTRY_COMPARE(field("Text4"), u"http://new.example/"_s);
    }

    void otherFieldsTakeTextAsFieldsDo()
    {
        window_->chooseTab(1);
        QMimeData data;
        data.setText(u"http://new.example/"_s);
        QVERIFY(drop(data, middleOf("Text1")));
        QCOMPARE(field("Text1"), u"http://new.example/"_s);
        QCOMPARE(field("Text4"), QString());
    }

    // It lies over a list, which takes none, and is made after the fields that leave link files to the window.
    void theFilterLineTakesNoDrops()
    {
        listOf(*window_, tabOf(1))->setRows({{"http://host/"}});
        listOf(*window_, tabOf(1))->openFilter();
        QMimeData data;
        data.setText(u"apple"_s);
        QVERIFY(!drop(data, middleOf("FilterWords")));
        data.setText(u"http://new.example/"_s);
        QVERIFY(drop(data, middleOf("FilterWords")));
        QTRY_COMPARE(field("Text4"), u"http://new.example/"_s);
        QCOMPARE(field("FilterWords"), QString());
    }

    void aLinkFileGoesIntoThePageCheckFromEverywhere()
    {
        for (const char* place : {"Toolbar1", "Text1", "ListView1", "FilterWords"}) {
            window_->chooseTab(1);
            listOf(*window_, tabOf(1))->setRows({{"http://host/"}});
            listOf(*window_, tabOf(1))->openFilter();
            const QString path =
                fileWith("link.URL", "[InternetShortcut]\r\nURL=http://" + QByteArray(place) + "/\r\n");
            QMimeData data;
            data.setUrls({QUrl(u"mailto:a@host"_s), QUrl::fromLocalFile(path)});
            data.setText(path); // file managers add it
            QVERIFY(drop(data, middleOf(place)));
            QTRY_COMPARE(field("Text4"), u"http://%1/"_s.arg(QLatin1String(place)));
            QCOMPARE(field("Text1"), QString());
            QCOMPARE(field("FilterWords"), QString());
        }
    }

    void aLinkFileWithoutAnAddressHasAMessage_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("a program") << QByteArray("[Desktop Entry]\nType=Application\nExec=x\n");
        QTest::newRow("a local file") << QByteArray("[Desktop Entry]\nType=Link\nURL=file:///etc/passwd\n");
        QTest::newRow("FTP") << QByteArray("[Desktop Entry]\nType=Link\nURL=ftp://host/\n");
        QTest::newRow("too long") << "[Desktop Entry]\nType=Link\nURL=http://host/\n" + QByteArray(70'000, ' ');
        QTest::newRow("bytes") << QByteArray("\0\xff\xfe[", 4);
    }
    void aLinkFileWithoutAnAddressHasAMessage()
    {
        QFETCH(QByteArray, content);
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(fileWith("a.desktop", content))});
        QVERIFY(drop(data, bar()));
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QVERIFY(window_->boxes.texts()[0].startsWith(u"There is no web address in this file:"_s));
        QCOMPARE(field("Text4"), QString());
        QCOMPARE(window_->control<QTabBar>("TabStrip1")->currentIndex(), 0);
    }

    void whatIsNoFileIsNotRead()
    {
        QVERIFY(QDir(folder_.path()).mkpath(u"folder.url"_s));
        for (const QString& name : {u"folder.url"_s, u"missing.url"_s}) {
            QMimeData data;
            data.setUrls({QUrl::fromLocalFile(folder_.filePath(name))});
            window_->boxes.forget();
            QVERIFY(drop(data, bar()));
            QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        }
    }

    void linkFilesOnOtherComputersAreRefused()
    {
        QByteArrayList addresses = {"file://host.example/share/a.url", "file:////host.example/share/a.url"};
#ifdef Q_OS_WIN
        // Other spellings of a share; elsewhere they are names of local files. The first used to be opened.
        addresses += {"file:///%5Chost.example/share/a.url", "file:///%3F%3F/UNC/host.example/share/a.url",
                      "file:///%5C%5C%3F%5CUNC%5Chost.example/share/a.url", "file:%5C%5Chost.example/share/a.url"};
#endif
        for (const QByteArray& address : std::as_const(addresses)) {
            QMimeData data;
            data.setData(u"text/uri-list"_s, address + "\r\n");
            QVERIFY2(!drop(data, bar()), address.constData());
        }
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    // An address dropped behind an open dialog used to change the tab and the field there.
    void nothingIsDroppedBehindADialog()
    {
        window_->chooseTab(2);
        QDialog dialog(&window_->main());
        dialog.setModal(true);
        dialog.show();
        QMimeData data;
        data.setText(u"http://new.example/"_s);
        for (const char* place : {"Toolbar1", "Text4", "Text5"})
            QVERIFY2(!drop(data, middleOf(place)), place);
        dialog.close();
        QCOMPARE(field("Text4") + field("Text5"), QString());
        QVERIFY(drop(data, bar()));
    }

    void otherFilesAreRefused()
    {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(fileWith("page.html", "http://host/"))});
        QVERIFY(!drop(data, bar()));
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

private:
    QString field(const char* name)
    {
        return window_->control<QLineEdit>(name)->text();
    }

    QString fileWith(const char* name, const QByteArray& content)
    {
        QFile file(folder_.filePath(QLatin1String(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", name);
        return file.fileName();
    }

    QPoint middleOf(const char* control)
    {
        auto* widget = window_->control<QWidget>(control);
        return widget->mapTo(&window_->main(), widget->rect().center());
    }
    QPoint bar()
    {
        return middleOf("Toolbar1");
    }

    // Drops the data at this place of the window, as the platform reports it. Returns whether it was taken.
    bool drop(const QMimeData& data, QPoint at)
    {
        QWindow* window = window_->main().windowHandle();
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
        QDragEnterEvent enter(at, actions, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window, &enter);
        QDragMoveEvent move(at, actions, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window, &move);
        if (!move.isAccepted()) {
            QDragLeaveEvent leave;
            QApplication::sendEvent(window, &leave);
            return false;
        }
        QDropEvent dropped(at, actions, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window, &dropped);
        return dropped.isAccepted() && dropped.dropAction() == Qt::CopyAction;
    }

    QTemporaryDir folder_;
    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(AddressDropTest)
#include "address_drop_test.moc"
