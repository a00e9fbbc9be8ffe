#include <algorithm>

#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>
#include <QStatusBar>

#include "PaintedText.h"
#include "app/manual_page.h"
#include "dialogs/Dialog.h"
#include "dialogs/Proxy.h"
#include "dialogs/frmAbout.h"
#include "platform/FilterLine.h"
#include "platform/ListView.h"
#include "platform/PagingSlider.h"
#include "platform/ProgramStyle.h"
#include "platform/Registry.h"
#include "platform/message_boxes.h"
#include "platform/winsock_errors.h"
#include "search/SearchTab.h"
#include "tab_controls.h"
#include "test_language.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

constexpr std::array kSizes = {QSize(608, 434), QSize(304, 217), QSize(777, 555), QSize(1216, 868)};

QSet<QString> fixedTexts()
{
    QFile file(QStringLiteral(QUARRYNET_FIXED_TEXTS));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no list of fixed texts");
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    return QSet<QString>(lines.begin(), lines.end());
}

/// Returns every text that `object` shows or tells to a screen reader.
QStringList textsOf(QObject& object)
{
    QStringList texts;
    if (auto* action = qobject_cast<QAction*>(&object)) {
        texts = {action->text(), action->statusTip(), action->whatsThis()};
        // Without a tool tip of its own, an action makes one of its text.
        if (action->toolTip() != QAction(action->text()).toolTip())
            texts.append(action->toolTip());
    }
    if (auto* widget = qobject_cast<QWidget*>(&object))
        texts.append({widget->windowTitle(), widget->toolTip(), widget->statusTip(), widget->whatsThis(),
                      widget->accessibleName(), widget->accessibleDescription()});
    if (auto* label = qobject_cast<QLabel*>(&object))
        texts.append(label->text());
    if (auto* button = qobject_cast<QAbstractButton*>(&object))
        texts.append(button->text());
    if (auto* field = qobject_cast<QLineEdit*>(&object))
        texts.append(field->placeholderText());
    if (auto* box = qobject_cast<QComboBox*>(&object)) {
        for (int i = 0; i < box->count(); ++i)
            texts.append(box->itemText(i));
    }
    if (auto* strip = qobject_cast<QTabBar*>(&object)) {
        for (int i = 0; i < strip->count(); ++i)
            texts.append({strip->tabText(i), strip->tabToolTip(i)});
    }
    if (auto* list = qobject_cast<QTreeView*>(&object); list && list->model()) {
        for (int i = 0; i < list->model()->columnCount(); ++i)
            texts.append(list->model()->headerData(i, Qt::Horizontal).toString());
    }
    texts.removeAll(QString());
    return texts;
}

bool hasLatinLetters(const QString& text)
{
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); });
}

/// Returns the texts in `root` and its children that are neither fixed nor in the right-to-left language.
QStringList untranslated(QObject& root, const QSet<QString>& fixed)
{
    static const QRegularExpression accelerator(u"&[A-Za-z]"_s);         // a Latin letter in every language
    static const QRegularExpression figure(u"^[0-9.,]+( Second/s)?$"_s); // as the service reported it
    QStringList found;
    QList<QObject*> objects = root.findChildren<QObject*>();
    objects.prepend(&root);
    for (QObject* object : objects) {
        if (qobject_cast<QTabBar*>(object->parent()))
            continue; // buttons of the toolkit, with its own texts
        for (const QString& text : textsOf(*object)) {
            QString words = QString(text).remove(accelerator);
            const auto named = std::find_if(fixed.begin(), fixed.end(), [&words](const QString& caption) {
                return words.startsWith(caption + u", "_s); // a translated text that begins with a caption
            });
            if (named != fixed.end())
                words.remove(0, named->size());
            if (!fixed.contains(text) && hasLatinLetters(words) && !figure.match(text).hasMatch())
                found.append(object->objectName() + u": "_s + text);
        }
    }
    return found;
}

QRect mirrored(const QRect& place, int width)
{
    return {width - place.x() - place.width(), place.y(), place.width(), place.height()};
}

/// Returns the letters that open the entries of a menu or menu bar, with the entries of each.
QMap<QChar, QStringList> accelerators(const QList<QAction*>& actions)
{
    QMap<QChar, QStringList> letters;
    for (const QAction* action : actions) {
        const QString text = QString(action->text()).replace(u"&&"_s, QString());
        if (const qsizetype at = text.indexOf(u'&'); at >= 0 && at + 1 < text.size())
            letters[text[at + 1].toLower()].append(action->text());
    }
    return letters;
}

} // namespace

/// The languages of the program's own texts: how one is chosen, what stays English, and the window from right to left.
class LanguageTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QApplication::setStyle(new ProgramStyle); }

    void theFirstLanguageThatTheProgramHasIsChosen_data()
    {
        QTest::addColumn<QStringList>("wanted");
        QTest::addColumn<QString>("code");
        QTest::newRow("German") << QStringList{u"de"_s} << u"de"_s;
        QTest::newRow("German of a country") << QStringList{u"de-AT"_s, u"de"_s} << u"de"_s;
        QTest::newRow("as environment variables name it") << QStringList{u"de_CH"_s} << u"de"_s;
        QTest::newRow("German after one that is missing") << QStringList{u"fy-NL"_s, u"fy"_s, u"de"_s} << u"de"_s;
        QTest::newRow("English before German") << QStringList{u"en-GB"_s, u"en"_s, u"de"_s} << u"en"_s;
        QTest::newRow("one that is missing") << QStringList{u"fy"_s} << u"en"_s;
        QTest::newRow("the C locale") << QStringList{u"C"_s} << u"en"_s;
        QTest::newRow("none") << QStringList() << u"en"_s;
        QTest::newRow("empty") << QStringList{QString()} << u"en"_s;
        QTest::newRow("a path") << QStringList{u"../translations/quarrynet_de"_s, u"/de"_s, u"de/"_s} << u"en"_s;
        QTest::newRow("other letters") << QStringList{u"d\u00e9"_s, u"d\0e"_s, u"\u0434\u0435"_s} << u"en"_s;
        QTest::newRow("huge") << QStringList{QString(1000000, u'd')} << u"en"_s;
    }

    void theFirstLanguageThatTheProgramHasIsChosen()
    {
        QFETCH(QStringList, wanted);
        QFETCH(QString, code);
        const Language language(wanted);
        QCOMPARE(language.code(), code);
        QCOMPARE(QCoreApplication::translate("quarrynet::Main", "Toolbar"),
                 code == u"de"_s ? u"Werkzeugleiste"_s : u"Toolbar"_s);
        QVERIFY(!QGuiApplication::isRightToLeft());
    }

    void aLanguageEndsWithItsObject()
    {
        {
            const auto language = rightToLeftLanguage();
            QCOMPARE(language->code(), u"ar"_s);
            QVERIFY(QGuiApplication::isRightToLeft());
        }
        QVERIFY(!QGuiApplication::isRightToLeft());
        QCOMPARE(QCoreApplication::translate("quarrynet::Main", "Toolbar"), u"Toolbar"_s);
    }

    void theManualIsInTheLanguageIfItHasOne()
    {
        QTemporaryDir folder;
        const QDir place(folder.path());
        QVERIFY(place.mkpath(u"first/de"_s) && place.mkpath(u"second/de"_s));
        const auto pageIn = [&place](const QString& language) {
            return QString::fromStdString(
                       manualPage({place.filePath(u"first"_s), place.filePath(u"second"_s)}, language))
                .remove(place.path());
        };
        QCOMPARE(pageIn(u"de"_s), QString());
        for (const QString& name : {u"second/index.html"_s, u"second/de/index.html"_s, u"first/index.html"_s}) {
            QFile file(place.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.close();
            QCOMPARE(pageIn(u"de"_s), u'/' + name); // each is better than the one before
        }
        QCOMPARE(pageIn(u"en"_s), u"/first/index.html"_s);
        QVERIFY(QFile::remove(place.filePath(u"first/index.html"_s)));
        QCOMPARE(pageIn(u"de"_s), u"/second/de/index.html"_s);
        QCOMPARE(pageIn(u"en"_s), u"/second/index.html"_s);
        QCOMPARE(pageIn(QString()), u"/second/index.html"_s);
    }

    void everyTextIsFixedOrTranslated()
    {
        const auto language = rightToLeftLanguage();
        const QSet<QString> fixed = fixedTexts();
        WindowFixture window;
        window.start();
        for (const TabControls& tab : kTabs) {
            window.chooseTab(tab.tag);
            search(window, tab);
            if (auto* list = window.main().findChild<ListView*>(QLatin1String(tab.list))) {
                QMenu* menu = listMenu(*list);
                QCOMPARE(untranslated(*menu, fixed).join(u" | "_s), QString());
                menu->close();
                QTest::keyClick(list, Qt::Key_F, Qt::ControlModifier);
                QVERIFY(window.main().findChild<FilterLine*>());
            }
        }
        QCOMPARE(untranslated(window.main(), fixed).join(u" | "_s), QString());
        Proxy options(window.settingsFile().toStdString(), [](const std::string&) {});
        QCOMPARE(untranslated(options, fixed).join(u" | "_s), QString());
        const std::unique_ptr<Registry> registry = systemRegistry();
        frmAbout about(*registry, [](const std::string&) { return true; });
        QCOMPARE(untranslated(about, fixed).join(u" | "_s), QString());
        Dialog wait;
        QCOMPARE(untranslated(wait, fixed).join(u" | "_s), QString());
        QVERIFY(!hasLatinLetters(winSockError(10054).shownDescription()));
    }

    void fixedTextsAreTheSameInEveryLanguage()
    {
        const QStringList english = fixedTextsOfTheWindow();
        QVERIFY(english.contains(u"&Search"_s));
        const auto language = rightToLeftLanguage();
        QCOMPARE(fixedTextsOfTheWindow(), english);
    }

    void noTwoEntriesOfAMenuHaveTheSameAccelerator_data()
    {
        QTest::addColumn<QString>("code");
        for (const QString& code : {u"en"_s, u"de"_s})
            QTest::addRow("%s", qPrintable(code)) << code;
    }

    void noTwoEntriesOfAMenuHaveTheSameAccelerator()
    {
        QFETCH(QString, code);
        const Language language({code});
        QCOMPARE(language.code(), code);
        WindowFixture window;
        window.start();
        QList<QList<QAction*>> menus = {window.main().menuBar()->actions()};
        search(window, tabOf(1));
        listMenu(*window.control<ListView>("ListView1"));
        for (const QMenu* menu : window.main().findChildren<QMenu*>())
            menus.append(menu->actions());
        QVERIFY(menus.size() >= 6);
        for (const QList<QAction*>& menu : menus) {
            for (const QStringList& entries : accelerators(menu))
                QVERIFY2(entries.size() == 1, qPrintable(entries.join(u", "_s)));
        }
    }

    void theWindowIsMirrored_data()
    {
        QTest::addColumn<QSize>("size");
        for (const QSize size : kSizes)
            QTest::addRow("%d x %d", size.width(), size.height()) << size;
    }

    void theWindowIsMirrored()
    {
        QFETCH(QSize, size);
        const QMap<QString, QRect> design = places(size);
        QVERIFY(design.size() > 40);
        const auto language = rightToLeftLanguage();
        WindowFixture window;
        window.start();
        window.main().resize(size);
        const QMap<QString, QRect> shown = placesIn(window);
        QCOMPARE(shown.keys(), design.keys());
        for (auto it = design.begin(); it != design.end(); ++it) {
            const auto* control = window.control<QWidget>(qPrintable(it.key()));
            const QRect expected = mirrored(it.value(), control->parentWidget()->width());
            QVERIFY2(shown[it.key()] == expected, qPrintable(it.key()));
        }
    }

    void listsAndSlidersBeginAtTheRight()
    {
        const auto language = rightToLeftLanguage();
        WindowFixture window;
        window.start();
        const TabControls& tab = tabOf(1);
        window.chooseTab(tab.tag);
        search(window, tab);
        auto* list = window.control<ListView>("ListView1");
        QVERIFY(list->header()->sectionViewportPosition(0) > list->header()->sectionViewportPosition(1));
        auto* slider = window.control<PagingSlider>("Slider1");
        QVERIFY(slider->isEnabled());
        const int before = slider->value();
        const qsizetype requests = window.service.requests().size();
        QTest::keyClick(slider, Qt::Key_Left);
        QCOMPARE(slider->value(), before + 1);
        QTRY_VERIFY(window.service.requests().size() > requests);
    }

    void textsFromOutsideKeepTheirOrder()
    {
        const auto language = rightToLeftLanguage();
        WindowFixture window;
        window.start();
        auto* list = window.control<ListView>("ListView1");
        const QString address = u"http://a.example/b (1)/"_s;
        const QString title = u"\u0627\u0628 http://a.example/"_s; // in a text that reads from right to left
        list->setRows({{address.toStdString(), "Short, and so on..."}, {title.toStdString(), "2"}});
        const PaintedText painted(*list->viewport());
        QVERIFY2(painted.lineWith(u"example/b"_s).contains(address), qPrintable(painted.lineWith(u"example/b"_s)));
        QVERIFY(painted.lineWith(u"Short"_s).contains(u"Short, and so on..."_s));
        // Rows begin at the right.
        const QRect cell = list->visualRect(list->model()->index(0, 0));
        QVERIFY(cell.right() >= list->viewport()->width() - 4);
    }

    void englishCaptionsKeepTheirOrder()
    {
        const auto language = rightToLeftLanguage();
        WindowFixture window;
        window.start();
        for (const char* label : {"Label1", "Label2", "Label5"}) {
            auto* control = window.control<QLabel>(label);
            const QString text = control->text();
            const PaintedText painted(*control);
            QCOMPARE(painted.lineWith(text), text);
            const double free = control->width() - control->fontMetrics().horizontalAdvance(text);
            QVERIFY2(painted.leftOf(text) > free - 4, label); // at the right end of its place
        }
        QHeaderView* header = window.control<QTreeView>("ListView1")->header();
        const PaintedText painted(*header->viewport());
        const QString first = u"Website Address"_s;
        const double free = header->sectionSize(0) - header->fontMetrics().horizontalAdvance(first);
        QVERIFY(painted.leftOf(first) > free - 12); // in its section
        const std::unique_ptr<Registry> registry = systemRegistry();
        frmAbout about(*registry, [](const std::string&) { return true; });
        const QString caption = u"System Info..."_s;
        QCOMPARE(PaintedText(*about.findChild<QPushButton*>(u"cmdSysInfo"_s)).lineWith(caption), caption);
    }

    void anErrorBoxKeepsItsEnglishHeading()
    {
        const auto language = rightToLeftLanguage();
        WindowFixture window;
        window.start();
        showSocketError(&window.main(), 10061, toBytesOf(winSockError(10054).shownDescription()));
        QCOMPARE(window.boxes.boxes().size(), 1);
        QVERIFY(window.boxes.boxes().first().text.startsWith(u"Error occurred.\r\nError #: 10061\r\n"_s));
        QCOMPARE(window.boxes.boxes().first().title, u"Error"_s);
    }

private:
    /// Opens the list's menu by key and returns it. It stays open.
    static QMenu* listMenu(ListView& list)
    {
        list.selectAll();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(10, 10),
                                list.viewport()->mapToGlobal(QPoint(10, 10)));
        QCoreApplication::sendEvent(list.viewport(), &event);
        auto* menu = list.findChild<QMenu*>(u"ListMenu"_s);
        if (!menu)
            qFatal("the list has no menu");
        return menu;
    }

    static std::string toBytesOf(const QString& text) { return text.toStdString(); }

    static void search(WindowFixture& window, const TabControls& tab)
    {
        window.service.answerWith(pageOf(tab));
        fillIn(window, tab);
        QTest::mouseClick(window.control<QPushButton>(tab.button), Qt::LeftButton);
        QTRY_VERIFY(window.control<QPushButton>(tab.button)->isEnabled());
    }

    static QMap<QString, QRect> placesIn(WindowFixture& window)
    {
        QMap<QString, QRect> places;
        for (auto* control : window.main().centralWidget()->findChildren<QWidget*>()) {
            const bool placed = control->parentWidget() == window.main().centralWidget() ||
                                qobject_cast<SearchTab*>(control->parentWidget()) ||
                                qobject_cast<QStatusBar*>(control->parentWidget());
            if (placed && !control->objectName().isEmpty() && !control->objectName().startsWith(u"qt_"))
                places.insert(control->objectName(), control->geometry());
        }
        return places;
    }

    static QMap<QString, QRect> places(QSize size)
    {
        WindowFixture window;
        window.start();
        window.main().resize(size);
        return placesIn(window);
    }

    static QStringList fixedTextsOfTheWindow()
    {
        const QSet<QString> fixed = fixedTexts();
        WindowFixture window;
        window.start();
        QStringList found;
        for (QObject* object : window.main().findChildren<QObject*>()) {
            for (const QString& text : textsOf(*object)) {
                if (fixed.contains(text))
                    found.append(text);
            }
        }
        return found;
    }
};

QTEST_MAIN(LanguageTest)
#include "language_test.moc"
