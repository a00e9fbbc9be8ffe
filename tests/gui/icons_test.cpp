#include <QImageReader>
#include <QtTest>

#include "icons/icons.h"

using namespace Qt::Literals::StringLiterals;
using quarrynet::icon;
using quarrynet::picture;

/// Returns the share of pixels that a drawing covers, in per cent.
static int coverage(const QImage& image)
{
    int covered = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            covered += qAlpha(image.pixel(x, y)) > 64 ? 1 : 0;
    }
    return covered * 100 / (image.width() * image.height());
}

class IconsTest : public QObject
{
    Q_OBJECT

private slots:
    void noImagePlugInIsThere();
    void everyDrawingIsDrawnAtEverySize_data();
    void everyDrawingIsDrawnAtEverySize();
    void toolbarDrawingsDifferFromEachOther();
    void unknownNameGivesNullIcon();
};

// main() removes the plug-ins, because an installation may lack any of them.
void IconsTest::noImagePlugInIsThere()
{
    QVERIFY(!QImageReader::supportedImageFormats().contains("svg"));
    QVERIFY(!QImageReader::supportedImageFormats().contains("jpeg"));
}

void IconsTest::everyDrawingIsDrawnAtEverySize_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"about", "help", "mail", "proxy", "quarrynet", "stop", "terraces", "waiting", "webpage"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void IconsTest::everyDrawingIsDrawnAtEverySize()
{
    QFETCH(QString, name);
    QVERIFY(!icon(name).isNull());
    for (const int size : {8, 16, 23, 24, 32, 64, 300}) {
        const QPixmap drawn = picture(name, QSize(size, size), 1);
        QVERIFY(drawn.width() == size);
        QVERIFY(coverage(drawn.toImage()) > 20);
        QCOMPARE(picture(name, QSize(size, size), 2).width(), 2 * size);
    }
}

void IconsTest::toolbarDrawingsDifferFromEachOther()
{
    const QStringList names = {u"proxy"_s, u"stop"_s, u"help"_s, u"mail"_s, u"webpage"_s, u"about"_s};
    for (qsizetype i = 0; i < names.size(); ++i) {
        for (qsizetype j = 0; j < i; ++j) {
            QVERIFY(picture(names[i], QSize(16, 16), 1).toImage() != picture(names[j], QSize(16, 16), 1).toImage());
        }
    }
}

void IconsTest::unknownNameGivesNullIcon()
{
    QVERIFY(icon(u"no such drawing"_s).isNull());
    QVERIFY(icon(QString()).isNull());
    QVERIFY(picture(u"../icons"_s, QSize(16, 16), 1).isNull());
}

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QCoreApplication::setLibraryPaths({}); // the platform's plug-in is already loaded
    IconsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "icons_test.moc"
