#include "platform/webengine/gallery_script.h"

#include <utility>
#include <vector>

#include <QJsonArray>
#include <QJsonDocument>

#include "platform/PageView.h"

namespace quarrynet {

namespace {

constexpr int kFrame = 2; // the width of the frame around the chosen picture's cell

// A page's colours stay where it sets its own. Only a gallery's body has this attribute.
constexpr const char* kSheet = R"css(
:root { color-scheme: SCHEME; background: BACKGROUND; color: TEXT; font: SIZEpx FAMILY; }
a { color: LINK; }
a:focus { outline: FRAMEpx solid FOCUS; }
body[onkeydown] { display: grid; margin: 0; padding: GAPpx; gap: GAPpx; direction: DIRECTION;
    grid-template-columns: repeat(auto-fill, minmax(min(100%, CELLpx), 1fr)); }
body[onkeydown] > p { margin: 0; min-width: 0; scroll-margin: FRAMEpx; }
body[onkeydown] > p > a[target] { display: grid; grid-template-rows: HEIGHTpx auto; row-gap: PADDINGpx;
    grid-template-columns: 100%; place-items: center; padding: PADDINGpx; direction: ltr; text-decoration: none; }
body[onkeydown] > p > a[target] > span { display: -webkit-box; -webkit-box-orient: vertical;
    -webkit-line-clamp: LINES; max-width: 100%; overflow: hidden; overflow-wrap: anywhere; text-align: center; }
body[onkeydown] > p > a[target]:focus { outline-offset: -FRAMEpx; }
body[onkeydown] > p > a[target]:focus > span { -webkit-line-clamp: unset; }
body[onkeydown] > p > a[target]:hover > span { text-decoration: underline; }
body[onkeydown] > p > a[target] br { display: none; }
body[onkeydown] > p > a[target] > img { align-self: end; max-width: 100%; max-height: 100%; background: PLATE; }
body[onkeydown] > p > a[target] > img:not([data-shown]), body[onkeydown] > p > a[data-missing]::before {
    box-sizing: border-box; width: EMPTYWIDTHpx; height: EMPTYHEIGHTpx; border: 1px solid LINE; background: none; }
body[onkeydown] > p > a[data-missing] > img { display: none; }
body[onkeydown] > p > a[data-missing]::before { content: attr(data-missing); display: grid; place-items: center;
    align-self: end; border-style: dashed; color: TEXT; text-align: center; }
)css";

constexpr const char* kScript = R"js(
(function (style, missing, notes) {
    const sheet = new CSSStyleSheet();
    sheet.replaceSync(style);
    document.adoptedStyleSheets = [sheet];

    const links = () => [...document.querySelectorAll('body[onkeydown] > p > a[target]')];

    function arrange() {
        for (const paragraph of document.querySelectorAll('body[onkeydown] > p')) {
            if (!paragraph.firstElementChild && !paragraph.textContent.trim())
                paragraph.remove();
        }
        let number = 0;
        for (const link of links()) {
            const picture = link.firstElementChild;
            if (!picture || picture.tagName != 'IMG')
                continue;
            const caption = document.createElement('span');
            while (picture.nextSibling)
                caption.append(picture.nextSibling);
            link.append(caption);
            const tip = caption.textContent.slice(0, TIPLENGTH);
            const lines = tip.match(/[^]{1,TIPLINE}/g) ?? [];
            const note = notes.split('\n')[number++];
            link.title = (note ? [...lines, note] : lines).join('\n');
        }
    }

    function next(all, from, key) {
        const backwards = getComputedStyle(document.body).direction == 'rtl';
        const steps = {ArrowLeft: backwards ? 1 : -1, ArrowRight: backwards ? -1 : 1};
        if (key == 'Home' || (from < 0 && key != 'End'))
            return 0;
        if (key == 'End')
            return all.length - 1;
        if (key in steps)
            return Math.min(Math.max(from + steps[key], 0), all.length - 1);
        // The nearest one of the next row. A row's cells have one height.
        const places = all.map(link => link.parentElement.getBoundingClientRect());
        const down = key == 'ArrowDown';
        const rows = places.map(place => place.top).filter(
            top => down ? top > places[from].top + 1 : top < places[from].top - 1);
        if (!rows.length)
            return from;
        const row = down ? Math.min(...rows) : Math.max(...rows);
        const distance = i => Math.abs(places[i].left - places[from].left);
        let best = -1;
        places.forEach((place, i) => {
            if (Math.abs(place.top - row) <= 1 && (best < 0 || distance(i) < distance(best)))
                best = i;
        });
        return best;
    }

    // Scrolls the chosen picture's cell into view with its frame; if it is taller than the view, its top.
    function reveal() {
        const cell = document.activeElement?.parentElement;
        if (!cell?.matches('body[onkeydown] > p'))
            return;
        const fits = cell.getBoundingClientRect().height + 2 * FRAME <= innerHeight;
        cell.scrollIntoView({block: fits ? 'nearest' : 'start'});
    }

    // Returns false if this page is no gallery; then the key does what it does in any page.
    window.quarrynetMove = function (key) {
        const all = links().slice(0, MOST);
        if (!all.length)
            return false;
        const chosen = all[next(all, all.indexOf(document.activeElement), key)];
        chosen.focus({preventScroll: true});
        reveal();
        return true;
    };

    window.quarrynetStyle = function (newStyle) {
        sheet.replaceSync(newStyle);
        reveal();
        for (let i = 0; i < Math.min(frames.length, MOST); ++i) {
            try {
                frames[i].quarrynetStyle(newStyle);
            } catch (notOurs) {
            }
        }
    };

    function move(key) {
        try {
            return window.quarrynetMove(key) || (window == top && frames.length > 0 && frames[0].quarrynetMove(key));
        } catch (notOurs) {
            return false;
        }
    }

    document.addEventListener('keydown', event => {
        const moves = ['ArrowLeft', 'ArrowRight', 'ArrowUp', 'ArrowDown', 'Home', 'End'].includes(event.key);
        const modified = event.ctrlKey || event.altKey || event.metaKey || event.shiftKey;
        const typing = event.target.isContentEditable || /^(INPUT|TEXTAREA|SELECT)$/.test(event.target.tagName);
        if (moves && !modified && !typing && move(event.key))
            event.preventDefault();
    }, true);
    document.addEventListener('load', event => {
        if (event.target.tagName == 'IMG')
            event.target.dataset.shown = '';
    }, true);
    document.addEventListener('error', event => {
        if (event.target.tagName == 'IMG' && event.target.parentElement?.tagName == 'A')
            event.target.parentElement.dataset.missing = missing;
    }, true);
    document.addEventListener('DOMContentLoaded', arrange);
    addEventListener('resize', reveal); // the zoom changes the view's size, too
})
)js";

// Returns the arguments of a call: a list of JSON strings, which are also strings of the script's language.
QString arguments(const QStringList& texts)
{
    const QByteArray list = QJsonDocument(QJsonArray::fromStringList(texts)).toJson(QJsonDocument::Compact);
    return QLatin1Char('(') + QString::fromUtf8(list.mid(1, list.size() - 2)) + QLatin1Char(')');
}

// Returns `family` as a CSS string.
QString cssString(QString family)
{
    family.remove(QLatin1Char('\\')).remove(QLatin1Char('"')).remove(QLatin1Char('\n'));
    return QLatin1Char('"') + family + QLatin1Char('"');
}

// Returns the style sheet of all pages. The zoom is the view's matter.
QString sheetOf(const PageLook& look)
{
    const bool dark = look.background.lightness() < look.text.lightness();
    const std::vector<std::pair<const char*, QString>> values = {
        {"SCHEME", dark ? QStringLiteral("dark") : QStringLiteral("light")},
        {"BACKGROUND", look.background.name()},
        {"TEXT", look.text.name()},
        {"LINK", look.link.name()},
        {"FOCUS", look.focus.name()},
        {"FRAME", QString::number(kFrame)},
        {"LINES", QString::number(PageLook::kCaptionLines)},
        {"LINE", look.line.name()},
        {"PLATE", look.plate.name()},
        {"SIZE", QString::number(look.fontSize())},
        {"DIRECTION", look.rightToLeft ? QStringLiteral("rtl") : QStringLiteral("ltr")},
        {"CELL", QString::number(look.cellWidth())},
        {"GAP", QString::number(PageLook::kGap)},
        {"PADDING", QString::number(PageLook::kPadding)},
        {"EMPTYWIDTH", QString::number(look.shrunk(PageLook::kEmptyWidth))},
        {"EMPTYHEIGHT", QString::number(look.shrunk(PageLook::kEmptyHeight))},
        {"HEIGHT", QString::number(look.shrunk(PageLook::kPictureHeight))},
        // The last one, because a family may have any name.
        {"FAMILY", cssString(look.font.family()) + QStringLiteral(", sans-serif")},
    };
    QString sheet = QString::fromLatin1(kSheet);
    for (const auto& [name, value] : values)
        sheet.replace(QLatin1String(name), value);
    return sheet;
}

} // namespace

QString galleryScript(const PageLook& look, const QStringList& notes)
{
    QString script = QString::fromLatin1(kScript).trimmed();
    script.replace(QLatin1String("MOST"), QString::number(kMaxPagePictures));
    script.replace(QLatin1String("FRAME"), QString::number(kFrame));
    script.replace(QLatin1String("TIPLENGTH"), QString::number(PageLook::kTipLength));
    script.replace(QLatin1String("TIPLINE"), QString::number(PageLook::kTipLine));
    return script + arguments({sheetOf(look), look.noPicture, notes.join(QLatin1Char('\n'))});
}

QString restylingScript(const PageLook& look)
{
    return QStringLiteral("quarrynetStyle") + arguments({sheetOf(look)});
}

} // namespace quarrynet
