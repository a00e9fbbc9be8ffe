#include "platform/FilterLine.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>
#include <QToolButton>

#include "platform/ListView.h"

namespace quarrynet {

namespace {

constexpr int kLongestFilter = 256; // characters; bounds the number of words that each row is compared with

} // namespace

FilterLine::FilterLine(ListView& list)
    : QWidget(list.parentWidget() ? list.parentWidget() : &list)
    , list_(list)
    , words_(new QLineEdit(this))
    , count_(new QLabel(this))
    , closing_(new QToolButton(this))
{
    setObjectName(QStringLiteral("FilterLine"));
    hide();
    setAutoFillBackground(true);
    words_->setObjectName(QStringLiteral("FilterWords"));
    words_->setMaxLength(kLongestFilter);
    words_->setAcceptDrops(false); // links and link files are for the window, as they are all over the list
    words_->setAccessibleName(tr("Show only rows with these words"));
    words_->setPlaceholderText(words_->accessibleName());
    words_->installEventFilter(this);
    count_->setObjectName(QStringLiteral("FilterCount"));
    count_->setTextFormat(Qt::PlainText);
    closing_->setObjectName(QStringLiteral("FilterClose"));
    closing_->setAutoRaise(true);
    closing_->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    closing_->setAccessibleName(tr("Show all rows"));
    closing_->setToolTip(closing_->accessibleName());
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(words_, 1);
    row->addWidget(count_);
    row->addWidget(closing_);

    connect(words_, &QLineEdit::textChanged, this, &FilterLine::changed);
    connect(closing_, &QToolButton::clicked, this, &FilterLine::close);
    // Tab leads from the line to the rows below it.
    setTabOrder(list.previousInFocusChain(), words_);
    setTabOrder(words_, closing_);
}

void FilterLine::open()
{
    open_ = true;
    show();
    raise();
    words_->setFocus(Qt::ShortcutFocusReason);
    words_->selectAll();
}

void FilterLine::close()
{
    if (!std::exchange(open_, false))
        return;
    // The window's focus widget: a widget's own one is the last that had the keyboard inside it.
    if (isAncestorOf(window()->focusWidget()))
        list_.setFocus(Qt::OtherFocusReason);
    hide();
    words_->clear();
    emit changed({}); // also where the line was empty, so that the list takes back the room
}

int FilterLine::wantedHeight()
{
    setFont(list_.font());
    // The widgets' preferred heights have lower bounds for fonts of usual sizes. In a small window they would take the
    // room of several rows.
    const int height = words_->minimumSizeHint().height();
    const int text = fontMetrics().height();
    closing_->setIconSize({text, text});
    closing_->setFixedSize(height, height);
    return height;
}

void FilterLine::showCount(int shown, std::size_t all)
{
    const QString text = tr("Rows: %1 of %2").arg(shown).arg(all);
    count_->setText(text);
    // Screen readers speak a changed description of the field that has the keyboard.
    words_->setAccessibleDescription(text);
}

bool FilterLine::event(QEvent* event)
{
    // Escape comes here from each part of the line. It closes the line and nothing else: the window would stop the
    // search.
    if ((event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride) &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        if (event->type() == QEvent::KeyPress)
            close();
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

bool FilterLine::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        list_.setFocus(Qt::TabFocusReason); // selects the first row if none is
        return true;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

} // namespace quarrynet
