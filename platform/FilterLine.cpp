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
{
    setObjectName(QStringLiteral("FilterLine"));
    hide();
    setAutoFillBackground(true);
    words_->setObjectName(QStringLiteral("FilterWords"));
    words_->setMaxLength(kLongestFilter);
    words_->setAccessibleName(tr("Show only rows with these words"));
    words_->setPlaceholderText(words_->accessibleName());
    words_->installEventFilter(this);
    count_->setObjectName(QStringLiteral("FilterCount"));
    count_->setTextFormat(Qt::PlainText);
    auto* closing = new QToolButton(this);
    closing->setObjectName(QStringLiteral("FilterClose"));
    closing->setAutoRaise(true);
    closing->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    closing->setAccessibleName(tr("Show all rows"));
    closing->setToolTip(closing->accessibleName());
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(words_, 1);
    row->addWidget(count_);
    row->addWidget(closing);

    connect(words_, &QLineEdit::textChanged, this, &FilterLine::changed);
    connect(closing, &QToolButton::clicked, this, &FilterLine::close);
    // Tab leads from the line to the rows below it.
    setTabOrder(list.previousInFocusChain(), words_);
    setTabOrder(words_, closing);
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
    return sizeHint().height();
}

void FilterLine::showCount(int shown, std::size_t all)
{
    const QString text = tr("Rows: %1 of %2").arg(shown).arg(all);
    count_->setText(text);
    // Screen readers speak a changed description of the field that has the keyboard.
    words_->setAccessibleDescription(text);
}

bool FilterLine::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
        return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Escape:
        // Closes the line and nothing else: the window would stop the search.
        if (event->type() == QEvent::KeyPress)
            close();
        event->accept();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        if (event->type() == QEvent::KeyPress)
            list_.setFocus(Qt::TabFocusReason); // selects the first row if none is
        return event->type() == QEvent::KeyPress;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

} // namespace quarrynet
