#pragma once

#include <QTest>
#include <QWidget>

/// Double clicks as a person does. (QTest::mouseDClick sends the second press alone.)
inline void doubleClick(QWidget* place, QPoint at, Qt::KeyboardModifiers keys = {})
{
    QTest::mouseClick(place, Qt::LeftButton, keys, at);
    QTest::mouseDClick(place, Qt::LeftButton, keys, at);
    QTest::mouseRelease(place, Qt::LeftButton, keys, at);
}
